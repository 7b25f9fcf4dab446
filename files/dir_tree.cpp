// Whole trees of folders: copying and removing them.

#include <algorithm>

#include "files/file_copy.h"
#include "files/file_handle.h"
#include "files/folder.h"
#include "platform/os/os.h"
#include "vx/file.h"
#include "vx/path.h"

namespace vx::files {

namespace {

constexpr uint32_t typeMask = 0xF000;
constexpr uint32_t folderType = 0x4000;

struct Identity {
    uint64_t device, inode;

    bool operator==(const Identity &) const = default;
};

bool isFolder(const os::FileStatus &status) noexcept
{
    return (status.mode & typeMask) == folderType;
}

/** Copies a tree. What cannot be copied is left out, and the rest goes on. */
class TreeCopy {
public:
    TreeCopy(bool overwrite, Identity target) : overwrite_(overwrite) { around_.push_back(target); }

    /** Copy a folder with all in it, unless it is one of those around it, to which a link led. */
    bool folder(const std::string &from, const os::FileStatus &status, const std::string &to)
    {
        Identity identity{status.device, status.inode};
        if (std::find(around_.begin(), around_.end(), identity) != around_.end())
            return true;
        os::Error made = os::makeDirectory(to.c_str());
        if (made != os::Error::none && !(made == os::Error::exists && VxPathIsDir(to.c_str())))
            return false;
        around_.push_back(identity);
        bool whole = contents(from, to);
        around_.pop_back();
        return whole;
    }

private:
    /** Copy what is in a folder into another that exists. */
    bool contents(const std::string &from, const std::string &to)
    {
        std::vector<Entry> entries;
        bool whole = readFolder(from.c_str(), entries);
        for (const Entry &entry : entries)
            whole &= item(entry, inFolder(from, entry.name), inFolder(to, entry.name));
        return whole;
    }

    bool item(const Entry &entry, const std::string &from, const std::string &to)
    {
        os::FileStatus status;
        os::Error error = os::fileStatus(from.c_str(), status);
        // A link to nothing, or gone since it was listed.
        if (error != os::Error::none)
            return entry.link || error == os::Error::notFound;
        if (isFolder(status))
            return folder(from, status, to);
        if (!overwrite_ && VxFileExists(to.c_str()))
            return true;
        return isFile(status) && copyFile(from.c_str(), to.c_str(), Durable::no);
    }

    bool overwrite_;
    std::vector<Identity> around_; ///< the target, and the folders in which the copying is
};

/** Gone, also when another was faster. */
bool isGone(os::Error error) noexcept
{
    return error == os::Error::none || error == os::Error::notFound;
}

bool removeTree(const std::string &path)
{
    std::vector<Entry> entries;
    readFolder(path.c_str(), entries);
    for (const Entry &entry : entries) {
        std::string name = inFolder(path, entry.name);
        if (entry.folder && !entry.link)
            removeTree(name);
        else
            os::removeFile(name.c_str());
    }
    return isGone(os::removeDirectory(path.c_str()));
}

}

}

using namespace vx;
using namespace vx::files;

uint32_t VxDirCpy(const char *from, const char *to)
{
    return VxDirCpy2(from, to, 1);
}

uint32_t VxDirCpy2(const char *from, const char *to, int32_t overwrite)
{
    os::FileStatus source;
    os::FileStatus target;
    if (!from || !to || os::fileStatus(from, source) != os::Error::none || !isFolder(source) ||
        VxDirsMk(to) || os::fileStatus(to, target) != os::Error::none || !isFolder(target))
        return 1;
    Identity identity{target.device, target.inode};
    if (identity == Identity{source.device, source.inode})
        return 1;
    return withMemory(1u, [&]() -> uint32_t {
        TreeCopy copy(overwrite != 0, identity);
        return !copy.folder(from, source, to);
    });
}

uint32_t VxDirDel(const char *path)
{
    if (!path || !VxPathIsDir(path))
        return 1;
    os::Error error = os::removeDirectory(path);
    if (error == os::Error::none)
        return 0;
    // A link to a folder: what it leads to is not the tree's.
    if (error == os::Error::notDirectory)
        return os::removeFile(path) != os::Error::none;
    return withMemory(1u, [&]() -> uint32_t { return !removeTree(path); });
}
