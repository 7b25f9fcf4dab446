#pragma once

// The state of the search paths, and what the data manager's start and end, in
// frame/, ask of them.

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "files/subfolders.h"
#include "vx/path.h"

namespace vx::files {

/** Whether a directory was there when it was asked for. */
struct DirectoryAnswer {
    bool there;
    int64_t asked; ///< microseconds
};

struct SearchPaths {
    VxPathNode *first = nullptr;
    /** The link to the entry that DmPathGet gives next: always into the list, whatever is deleted. */
    VxPathNode **next = &first;
    char active[256] = "";
    char component[256] = "";
    int32_t checkActiveOnly = 0;
    int32_t searchList = 1;

    int32_t cacheUsers = 0;
    std::optional<Subfolders> cache;                               ///< while it has users
    std::optional<std::map<std::string, DirectoryAnswer>> answers; ///< of DmPathIsOkay
};

extern SearchPaths searchPaths;

/** Active and component path become empty, a miss in the active path searches on, the list is searched. */
void resetSearchPaths() noexcept;

/** Free the list and what is known of its directories. */
void freeSearchPaths() noexcept;

/**
 * The mark at the end of an entry that is searched with its subdirectories,
 * "\\...", or null.
 */
char *subdirectoryMark(char *path) noexcept;

/** Cut the mark off; true when there was one. A drive or root keeps its separator. */
bool cutSubdirectoryMark(char *path) noexcept;

/** Have the cache know an entry's subdirectories already. Throws std::bad_alloc. */
void enterIntoCache(const char *entry);

}
