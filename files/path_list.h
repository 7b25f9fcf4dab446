#pragma once

// Lists of directories, as the path registry and the search paths keep them:
// nodes from the general allocator, compared ignoring case.

#include "vx/path.h"

namespace vx::files {

/** The link that leads to the entry equal to `text`, or the empty one at the end of the list. */
VxPathNode **findLink(VxPathNode **list, const char *text) noexcept;

/** The empty link at the end of the list. */
VxPathNode **endOf(VxPathNode **list) noexcept;

/** A new entry outside any list; null when there is no memory, which the allocator has reported. */
VxPathNode *makeNode(const char *text) noexcept;

/** Take the entry that `link` leads to out of its list and free it. */
void removeAt(VxPathNode **link) noexcept;

/** Free every entry; the list is then empty. */
void freeList(VxPathNode *&list) noexcept;

}
