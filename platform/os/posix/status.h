#pragma once

#include <sys/stat.h>

#include <cerrno>

#include "platform/os/os.h"

namespace vx::os {

/** The status of an open file; false with errno, also for a folder. */
inline bool statusOfFile(int file, struct stat &status) noexcept
{
    if (fstat(file, &status) != 0)
        return false;
    errno = EISDIR;
    return !S_ISDIR(status.st_mode);
}

inline FileStatus statusOf(const struct stat &status) noexcept
{
    return {status.st_dev,
            status.st_ino,
            status.st_mode,
            static_cast<uint32_t>(status.st_nlink),
            status.st_size,
            status.st_atim.tv_sec,
            status.st_mtim.tv_sec,
            status.st_ctim.tv_sec};
}

}
