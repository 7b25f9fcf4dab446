// The pointer-array layout: an array of pointers, and a block for each slot up
// to the capacity. An element keeps its address while the list changes round
// it; the blocks of removed elements wait at the end for new ones.

#include <algorithm>
#include <memory>

#include "containers/memory.h"
#include "containers/slots.h"

namespace vx::containers {

namespace {

void **pointersOf(const VxList &list) noexcept
{
    return static_cast<void **>(list.data);
}

void freeBlocks(VxList &list, int32_t first, int32_t end) noexcept
{
    for (int32_t i = first; i < end; ++i)
        VxMemFree(&pointersOf(list)[i]);
}

/** Blocks for slots behind the capacity, which is raised; none for want of memory. */
uint32_t addBlocks(VxList &list, int32_t capacity)
{
    for (int32_t i = list.capacity; i < capacity; ++i) {
        pointersOf(list)[i] = allocateZero<char>(list.elemSize).release();
        if (pointersOf(list)[i])
            continue;
        freeBlocks(list, list.capacity, i);
        return 1;
    }
    list.capacity = capacity;
    return 0;
}

uint32_t grow(VxList &list, int32_t extra)
{
    if (extra < 0 || extra > INT32_MAX - list.capacity)
        return 1;
    if (extra == 0)
        return 0;
    int32_t capacity = list.capacity + extra;
    int64_t bytes = int64_t{capacity} * static_cast<int64_t>(sizeof(void *));
    if (!blockCanHave(bytes) || VxMemSmrtResize(static_cast<int32_t>(bytes), &list.data))
        return 1;
    return addBlocks(list, capacity);
}

void discard(VxList &list)
{
    freeBlocks(list, 0, list.data ? list.capacity : 0);
    VxMemFree(&list.data);
    list.capacity = 0;
}

uint32_t make(VxList &list)
{
    int32_t capacity = std::max(list.capacity, 1);
    list.capacity = 0;
    list.increment = std::max(list.increment, 1);
    return grow(list, capacity);
}

void *at(VxList &list, int32_t index)
{
    return index >= 0 && index < list.capacity && list.data ? pointersOf(list)[index] : nullptr;
}

uint32_t set(VxList &list, int32_t index, const void *element)
{
    if (index < 0)
        return 1;
    if (index >= list.capacity && grow(list, slotsToAdd(list, index)))
        return 1;
    copyElement(list, pointersOf(list)[index], element);
    list.count = std::max(list.count, index + 1);
    return 0;
}

/** The spare block of the last slot takes the new element. */
uint32_t insert(VxList &list, int32_t index, const void *element)
{
    if (index == -1)
        index = list.count;
    if (index < 0)
        return 1;
    if ((index >= list.capacity || list.count >= list.capacity) && grow(list, slotsToAdd(list, index)))
        return 1;
    void **last = pointersOf(list) + list.capacity - 1;
    std::rotate(pointersOf(list) + index, last, last + 1);
    copyElement(list, pointersOf(list)[index], element);
    list.count = std::max(list.count, index) + 1;
    return 0;
}

uint32_t remove(VxList &list, int32_t first, int32_t last)
{
    if (first < 0 || last < first || last >= list.count)
        return 1;
    void **slots = pointersOf(list);
    std::rotate(slots + first, slots + last + 1, slots + list.capacity);
    list.count -= last - first + 1;
    return 0;
}

uint32_t removeEqual(VxList &list, const void *element)
{
    void **slots = pointersOf(list);
    int32_t kept = 0;
    for (int32_t i = 0; i < list.count; ++i)
        if (!equal(list, slots[i], element))
            std::swap(slots[kept++], slots[i]);
    list.count = kept;
    return 0;
}

uint32_t truncate(VxList &list, int32_t n)
{
    list.count = n;
    return 0;
}

uint32_t append(VxList &list, VxList &source)
{
    int64_t needed = int64_t{list.count} + source.count;
    if (needed > INT32_MAX)
        return 1;
    if (needed > list.capacity && grow(list, static_cast<int32_t>(needed) - list.capacity))
        return 1;
    for (int32_t i = 0; i < source.count; ++i)
        copyElement(list, pointersOf(list)[list.count + i], pointersOf(source)[i]);
    list.count = static_cast<int32_t>(needed);
    source.count = 0;
    return 0;
}

void reverse(VxList &list)
{
    std::reverse(pointersOf(list), pointersOf(list) + list.count);
}

int32_t step(VxListIter &iter, void **ptr)
{
    return stepPositions(iter, ptr, at);
}

}

const Layout pointerLayout = {
    .make = make,
    .discard = discard,
    .reset = keepSlots,
    .set = set,
    .insert = insert,
    .at = at,
    .remove = remove,
    .removeEqual = removeEqual,
    .truncate = truncate,
    .grow = grow,
    .append = append,
    .reverse = reverse,
    .range = positions,
    .step = step,
};

}
