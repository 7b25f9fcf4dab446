// The path utilities that look at the disk.

#include <cstring>

#include "files/host_calls.h"
#include "files/path_text.h"
#include "platform/os/os.h"
#include "text/codepage.h"
#include "vx/file.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/sys.h"
#include "vx/tools.h"

namespace vx::files {

namespace {

constexpr int32_t makeSize = 512;
constexpr int32_t currentUser = 0;
constexpr uint32_t typeMask = 0xF000;
constexpr uint32_t directoryType = 0x4000;

uint32_t makeUnlessThere(const char *path)
{
    return VxFileExists(path) ? 0 : VxDirMk(path);
}

/** Where the first folder name of a path begins: behind its drive, its leading separators, its server. */
char *firstName(char *path) noexcept
{
    bool share = path[0] == separator && path[1] == separator;
    if (hasDrive(path))
        path += 2;
    while (*path == separator)
        ++path;
    if (!share)
        return path;
    const char *end = firstSeparator(path);
    return end ? path + (end - path) + 1 : path + std::strlen(path);
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxPathMk(const char *path)
{
    char work[makeSize];
    if (VxStrCpy(work, path, sizeof work))
        return 1;
    VxPathCheck(work);
    VxStrRemNL(work);
    const text::CodePage &page = text::codePage();
    for (char *p = firstName(work); *p; p += text::charBytes(page, p)) {
        if (*p != separator)
            continue;
        *p = '\0';
        uint32_t failed = makeUnlessThere(work);
        *p = separator;
        if (failed)
            return 1;
    }
    return makeUnlessThere(work);
}

int32_t VxPathIsDir(const char *path)
{
    VxStat64 status;
    return vxstat64(path, &status) == 0 && (status.mode & typeMask) == directoryType;
}

int32_t VxPathAccess(const char *dir)
{
    char name[32];
    char path[makeSize];
    if (VxFileUniqueName(dir, "temp", "txt", name, sizeof name))
        return -1;
    if (!join(path, sizeof path, {dir, "\\", name}))
        return -1;
    VxPathCheck(path);
    FILE *probe = nullptr;
    // "x": a file that another process makes under this name meanwhile stays its own.
    os::Error error = os::openFile(path, "wbx", probe);
    if (error != os::Error::none)
        return error == os::Error::accessDenied ? 1 : -1;
    std::fclose(probe);
    os::removeFile(path);
    return 0;
}

uint32_t VxPathUserFiles(char *buffer, int32_t size)
{
    constexpr const char *shellFolders =
        "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    if (!buffer || size < 1)
        return 1;
    buffer[0] = '\0';
    VxRegistryGet(currentUser, shellFolders, "Personal", buffer, size);
    if (!VxStrIsBlank(buffer))
        return VxPathCompose(buffer, size, VgCompanyProduct, 0);
    char folder[260];
    if (!userFolder(18, folder))
        return 1;
    return VxStrCpy(buffer, folder, size);
}
