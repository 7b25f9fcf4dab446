// The manager of option values over four option files.

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "host/option_file.h"
#include "host/places.h"
#include "host/stored_file.h"
#include "talm/base.h"
#include "talm/config.hpp"

namespace fs = std::filesystem;

namespace {

constexpr int32_t fileCount = 4;
constexpr int32_t userFile = 0;
constexpr int32_t defaultsFile = 3;

constexpr const char *fileNames[fileCount] = {"user.opt", "session.opt", "site.opt", "defaults.opt"};

void report(int32_t level, const fs::path &file, const char *reason)
{
    EsLogGeneral("Options", level, "%s: %s", file.string().c_str(), reason);
}

class ConfigManager final : public IConfigMgr {
public:
    uint32_t GetValue(const char *key, char **text, bool defaults) override
    {
        if (!key || !text)
            return 1;
        *text = nullptr;
        std::lock_guard guard(lock_);
        for (int32_t file = defaults ? defaultsFile : userFile; file < fileCount; ++file) {
            const talm::Options &options = layers_[file].options;
            if (auto found = options.find(std::string_view(key)); found != options.end())
                return copyOut(found->second, text);
        }
        return 1;
    }

    uint32_t SetValue(const char *key, const char *value) override
    {
        if (!key || !value || !talm::isStorable(key, value))
            return 1;
        try {
            return set(key, talm::trimmed(value)) ? 0 : 1;
        } catch (const std::exception &) {
            return 1;
        }
    }

    bool Load(int32_t file) override
    {
        if (file < 0 || file >= fileCount)
            return false;
        try {
            return load(file);
        } catch (const std::exception &) {
            return false;
        }
    }

    uint32_t setFile(int32_t file, const char *path)
    {
        if (file < 0 || file >= fileCount)
            return 1;
        try {
            fs::path chosen = path ? path : "";
            std::lock_guard guard(lock_);
            layers_[file].chosen.swap(chosen);
            layers_[file].options.clear();
            return 0;
        } catch (const std::bad_alloc &) {
            return 1;
        }
    }

private:
    struct Layer {
        fs::path chosen; ///< empty for the default place
        talm::Options options;
    };

    static uint32_t copyOut(const std::string &value, char **text)
    {
        *text = static_cast<char *>(std::malloc(value.size() + 1));
        if (!*text)
            return 1;
        std::memcpy(*text, value.c_str(), value.size() + 1);
        return 0;
    }

    /** Empty for a user file without a user's folder. */
    fs::path pathOf(int32_t file)
    {
        std::lock_guard guard(lock_);
        if (!layers_[file].chosen.empty())
            return layers_[file].chosen;
        fs::path base = file <= 1 ? talm::userFolder() : talm::productFolder();
        return base.empty() ? base : base / "options" / fileNames[file];
    }

    bool load(int32_t file)
    {
        fs::path path = pathOf(file);
        std::error_code failed;
        if (path.empty() || !fs::exists(path, failed)) {
            replace(file, {});
            return missing(file, path);
        }
        auto text = fs::is_directory(path, failed) ? std::nullopt : talm::readWhole(path);
        if (!text) {
            report(EsLevelError, path, "the option file cannot be read");
            return false;
        }
        talm::ParsedOptions parsed = talm::parseOptions(*text);
        replace(file, std::move(parsed.values));
        for (const talm::OptionFault &fault : parsed.faults)
            EsLogGeneral("Options", EsLevelWarning, "%s, line %zu: %s; the line is left out",
                         path.string().c_str(), fault.line, fault.reason);
        return true;
    }

    /** A user, a session and a site need no file; an installation without its defaults is broken. */
    static bool missing(int32_t file, const fs::path &path)
    {
        bool needed = file == defaultsFile;
        if (path.empty())
            report(EsLevelInformation, fileNames[file], "no folder of the user is known");
        else
            report(needed ? EsLevelError : EsLevelInformation, path, "there is no such option file");
        return !needed;
    }

    void replace(int32_t file, talm::Options &&options)
    {
        std::lock_guard guard(lock_);
        layers_[file].options.swap(options);
    }

    bool set(std::string_view key, std::string_view value)
    {
        fs::path path = pathOf(userFile);
        talm::Options::value_type made(key, value);
        std::lock_guard writing(writing_);
        if (path.empty() || !talm::storeOption(path, key, value)) {
            report(EsLevelError, path.empty() ? fileNames[userFile] : path,
                   "the option file cannot be written");
            return false;
        }
        std::lock_guard guard(lock_);
        layers_[userFile].options.insert_or_assign(std::move(made).first, std::move(made.second));
        return true;
    }

    std::mutex writing_; ///< one change of the file at a time; taken before lock_
    std::mutex lock_;    ///< guards the layers; never held while a file is read or the log is called
    Layer layers_[fileCount];
};

// Never destroyed: what runs at the end of the process may still read options.
ConfigManager &own()
{
    alignas(ConfigManager) static char storage[sizeof(ConfigManager)];
    static auto *instance = new (storage) ConfigManager;
    return *instance;
}

std::atomic<IConfigMgr *> installed{nullptr};

}

IConfigMgr *GetIConfigMgr(void)
{
    IConfigMgr *manager = installed;
    return manager ? manager : &own();
}

void TalmSetConfigMgr(IConfigMgr *manager)
{
    installed = manager;
}

uint32_t TalmSetOptionFile(int32_t file, const char *path)
{
    return own().setFile(file, path);
}
