// Replacing a file as a whole: a new file beside it takes its name.

#include "platform/os/posix/replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/os/posix/descriptor.h"
#include "platform/os/posix/locks.h"
#include "platform/os/posix/write_all.h"

namespace vx::os {

namespace {

constexpr int attempts = 100;

/** The file behind links, or the name itself while there is none. */
bool resolveLinks(const char *name, char (&target)[PATH_MAX + 1]) noexcept
{
    if (::realpath(name, target))
        return true;
    if (errno != ENOENT)
        return false;
    size_t length = std::strlen(name);
    if (length >= sizeof target) {
        errno = ENAMETOOLONG;
        return false;
    }
    std::memcpy(target, name, length + 1);
    return true;
}

/** The folder part of a native name, its slash included. */
std::string_view folderOf(const char *name) noexcept
{
    const char *slash = std::strrchr(name, '/');
    return {name, slash ? static_cast<size_t>(slash - name) + 1 : 0};
}

/** Call `make` with one name after the other in the folder of `target` until it does not fail with EEXIST. */
template <typename Make> int makeBeside(const char *target, char *name, size_t size, Make make) noexcept
{
    std::string_view folder = folderOf(target);
    int made = -1;
    // The name does not build on the target's, which may be as long as names can be.
    for (int n = 0; n < attempts && made < 0; ++n) {
        int length = std::snprintf(name, size, "%.*s.vx-%ld-%d.new", static_cast<int>(folder.size()),
                                   folder.data(), static_cast<long>(getpid()), n);
        if (length < 0 || static_cast<size_t>(length) >= size) {
            errno = ENAMETOOLONG;
            return -1;
        }
        made = make(name);
        if (made < 0 && errno != EEXIST)
            return -1;
    }
    return made;
}

/** Hold what is to be replaced: false with errno when it cannot be, or is no file. */
bool holdOld(const char *target, Handle &old) noexcept
{
    int file = open(target, O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (file < 0 && errno == EACCES)
        file = open(target, O_WRONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return errno == ENOENT;
    old.value = file;
    struct stat status;
    if (fstat(file, &status) != 0)
        return false;
    if (!S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return false;
    }
    return hold(file, true);
}

bool takePermissions(Handle from, int to) noexcept
{
    struct stat status;
    return !from.isOpen() ||
           (fstat(static_cast<int>(from.value), &status) == 0 && fchmod(to, status.st_mode & 07777) == 0);
}

bool begin(const char *name, Replacement &out) noexcept
{
    if (!resolveLinks(name, out.target) || !holdOld(out.target, out.old))
        return false;
    int file = makeBeside(out.target, out.name, sizeof out.name, [](const char *fresh) {
        return open(fresh, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    });
    if (file < 0) {
        out.name[0] = '\0';
        return false;
    }
    out.file.value = file;
    return takePermissions(out.old, file);
}

/** Have the names of the folder of `name` on the device; a folder that cannot be asked is let be. */
void syncFolderOf(const char *name) noexcept
{
    char folder[PATH_MAX + 2];
    std::string_view part = folderOf(name);
    std::snprintf(folder, sizeof folder, "%.*s.", static_cast<int>(part.size()), part.data());
    Descriptor held(open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (held.get() >= 0)
        fsync(held.get());
}

}

int beginNative(const char *name, Replacement &out) noexcept
{
    out.file = out.old = Handle{};
    out.name[0] = '\0';
    if (begin(name, out))
        return 0;
    dropReplacement(out);
    return -1;
}

int commitNative(Replacement &replacement, bool durable) noexcept
{
    int file = static_cast<int>(replacement.file.value);
    if (durable && fsync(file) != 0)
        return -1;
    replacement.file = Handle{};
    if (close(file) != 0 || std::rename(replacement.name, replacement.target) != 0)
        return -1;
    replacement.name[0] = '\0';
    dropHandle(replacement.old);
    if (durable)
        syncFolderOf(replacement.target);
    return 0;
}

void dropName(Replacement &replacement) noexcept
{
    int code = errno;
    if (replacement.name[0])
        unlink(replacement.name);
    replacement.name[0] = '\0';
    errno = code;
}

int replaceNative(const char *name, const void *bytes, size_t size) noexcept
{
    Replacement replacement;
    if (beginNative(name, replacement) != 0)
        return -1;
    int file = static_cast<int>(replacement.file.value);
    bool done = writeAll(file, bytes, size, 0) && commitNative(replacement, true) == 0;
    dropReplacement(replacement);
    return done ? 0 : -1;
}

int linkNative(const char *existing, const char *name) noexcept
{
    char fresh[PATH_MAX + 32];
    auto link = [&](const char *as) { return linkat(AT_FDCWD, existing, AT_FDCWD, as, AT_SYMLINK_FOLLOW); };
    if (makeBeside(name, fresh, sizeof fresh, link) < 0)
        return -1;
    int result = std::rename(fresh, name);
    // Two names of one file are left alone by rename().
    int code = errno;
    unlink(fresh);
    errno = code;
    return result;
}

}
