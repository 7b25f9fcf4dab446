#pragma once

#include <unistd.h>

#include <cerrno>

namespace vx::os {

/** Closes a file descriptor at the end of its scope, and lets go of a lock with it; errno stays. */
class Descriptor {
public:
    explicit Descriptor(int file) noexcept : file_(file) {}
    ~Descriptor()
    {
        int code = errno;
        if (file_ >= 0)
            close(file_);
        errno = code;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    /** Negative for none. */
    int get() const noexcept { return file_; }

private:
    int file_;
};

}
