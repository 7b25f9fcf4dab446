// Files without streams: opening, reading, copying, replacing.

#include "platform/os/os.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/os/fault.h"
#include "platform/os/posix/locks.h"
#include "platform/os/posix/native_call.h"
#include "platform/os/posix/replace.h"
#include "platform/os/posix/status.h"
#include "platform/os/posix/write_all.h"

namespace vx::os {

namespace {

constexpr size_t bufferSize = 64 * 1024;

int descriptorOf(Handle handle) noexcept
{
    return static_cast<int>(handle.value);
}

/** What a system call answered. */
Error answer(int result) noexcept
{
    return result < 0 ? errorOf(errno) : Error::none;
}

/** Hold an open file as its mode wants it shared. */
bool holdShared(int file, uint32_t mode) noexcept
{
    bool writes = mode & writeAccess;
    bool othersWrite = mode & shareWrite;
    bool alone = !(mode & shareRead) || (writes && !othersWrite);
    // A reader that does not mind writers minds nobody.
    return alone || writes || !othersWrite ? hold(file, alone) : true;
}

bool prepareHandle(int file, uint32_t mode) noexcept
{
    struct stat status;
    if (!statusOfFile(file, status))
        return false;
    return !S_ISREG(status.st_mode) || holdShared(file, mode);
}

ssize_t readSome(int file, void *bytes, size_t size, off_t offset) noexcept
{
    ssize_t n;
    do
        n = pread(file, bytes, size, offset);
    while (n < 0 && errno == EINTR);
    return n;
}

/** Whether the kernel will not copy between these two files itself. */
bool copiedByHand(int code) noexcept
{
    switch (code) {
    case EXDEV:
    case ENOSYS:
    case EOPNOTSUPP:
    case EINVAL:
    case EPERM:
    case EBADF: return true;
    default: return false;
    }
}

}

Error openHandle(const char *path, uint32_t mode, Handle &out) noexcept
{
    VX_OS_VERB("openHandle");
    int access = !(mode & writeAccess) ? O_RDONLY : mode & readAccess ? O_RDWR : O_WRONLY;
    bool creates = mode & createNew;
    return withNative(path, [&](const char *name) {
        int file = open(name, access | O_CLOEXEC | (creates ? O_CREAT | O_EXCL : 0), 0666);
        if (file < 0)
            return -1;
        if (prepareHandle(file, mode)) {
            out.value = file;
            return 0;
        }
        int code = errno;
        close(file);
        errno = code;
        return -1;
    });
}

Error closeHandle(Handle &handle) noexcept
{
    // Also where a test refuses it, since nobody can close it later.
    int file = descriptorOf(handle);
    handle = Handle{};
    int result = close(file);
    VX_OS_VERB("closeHandle");
    return answer(result);
}

void dropHandle(Handle &handle) noexcept
{
    int code = errno;
    if (handle.isOpen())
        close(descriptorOf(handle));
    handle = Handle{};
    errno = code;
}

Error handleStatus(Handle handle, FileStatus &out) noexcept
{
    VX_OS_VERB("handleStatus");
    struct stat status;
    if (fstat(descriptorOf(handle), &status) != 0)
        return errorOf(errno);
    out = statusOf(status);
    return Error::none;
}

Error readHandle(Handle handle, int64_t offset, void *bytes, size_t size, size_t &got) noexcept
{
    VX_OS_VERB("readHandle");
    ssize_t n = readSome(descriptorOf(handle), bytes, size, offset);
    got = n > 0 ? static_cast<size_t>(n) : 0;
    return n < 0 ? errorOf(errno) : Error::none;
}

Error copyBytes(Handle from, int64_t fromOffset, Handle to, int64_t toOffset, size_t most,
                size_t &copied) noexcept
{
    VX_OS_VERB("copyBytes");
    copied = 0;
    off_t in = fromOffset;
    off_t out = toOffset;
    ssize_t n = copy_file_range(descriptorOf(from), &in, descriptorOf(to), &out, most, 0);
    if (n > 0) {
        copied = static_cast<size_t>(n);
        return Error::none;
    }
    if (n < 0 && errno != EINTR && !copiedByHand(errno))
        return errorOf(errno);
    // 0 is the end, or a file of the kernel's own, which has bytes but no size.
    char buffer[bufferSize];
    n = readSome(descriptorOf(from), buffer, std::min(most, sizeof buffer), fromOffset);
    if (n < 0 || !writeAll(descriptorOf(to), buffer, static_cast<size_t>(n), toOffset))
        return errorOf(errno);
    copied = static_cast<size_t>(n);
    return Error::none;
}

Error resizeHandle(Handle handle, int64_t size) noexcept
{
    VX_OS_VERB("resizeHandle");
    return answer(ftruncate(descriptorOf(handle), size));
}

Error copyTimesAndPermissions(Handle from, Handle to) noexcept
{
    VX_OS_VERB("copyTimesAndPermissions");
    struct stat status;
    if (fstat(descriptorOf(from), &status) != 0)
        return errorOf(errno);
    struct timespec times[] = {status.st_atim, status.st_mtim};
    if (futimens(descriptorOf(to), times) != 0)
        return errorOf(errno);
    return answer(fchmod(descriptorOf(to), status.st_mode & 07777));
}

Error beginReplacement(const char *path, Replacement &out) noexcept
{
    out.file = out.old = Handle{};
    out.name[0] = '\0';
    VX_OS_VERB("beginReplacement");
    return withNative(path, [&](const char *name) { return beginNative(name, out); });
}

Error commitReplacement(Replacement &replacement, bool durable) noexcept
{
    VX_OS_VERB("commitReplacement");
    return answer(commitNative(replacement, durable));
}

void dropReplacement(Replacement &replacement) noexcept
{
    dropHandle(replacement.file);
    dropHandle(replacement.old);
    dropName(replacement);
}

}
