// Lists made of lists: copies, conversions, concatenation, plain arrays.
//
// What may fail half-way is built beside the list and then put in its place.

#include <algorithm>
#include <memory>
#include <utility>

#include "containers/memory.h"
#include "containers/slots.h"
#include "containers/small_array.h"

namespace vx::containers {

namespace {

struct DeleteList {
    void operator()(VxList *list) const noexcept { VxListDel(&list); }
};

using OwnedList = std::unique_ptr<VxList, DeleteList>;

OwnedList newList(int32_t layout, const VxList &like, int32_t capacity, VxCmpFn compare)
{
    VxList *list = nullptr;
    VxListMk(layout, like.elemSize, capacity, like.increment, compare, &list);
    return OwnedList(list);
}

/** Append in storage order. A keyed destination takes the source's indices as keys if `sameKeys`. */
bool copyAll(VxList &source, VxList &list, bool sameKeys)
{
    VxListIter iter;
    VxListItrInit2(&source, 0, &iter);
    void *element = nullptr;
    for (int32_t left = source.count; left > 0; --left) {
        if (VxListItrPtr(&iter, &element))
            return false;
        if (VxListSet(&list, sameKeys && list.layout == keyed ? iter.index : list.count, element))
            return false;
    }
    return true;
}

/** A list of another layout with the same elements; empty for want of memory. */
OwnedList converted(int32_t layout, VxList &source, VxCmpFn compare)
{
    OwnedList list = newList(layout, source, source.count, compare);
    if (list && !copyAll(source, *list, true))
        list.reset();
    return list;
}

/** Put what another list holds in the place of what this one does, which is freed. */
void replace(VxList &list, OwnedList with)
{
    VxListDelList(&list);
    list = *with;
    Block<VxList> record(with.release());
}

OwnedList contiguousCopy(const VxList &source)
{
    void *made = nullptr;
    if (VxMkArr(array, source.elemSize, source.capacity, source.increment, nullptr, &made))
        return {};
    auto list = static_cast<VxList *>(made);
    list->compare = source.compare;
    list->count = source.count;
    if (source.count > 0)
        std::memcpy(list->data, source.data, static_cast<size_t>(source.count) * elementBytes(source));
    return OwnedList(list);
}

OwnedList copyOf(VxList &source)
{
    if (VxListIsArray(&source))
        return contiguousCopy(source);
    OwnedList list = newList(source.layout, source, source.capacity, source.compare);
    if (!list || !copyAll(source, *list, true))
        return {};
    list->capacity = std::max(list->capacity, source.capacity);
    return list;
}

/** Append to a list of any layout: all of the source's elements or none. */
uint32_t appendCopies(VxList &source, VxList &list, bool sameKeys)
{
    if (source.count < 1)
        return 0;
    if (list.layout == wrapped) {
        if (int64_t{list.count} + source.count > list.capacity)
            return 1;
        return copyAll(source, list, false) ? 0 : 1;
    }
    if (list.layout == keyed) {
        OwnedList merged = copyOf(list);
        if (!merged || !copyAll(source, *merged, sameKeys))
            return 1;
        replace(list, std::move(merged));
        return 0;
    }
    OwnedList copies = converted(list.layout, source, list.compare);
    return copies ? layoutOf(&list)->append(list, *copies) : 1;
}

bool hasSlots(const VxList &list) noexcept
{
    return list.layout == array || list.layout == pointers || list.layout == wrapped;
}

/** Other elements in the slots that a list has. */
uint32_t refillSlots(VxList &source, VxList &list)
{
    int32_t count = std::exchange(list.count, 0);
    if (appendCopies(source, list, false) == 0)
        return 0;
    list.count = count;
    return 1;
}

/** Other nodes for those that a list has. */
uint32_t refillNodes(VxList &source, VxList &list)
{
    OwnedList filled = newList(list.layout, list, 0, list.compare);
    if (!filled || !copyAll(source, *filled, false))
        return 1;
    filled->capacity = std::max(filled->capacity, list.capacity);
    replace(list, std::move(filled));
    return 0;
}

/** All elements in one block; false for want of memory. */
bool elementsInBlock(VxList &list, Block<char> &block)
{
    if (list.count < 1)
        return true;
    block = allocate<char>(int64_t{list.count} * list.elemSize);
    if (!block)
        return false;
    VxListIter iter;
    VxListItrInit2(&list, 0, &iter);
    void *element = nullptr;
    for (char *to = block.get(); VxListItrPtr(&iter, &element) == 0; to += list.elemSize)
        copyElement(list, to, element);
    return true;
}

}

}

using namespace vx::containers;

int32_t VxListIsArray(const VxList *list)
{
    return list && (list->layout == array || list->layout == wrapped) && list->pageLevel == 0;
}

uint32_t VxListGetArray(VxList *list, void **ptr)
{
    if (!ptr)
        return 1;
    *ptr = nullptr;
    const Layout *layout = layoutOf(list);
    if (!layout)
        return 1;
    if (!VxListIsArray(list)) {
        Block<char> block;
        if (!elementsInBlock(*list, block))
            return 1;
        int32_t count = list->count;
        VxListDelList(list);
        list->layout = array;
        list->count = list->capacity = count;
        list->increment = std::max(list->increment, 1);
        list->dirSlots = VgPageSize / static_cast<int32_t>(sizeof(void *));
        list->perPage = list->perPage2 = 0;
        list->data = block.release();
    }
    *ptr = list->count > 0 ? list->data : nullptr;
    return 0;
}

uint32_t VxListCopy(VxList *source, VxList **copy)
{
    if (!copy)
        return 1;
    *copy = nullptr;
    if (!layoutOf(source))
        return 1;
    *copy = copyOf(*source).release();
    return *copy ? 0 : 1;
}

uint32_t VxListCopy2(VxList *source, VxList *destination)
{
    if (!layoutOf(source) || !layoutOf(destination) || source->elemSize != destination->elemSize)
        return 1;
    return appendCopies(*source, *destination, true);
}

uint32_t VxListConcat(VxList *destination, VxList *source)
{
    const Layout *layout = layoutOf(destination);
    if (!layout || !layoutOf(source) || destination == source || source->elemSize != destination->elemSize ||
        destination->layout == keyed)
        return 1;
    if (source->count < 1)
        return 0;
    if (source->layout == destination->layout || destination->layout == wrapped)
        return layout->append(*destination, *source);
    if (recordIsLent(*source))
        return 1;
    OwnedList same = converted(destination->layout, *source, destination->compare);
    if (!same || layout->append(*destination, *same))
        return 1;
    replace(*source, std::move(same));
    return 0;
}

uint32_t VxListCnvrt(int32_t layout, VxList *list, VxList **newList)
{
    if (!newList)
        return 1;
    *newList = nullptr;
    if (!layoutOf(list))
        return 1;
    *newList = converted(layout, *list, list->compare).release();
    return *newList ? 0 : 1;
}

uint32_t VxListConvert(int32_t layout, VxList *list)
{
    if (!layoutOf(list))
        return 1;
    if (layout == list->layout)
        return 0;
    if (recordIsLent(*list))
        return 1;
    OwnedList other = converted(layout, *list, list->compare);
    if (!other)
        return 1;
    replace(*list, std::move(other));
    return 0;
}

uint32_t VxListCnvrtArr(int32_t elemSize, VxList *list, int32_t *count, void **block)
{
    if (!count || !block)
        return 1;
    *count = 0;
    *block = nullptr;
    Block<char> elements;
    if (!layoutOf(list) || list->elemSize != elemSize || !elementsInBlock(*list, elements))
        return 1;
    *count = list->count;
    *block = elements.release();
    return VxListDelList(list);
}

uint32_t HashConvertList(VxList *source, VxList *destination)
{
    if (!layoutOf(source) || !layoutOf(destination) || source == destination ||
        source->elemSize != destination->elemSize)
        return 1;
    return appendCopies(*source, *destination, false);
}

uint32_t VxKeyListCnvrt(VxList *source, VxList *destination)
{
    if (!layoutOf(source) || !layoutOf(destination) || source == destination || source->layout != keyed ||
        source->elemSize != destination->elemSize)
        return 1;
    if (source->count < 1)
        return VxListReset(destination);
    return hasSlots(*destination) ? refillSlots(*source, *destination) : refillNodes(*source, *destination);
}

uint32_t VxListRvrs(VxList *list)
{
    const Layout *layout = layoutOf(list);
    if (layout && list->count > 1)
        layout->reverse(*list);
    return 0;
}
