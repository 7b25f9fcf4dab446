// The settings store as a key file: VX_REGISTRY_FILE, else
// $HOME/.config/vx/registry.ini. The machine's keys stand under
// HKEY_LOCAL_MACHINE.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#include "platform/os/fault.h"
#include "platform/os/key_file.h"
#include "platform/os/os.h"
#include "platform/os/posix/descriptor.h"
#include "platform/os/posix/error.h"
#include "platform/os/posix/locks.h"
#include "platform/os/posix/native_file.h"
#include "platform/os/posix/replace.h"

namespace vx::os {

namespace {

constexpr std::string_view machinePrefix = "HKEY_LOCAL_MACHINE\\";

/** Empty for a user without a home. */
std::string fileName()
{
    if (const char *named = std::getenv("VX_REGISTRY_FILE"); named && *named)
        return named;
    const char *home = std::getenv("HOME");
    return home && *home ? std::string(home) + "/.config/vx/registry.ini" : std::string();
}

Error update(const std::string &name, std::string_view key, std::string_view setting, std::string_view value)
{
    if (name.empty())
        return fail(ENOENT);
    if (Error error = makeFolders(name); error != Error::none)
        return error;
    // A file of its own, since the store itself is replaced while it is held.
    Descriptor held(open((name + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (held.get() < 0 || !holdWhenFree(held.get()))
        return errorOf(errno);
    std::string text;
    if (Error error = readWhole(name, text); error != Error::none)
        return error;
    putSetting(text, key, setting, value);
    return replaceNative(name.c_str(), text.data(), text.size()) == 0 ? Error::none : errorOf(errno);
}

std::string sectionName(SettingsRoot root, const char *key)
{
    return root == SettingsRoot::machine ? std::string(machinePrefix) + key : std::string(key);
}

Error handOut(const std::string &text, char *out, size_t size) noexcept
{
    if (text.size() >= size)
        return fail(ENAMETOOLONG);
    text.copy(out, text.size());
    out[text.size()] = '\0';
    return Error::none;
}

}

Error readSetting(SettingsRoot root, const char *key, const char *name, char *out, size_t size) noexcept
{
    VX_OS_VERB("readSetting");
    if (!out || size == 0)
        return fail(EINVAL);
    out[0] = '\0';
    if (!key || !name)
        return fail(EINVAL);
    return guarded([&] {
        std::string text;
        if (Error error = readWhole(fileName(), text); error != Error::none)
            return error;
        std::string value;
        if (!findSetting(text, sectionName(root, key), name, value))
            return fail(ENOENT);
        return handOut(value, out, size);
    });
}

Error subkeyName(SettingsRoot root, const char *key, int32_t n, char *out, size_t size) noexcept
{
    VX_OS_VERB("subkeyName");
    if (!out || size == 0)
        return fail(EINVAL);
    out[0] = '\0';
    if (!key || n < 0)
        return fail(EINVAL);
    return guarded([&] {
        std::string text;
        if (Error error = readWhole(fileName(), text); error != Error::none)
            return error;
        std::string name;
        if (!findSubkey(text, sectionName(root, key), static_cast<size_t>(n), name))
            return fail(ENOENT);
        return handOut(name, out, size);
    });
}

Error writeSetting(SettingsRoot root, const char *key, const char *name, const char *text) noexcept
{
    VX_OS_VERB("writeSetting");
    if (!key || !name || !text || !canStandInKeyFile(key, name))
        return fail(EINVAL);
    return guarded([&] { return update(fileName(), sectionName(root, key), name, text); });
}

}
