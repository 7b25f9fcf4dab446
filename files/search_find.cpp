// Finding files along the search paths.

#include <algorithm>
#include <cstring>

#include "files/candidates.h"
#include "files/dmpath.h"
#include "files/folder.h"
#include "files/host_calls.h"
#include "vx/config.h"
#include "vx/dmpath.h"
#include "vx/file.h"
#include "vx/path.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace vx::files {

namespace {

constexpr int32_t entrySize = 256;
constexpr size_t candidateSize = 335;
constexpr int32_t foundSize = 512;
constexpr int32_t versionSize = 64;
constexpr int64_t answerKept = 5'000'000; ///< microseconds

constexpr int32_t hostManagesPaths = 28, hostMapsOwnPaths = 29;
constexpr int32_t hostHasVault = 52, hostMapsVault = 30;
constexpr int32_t hostHasProject = 50, hostMapsProject = 49;
constexpr int32_t hostTakesLocator = 63;

/** What stands between a directory and a name. */
const char *between(const char *directory) noexcept
{
    return endsInSeparator(directory) ? "" : "\\";
}

/** An entry's directory, empty for one that is too long, and whether its subdirectories are searched too. */
struct Searched {
    char directory[entrySize];
    bool withSubdirectories;

    explicit Searched(const char *entry) noexcept
    {
        join(directory, sizeof directory, {entry});
        withSubdirectories = cutSubdirectoryMark(directory);
    }
};

/**
 * Call `visit` with the directory of an entry, then with its subdirectories,
 * until it answers true; whether it did. Throws std::bad_alloc.
 */
template <typename Visit> bool anyDirectory(const char *entry, Visit visit)
{
    Searched searched(entry);
    const char *directory = searched.directory;
    if (!*directory)
        return false;
    if (visit(directory))
        return true;
    if (!searched.withSubdirectories)
        return false;
    Subfolders uncached;
    Subfolders &subfolders = searchPaths.cache ? *searchPaths.cache : uncached;
    const Subfolders::Names &names = subfolders.of(directory);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::string &name) { return visit(inFolder(directory, name).c_str()); });
}

bool foundInEntry(Candidates &candidates, const char *entry)
{
    return anyDirectory(entry, [&](const char *directory) {
        return candidates.found({directory, between(directory), candidates.name()});
    });
}

/** Ask a mapping function of the host; what it maps to a file that exists is taken. */
bool mappedByHost(Candidates &candidates, int32_t function)
{
    auto *map = hostFunction<void(const char *, char *, int32_t)>(function);
    if (!map)
        return false;
    char mapped[candidateSize] = "";
    map(candidates.name(), mapped, sizeof mapped);
    mapped[sizeof mapped - 1] = '\0';
    return *mapped && candidates.found({mapped});
}

bool foundByHost(Candidates &candidates)
{
    if (hostSays(hostHasVault))
        return mappedByHost(candidates, hostMapsVault);
    return hostSays(hostHasProject) && mappedByHost(candidates, hostMapsProject);
}

bool foundInList(Candidates &candidates)
{
    if (VxConfigNo("Vx.AutoSearchInSearchPaths"))
        return false;
    for (const VxPathNode *entry = searchPaths.first; entry; entry = entry->next)
        if (foundInEntry(candidates, entry->text))
            return true;
    return false;
}

/** Find a name that has no folder. */
bool foundByName(Candidates &candidates)
{
    if (foundByHost(candidates))
        return true;
    const char *active = searchPaths.active;
    if (*active) {
        if (candidates.found({active, between(active), candidates.name()}))
            return true;
        if (searchPaths.checkActiveOnly)
            return false;
    }
    if (*searchPaths.component && candidates.found({searchPaths.component}))
        return true;
    if (exists(candidates.name()))
        return true;
    if (!searchPaths.searchList)
        return false;
    return foundInEntry(candidates, active) || foundInList(candidates) ||
           (hostSays(hostManagesPaths) && mappedByHost(candidates, hostMapsOwnPaths));
}

/** Whether the host takes a file under its locator, which is then in `out`. */
bool takenAsLocator(const char *name, char *out, size_t size)
{
    auto *accepts = hostFunction<int32_t(const char *)>(hostTakesLocator);
    const char *scheme = std::strchr(name, '/') ? "" : "://";
    return accepts && join(out, size, {scheme, name}) && accepts(out) != 0;
}

/** The search paths, then the registered directories, then product-data management. */
bool foundAnywhere(char (&path)[foundSize])
{
    if (DmPathFind(path, foundSize))
        return true;
    if (searchPaths.checkActiveOnly)
        return false;
    return VxPathFind(path, foundSize) ||
           VxPathFindPDM(path, foundSize, VgFileVersion, versionSize, VgGetLatestRev, 0);
}

bool findFile(const char *name, char *out, int32_t size)
{
    char path[foundSize];
    if (VxStrCpy(path, name, foundSize))
        return false;
    VxPathCheck(path);
    bool registryFirst = VgPathFindTPL || VgPathFindBDL;
    if (registryFirst && VxPathFind(path, foundSize))
        return join(out, static_cast<size_t>(size), {path});
    return foundAnywhere(path) && VxPathReal(0, path, path, foundSize) == 0 &&
           join(out, static_cast<size_t>(size), {path});
}

/** Give `target` the folder of the file `path` unless it has one. */
bool besideFile(const char *path, const char *target, char (&out)[foundSize])
{
    if (VxStrCpy(out, target, foundSize))
        return false;
    VxPathCheck(out);
    if (firstSeparator(out) || hasDrive(out))
        return true;
    std::string_view folder(path, static_cast<size_t>(lastComponent(path) - path));
    return join(out, foundSize, {folder, target});
}

/** Whether a directory is there, as it was when it was asked for last unless that is too long ago. */
bool keptAnswer(const char *directory)
{
    if (!searchPaths.answers)
        searchPaths.answers.emplace();
    auto &answers = *searchPaths.answers;
    int64_t now = os::wallMicroseconds();
    std::erase_if(answers, [now](const auto &kept) {
        int64_t age = now - kept.second.asked;
        return age < 0 || age >= answerKept;
    });
    auto [answer, isNew] = answers.try_emplace(directory, DirectoryAnswer{false, now});
    if (isNew)
        answer->second.there = VxPathIsDir(directory) != 0;
    return answer->second.there;
}

}

void enterIntoCache(const char *entry)
{
    if (searchPaths.cache)
        anyDirectory(entry, [](const char *) { return false; });
}

}

using namespace vx;
using namespace vx::files;

int32_t DmPathFind(char *name, int32_t size)
{
    if (!name || size < 1 || !*name)
        return 0;
    if (firstSeparator(name))
        return exists(name);
    Candidates candidates(name, size, candidateSize);
    return withMemory(0, [&] { return foundByName(candidates) ? 1 : 0; });
}

int32_t DmPathFindSubDir(const char *dir, char *name, int32_t size)
{
    if (!dir || !name || size < 1 || !*name)
        return 0;
    Candidates candidates(name, size, candidateSize);
    return withMemory(0, [&] { return foundInEntry(candidates, dir) ? 1 : 0; });
}

int32_t DmFileFind(const char *name, int32_t size, char *out)
{
    if (!out || size < 1)
        return 0;
    char given[foundSize]; // `out` may be `name`
    bool usable = name && VxStrCpy(given, name, foundSize) == 0;
    if (usable && (takenAsLocator(given, out, static_cast<size_t>(size)) || findFile(given, out, size)))
        return 1;
    *out = '\0';
    return 0;
}

uint32_t DmFilePathCacheEnable(void)
{
    if (searchPaths.cacheUsers == 0) {
        bool filled = withMemory(false, [] {
            searchPaths.cache.emplace();
            for (const VxPathNode *entry = searchPaths.first; entry; entry = entry->next)
                enterIntoCache(entry->text);
            return true;
        });
        if (!filled) {
            searchPaths.cache.reset();
            return 1;
        }
    }
    ++searchPaths.cacheUsers;
    return 0;
}

uint32_t DmFilePathCacheDisable(void)
{
    if (searchPaths.cacheUsers == 0)
        return 1;
    if (--searchPaths.cacheUsers == 0)
        searchPaths.cache.reset();
    return 0;
}

int32_t DmFilePathCacheGet(const char *name, char *dir, int32_t size)
{
    if (!name || !*name || !dir || size < 1)
        return 0;
    *dir = '\0';
    if (!searchPaths.cache)
        return 0;
    auto holdsFile = [&](const char *directory) {
        char file[candidateSize];
        return join(file, sizeof file, {directory, between(directory), name}) && exists(file) &&
               join(dir, static_cast<size_t>(size), {directory});
    };
    return withMemory(0, [&] {
        for (const VxPathNode *entry = searchPaths.first; entry; entry = entry->next)
            if (anyDirectory(entry->text, holdsFile))
                return 1;
        return 0;
    });
}

int32_t DmPathIsOkay(const char *path)
{
    if (!path)
        return 0;
    Searched searched(path);
    const char *directory = searched.directory;
    try {
        return keptAnswer(directory);
    } catch (const std::bad_alloc &) {
        return VxPathIsDir(directory);
    }
}

uint32_t DmFileRead(const char *name, FILE **stream)
{
    if (!stream)
        return 1;
    *stream = nullptr;
    char path[foundSize];
    return !DmFileFind(name, foundSize, path) || VxFileOpen(stream, path, "rb");
}

uint32_t DmFileWrite(const char *name, FILE **stream)
{
    return VxFileOpen(stream, name, "wb");
}

uint32_t DmFileRename(const char *from, const char *to)
{
    char path[foundSize];
    char target[foundSize];
    if (!to || !*to || !DmFileFind(from, foundSize, path) || !besideFile(path, to, target))
        return 1;
    return exists(target) || VxFileRename(path, target);
}
