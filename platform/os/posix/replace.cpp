// Replacing a file's content as a whole: a new file beside it takes its name.

#include "platform/os/posix/replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/os/posix/descriptor.h"
#include "platform/os/posix/locks.h"

namespace vx::os {

namespace {

constexpr int attempts = 100;

/** The file behind links, or the name itself while there is none. */
bool resolveLinks(const char *name, char (&target)[PATH_MAX]) noexcept
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

bool writeAll(int file, const char *bytes, size_t size) noexcept
{
    while (size > 0) {
        ssize_t written = write(file, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return fsync(file) == 0;
}

/** A new file beside the target, which goes again unless it takes the target's name. */
class Successor {
public:
    explicit Successor(const char *target) noexcept
    {
        for (int n = 0; n < attempts && file_ < 0; ++n) {
            int length =
                std::snprintf(name_, sizeof name_, "%s.%ld-%d.new", target, static_cast<long>(getpid()), n);
            if (length < 0 || static_cast<size_t>(length) >= sizeof name_) {
                errno = ENAMETOOLONG;
                return;
            }
            file_ = open(name_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (file_ < 0 && errno != EEXIST)
                return;
        }
    }

    ~Successor()
    {
        int code = errno;
        if (file_ >= 0)
            close(file_);
        if (pending_)
            unlink(name_);
        errno = code;
    }

    Successor(const Successor &) = delete;
    Successor &operator=(const Successor &) = delete;

    bool fill(const void *bytes, size_t size) noexcept
    {
        pending_ = file_ >= 0;
        return pending_ && writeAll(file_, static_cast<const char *>(bytes), size);
    }

    bool takePermissionsOf(const struct stat &old) noexcept
    {
        return fchmod(file_, old.st_mode & 07777) == 0;
    }

    bool takeName(const char *target) noexcept
    {
        int file = file_;
        file_ = -1;
        if (close(file) != 0 || std::rename(name_, target) != 0)
            return false;
        pending_ = false;
        return true;
    }

private:
    char name_[PATH_MAX + 32];
    int file_ = -1;
    bool pending_ = false;
};

}

int replaceNative(const char *name, const void *bytes, size_t size) noexcept
{
    char target[PATH_MAX];
    if (!resolveLinks(name, target))
        return -1;
    // Held like any file that is written to, until its successor has the name.
    Descriptor old(open(target, O_WRONLY | O_CLOEXEC));
    bool there = old.get() >= 0;
    if (there ? !hold(old.get(), true) : errno != ENOENT)
        return -1;
    struct stat status;
    if (there && fstat(old.get(), &status) != 0)
        return -1;
    Successor successor(target);
    bool done = successor.fill(bytes, size) && (!there || successor.takePermissionsOf(status)) &&
                successor.takeName(target);
    return done ? 0 : -1;
}

}
