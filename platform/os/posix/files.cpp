#include "platform/os/os.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/posix/error.h"

namespace vx::os {

namespace {

constexpr size_t nativeSize = 4096 + 1;

/** What an fopen mode asks of open(2). */
struct OpenMode {
    int flags = -1; ///< -1 for a mode that is none
    bool truncate = false;
    bool unlinkAtOnce = false;
    char stdio[4] = ""; ///< the mode that fdopen gets
};

OpenMode parseMode(const char *mode) noexcept
{
    OpenMode out;
    if (!mode || !*mode || !std::strchr("rwa", *mode))
        return out;
    bool plus = std::strchr(mode, '+') != nullptr;
    out.stdio[0] = *mode;
    if (plus)
        out.stdio[1] = '+';
    int direction = plus ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
    int creation = *mode == 'r' ? 0 : O_CREAT;
    int position = *mode == 'a' ? O_APPEND : 0;
    int exclusive = std::strchr(mode, 'x') ? O_EXCL : 0;
    out.flags = direction | creation | position | exclusive | O_CLOEXEC;
    out.truncate = *mode == 'w';
    out.unlinkAtOnce = std::strchr(mode, 'D') != nullptr;
    return out;
}

/** Hold the file against toolkit openings that would write. File systems without locks are taken as they are. */
bool hold(int file, bool writing) noexcept
{
    if (flock(file, (writing ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0)
        return true;
    if (errno == EWOULDBLOCK)
        errno = EACCES;
    else if (errno == EOPNOTSUPP || errno == ENOLCK || errno == EINVAL)
        return true;
    return false;
}

/** Run `call` on the native form of `path`; it answers as system calls do. */
template <typename Call> Error withNative(const char *path, Call call) noexcept
{
    NativePath native(path);
    if (native.error() != Error::none) {
        errno = native.error() == Error::nameTooLong ? ENAMETOOLONG : ENOENT;
        return native.error();
    }
    return call(native.c_str()) < 0 ? errorOf(errno) : Error::none;
}

}

Error fileStatus(const char *path, FileStatus &out) noexcept
{
    VX_OS_VERB("fileStatus");
    struct stat status;
    Error error = withNative(path, [&](const char *name) { return stat(name, &status); });
    if (error != Error::none)
        return error;
    out = {status.st_dev,  status.st_ino,          status.st_mode,         static_cast<uint32_t>(status.st_nlink),
           status.st_size, status.st_atim.tv_sec, status.st_mtim.tv_sec, status.st_ctim.tv_sec};
    return Error::none;
}

Error access(const char *path, Access wanted) noexcept
{
    VX_OS_VERB("access");
    int mode = wanted == Access::exists ? F_OK : wanted == Access::read ? R_OK : W_OK;
    return withNative(path, [&](const char *name) { return ::access(name, mode); });
}

Error openFile(const char *path, const char *mode, FILE *&stream) noexcept
{
    VX_OS_VERB("openFile");
    stream = nullptr;
    OpenMode wanted = parseMode(mode);
    if (wanted.flags < 0) {
        errno = EINVAL;
        return Error::invalid;
    }
    NativePath native(path);
    int file = -1;
    Error error = withNative(path, [&](const char *name) { return file = open(name, wanted.flags, 0666); });
    if (error != Error::none)
        return error;
    bool writing = (wanted.flags & O_ACCMODE) != O_RDONLY;
    bool ready = hold(file, writing) && (!wanted.truncate || ftruncate(file, 0) == 0);
    if (ready && wanted.unlinkAtOnce)
        ready = unlink(native.c_str()) == 0;
    if (ready)
        stream = fdopen(file, wanted.stdio);
    if (stream)
        return Error::none;
    int code = errno;
    close(file);
    errno = code;
    return errorOf(code);
}

Error removeFile(const char *path) noexcept
{
    VX_OS_VERB("removeFile");
    return withNative(path, [](const char *name) { return unlink(name); });
}

Error makeDirectory(const char *path) noexcept
{
    VX_OS_VERB("makeDirectory");
    return withNative(path, [](const char *name) { return mkdir(name, 0777); });
}

Error currentDirectory(char *out, size_t size) noexcept
{
    VX_OS_VERB("currentDirectory");
    char native[nativeSize];
    if (!getcwd(native, sizeof native))
        return errorOf(errno);
    return fromNative(native, out, size);
}

Error setCurrentDirectory(const char *path) noexcept
{
    VX_OS_VERB("setCurrentDirectory");
    return withNative(path, [](const char *name) { return chdir(name); });
}

Error executablePath(char *out, size_t size) noexcept
{
    VX_OS_VERB("executablePath");
    char native[nativeSize];
    ssize_t length = readlink("/proc/self/exe", native, sizeof native - 1);
    if (length < 0)
        return errorOf(errno);
    native[length] = '\0';
    return fromNative(native, out, size);
}

Error longPath(const char *path, char *out, size_t size) noexcept
{
    VX_OS_VERB("longPath");
    size_t length = std::strlen(path);
    if (length >= size)
        return Error::nameTooLong;
    std::memmove(out, path, length + 1);
    return Error::none;
}

}
