#pragma once

// Where the elements of array and wrapped lists lie, and moving runs of them.
//
// Level 0 is one block. At level 1 `data` is a directory of pages, at level 2
// a directory of directories. A directory has dirSlots pointers; `perPage` is
// the elements of a page at level 1 and dirSlots at level 2, where `perPage2`
// is the elements of a page.

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
 * Division of numbers below 2^31 by multiplication, several times as fast
 * (Granlund and Montgomery, Division by Invariant Integers using
 * Multiplication, 1994).
 */
class Divisor {
public:
    explicit Divisor(int32_t divisor) noexcept
        : divisor_(static_cast<uint32_t>(divisor)),
          shift_(31 + static_cast<uint32_t>(std::bit_width(divisor_ - 1))),
          multiplier_(((uint64_t{1} << shift_) + divisor_ - 1) / divisor_)
    {
    }

    /** The quotient; `n` becomes the remainder. */
    uint32_t divide(uint32_t &n) const noexcept
    {
        auto quotient = static_cast<uint32_t>(n * multiplier_ >> shift_);
        n -= quotient * divisor_;
        return quotient;
    }

private:
    uint32_t divisor_;
    uint32_t shift_;
    uint64_t multiplier_;
};

/** What stands behind the slots of the first directory. */
struct Divisors {
    Divisor elements; ///< of a page
    Divisor slots;    ///< of a directory

    /** The page where elements were appended, and its first index, so far from all others when it may be
     * gone. */
    static constexpr uint32_t gone = uint32_t{1} << 31;
    void *lastPage = nullptr;
    uint32_t lastFirst = gone;
};

inline Divisors &divisorsOf(const VxList &list) noexcept
{
    return *reinterpret_cast<Divisors *>(static_cast<void **>(list.data) + list.dirSlots);
}

/** The block or page of an index in 0..capacity-1, which becomes the place in it; null when it is not there.
 */
inline void *pageOf(const VxList &list, uint32_t &index) noexcept
{
    if (list.pageLevel == 0)
        return list.data;
    const Divisors &divisors = divisorsOf(list);
    auto directory = static_cast<void **>(list.data);
    uint32_t page = divisors.elements.divide(index);
    if (list.pageLevel == 2) {
        directory = static_cast<void **>(directory[divisors.slots.divide(page)]);
        if (!directory)
            return nullptr;
    }
    return directory[page];
}

/** The slot behind the last element, of size T, when it is in the page of the last append or in the one
 * block. */
template <typename T> inline T *nextSlot(const VxList &list) noexcept
{
    if (list.pageLevel == 0)
        return static_cast<T *>(list.data) + list.count;
    const Divisors &behind = divisorsOf(list);
    uint32_t within = static_cast<uint32_t>(list.count) - behind.lastFirst;
    return within < static_cast<uint32_t>(elementsPerPage(list)) ? static_cast<T *>(behind.lastPage) + within
                                                                 : nullptr;
}

/** Let the page of the next append be found without a search; false when it is not there. */
bool rememberPage(VxList &list) noexcept;

/** The slot of an index in 0..capacity-1; null when its page is not there. */
inline char *slotAt(const VxList &list, int32_t index) noexcept
{
    auto within = static_cast<uint32_t>(index);
    auto start = static_cast<char *>(pageOf(list, within));
    return start ? start + size_t{within} * elementBytes(list) : nullptr;
}

/** The same for any index; null for one outside. */
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
