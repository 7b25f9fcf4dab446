#pragma once

// What the data manager's start and end, in frame/, ask of the search paths.

#include "vx/path.h"

namespace vx::files {

/** Active and component path become empty, a miss in the active path searches on, the list is searched. */
void resetSearchPaths() noexcept;

/** Free the list. */
void freeSearchPaths() noexcept;

struct SearchPaths {
    VxPathNode *first = nullptr;
    /** The link to the entry that DmPathGet gives next: always into the list, whatever is deleted. */
    VxPathNode **next = &first;
    char active[256] = "";
    char component[256] = "";
    int32_t checkActiveOnly = 0;
    int32_t searchList = 1;
};

extern SearchPaths searchPaths;

}
