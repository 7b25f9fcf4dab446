#pragma once

// Where the elements of array and wrapped lists lie, and moving runs of them.
//
// Level 0 is one block. At level 1 `data` is a directory of pages, at level 2
// a directory of directories, which stand in one block, side by side: one
// table of all pages, so that finding one takes a step at either level. A
// directory has dirSlots pointers; `perPage` is the elements of a page at
// level 1 and dirSlots at level 2, where `perPage2` is the elements of a page.
// The table has room for the pages of all slots; some may not be there.

#include <bit>
#include <cstdint>

#include "containers/layout.h"

namespace vx::containers {

inline int32_t elementsPerPage(const VxList &list) noexcept
{
    return list.pageLevel == 1 ? list.perPage : list.perPage2;
}

/** Slots that lie side by side from an index on. */
inline int32_t runFrom(const VxList &list, int32_t index) noexcept
{
    return list.pageLevel == 0 ? INT32_MAX : elementsPerPage(list) - index % elementsPerPage(list);
}

/**
 * Division of numbers below 2^31 by multiplication, several times as fast: the
 * quotient is n * multiplier >> shift (Granlund and Montgomery, Division by
 * Invariant Integers using Multiplication, 1994).
 */
struct Divisor {
    explicit Divisor(int32_t divisor) noexcept
        : shift(31 + static_cast<uint32_t>(std::bit_width(static_cast<uint32_t>(divisor) - 1))),
          multiplier(((uint64_t{1} << shift) + static_cast<uint32_t>(divisor) - 1) /
                     static_cast<uint32_t>(divisor))
    {
    }

    uint32_t shift;
    uint64_t multiplier;
};

/** The page table of levels 1 and 2. */
inline VxListPages &pagesOf(const VxList &list) noexcept
{
    return static_cast<VxListPages *>(list.data)[-1];
}

/** The slot of an index in 0..capacity-1; null when its page is not there. */
inline char *slotAt(const VxList &list, int32_t index) noexcept
{
    if (list.pageLevel != 0 && !pagesOf(list).pages[VxListPageOf(&pagesOf(list), index)])
        return nullptr;
    return static_cast<char *>(VxListAt(&list, index));
}

/** The same in an array of elements of type T. */
template <typename T> inline T *slotIn(const VxList &list, int32_t index) noexcept
{
    if (list.pageLevel == 0)
        return static_cast<T *>(list.data) + index;
    const VxListPages &table = pagesOf(list);
    uint32_t page = VxListPageOf(&table, index);
    auto start = static_cast<T *>(table.pages[page]);
    return start ? start + (static_cast<uint32_t>(index) - page * static_cast<uint32_t>(table.perPage))
                 : nullptr;
}

/** The same as slotAt() for any index; null for one outside. */
inline void *slotInside(const VxList &list, int32_t index) noexcept
{
    return static_cast<uint32_t>(index) < static_cast<uint32_t>(list.capacity) ? slotAt(list, index)
                                                                               : nullptr;
}

/** A step of growth of a full list whose last page has the slots; false when there is more to it. */
bool growInPage(VxList &list) noexcept;

/** Move n elements inside a list; the ranges may overlap, their pages are there. */
void moveElements(VxList &list, int32_t from, int32_t to, int32_t n) noexcept;

/** Copy the first n elements of one list to `to` of another with elements of the same size. */
void copyElements(const VxList &source, VxList &list, int32_t to, int32_t n) noexcept;

// What array and wrapped lists have in common, as Layout has it; keepSlots() is also the reset of a pointer
// array.
uint32_t keepSlots(VxList &list);
void *slotOrNull(VxList &list, int32_t index);
uint32_t removeSlots(VxList &list, int32_t first, int32_t last);
uint32_t removeEqualSlots(VxList &list, const void *element);
void reverseSlots(VxList &list);
int32_t stepSlots(VxListIter &iter, void **ptr);

/** Range of positions of every layout but the keyed one. */
Range positions(VxList &list);

/** Step of a walk by position; `at` is the layout's. */
int32_t stepPositions(VxListIter &iter, void **ptr, void *(*at)(VxList &, int32_t));

/** Slots that a store at `index` adds, or -1 when it lies too far past the capacity. */
int32_t slotsToAdd(const VxList &list, int32_t index) noexcept;

/** The level of pages that n elements need; -1 when two levels do not hold them. */
int32_t pageLevelFor(int32_t elemSize, int64_t n) noexcept;

}
