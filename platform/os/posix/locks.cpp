#include "platform/os/posix/locks.h"

#include <sys/file.h>

#include <cerrno>

namespace vx::os {

namespace {

bool withoutLocks(int code) noexcept
{
    return code == ENOTSUP || code == EOPNOTSUPP || code == ENOLCK || code == EINVAL || code == ENOSYS;
}

}

bool hold(int file, bool writing) noexcept
{
    if (flock(file, (writing ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0 || withoutLocks(errno))
        return true;
    if (errno == EWOULDBLOCK)
        errno = EACCES;
    return false;
}

bool holdWhenFree(int file) noexcept
{
    while (flock(file, LOCK_EX) != 0)
        if (errno != EINTR)
            return withoutLocks(errno);
    return true;
}

}
