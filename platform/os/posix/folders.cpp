// Walking over the entries of a folder.

#include "platform/os/os.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "platform/os/fault.h"
#include "platform/os/native_path.h"
#include "platform/os/posix/error.h"

namespace vx::os {

namespace {

/** What a link leads to, and what file systems without types in their folders do not tell. */
mode_t modeOf(DIR *folder, const char *name, int flags) noexcept
{
    struct stat status;
    return fstatat(dirfd(folder), name, &status, flags) == 0 ? status.st_mode : 0;
}

void tellKind(DIR *folder, const dirent &entry, FolderEntry &out) noexcept
{
    out.link = entry.d_type == DT_LNK ||
               (entry.d_type == DT_UNKNOWN && S_ISLNK(modeOf(folder, entry.d_name, AT_SYMLINK_NOFOLLOW)));
    bool plain = entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN;
    out.folder = plain ? entry.d_type == DT_DIR : S_ISDIR(modeOf(folder, entry.d_name, 0));
}

/** Whether the toolkit can name it, in which case `out` has its name. */
bool spellName(const char *native, FolderEntry &out) noexcept
{
    bool itself = std::strcmp(native, ".") == 0 || std::strcmp(native, "..") == 0;
    return !itself && !std::strchr(native, '\\') &&
           fromNative(native, out.name, sizeof out.name) == Error::none;
}

}

Error openFolder(const char *path, FolderWalk &out) noexcept
{
    VX_OS_VERB("openFolder");
    out.handle = nullptr;
    NativePath native(path);
    if (native.error() != Error::none) {
        errno = native.error() == Error::nameTooLong ? ENAMETOOLONG : ENOENT;
        return native.error();
    }
    out.handle = opendir(native.c_str());
    return out.handle ? Error::none : errorOf(errno);
}

Error readFolder(FolderWalk &walk, FolderEntry &out) noexcept
{
    VX_OS_VERB("readFolder");
    DIR *folder = static_cast<DIR *>(walk.handle);
    for (;;) {
        errno = 0;
        const dirent *entry = readdir(folder);
        if (!entry)
            return errno ? errorOf(errno) : Error::notFound;
        if (!spellName(entry->d_name, out))
            continue;
        tellKind(folder, *entry, out);
        return Error::none;
    }
}

void closeFolder(FolderWalk &walk) noexcept
{
    if (walk.handle)
        closedir(static_cast<DIR *>(walk.handle));
    walk.handle = nullptr;
}

}
