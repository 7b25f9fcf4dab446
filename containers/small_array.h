#pragma once

// Array lists whose first slots stand right behind their record, in one block
// with it: of many small lists each costs one block and few cache misses. When
// the slots no longer suffice the elements move to a block of their own.

#include <cstdint>

#include "containers/layout.h"

namespace vx::containers {

constexpr int64_t smallArrayBytes(int32_t elemSize, int32_t capacity) noexcept
{
    return static_cast<int64_t>(sizeof(VxList)) + int64_t{elemSize} * capacity;
}

/**
 * Make an empty list in a block of smallArrayBytes().
 * @param elemSize  of elements that need no alignment above a pointer's; all slots fit a page
 */
VxList *makeSmallArray(void *block, int32_t elemSize, int32_t capacity, int32_t increment) noexcept;

/** The same in a block of its own, which VxListDel frees; null for want of memory. */
VxList *newSmallArray(int32_t elemSize, int32_t capacity, int32_t increment);

/** One full of the n elements of an array, 1 or more. */
VxList *newSmallArrayOf(int32_t elemSize, const void *elements, int32_t n, int32_t increment);

// Array lists have no chain. The pointer to one marks these lists: the record's
// own address, or the next one where the record is part of a larger block.

inline uintptr_t markOf(const VxList &list) noexcept
{
    return reinterpret_cast<uintptr_t>(list.order) - reinterpret_cast<uintptr_t>(&list);
}

/** True while the slots stand behind the record. */
inline bool slotsBehindRecord(const VxList &list) noexcept
{
    return list.data == &list + 1 && list.layout == array && markOf(list) <= 1;
}

/** Tell that the record is part of a larger block and not freed with the list, which keeps its layout. */
inline void lendRecord(VxList &list) noexcept
{
    list.order = reinterpret_cast<VxLnkNode *>(reinterpret_cast<uintptr_t>(&list) + 1);
}

inline bool recordIsLent(const VxList &list) noexcept
{
    return list.layout == array && markOf(list) == 1;
}

}
