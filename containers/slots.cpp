// Positions of array lists: addresses, runs of elements, walks.

#include "containers/slots.h"

#include <algorithm>

namespace vx::containers {

namespace {

/** Elements that lie side by side in front of an index, 1 or more. */
int32_t runBefore(const VxList &list, int32_t index) noexcept
{
    return list.pageLevel == 0 ? INT32_MAX : (index - 1) % elementsPerPage(list) + 1;
}

size_t bytesOf(const VxList &list, int32_t n) noexcept
{
    return static_cast<size_t>(n) * elementBytes(list);
}

}

bool growInPage(VxList &list) noexcept
{
    if (list.pageLevel == 0 || list.increment < 1)
        return false;
    int32_t within = list.capacity % elementsPerPage(list);
    if (within == 0 || list.increment > elementsPerPage(list) - within)
        return false;
    list.capacity += list.increment;
    return true;
}

void moveElements(VxList &list, int32_t from, int32_t to, int32_t n) noexcept
{
    if (to < from) {
        for (int32_t run = 0; n > 0; n -= run, from += run, to += run) {
            run = std::min({n, runFrom(list, from), runFrom(list, to)});
            std::memmove(slotAt(list, to), slotAt(list, from), bytesOf(list, run));
        }
        return;
    }
    while (n > 0) {
        int32_t run = std::min({n, runBefore(list, from + n), runBefore(list, to + n)});
        n -= run;
        std::memmove(slotAt(list, to + n), slotAt(list, from + n), bytesOf(list, run));
    }
}

void copyElements(const VxList &source, VxList &list, int32_t to, int32_t n) noexcept
{
    int32_t run = 0;
    for (int32_t from = 0; from < n; from += run, to += run) {
        run = std::min({n - from, runFrom(source, from), runFrom(list, to)});
        std::memcpy(slotAt(list, to), slotAt(source, from), bytesOf(list, run));
    }
}

uint32_t keepSlots(VxList &list)
{
    list.count = 0;
    return 0;
}

void *slotOrNull(VxList &list, int32_t index)
{
    return slotInside(list, index);
}

uint32_t removeSlots(VxList &list, int32_t first, int32_t last)
{
    if (first < 0 || last < first || last >= list.count)
        return 1;
    moveElements(list, last + 1, first, list.count - last - 1);
    list.count -= last - first + 1;
    return 0;
}

uint32_t removeEqualSlots(VxList &list, const void *element)
{
    int32_t kept = 0;
    for (int32_t i = 0; i < list.count; ++i) {
        const char *slot = slotAt(list, i);
        if (equal(list, slot, element))
            continue;
        if (kept < i)
            std::memcpy(slotAt(list, kept), slot, elementBytes(list));
        ++kept;
    }
    list.count = kept;
    return 0;
}

void reverseSlots(VxList &list)
{
    for (int32_t low = 0, high = list.count - 1; low < high; ++low, --high) {
        char *slot = slotAt(list, low);
        std::swap_ranges(slot, slot + list.elemSize, slotAt(list, high));
    }
}

int32_t stepSlots(VxListIter &iter, void **ptr)
{
    return stepPositions(iter, ptr, slotOrNull);
}

Range positions(VxList &list)
{
    return {0, list.count - 1};
}

int32_t stepPositions(VxListIter &iter, void **ptr, void *(*at)(VxList &, int32_t))
{
    bool up = iter.direction != 2;
    int64_t index = iter.index;
    if (iter.cursor)
        index += up ? 1 : -1;
    bool over = up ? iter.direction == 1 && index > iter.bound : index < iter.bound;
    if (over || index < 0 || index >= iter.list->count)
        return -1;
    *ptr = at(*iter.list, static_cast<int32_t>(index));
    if (!*ptr)
        return 1;
    iter.index = static_cast<int32_t>(index);
    iter.cursor = *ptr;
    return 0;
}

int32_t slotsToAdd(const VxList &list, int32_t index) noexcept
{
    constexpr int64_t mostSteps = 10;
    int64_t increment = std::max(list.increment, 1);
    int64_t steps = std::max<int64_t>((int64_t{index} - list.capacity) / increment, 0);
    int64_t extra = increment * (steps + 1);
    return steps <= mostSteps && list.capacity + extra <= INT32_MAX ? static_cast<int32_t>(extra) : -1;
}

int32_t pageLevelFor(int32_t elemSize, int64_t n) noexcept
{
    n = std::max<int64_t>(n, 1);
    int64_t perPage = VgPageSize / elemSize;
    int64_t slots = VgPageSize / static_cast<int32_t>(sizeof(void *));
    if (perPage < 1 || slots < 1 || n * elemSize <= VgPageSize)
        return 0;
    int64_t lastPage = (n - 1) / perPage;
    if (lastPage < slots)
        return 1;
    return lastPage / slots < slots ? 2 : -1;
}

}
