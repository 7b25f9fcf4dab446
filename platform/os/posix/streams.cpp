#include "platform/os/os.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/posix/error.h"

namespace vx::os {

Error temporaryFolder(char *out, size_t size) noexcept
{
    VX_OS_VERB("temporaryFolder");
    const char *named = std::getenv("TMPDIR");
    Error error = fromNative(named && *named ? named : "/tmp", out, size);
    if (error != Error::none)
        return error;
    size_t length = 0;
    while (out[length])
        ++length;
    while (length > 1 && out[length - 1] == '\\')
        out[--length] = '\0';
    return Error::none;
}

Error redirectStandardError(const char *path, SavedStream &before) noexcept
{
    VX_OS_VERB("redirectStandardError");
    NativePath native(path);
    if (native.error() != Error::none)
        return native.error();
    // Appended to, so that children that inherit it do not overwrite each other.
    int file = open(native.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0)
        return errorOf(errno);
    std::fflush(stderr);
    int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    Error result = Error::none;
    if (saved < 0 || dup2(file, STDERR_FILENO) < 0) {
        result = errorOf(errno);
        if (saved >= 0)
            close(saved);
    } else {
        before.handle = saved;
    }
    close(file);
    return result;
}

Error restoreStandardError(SavedStream &before) noexcept
{
    VX_OS_VERB("restoreStandardError");
    std::fflush(stderr);
    if (dup2(static_cast<int>(before.handle), STDERR_FILENO) < 0)
        return errorOf(errno);
    forget(before);
    return Error::none;
}

void forget(SavedStream &before) noexcept
{
    close(static_cast<int>(before.handle));
    before = SavedStream{};
}

Error seekStream(FILE *stream, int64_t offset, Origin origin) noexcept
{
    VX_OS_VERB("seekStream");
    int whence = origin == Origin::begin ? SEEK_SET : origin == Origin::current ? SEEK_CUR : SEEK_END;
    return fseeko(stream, offset, whence) != 0 ? errorOf(errno) : Error::none;
}

Error tellStream(FILE *stream, int64_t &position) noexcept
{
    VX_OS_VERB("tellStream");
    off_t told = ftello(stream);
    if (told < 0)
        return errorOf(errno);
    position = told;
    return Error::none;
}

Error syncStream(FILE *stream) noexcept
{
    VX_OS_VERB("syncStream");
    // What is no file cannot be synchronised, and need not be.
    bool failed = std::fflush(stream) != 0 || (fsync(fileno(stream)) != 0 && errno != EINVAL);
    return failed ? errorOf(errno) : Error::none;
}

}
