// What the desktops of freedesktop.org share: recent documents, shortcuts.

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <strings.h>

#include "platform/os/desktop_entry.h"
#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/native_text.h"
#include "platform/os/os.h"
#include "platform/os/posix/error.h"
#include "platform/os/posix/native_file.h"
#include "platform/os/posix/replace.h"
#include "platform/os/recent_list.h"

namespace vx::os {

namespace {

std::string recentListName()
{
    if (const char *data = std::getenv("XDG_DATA_HOME"); data && *data == '/')
        return std::string(data) + "/recently-used.xbel";
    const char *home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.local/share/recently-used.xbel";
}

std::string timeText()
{
    int64_t now = wallMicroseconds();
    auto seconds = static_cast<std::time_t>(now / 1000000);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char date[64], text[80];
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text, sizeof text, "%s.%06dZ", date, static_cast<int>(now % 1000000));
    return text;
}

/** The running program's native name. */
std::string ownProgram()
{
    char name[4096 + 1];
    ssize_t length = readlink("/proc/self/exe", name, sizeof name);
    return length > 0 ? std::string(name, static_cast<size_t>(length)) : std::string("program");
}

std::string_view lastComponent(std::string_view path) noexcept
{
    return path.substr(path.rfind('/') + 1);
}

bool endsWith(const std::string &text, const char *ending) noexcept
{
    size_t length = std::strlen(ending);
    return text.size() >= length && strcasecmp(text.c_str() + text.size() - length, ending) == 0;
}

/** The name of the file that a shortcut of this name is kept in. */
std::string entryName(std::string name)
{
    constexpr const char *ending = ".desktop";
    constexpr const char *foreign = ".lnk";
    if (endsWith(name, ending))
        return name;
    if (endsWith(name, foreign))
        name.resize(name.size() - std::strlen(foreign));
    return name + ending;
}

/** A folder or a file that cannot be run is shown; what is not there may become a program yet. */
bool isProgram(const char *name) noexcept
{
    struct stat status;
    return stat(name, &status) != 0 || (S_ISREG(status.st_mode) && (status.st_mode & 0111) != 0);
}

/** Whoever may read the shortcut may start it: desktops ask for that as a sign of trust. */
int allowStarting(const char *name) noexcept
{
    struct stat status;
    if (stat(name, &status) != 0)
        return -1;
    return chmod(name, (status.st_mode & 07777) | ((status.st_mode & 0444) >> 2));
}

}

Error addRecentDocument(const char *path) noexcept
{
    VX_OS_VERB("addRecentDocument");
    NativePath document(path);
    if (document.error() != Error::none)
        return refusePath(document.error());
    return guarded([&] {
        std::string name = recentListName(), program = ownProgram(), list;
        RecentUse use{fileUri(document.c_str()), std::string(lastComponent(program)), "'" + program + " %u'",
                      timeText()};
        if (Error error = makeFolders(name); error != Error::none)
            return error;
        if (Error error = readWhole(name, list); error != Error::none)
            return error;
        if (!noteRecentUse(list, use))
            return fail(EINVAL);
        return replaceNative(name.c_str(), list.data(), list.size()) == 0 ? Error::none : errorOf(errno);
    });
}

Error createShortcut(const char *path, const Shortcut &shortcut) noexcept
{
    VX_OS_VERB("createShortcut");
    NativePath link(path), target(shortcut.target), folder(shortcut.workFolder);
    for (const NativePath *name : {&link, &target, &folder})
        if (name->error() != Error::none)
            return refusePath(name->error());
    return guarded([&] {
        std::string name = entryName(link.c_str());
        std::string_view shown = lastComponent(name);
        shown.remove_suffix(std::strlen(".desktop"));
        DesktopEntry entry{
            std::string(shown), toUtf8(shortcut.description), target.c_str(), isProgram(target.c_str()), {},
            folder.c_str()};
        for (const char *const *argument = shortcut.arguments; *argument; ++argument)
            entry.arguments.push_back(toUtf8(*argument));
        std::string text = desktopEntryText(entry);
        bool done =
            replaceNative(name.c_str(), text.data(), text.size()) == 0 && allowStarting(name.c_str()) == 0;
        return done ? Error::none : errorOf(errno);
    });
}

}
