#include "platform/os/os.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/posix/error.h"

namespace vx::os {

namespace {

/** Put an open file in the place of standard error. */
Error divert(int file, SavedStream &before) noexcept
{
    std::fflush(stderr);
    int saved = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (saved < 0)
        return errorOf(errno);
    if (dup2(file, STDERR_FILENO) < 0) {
        Error error = errorOf(errno);
        close(saved);
        return error;
    }
    before.handle = saved;
    return Error::none;
}

}

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
    Error result = divert(file, before);
    close(file);
    return result;
}

Error captureStandardError(SavedStream &before, CapturedText &captured) noexcept
{
    VX_OS_VERB("captureStandardError");
    // A file without a name rather than a pipe: it takes everything at once,
    // and a program that outlives the command can go on writing to it.
    int file = memfd_create("standard error", MFD_CLOEXEC);
    if (file < 0)
        return errorOf(errno);
    Error result = fcntl(file, F_SETFL, O_APPEND) != 0 ? errorOf(errno) : divert(file, before);
    if (result == Error::none)
        captured.handle = file;
    else
        close(file);
    return result;
}

Error readCaptured(const CapturedText &captured, char *out, size_t size, size_t &length) noexcept
{
    VX_OS_VERB("readCaptured");
    length = 0;
    while (length < size) {
        ssize_t n = pread(static_cast<int>(captured.handle), out + length, size - length,
                          static_cast<off_t>(length));
        if (n == 0)
            break;
        if (n < 0 && errno != EINTR)
            return errorOf(errno);
        length += n > 0 ? static_cast<size_t>(n) : 0;
    }
    return Error::none;
}

void forget(CapturedText &captured) noexcept
{
    close(static_cast<int>(captured.handle));
    captured = CapturedText{};
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
