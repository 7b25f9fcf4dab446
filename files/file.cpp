// Opening, naming and inspecting files.

#include "vx/file.h"

#include <cerrno>
#include <limits>

#include "files/path_text.h"
#include "platform/os/os.h"
#include "vx/err.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t candidateSize = 512;
constexpr int32_t directorySize = 260;

/** File Tools error `number` about a path, in the toolkit's spelling. */
void report(int32_t number, const char *path)
{
    char shown[candidateSize];
    VxStrCpy(shown, path, sizeof shown);
    VxPathCheck(shown);
    VxErrStr(number, shown);
}

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

int32_t VxFileExists(const char *name)
{
    return name && !VxStrIsBlank(name) && os::access(name, os::Access::exists) == os::Error::none;
}

uint32_t VxFileDel(const char *name)
{
    if (!name)
        return 1;
    if (os::removeFile(name) == os::Error::none)
        return 0;
    report(20, name);
    return 1;
}

uint32_t VxFileUniqueName(const char *dir, const char *base, const char *ext, char *out, int32_t size)
{
    if (!dir || !base || !ext || !out || size < 1)
        return 1;
    for (int32_t n = 1; n < 1000; ++n) {
        char number[8];
        VxSprintf(number, sizeof number, "%03d", n);
        char candidate[candidateSize];
        if (!join(out, static_cast<size_t>(size), {base, number, ".", ext}) ||
            VxStrCpy(candidate, dir, sizeof candidate) || VxPathCompose(candidate, sizeof candidate, out, 0))
            return 1;
        if (!VxFileExists(candidate))
            return 0;
    }
    return 1;
}

uint32_t VxDirMk(const char *path)
{
    char name[directorySize];
    if (VxStrCpy(name, path, sizeof name))
        return 1;
    VxPathCheck(name);
    if (VxFileExists(name))
        return 0;
    os::Error error = os::makeDirectory(name);
    // Another process may have made it meanwhile.
    if (error == os::Error::none || VxFileExists(name))
        return 0;
    return !(error == os::Error::exists && VxPathIsDir(name));
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
