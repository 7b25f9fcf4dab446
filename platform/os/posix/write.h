#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace vx::os {

/** Write all bytes, however many calls that takes: false with errno, and then some may be written. */
inline bool writeAll(int file, const char *bytes, size_t size) noexcept
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
    return true;
}

}
