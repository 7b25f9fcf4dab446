// The generic list: arguments are checked here, the work is the layout's.

#include "vx/list.h"

#include <algorithm>
#include <memory>

#include "containers/keyed_store.h"
#include "containers/layout.h"
#include "containers/memory.h"
#include "containers/slots.h"
#include "containers/small_array.h"
#include "vx/err.h"
#include "vx/mem.h"
#include "vx/tools.h"

namespace vx::containers {

namespace {

constexpr const Layout *layouts[layoutCount] = {&keyedLayout,   &linkedLayout, &arrayLayout,
                                                &pointerLayout, &treeLayout,   &wrappedLayout};

constexpr int32_t errorElementSize = 3;

/** The element at an index, or null. */
void *elementAt(VxList *list, int32_t index)
{
    const Layout *layout = layoutOf(list);
    return layout ? layout->at(*list, index) : nullptr;
}

/** The same where the look-up costs less than a call; null also where elementAt() is to be asked. */
inline void *elementNear(const VxList &list, int32_t index) noexcept
{
    if (list.layout == array)
        return slotInside(list, index);
    return list.layout == keyed ? keyedElement(list, index) : nullptr;
}

/** VxListGetPtr where there is more to it; inside, it would have each look-up save registers. */
[[gnu::noinline]] uint32_t getPtr(VxList *list, int32_t index, void **ptr)
{
    if (!ptr)
        return 1;
    *ptr = elementAt(list, index);
    return *ptr ? 0 : 1;
}

/** Store in a slot that an array list has; false when there is more to it, a call among it. */
inline bool setInPlace(VxList &list, int32_t index, const void *element) noexcept
{
    if (list.layout != array || static_cast<uint32_t>(index) > static_cast<uint32_t>(list.count))
        return false;
    void *slot = slotInside(list, index);
    if (!slot || !copyCommonSize(slot, element, list.elemSize))
        return false;
    list.count += index == list.count;
    return true;
}

}

const Layout *layoutOf(const VxList *list) noexcept
{
    return list && static_cast<uint32_t>(list->layout) < layoutCount ? layouts[list->layout] : nullptr;
}

}

using namespace vx::containers;

// ---------------------------------------------------------------- life

uint32_t VxListMk(int32_t layout, int32_t elemSize, int32_t capacity, int32_t increment, VxCmpFn compare,
                  VxList **made)
{
    if (!made)
        return 1;
    *made = nullptr;
    if (elemSize < 1) {
        VxErrInt(errorElementSize, elemSize);
        return 1;
    }
    if (layout < 0 || layout >= layoutCount)
        return 1;
    Block<VxList> list = allocateZero<VxList>(1);
    if (!list)
        return 1;
    list->layout = layout;
    list->elemSize = elemSize;
    list->capacity = capacity;
    list->increment = increment;
    list->compare = compare;
    if (layoutOf(list.get())->make(*list)) {
        VxListDelList(list.get());
        return 1;
    }
    *made = list.release();
    return 0;
}

uint32_t VxListWrapArr(int32_t elemSize, int32_t count, int32_t capacity, void *data, VxList *record)
{
    if (!data)
        count = capacity = 0;
    if (!record || count < 0 || capacity < 0 || count > capacity || (elemSize < 1 && capacity > 0))
        return 1;
    *record = VxList{};
    record->layout = wrapped;
    record->elemSize = elemSize;
    record->count = count;
    record->capacity = capacity;
    record->data = data;
    return 0;
}

uint32_t VxArrCnvrtList(int32_t elemSize, int32_t count, void *data, VxList **made)
{
    constexpr int32_t increment = 4;
    if (!made)
        return 1;
    *made = nullptr;
    if (elemSize < 1 || count < 0 || (!data && count > 0))
        return 1;
    Block<VxList> list = allocateZero<VxList>(1);
    if (!list)
        return 1;
    list->layout = array;
    list->elemSize = elemSize;
    list->count = list->capacity = count;
    list->increment = increment;
    list->dirSlots = VgPageSize / static_cast<int32_t>(sizeof(void *));
    list->data = data;
    *made = list.release();
    return 0;
}

uint32_t VxListDelList(VxList *list)
{
    const Layout *layout = layoutOf(list);
    if (!layout)
        return 1;
    layout->discard(*list);
    list->count = list->capacity = list->pageLevel = 0;
    return 0;
}

uint32_t VxListDel(VxList **list)
{
    if (!list)
        return 1;
    VxListDelList(*list);
    void *record = *list && recordIsLent(**list) ? nullptr : *list;
    *list = nullptr;
    return VxMemFree(&record);
}

uint32_t VxListOfListDel(VxList **list)
{
    if (!list)
        return 1;
    if (!*list)
        return 0;
    if ((*list)->elemSize != static_cast<int32_t>(sizeof(VxList *)))
        return VxListSizeError();
    VxListIter iter;
    VxListItrInit2(*list, 0, &iter);
    for (void *element = nullptr; VxListItrPtr(&iter, &element) == 0;)
        VxListDel(static_cast<VxList **>(element));
    return VxListDel(list);
}

uint32_t VxListReset(VxList *list)
{
    if (!list)
        return 0;
    const Layout *layout = layoutOf(list);
    return layout ? layout->reset(*list) : 1;
}

uint32_t VxListSizeError(void)
{
    static const char message[] = "List size mismatch";
    VxErrLogMsg(0, 0, "VxListSizeError", 0, message);
    VxStopError(reinterpret_cast<intptr_t>(message));
    return 1;
}

// ---------------------------------------------------------------- elements

uint32_t VxListSet(VxList *list, int32_t index, const void *element)
{
    if (list && element && setInPlace(*list, index, element))
        return 0;
    const Layout *layout = element ? layoutOf(list) : nullptr;
    return layout ? layout->set(*list, index, element) : 1;
}

uint32_t VxListIns(VxList *list, int32_t index, const void *element)
{
    const Layout *layout = layoutOf(list);
    return layout && element ? layout->insert(*list, index, element) : 1;
}

uint32_t VxListGetPtr(VxList *list, int32_t index, void **ptr)
{
    void *element = list && ptr ? elementNear(*list, index) : nullptr;
    if (!element)
        return getPtr(list, index, ptr);
    *ptr = element;
    return 0;
}

uint32_t VxListArrayPtr(VxList *list, int32_t index, void **ptr)
{
    if (!ptr)
        return 1;
    *ptr = nullptr;
    if (!list || (list->layout != array && list->layout != wrapped))
        return 1;
    return VxListGetPtr(list, index, ptr);
}

uint32_t VxListGet(VxList *list, int32_t index, void *element)
{
    void *stored = nullptr;
    if (!element || VxListGetPtr(list, index, &stored))
        return 1;
    copyElement(*list, element, stored);
    return 0;
}

uint32_t VxListFill(VxList *list, int32_t first, int32_t n, const void *element)
{
    if (!list || !element)
        return 1;
    int64_t end = int64_t{first} + n;
    for (int64_t i = first; i < end; ++i)
        if (i > INT32_MAX || VxListSet(list, static_cast<int32_t>(i), element))
            return 1;
    return 0;
}

namespace {

/** Index of the first element that is equal; false when there is none. */
bool findEqual(VxList *list, const void *element, int32_t direction, int32_t &index)
{
    VxListIter iter;
    if (!element || VxListItrInit2(list, direction, &iter))
        return false;
    for (void *stored = nullptr; VxListItrPtr(&iter, &stored) == 0;) {
        if (!equal(*list, stored, element))
            continue;
        index = iter.index;
        return true;
    }
    return false;
}

}

uint32_t VxListSetUnique(VxList *list, const void *element, int32_t *index)
{
    if (!index)
        return 1;
    *index = -1;
    if (!list || !element)
        return 1;
    if (findEqual(list, element, 0, *index))
        return 0;
    int64_t next = list->layout == keyed ? int64_t{list->capacity} + 1 : list->count;
    if (next > INT32_MAX || VxListSet(list, static_cast<int32_t>(next), element))
        return 1;
    *index = static_cast<int32_t>(next);
    return 0;
}

int32_t VxListIndexOf(VxList *list, const void *element, int32_t direction)
{
    int32_t index = -1;
    findEqual(list, element, direction, index);
    return index;
}

// ---------------------------------------------------------------- removal and size

uint32_t VxListDelElem(VxList *list, int32_t first, int32_t last)
{
    const Layout *layout = layoutOf(list);
    return layout ? layout->remove(*list, first, last) : 1;
}

uint32_t VxListDelVal(VxList *list, const void *element)
{
    const Layout *layout = layoutOf(list);
    return layout && element ? layout->removeEqual(*list, element) : 1;
}

uint32_t VxListDownsize(VxList *list, int32_t n)
{
    const Layout *layout = layoutOf(list);
    if (!layout || n < 0 || n > list->count || list->layout == keyed || list->layout == tree)
        return 1;
    if (n == 0 && list->layout != wrapped)
        return VxListDelList(list);
    bool unused = list->layout != linked && n >= list->capacity;
    return n == list->count || unused ? 0 : layout->truncate(*list, n);
}

uint32_t VxListResizeArr(VxList *list, int32_t extra)
{
    const Layout *layout = layoutOf(list);
    return layout ? layout->grow(*list, extra) : 1;
}

// ---------------------------------------------------------------- walks

uint32_t VxListItrInit2(VxList *list, int32_t direction, VxListIter *iter)
{
    if (!iter)
        return 1;
    *iter = VxListIter{};
    const Layout *layout = layoutOf(list);
    if (!layout || direction < 0 || direction > 2)
        return 1;
    iter->direction = direction;
    iter->list = list;
    if (direction == 0)
        return 0;
    Range range = layout->range(*list);
    iter->index = direction == 1 ? range.low : range.high;
    iter->bound = direction == 1 ? range.high : range.low;
    return 0;
}

int32_t VxListItrPtr(VxListIter *iter, void **ptr)
{
    if (!ptr)
        return 1;
    *ptr = nullptr;
    const Layout *layout = iter ? layoutOf(iter->list) : nullptr;
    return layout ? layout->step(*iter, ptr) : 1;
}

int32_t VxListItr(VxListIter *iter, void *element)
{
    void *stored = nullptr;
    int32_t result = element ? VxListItrPtr(iter, &stored) : 1;
    if (result == 0)
        copyElement(*iter->list, element, stored);
    return result;
}

uint32_t VxListItrInit(VxList *list, int32_t direction, VxListIterOld *start)
{
    if (!start)
        return 1;
    *start = VxListIterOld{};
    const Layout *layout = layoutOf(list);
    if (!layout || direction < 0 || direction > 2)
        return 1;
    Range range = layout->range(*list);
    start->index = direction == 2 ? range.high : range.low;
    return 0;
}

namespace {

/** One step of a walk in a direction of its own. */
uint32_t stepNode(VxList *list, VxListIter *iter, int32_t direction, void **ptr)
{
    if (!ptr)
        return 1;
    *ptr = nullptr;
    if (!list || !iter || (list->layout != linked && list->layout != tree))
        return 1;
    VxListIter walk{iter->index, iter->cursor, direction, list, 0};
    if (!walk.cursor)
        walk.index = direction == 2 ? list->count - 1 : 0;
    if (layoutOf(list)->step(walk, ptr))
        return 1;
    iter->index = walk.index;
    iter->cursor = walk.cursor;
    return 0;
}

}

uint32_t VxLstGetNxtPtr(VxList *list, VxListIter *iter, void **ptr)
{
    return stepNode(list, iter, 0, ptr);
}

uint32_t VxListGetPrvPtr(VxList *list, VxListIter *iter, void **ptr)
{
    return stepNode(list, iter, 2, ptr);
}
