// The user's recent documents and shortcuts.

#include <cstring>
#include <new>

#include "files/full_path.h"
#include "platform/command_line.h"
#include "platform/os/os.h"
#include "vx/sys.h"

using namespace vx;

namespace {

constexpr size_t pathSize = files::longestPath + 1;

/** A name that is looked for where the system looks for programs stays one. */
bool fullTarget(const char *target, char *out, size_t size) noexcept
{
    if (std::strpbrk(target, "\\/:"))
        return files::fullPath(target, out, size);
    size_t length = std::strlen(target);
    if (length == 0 || length >= size)
        return false;
    std::memcpy(out, target, length + 1);
    return true;
}

const char *orEmpty(const char *text) noexcept
{
    return text ? text : "";
}

}

uint32_t VxAddToRecent(const char *path)
{
    char full[pathSize];
    if (!path || !*path || !files::fullPath(path, full, sizeof full))
        return 1;
    return os::access(full, os::Access::exists) != os::Error::none ||
           os::addRecentDocument(full) != os::Error::none;
}

uint32_t VxShortcutCreate(const char *target, const char *arguments, const char *workDir,
                          const char *linkPath, const char *description)
{
    char full[pathSize];
    if (!target || !linkPath || !*linkPath || !fullTarget(target, full, sizeof full))
        return 1;
    try {
        auto words = platform::wordsOfArguments(orEmpty(arguments));
        auto addresses = platform::addressesOf(words);
        os::Shortcut shortcut{full, addresses.data(), orEmpty(workDir), orEmpty(description)};
        return os::createShortcut(linkPath, shortcut) != os::Error::none;
    } catch (const std::bad_alloc &) {
        return 1;
    }
}
