// Making and looking through folders.

#include <cstring>

#include "files/folder.h"
#include "files/full_path.h"
#include "platform/os/os.h"
#include "vx/file.h"
#include "vx/path.h"
#include "vx/str.h"

namespace vx::files {

namespace {

constexpr int32_t directorySize = 260;

/**
 * Go through the folders below `dir`, each before those in it; links to
 * folders are met but not followed, and folders that cannot be read are passed
 * over. Ends early, with true, when `visit` answers true.
 */
template <typename Visit> bool eachFolder(const std::string &dir, Visit visit)
{
    std::vector<Entry> entries;
    readFolder(dir.c_str(), entries);
    for (const Entry &entry : entries) {
        if (!entry.folder)
            continue;
        std::string path = inFolder(dir, entry.name);
        if (visit(path, entry.name) || (!entry.link && eachFolder(path, visit)))
            return true;
    }
    return false;
}

}

}

using namespace vx;
using namespace vx::files;

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

uint32_t VxDirsMk(const char *path)
{
    return VxPathMk(path);
}

uint32_t VxDirList(const char *dir, VxList **names)
{
    if (!names)
        return 1;
    *names = nullptr;
    return withMemory(1u, [&]() -> uint32_t {
        std::vector<Entry> entries;
        if (!readFolder(dir, entries))
            return 1;
        std::vector<std::string> folders;
        for (const Entry &entry : entries)
            if (entry.folder)
                folders.push_back(entry.name);
        return !makeNameList(folders, names);
    });
}

uint32_t VxDirSub(const char *dir, VxList **paths)
{
    if (!paths)
        return 1;
    *paths = nullptr;
    char full[longestPath + 1];
    if (!dir || !VxPathIsDir(dir) || !fullPath(dir, full, sizeof full))
        return 1;
    return withMemory(1u, [&]() -> uint32_t {
        std::vector<Entry> readable;
        if (!readFolder(full, readable))
            return 1;
        std::vector<std::string> found;
        eachFolder(full, [&](const std::string &path, const std::string &) {
            found.push_back(path);
            return false;
        });
        return !makeNameList(found, paths);
    });
}

int32_t VxDirFind(const char *dir, const char *name, char *out, int32_t size)
{
    if (!dir || !name || !out || size < 1)
        return 0;
    return withMemory(0, [&]() -> int32_t {
        return eachFolder(dir, [&](const std::string &path, const std::string &entry) {
            if (VxStrcasecmp(entry.c_str(), name) != 0 || path.size() >= static_cast<size_t>(size))
                return false;
            std::memcpy(out, path.c_str(), path.size() + 1);
            return true;
        });
    });
}
