// Opening, deleting and inspecting files.

#include "vx/file.h"

#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "files/file_handle.h"
#include "files/full_path.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "vx/err.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t errorDelete = 20;
constexpr int32_t errorNoWriteAccess = 61;
constexpr int32_t shownSize = 512;
constexpr uint32_t typeMask = 0xF000;
constexpr uint32_t folderType = 0x4000;
constexpr uint32_t fileType = 0x8000;

template <typename Stat> void fill(const os::FileStatus &from, Stat &to) noexcept
{
    to.device = from.device;
    to.inode = from.inode;
    to.mode = from.mode;
    to.links = from.links;
    to.size = static_cast<decltype(to.size)>(from.size);
    to.atime_s = from.accessed;
    to.mtime_s = from.modified;
    to.ctime_s = from.changed;
}

/** The status of what a caller names; false for a blank name too. */
bool statusOf(const char *name, os::FileStatus &status) noexcept
{
    return name && !VxStrIsBlank(name) && os::fileStatus(name, status) == os::Error::none;
}

/** Cut the last separator or component off a full path; false when only a root is left. */
bool goUp(char *path) noexcept
{
    char *last = lastSeparator(path);
    if (!last)
        return false;
    bool root = last == path || last[-1] == ':';
    if (root && !last[1])
        return false;
    last[root ? 1 : 0] = '\0';
    return true;
}

}

void reportFile(int32_t number, const char *path)
{
    char shown[shownSize];
    VxStrCpy(shown, path, sizeof shown);
    VxPathCheck(shown);
    VxErrStr(number, shown);
}

bool isFile(const os::FileStatus &status) noexcept
{
    return (status.mode & typeMask) == fileType;
}

bool FileHandle::openToRead(const char *path) noexcept
{
    os::FileStatus status;
    // Asked before it is opened: some devices wait there for their other end.
    return os::fileStatus(path, status) == os::Error::none && isFile(status) &&
           open(path, os::readAccess | os::shareRead) == os::Error::none;
}

}

using namespace vx;
using namespace vx::files;

uint32_t VxFileOpen(FILE **stream, const char *name, const char *mode)
{
    if (!stream)
        return 1;
    *stream = nullptr;
    return os::openFile(name, mode, *stream) != os::Error::none;
}

int32_t VxFileClose(FILE **stream, int32_t flush)
{
    if (!stream || !*stream)
        return 0;
    // The C library forgets what a flush could not write, and then closes without complaint.
    int32_t flushed = flush ? std::fflush(*stream) : 0;
    int32_t closed = std::fclose(*stream);
    *stream = nullptr;
    return closed ? closed : flushed;
}

uint32_t VxFileSeek(FILE *stream, int64_t offset, int32_t origin)
{
    if (!stream || origin < 0 || origin > 2)
        return 1;
    return os::seekStream(stream, offset, static_cast<os::Origin>(origin)) != os::Error::none;
}

int64_t VxFileTell(FILE *stream)
{
    int64_t position = 0;
    return stream && os::tellStream(stream, position) == os::Error::none ? position : -1;
}

uint32_t VxFileWriteError(FILE *stream, const char *name)
{
    if (!stream)
        return 1;
    if (!std::ferror(stream))
        return 0;
    if (name)
        reportFile(errorNoWriteAccess, name);
    return 1;
}

uint32_t VxFileOpenEx(void **handle, const char *name, uint32_t flags)
{
    constexpr uint32_t create = 0x40000;
    constexpr uint32_t existing = 0x80000;
    if (!handle || !name || !(flags & (create | existing)))
        return 1;
    uint32_t mode = flags & existing ? 0 : uint32_t{os::createNew};
    constexpr std::pair<uint32_t, uint32_t> bits[] = {
        {0x1, os::readAccess}, {0x2, os::writeAccess}, {0x10000, os::shareRead}, {0x20000, os::shareWrite}};
    for (auto [flag, bit] : bits)
        mode |= flags & flag ? bit : 0;
    os::Handle opened;
    if (os::openHandle(name, mode, opened) != os::Error::none)
        return 1;
    // Null stands for a handle that is closed.
    *handle = reinterpret_cast<void *>(opened.value + 1);
    return 0;
}

uint32_t VxFileCloseEx(void **handle)
{
    if (!handle || !*handle)
        return 0;
    os::Handle opened{reinterpret_cast<intptr_t>(*handle) - 1};
    *handle = nullptr;
    return os::closeHandle(opened) != os::Error::none;
}

int32_t VxFileExists(const char *name)
{
    return name && !VxStrIsBlank(name) && os::access(name, os::Access::exists) == os::Error::none;
}

int32_t VxFileWrite(const char *name)
{
    if (!VxFileExists(name))
        return -1;
    FILE *trial = nullptr;
    if (os::access(name, os::Access::write) != os::Error::none ||
        os::openFile(name, "r+b", trial) != os::Error::none)
        return 0;
    std::fclose(trial);
    return 1;
}

uint32_t VxFileDel(const char *name)
{
    if (!name)
        return 1;
    if (os::removeFile(name) == os::Error::none)
        return 0;
    reportFile(errorDelete, name);
    return 1;
}

uint32_t VxFileRem(const char *name)
{
    if (!name || VxStrIsBlank(name))
        return 0;
    os::Error error = os::removeFile(name);
    if (error == os::Error::none || error == os::Error::notFound || error == os::Error::notDirectory)
        return 0;
    reportFile(errorDelete, name);
    return 1;
}

int64_t VxFileSize(const char *name)
{
    os::FileStatus status;
    return statusOf(name, status) && (status.mode & typeMask) != folderType ? status.size : 0;
}

int64_t VxFileLastWrite(const char *name)
{
    os::FileStatus status;
    return statusOf(name, status) ? status.modified : 0;
}

int32_t vxstat(const char *path, VxStat *out)
{
    os::FileStatus status;
    if (!path || !out || os::fileStatus(path, status) != os::Error::none)
        return -1;
    if (status.size > std::numeric_limits<int32_t>::max()) {
        errno = EOVERFLOW;
        return -1;
    }
    fill(status, *out);
    return 0;
}

int32_t vxstat64(const char *path, VxStat64 *out)
{
    os::FileStatus status;
    if (!path || !out || os::fileStatus(path, status) != os::Error::none)
        return -1;
    fill(status, *out);
    return 0;
}

uint32_t VxDiskInfo(const char *path, double *freeMiB, double *totalMiB)
{
    constexpr double bytesPerMiB = 1024.0 * 1024.0;
    if (!freeMiB || !totalMiB)
        return 1;
    *freeMiB = *totalMiB = 0.0;
    char place[longestPath + 1];
    if (!path || VxStrIsBlank(path) || !fullPath(path, place, sizeof place))
        return 1;
    int64_t available = 0;
    int64_t total = 0;
    os::Error error;
    // What is still to be made will lie where the nearest folder above it lies.
    do
        error = os::diskSpace(place, available, total);
    while (error == os::Error::notFound && goUp(place));
    if (error != os::Error::none)
        return 1;
    *freeMiB = static_cast<double>(available) / bytesPerMiB;
    *totalMiB = static_cast<double>(total) / bytesPerMiB;
    return 0;
}
