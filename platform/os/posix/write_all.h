#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace vx::os {

/** Write all bytes at an offset of an open file: false with errno. */
inline bool writeAll(int file, const void *bytes, size_t size, off_t offset) noexcept
{
    const char *next = static_cast<const char *>(bytes);
    while (size > 0) {
        ssize_t n = pwrite(file, next, size, offset);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return false;
        next += n;
        offset += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

}
