#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vx::test {

/** A fresh folder that is removed with everything in it. */
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    /** The folder's native name. */
    const std::filesystem::path &native() const { return path_; }

    /** The folder, or a name in it, in the toolkit's spelling: backslashes. */
    std::string text(std::string_view name = {}) const;

    /** Write a file with these bytes, folders included; `name` is native. */
    void write(std::string_view name, std::string_view bytes) const;

    /** Make empty files. */
    void make(std::initializer_list<const char *> names) const
    {
        for (const char *name : names)
            write(name, "");
    }

    /** The bytes of a file in it; `name` is native. */
    std::string read(std::string_view name) const;

private:
    std::filesystem::path path_;
};

/** Sets an environment variable, or unsets it for null, until the end of the scope. */
class Environment {
public:
    Environment(const char *name, const char *value);
    ~Environment();
    Environment(const Environment &) = delete;
    Environment &operator=(const Environment &) = delete;

private:
    std::string name_, old_;
    bool had_;
};

}
