#include "platform/os/os.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "platform/os/fault.h"
#include "platform/os/posix/native_call.h"
#include "platform/os/posix/locks.h"
#include "platform/os/posix/replace.h"
#include "platform/os/posix/status.h"

namespace vx::os {

namespace {

/** What an fopen mode asks of open(2). */
struct OpenMode {
    int flags = -1; ///< -1 for a mode that is none
    bool create = false;
    bool exclusive = false;
    bool truncate = false;
    bool unlinkAtOnce = false;
    char stdio[3] = ""; ///< the mode that fdopen gets

    bool writes() const noexcept { return (flags & O_ACCMODE) != O_RDONLY; }
};

OpenMode parseMode(const char *mode) noexcept
{
    OpenMode out;
    if (!mode || !*mode || !std::strchr("rwa", *mode))
        return out;
    // Behind a comma stands an encoding, whose letters are none of ours.
    std::string_view letters(mode, std::strcspn(mode, ","));
    bool plus = letters.find('+') != letters.npos;
    out.stdio[0] = *mode;
    if (plus)
        out.stdio[1] = '+';
    int direction = plus ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
    int position = *mode == 'a' ? O_APPEND : 0;
    out.flags = direction | position | O_CLOEXEC;
    out.create = *mode != 'r';
    out.exclusive = letters.find('x') != letters.npos;
    out.truncate = *mode == 'w';
    out.unlinkAtOnce = letters.find('D') != letters.npos;
    return out;
}

/** Open, and tell whether that made the file: -1 with errno on failure. */
int openOrMake(const char *name, const OpenMode &mode, bool &made) noexcept
{
    made = false;
    // Each round fails only when the file came or went in the middle of it.
    for (;;) {
        if (!mode.exclusive) {
            int file = open(name, mode.flags);
            if (file >= 0 || errno != ENOENT || !mode.create)
                return file;
        }
        int file = open(name, mode.flags | O_CREAT | O_EXCL, 0666);
        made = file >= 0;
        if (made || errno != EEXIST || mode.exclusive)
            return file;
        struct stat dangling;
        if (stat(name, &dangling) != 0 && errno == ENOENT && lstat(name, &dangling) == 0)
            return open(name, mode.flags | O_CREAT, 0666); // a link to a file that is still to be made
    }
}

/**
 * Make an open file what `mode` asks for. Only files are held and truncated:
 * devices are everybody's.
 */
bool prepare(int file, const char *name, const OpenMode &mode) noexcept
{
    struct stat status;
    if (!statusOfFile(file, status))
        return false;
    if (S_ISREG(status.st_mode)) {
        if (!hold(file, mode.writes()))
            return false;
        if (mode.truncate && ftruncate(file, 0) != 0)
            return false;
    }
    return !mode.unlinkAtOnce || unlink(name) == 0;
}

/** A native name in the toolkit's spelling, with errno where it does not fit. */
Error spell(const char *native, char *out, size_t size) noexcept
{
    Error error = fromNative(native, out, size);
    return error == Error::none ? error : refusePath(error);
}

}

Error fileStatus(const char *path, FileStatus &out) noexcept
{
    VX_OS_VERB("fileStatus");
    struct stat status;
    Error error = withNative(path, [&](const char *name) { return stat(name, &status); });
    if (error == Error::none)
        out = statusOf(status);
    return error;
}

Error access(const char *path, Access wanted) noexcept
{
    VX_OS_VERB("access");
    int mode = wanted == Access::exists ? F_OK : wanted == Access::read ? R_OK : W_OK;
    // The rights in force, which are what opening the file will meet.
    return withNative(path, [&](const char *name) { return faccessat(AT_FDCWD, name, mode, AT_EACCESS); });
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
    if (native.error() != Error::none)
        return refusePath(native.error());
    bool made = false;
    int file = openOrMake(native.c_str(), wanted, made);
    if (file < 0)
        return errorOf(errno);
    bool ready = prepare(file, native.c_str(), wanted);
    if (ready)
        stream = fdopen(file, wanted.stdio);
    if (stream)
        return Error::none;
    int code = errno;
    // A file made just now goes again, unless it is gone or another process got hold of it meanwhile.
    if (made && !wanted.unlinkAtOnce && (ready || code != EACCES))
        unlink(native.c_str());
    close(file);
    errno = code;
    return errorOf(code);
}

Error removeFile(const char *path) noexcept
{
    VX_OS_VERB("removeFile");
    return withNative(path, [](const char *name) { return unlink(name); });
}

Error renameFile(const char *from, const char *to) noexcept
{
    VX_OS_VERB("renameFile");
    return withNatives(from, to, [](const char *a, const char *b) { return std::rename(a, b); });
}

Error linkFile(const char *existing, const char *name) noexcept
{
    VX_OS_VERB("linkFile");
    return withNatives(existing, name, linkNative);
}

Error replaceFile(const char *path, const void *bytes, size_t size) noexcept
{
    VX_OS_VERB("replaceFile");
    return withNative(path, [&](const char *name) { return replaceNative(name, bytes, size); });
}

Error appendWhole(FILE *stream, const void *bytes, size_t size) noexcept
{
    VX_OS_VERB("appendWhole");
    int file = fileno(stream);
    struct stat before;
    if (fstat(file, &before) != 0)
        return errorOf(errno);
    ssize_t written = write(file, bytes, size);
    if (written == static_cast<ssize_t>(size))
        return Error::none;
    // A file takes a part only when the device has no room for the rest.
    Error error = written < 0 ? errorOf(errno) : Error::noSpace;
    [[maybe_unused]] int cut = written > 0 ? ftruncate(file, before.st_size) : 0;
    return error;
}

Error makeDirectory(const char *path) noexcept
{
    VX_OS_VERB("makeDirectory");
    return withNative(path, [](const char *name) { return mkdir(name, 0777); });
}

Error removeDirectory(const char *path) noexcept
{
    VX_OS_VERB("removeDirectory");
    return withNative(path, [](const char *name) { return rmdir(name); });
}

Error diskSpace(const char *path, int64_t &available, int64_t &total) noexcept
{
    VX_OS_VERB("diskSpace");
    struct statvfs disk;
    Error error = withNative(path, [&](const char *name) { return statvfs(name, &disk); });
    if (error != Error::none)
        return error;
    available = static_cast<int64_t>(disk.f_bavail * disk.f_frsize);
    total = static_cast<int64_t>(disk.f_blocks * disk.f_frsize);
    return Error::none;
}

Error currentDirectory(char *out, size_t size) noexcept
{
    VX_OS_VERB("currentDirectory");
    char native[nativeSize];
    if (!getcwd(native, sizeof native))
        return errorOf(errno);
    return spell(native, out, size);
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
    // The kernel marks a program whose file was replaced while it runs.
    constexpr std::string_view mark = " (deleted)";
    if (std::string_view(native).ends_with(mark) && ::access(native, F_OK) != 0)
        native[static_cast<size_t>(length) - mark.size()] = '\0';
    return spell(native, out, size);
}

Error longPath(const char *path, char *out, size_t size) noexcept
{
    VX_OS_VERB("longPath");
    size_t length = std::strlen(path);
    if (length >= size)
        return refusePath(Error::nameTooLong);
    std::memmove(out, path, length + 1);
    return Error::none;
}

}
