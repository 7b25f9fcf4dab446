#include "platform/os/posix/error.h"

#include <cerrno>
#include <cstring>

namespace vx::os {

Error errorOf(int code) noexcept
{
    switch (code) {
    case 0: return Error::none;
    case ENOENT: return Error::notFound;
    case EACCES:
    case EPERM:
    case EROFS: return Error::accessDenied;
    case EEXIST: return Error::exists;
    case EBUSY:
    case EWOULDBLOCK: return Error::busy;
    case ENAMETOOLONG: return Error::nameTooLong;
    case ENOTDIR: return Error::notDirectory;
    case EISDIR: return Error::isDirectory;
    case ENOSPC:
    case EDQUOT: return Error::noSpace;
    case ENOMEM: return Error::noMemory;
    case EXDEV: return Error::otherDevice;
    case EINVAL:
    case EILSEQ: return Error::invalid;
    case ENOTSUP:
    case ENOSYS: return Error::unsupported;
    default: return Error::other;
    }
}

Error refusePath(Error error) noexcept
{
    errno = error == Error::nameTooLong ? ENAMETOOLONG : error == Error::invalid ? EINVAL : ENOENT;
    return error;
}

const char *errorText(int32_t code) noexcept
{
    return code >= 0 && code < errorTextCount() ? strerrordesc_np(code) : nullptr;
}

int32_t errorTextCount() noexcept
{
    return 134;
}

}
