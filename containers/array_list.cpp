// The array layout: one block, or pages reached through one or two
// directories. Pages that a truncation freed below the capacity come back when
// something is stored there.

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "containers/memory.h"
#include "containers/small_array.h"
#include "containers/slots.h"

namespace vx::containers {

namespace {

int64_t pagesFor(const VxList &list, int64_t elements) noexcept
{
    return (elements + elementsPerPage(list) - 1) / elementsPerPage(list);
}

/**
 * A directory with its page table in front; null for want of memory. At level 1
 * it is itself the table, at level 2 there is room for no page yet.
 */
void **newDirectory(int32_t level, int32_t slots, int32_t elements)
{
    auto bytes = static_cast<int64_t>(sizeof(VxListPages) + static_cast<size_t>(slots) * sizeof(void *));
    char *block = allocateZero<char>(bytes).release();
    if (!block)
        return nullptr;
    auto directory = reinterpret_cast<void **>(block + sizeof(VxListPages));
    Divisor divisor(elements);
    bool first = level == 1;
    new (block) VxListPages{first ? directory : nullptr, divisor.multiplier, divisor.shift, elements,
                            first ? slots : 0};
    return directory;
}

/** Let the table of level 2 have room for so many pages; it doubles, so that it is seldom copied. */
bool coverPages(const VxList &list, int64_t needed)
{
    VxListPages &table = pagesOf(list);
    if (needed <= table.room)
        return true;
    int64_t most = int64_t{list.dirSlots} * list.dirSlots;
    int64_t room = std::min(std::max(needed, int64_t{table.room} * 2), most);
    int64_t directories = (room + list.dirSlots - 1) / list.dirSlots;
    Block<void *> pages = allocateZero<void *>(directories * list.dirSlots);
    if (!pages)
        return false;
    std::copy_n(table.pages, table.room, pages.get());
    Block<void *> old(std::exchange(table.pages, pages.release()));
    table.room = static_cast<int32_t>(directories * list.dirSlots);
    for (int64_t i = 0; i < directories; ++i)
        static_cast<void **>(list.data)[i] = table.pages + i * list.dirSlots;
    return true;
}

/** Free directories whose pages are elsewhere or gone. */
void freeDirectories(VxList &list) noexcept
{
    VxListPages &table = pagesOf(list);
    list.data = nullptr;
    if (list.pageLevel == 2)
        Block<void *>(table.pages).reset();
    Block<VxListPages>(&table).reset();
}

void removePages(const VxList &list, int64_t first, int64_t end) noexcept
{
    for (int64_t page = first; page < end; ++page)
        VxMemFree(&pagesOf(list).pages[page]);
}

bool addPage(const VxList &list, int64_t page)
{
    void *&slot = pagesOf(list).pages[page];
    if (!slot)
        slot = allocateZero<char>(int64_t{elementsPerPage(list)} * list.elemSize).release();
    return slot != nullptr;
}

/** Pages behind all that are there; none of them for want of memory. */
bool addPages(const VxList &list, int64_t first, int64_t end)
{
    if (list.pageLevel == 2 && !coverPages(list, end))
        return false;
    for (int64_t page = first; page < end; ++page) {
        if (addPage(list, page))
            continue;
        removePages(list, first, page + 1);
        return false;
    }
    return true;
}

/** Pages for the slots from the count up to `index`. */
bool backSlots(VxList &list, int32_t index)
{
    if (list.pageLevel == 0)
        return true;
    int64_t last = index / elementsPerPage(list);
    for (int64_t page = list.count / elementsPerPage(list); page <= last; ++page)
        if (!addPage(list, page))
            return false;
    return true;
}

void discard(VxList &list)
{
    if (slotsBehindRecord(list))
        list.data = nullptr;
    if (list.pageLevel > 0 && list.data) {
        removePages(list, 0, pagesFor(list, list.capacity));
        freeDirectories(list);
    }
    VxMemFree(&list.data);
    list.perPage = list.perPage2 = 0;
}

/** Paged storage for an empty list. */
uint32_t makePages(VxList &list, int32_t level, int32_t capacity)
{
    list.pageLevel = level;
    list.dirSlots = VgPageSize / static_cast<int32_t>(sizeof(void *));
    list.perPage = level == 1 ? VgPageSize / list.elemSize : list.dirSlots;
    list.perPage2 = level == 1 ? 0 : VgPageSize / list.elemSize;
    list.capacity = capacity;
    list.data = newDirectory(level, list.dirSlots, elementsPerPage(list));
    if (!list.data)
        return 1;
    if (addPages(list, 0, pagesFor(list, capacity)))
        return 0;
    freeDirectories(list);
    return 1;
}

uint32_t make(VxList &list)
{
    list.capacity = std::max(list.capacity, 1);
    list.increment = std::max(list.increment, 1);
    int32_t level = pageLevelFor(list.elemSize, list.capacity);
    if (level < 0)
        return 1;
    if (level > 0)
        return makePages(list, level, list.capacity);
    list.dirSlots = VgPageSize / static_cast<int32_t>(sizeof(void *));
    list.data = allocateZero<char>(int64_t{list.capacity} * list.elemSize).release();
    return list.data ? 0 : 1;
}

/** From one block to pages. */
uint32_t turnIntoPages(VxList &list, int32_t level, int32_t capacity)
{
    VxList paged = list;
    if (makePages(paged, level, capacity))
        return 1;
    copyElements(list, paged, 0, list.count);
    discard(list);
    list = paged;
    return 0;
}

/** From one level of pages to two, with the same pages. */
uint32_t deepen(VxList &list, int32_t capacity)
{
    VxList deeper = list;
    deeper.pageLevel = 2;
    deeper.perPage2 = list.perPage;
    deeper.perPage = list.dirSlots;
    deeper.capacity = capacity;
    int64_t had = pagesFor(list, list.capacity);
    int64_t needed = pagesFor(deeper, capacity);
    if ((needed - 1) / list.dirSlots >= list.dirSlots)
        return 1;
    deeper.data = newDirectory(2, list.dirSlots, list.perPage);
    if (!deeper.data)
        return 1;
    if (!addPages(deeper, had, needed)) {
        freeDirectories(deeper);
        return 1;
    }
    std::copy_n(pagesOf(list).pages, had, pagesOf(deeper).pages);
    freeDirectories(list);
    list = deeper;
    return 0;
}

/** Bytes that the one block has. */
int64_t roomOf(const VxList &list) noexcept
{
    return int64_t{std::max(list.capacity, list.perPage2)} * list.elemSize;
}

/** Another size for the one block; slots behind the record move to a block of their own. */
bool resizeBlock(VxList &list, int64_t bytes)
{
    bool moves = slotsBehindRecord(list);
    void *block = moves ? nullptr : list.data;
    if (!blockCanHave(bytes) || VxMemSmrtResize(static_cast<int32_t>(bytes), &block))
        return false;
    if (moves)
        std::memcpy(block, list.data, static_cast<size_t>(roomOf(list)));
    list.data = block;
    return true;
}

/** More slots in the one block. Above a page it gets room for others, else each growth would copy it. */
uint32_t growBlock(VxList &list, int32_t extra)
{
    int64_t had = int64_t{list.capacity} * list.elemSize;
    int64_t bytes = had + int64_t{extra} * list.elemSize;
    if (bytes > roomOf(list)) {
        int64_t half = std::min<int64_t>(had + had / 2, INT32_MAX);
        int64_t room = bytes > VgPageSize ? std::max(bytes, half) : bytes;
        if (!resizeBlock(list, room))
            return 1;
        list.perPage2 = static_cast<int32_t>(room / list.elemSize);
    }
    std::memset(static_cast<char *>(list.data) + had, 0, static_cast<size_t>(bytes - had));
    list.capacity += extra;
    return 0;
}

uint32_t growPages(VxList &list, int32_t capacity)
{
    int64_t needed = pagesFor(list, capacity);
    if (list.pageLevel == 1 && needed > list.dirSlots)
        return deepen(list, capacity);
    if (list.pageLevel == 2 && (needed - 1) / list.dirSlots >= list.dirSlots)
        return 1;
    if (!addPages(list, pagesFor(list, list.capacity), needed))
        return 1;
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
    if (list.pageLevel > 0)
        return growPages(list, capacity);
    if (pageLevelFor(list.elemSize, capacity) == 1)
        return turnIntoPages(list, 1, capacity);
    return growBlock(list, extra);
}

/** Pages up to `last`, and more slots; those below the capacity first, so that refusals change nothing. */
bool makeRoom(VxList &list, int32_t last, int32_t extra)
{
    return backSlots(list, std::min(last, list.capacity - 1)) && (extra == 0 || grow(list, extra) == 0);
}

uint32_t set(VxList &list, int32_t index, const void *element)
{
    if (index < 0)
        return 1;
    if (index >= list.capacity && !makeRoom(list, index, slotsToAdd(list, index)))
        return 1;
    char *slot = slotAt(list, index);
    if (index >= list.count) {
        if (!slot || index > list.count) {
            if (!backSlots(list, index))
                return 1;
            slot = slotAt(list, index);
        }
        list.count = index + 1;
    }
    copyElement(list, slot, element);
    return 0;
}

uint32_t insert(VxList &list, int32_t index, const void *element)
{
    if (index == -1)
        index = list.count;
    if (index < 0)
        return 1;
    int32_t last = std::max(index, list.count);
    if (!makeRoom(list, last, last >= list.capacity ? slotsToAdd(list, index) : 0))
        return 1;
    if (index < list.count)
        moveElements(list, index, index + 1, list.count - index);
    copyElement(list, slotAt(list, index), element);
    list.count = last + 1;
    return 0;
}

/** The first page becomes the one block. */
void turnIntoBlock(VxList &list)
{
    void *first = std::exchange(pagesOf(list).pages[0], nullptr);
    int32_t elements = elementsPerPage(list);
    discard(list);
    list.data = first;
    list.capacity = elements;
    list.pageLevel = 0;
}

uint32_t truncate(VxList &list, int32_t n)
{
    list.count = n;
    if (list.pageLevel == 0)
        return 0;
    if (list.pageLevel == 1 && n < list.perPage) {
        turnIntoBlock(list);
        return 0;
    }
    int64_t kept = pagesFor(list, n);
    removePages(list, kept, pagesFor(list, list.capacity));
    int64_t backed = kept * elementsPerPage(list);
    if (list.pageLevel == 2)
        backed = (kept + list.dirSlots - 1) / list.dirSlots * list.dirSlots * elementsPerPage(list);
    if (list.pageLevel == 1 || backed < list.capacity)
        list.capacity = static_cast<int32_t>(backed);
    return 0;
}

/** More slots, at the level of pages that a list of so many is made with. */
uint32_t growTo(VxList &list, int32_t capacity)
{
    int32_t level = pageLevelFor(list.elemSize, capacity);
    if (level < 0)
        return 1;
    if (list.pageLevel == 0 && level > 0)
        return turnIntoPages(list, level, capacity);
    return grow(list, capacity - list.capacity);
}

uint32_t append(VxList &list, VxList &source)
{
    int64_t needed = int64_t{list.count} + source.count;
    if (needed > INT32_MAX)
        return 1;
    auto count = static_cast<int32_t>(needed);
    if (!makeRoom(list, count - 1, 0) || (count > list.capacity && growTo(list, count)))
        return 1;
    copyElements(source, list, list.count, source.count);
    list.count = count;
    source.count = 0;
    return 0;
}

}

const Layout arrayLayout = {
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

namespace {

/** The record in front of its slots, which are not set. */
VxList *recordBefore(void *block, int32_t elemSize, int32_t capacity, int32_t increment) noexcept
{
    auto list = new (block) VxList{};
    list->layout = array;
    list->elemSize = elemSize;
    list->capacity = capacity;
    list->increment = increment;
    list->dirSlots = VgPageSize / static_cast<int32_t>(sizeof(void *));
    list->data = list + 1;
    list->order = reinterpret_cast<VxLnkNode *>(list);
    return list;
}

}

VxList *makeSmallArray(void *block, int32_t elemSize, int32_t capacity, int32_t increment) noexcept
{
    VxList *list = recordBefore(block, elemSize, capacity, increment);
    std::memset(list->data, 0, static_cast<size_t>(capacity) * elementBytes(*list));
    return list;
}

VxList *newSmallArray(int32_t elemSize, int32_t capacity, int32_t increment)
{
    char *block = allocate<char>(smallArrayBytes(elemSize, capacity)).release();
    return block ? makeSmallArray(block, elemSize, capacity, increment) : nullptr;
}

VxList *newSmallArrayOf(int32_t elemSize, const void *elements, int32_t n, int32_t increment)
{
    char *block = allocate<char>(smallArrayBytes(elemSize, n)).release();
    if (!block)
        return nullptr;
    VxList *list = recordBefore(block, elemSize, n, increment);
    copyBytes(list->data, elements, n * elemSize);
    list->count = n;
    return list;
}

}

using namespace vx::containers;

uint32_t VxMkArr(int32_t kind, int32_t elemSize, int32_t capacity, int32_t increment, void *, void **made)
{
    constexpr int32_t errorElementSize = 3;
    if (!made)
        return 1;
    *made = nullptr;
    if (kind != array)
        return 1;
    if (elemSize < 1) {
        VxErrInt(errorElementSize, elemSize);
        return 1;
    }
    Block<VxList> list = allocateZero<VxList>(1);
    if (!list)
        return 1;
    list->layout = array;
    list->elemSize = elemSize;
    list->capacity = std::max(capacity, 1);
    list->increment = std::max(increment, 1);
    list->dirSlots = VgPageSize / static_cast<int32_t>(sizeof(void *));
    list->data = allocateZero<char>(int64_t{list->capacity} * elemSize).release();
    if (!list->data)
        return 1;
    *made = list.release();
    return 0;
}

uint32_t VxResizeArr(VxList *list, int32_t extra)
{
    if (!list || list->layout != array || list->pageLevel != 0 || extra < 0 ||
        extra > INT32_MAX - list->capacity)
        return 1;
    return extra == 0 ? 0 : growBlock(*list, extra);
}
