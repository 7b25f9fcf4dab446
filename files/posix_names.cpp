// The familiar POSIX names over the toolkit's paths.

#include "vx/posix.hpp"

#include <cstring>

#include "files/full_path.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "vx/str.h"

using namespace vx;
using namespace vx::files;

namespace VX {

namespace {

void dropFinalSeparator(char *path) noexcept
{
    if (endsInSeparator(path))
        *lastSeparator(path) = '\0';
}

}

int alphasort(const void *a, const void *b)
{
    auto name = [](const void *entry) { return (*static_cast<const VxDirEnt *const *>(entry))->name; };
    int order = std::strcmp(name(a), name(b));
    return (order > 0) - (order < 0);
}

char *realpath(const char *path, char *resolved, int32_t size)
{
    if (!path || !resolved || size < 1)
        return resolved;
    if (!canonicalPath(path, resolved, static_cast<size_t>(size)))
        VxStrCpy(resolved, path, size);
    return resolved;
}

char *basename(char *path)
{
    if (!path)
        return nullptr;
    dropFinalSeparator(path);
    char *last = lastSeparator(path);
    return last ? last + 1 : path;
}

char *dirname(char *path)
{
    if (!path)
        return nullptr;
    dropFinalSeparator(path);
    if (char *last = lastSeparator(path))
        *last = '\0';
    return path;
}

int32_t gettimeofday(VxTimeVal *tv, void *command)
{
    constexpr int32_t raise = 1;
    constexpr int32_t lower = 2;
    if (!tv)
        return -1;
    int32_t wanted = command ? *static_cast<const int32_t *>(command) : 0;
    if (wanted == raise)
        os::fineClock(true);
    int64_t milliseconds = os::wallMicroseconds() / 1000;
    tv->sec = milliseconds / 1000;
    tv->usec = static_cast<int32_t>(milliseconds % 1000 * 1000);
    if (wanted == lower)
        os::fineClock(false);
    return 0;
}

int32_t uname(VxUtsName *info)
{
    os::SystemName names;
    if (!info || os::systemName(names) != os::Error::none)
        return -1;
    static_assert(sizeof info->sysname == sizeof names.system);
    std::memcpy(info->sysname, names.system, sizeof names.system);
    std::memcpy(info->nodename, names.node, sizeof names.node);
    std::memcpy(info->release, names.release, sizeof names.release);
    std::memcpy(info->version, names.version, sizeof names.version);
    std::memcpy(info->machine, names.machine, sizeof names.machine);
    return 1;
}

}
