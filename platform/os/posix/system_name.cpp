#include "platform/os/os.h"

#include <sys/utsname.h>

#include <cerrno>
#include <cstring>

#include "platform/os/fault.h"
#include "platform/os/posix/error.h"

namespace vx::os {

namespace {

template <size_t n, size_t m> void copyText(const char (&from)[n], char (&to)[m]) noexcept
{
    static_assert(n <= m);
    std::memcpy(to, from, n);
}

}

Error systemName(SystemName &out) noexcept
{
    VX_OS_VERB("systemName");
    struct utsname names;
    if (::uname(&names) != 0)
        return errorOf(errno);
    copyText(names.sysname, out.system);
    copyText(names.nodename, out.node);
    copyText(names.release, out.release);
    copyText(names.version, out.version);
    copyText(names.machine, out.machine);
    return Error::none;
}

Error fineClock(bool) noexcept
{
    VX_OS_VERB("fineClock");
    // The clock here counts nanoseconds, whatever is asked of it.
    return Error::none;
}

}
