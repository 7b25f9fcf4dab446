#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vx::test {

/** A fresh folder that is removed with everything in it. */
class TempFolder {
public:
    TempFolder()
    {
        std::random_device random;
        do
            path_ = std::filesystem::temp_directory_path() / ("vx-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }

    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    /** The folder's native name. */
    const std::filesystem::path &native() const { return path_; }

    /** The folder, or a name in it, in the toolkit's spelling: backslashes. */
    std::string text(std::string_view name = {}) const
    {
        std::string text = name.empty() ? path_.string() : path_.string().append("/").append(name);
        std::ranges::replace(text, '/', '\\');
        return text;
    }

    /** Write a file with these bytes, folders included; `name` is native. */
    void write(std::string_view name, std::string_view bytes) const
    {
        auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        if (!(std::ofstream(file, std::ios::binary) << bytes << std::flush))
            throw std::runtime_error("cannot write " + file.string());
    }

    /** Make empty files. */
    void make(std::initializer_list<const char *> names) const
    {
        for (const char *name : names)
            write(name, "");
    }

    /** The bytes of a file in it; `name` is native. */
    std::string read(std::string_view name) const
    {
        std::ifstream stream(path_ / name, std::ios::binary);
        if (!stream)
            throw std::runtime_error("cannot read " + std::string(name));
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path path_;
};

/** Sets an environment variable, or unsets it for null, until the end of the scope. */
class Environment {
public:
    Environment(const char *name, const char *value) : name_(name)
    {
        if (const char *old = std::getenv(name))
            old_ = old;
        set(value);
    }
    ~Environment() { set(old_ ? old_->c_str() : nullptr); }
    Environment(const Environment &) = delete;
    Environment &operator=(const Environment &) = delete;

private:
    void set(const char *value) { value ? setenv(name_.c_str(), value, 1) : unsetenv(name_.c_str()); }

    std::string name_;
    std::optional<std::string> old_;
};

}
