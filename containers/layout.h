#pragma once

// The interface behind which each layout of a list stands.
//
// Entry points check their pointers, find the layout of the list and call it;
// a layout checks indices, since what they mean is its own. Functions with a
// uint32_t give 0 or 1, and after a 1 the list is as it was.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vx/list.h"

namespace vx::containers {

enum LayoutCode : int32_t { keyed, linked, array, pointers, tree, wrapped };

constexpr int32_t layoutCount = 6;

/** First and last index of an ordered walk. */
struct Range {
    int32_t low;
    int32_t high;
};

struct Layout {
    /** Storage of an empty list; `capacity` and `increment` are as the caller asked, to be put right. */
    uint32_t (*make)(VxList &list);
    /** Free all storage; may be called again. */
    void (*discard)(VxList &list);
    uint32_t (*reset)(VxList &list);
    uint32_t (*set)(VxList &list, int32_t index, const void *element);
    uint32_t (*insert)(VxList &list, int32_t index, const void *element);
    /** The element at an index, or null. */
    void *(*at)(VxList &list, int32_t index);
    uint32_t (*remove)(VxList &list, int32_t first, int32_t last);
    uint32_t (*removeEqual)(VxList &list, const void *element);
    /** Truncate to n elements, 0 <= n < count. */
    uint32_t (*truncate)(VxList &list, int32_t n);
    uint32_t (*grow)(VxList &list, int32_t extra);
    /** Take over or copy the elements of a list of the same layout, which is emptied. */
    uint32_t (*append)(VxList &list, VxList &source);
    void (*reverse)(VxList &list);
    Range (*range)(VxList &list);
    /** The next element of a walk: 0; -1 at its end; 1 when it cannot be found for want of memory. */
    int32_t (*step)(VxListIter &iter, void **ptr);
};

extern const Layout keyedLayout;
extern const Layout linkedLayout;
extern const Layout arrayLayout;
extern const Layout pointerLayout;
extern const Layout treeLayout;
extern const Layout wrappedLayout;

/** The layout of a list; null for a null list and for a record that is none. */
const Layout *layoutOf(const VxList *list) noexcept;

inline size_t elementBytes(const VxList &list) noexcept
{
    return static_cast<size_t>(list.elemSize);
}

inline bool equal(const VxList &list, const void *a, const void *b) noexcept
{
    return std::memcmp(a, b, elementBytes(list)) == 0;
}

/** Copy elements of the common sizes without a call; false for others. */
inline bool copyCommonSize(void *to, const void *from, int32_t bytes) noexcept
{
    switch (bytes) {
    case 4: std::memcpy(to, from, 4); return true;
    case 8: std::memcpy(to, from, 8); return true;
    case 16: std::memcpy(to, from, 16); return true;
    case 32: std::memcpy(to, from, 32); return true;
    default: return false;
    }
}

inline void copyBytes(void *to, const void *from, int32_t bytes) noexcept
{
    if (!copyCommonSize(to, from, bytes))
        std::memmove(to, from, static_cast<size_t>(bytes));
}

inline void copyElement(const VxList &list, void *to, const void *from) noexcept
{
    copyBytes(to, from, list.elemSize);
}

}
