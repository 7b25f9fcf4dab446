// The wrapped layout: a view of an array that is the caller's, never grown and
// never freed.

#include <algorithm>

#include "containers/memory.h"
#include "containers/slots.h"

namespace vx::containers {

namespace {

uint32_t make(VxList &list)
{
    list.capacity = std::max(list.capacity, 0);
    list.increment = 0;
    if (list.capacity == 0)
        return 0;
    list.data = allocateZero<char>(int64_t{list.capacity} * list.elemSize).release();
    return list.data ? 0 : 1;
}

void discard(VxList &list)
{
    list.data = nullptr;
}

uint32_t set(VxList &list, int32_t index, const void *element)
{
    void *slot = slotOrNull(list, index);
    if (!slot)
        return 1;
    copyElement(list, slot, element);
    list.count = std::max(list.count, index + 1);
    return 0;
}

uint32_t insert(VxList &list, int32_t index, const void *element)
{
    if (list.count >= list.capacity || !slotOrNull(list, index))
        return 1;
    if (index < list.count)
        moveElements(list, index, index + 1, list.count - index);
    copyElement(list, slotAt(list, index), element);
    list.count = std::max(list.count, index) + 1;
    return 0;
}

uint32_t truncate(VxList &list, int32_t n)
{
    list.count = n;
    return 0;
}

uint32_t grow(VxList &, int32_t)
{
    return 1;
}

/** The source may have any layout: converted, its new array would have no owner. */
uint32_t append(VxList &list, VxList &source)
{
    if (int64_t{list.count} + source.count > list.capacity)
        return 1;
    VxListIter iter;
    VxListItrInit2(&source, 0, &iter);
    void *element = nullptr;
    for (int32_t to = list.count; VxListItrPtr(&iter, &element) == 0; ++to)
        copyElement(list, slotAt(list, to), element);
    list.count += source.count;
    return VxListReset(&source);
}

}

const Layout wrappedLayout = {
    .make = make,
    .discard = discard,
    .reset = keepSlots,
    .set = set,
    .insert = insert,
    .at = slotOrNull,
    .remove = removeSlots,
    .removeEqual = removeEqualSlots,
    .truncate = truncate,
    .grow = grow,
    .append = append,
    .reverse = reverseSlots,
    .range = positions,
    .step = stepSlots,
};

}
