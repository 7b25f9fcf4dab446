// Sorting lists, in place and through an array of indices, and searching them.

#include <algorithm>
#include <memory>
#include <utility>

#include "containers/memory.h"
#include "containers/quicksort.h"
#include "containers/slots.h"

namespace vx::containers {

namespace {

/** Elements of one block; a size known when compiled moves faster than a call to memmove. */
template <size_t Bytes> class BlockSlots {
public:
    BlockSlots(void *first, size_t bytes, VxCmpFn compare) noexcept
        : first_(static_cast<char *>(first)), bytes_(Bytes ? Bytes : bytes), compare_(compare)
    {
    }

    bool before(int32_t i, int32_t j) const { return compare_(at(i), at(j)) < 0; }

    void exchange(int32_t i, int32_t j) const
    {
        if constexpr (Bytes != 0) {
            char held[Bytes];
            std::memcpy(held, at(i), Bytes);
            std::memmove(at(i), at(j), Bytes);
            std::memcpy(at(j), held, Bytes);
        } else if (i != j) {
            std::swap_ranges(at(i), at(i) + bytes_, at(j));
        }
    }

    void lift(int32_t i, int32_t j) const
    {
        if constexpr (Bytes != 0) {
            char held[Bytes];
            std::memcpy(held, at(i), Bytes);
            for (; i > j; --i)
                std::memcpy(at(i), at(i - 1), Bytes);
            std::memcpy(at(j), held, Bytes);
        } else {
            std::rotate(at(j), at(i), at(i) + bytes_);
        }
    }

private:
    char *at(int32_t i) const noexcept { return first_ + static_cast<size_t>(i) * (Bytes ? Bytes : bytes_); }

    char *first_;
    size_t bytes_;
    VxCmpFn compare_;
};

/** Elements in pages. */
class PageSlots {
public:
    PageSlots(VxList &list, VxCmpFn compare) noexcept : list_(&list), compare_(compare) {}

    bool before(int32_t i, int32_t j) const { return compare_(slotAt(*list_, i), slotAt(*list_, j)) < 0; }

    void exchange(int32_t i, int32_t j) const
    {
        char *slot = slotAt(*list_, i);
        if (i != j)
            std::swap_ranges(slot, slot + list_->elemSize, slotAt(*list_, j));
    }

    void lift(int32_t i, int32_t j) const
    {
        for (; i > j; --i)
            exchange(i, i - 1);
    }

private:
    VxList *list_;
    VxCmpFn compare_;
};

const void *elementOf(const void *pointer) noexcept
{
    return pointer;
}

/** An element and its index. */
struct Indexed {
    int32_t index;
    const void *element;
};

const void *elementOf(const Indexed &pair) noexcept
{
    return pair.element;
}

/** Things that point to elements; they are moved, the elements stay. */
template <typename Pointer> class PointerSlots {
public:
    PointerSlots(Pointer *first, VxCmpFn compare) noexcept : first_(first), compare_(compare) {}

    bool before(int32_t i, int32_t j) const
    {
        return compare_(elementOf(first_[i]), elementOf(first_[j])) < 0;
    }
    void exchange(int32_t i, int32_t j) const { std::swap(first_[i], first_[j]); }
    void lift(int32_t i, int32_t j) const { std::rotate(first_ + j, first_ + i, first_ + i + 1); }

private:
    Pointer *first_;
    VxCmpFn compare_;
};

template <size_t Bytes> void sortRecords(void *first, size_t bytes, int32_t n, VxCmpFn compare)
{
    Quicksort(BlockSlots<Bytes>(first, bytes, compare))(n);
}

void sortBlock(void *first, size_t bytes, int32_t n, VxCmpFn compare)
{
    switch (bytes) {
    case 4: return sortRecords<4>(first, bytes, n, compare);
    case 8: return sortRecords<8>(first, bytes, n, compare);
    case 16: return sortRecords<16>(first, bytes, n, compare);
    case 24: return sortRecords<24>(first, bytes, n, compare);
    case 32: return sortRecords<32>(first, bytes, n, compare);
    case 48: return sortRecords<48>(first, bytes, n, compare);
    case 64: return sortRecords<64>(first, bytes, n, compare);
    default: return sortRecords<0>(first, bytes, n, compare);
    }
}

/** In a block beside them, where there is memory: finding a slot costs more than moving its element. */
void sortPages(VxList &list, VxCmpFn compare)
{
    int64_t bytes = int64_t{list.count} * list.elemSize;
    void *beside = nullptr;
    if (bytes > INT32_MAX || VxMemAllocNoEmer(static_cast<int32_t>(bytes), &beside)) {
        Quicksort(PageSlots(list, compare))(list.count);
        return;
    }
    Block<> block(beside);
    VxList view;
    VxListWrapArr(list.elemSize, list.count, list.count, beside, &view);
    copyElements(list, view, 0, list.count);
    sortBlock(beside, elementBytes(list), list.count, compare);
    copyElements(view, list, 0, list.count);
}

/** Indices and elements in ascending order; null for want of memory. */
Block<Indexed> indexed(VxList &list)
{
    Block<Indexed> pairs = allocate<Indexed>(list.count);
    VxListIter iter;
    if (!pairs || VxListItrInit2(&list, 1, &iter))
        return {};
    Indexed *pair = pairs.get();
    void *element = nullptr;
    int32_t result = 0;
    while ((result = VxListItrPtr(&iter, &element)) == 0)
        *pair++ = {iter.index, element};
    return result < 0 ? std::move(pairs) : Block<Indexed>();
}

template <typename Sort> uint32_t sortedIndices(VxList *list, VxCmpFn compare, int32_t **order, Sort sort)
{
    if (!order)
        return 1;
    *order = nullptr;
    if (!layoutOf(list) || !compare)
        return 1;
    if (list->count < 1)
        return 0;
    Block<int32_t> indices = allocate<int32_t>(list->count);
    Block<Indexed> pairs = indices ? indexed(*list) : Block<Indexed>();
    if (!pairs)
        return 1;
    Indexed *first = pairs.get();
    sort(first, list->count);
    std::transform(first, first + list->count, indices.get(), [](const Indexed &pair) { return pair.index; });
    *order = indices.release();
    return 0;
}

/** The first match in ascending order. */
uint32_t searchAll(VxList &list, const void *key, VxCmpFn compare, int32_t &found, int32_t &index)
{
    VxListIter iter;
    if (VxListItrInit2(&list, 1, &iter))
        return 1;
    void *element = nullptr;
    int32_t result = 0;
    while ((result = VxListItrPtr(&iter, &element)) == 0) {
        if (compare(key, element) != 0)
            continue;
        found = 1;
        index = iter.index;
        return 0;
    }
    return result < 0 ? 0 : 1;
}

uint32_t searchOrder(VxList &list, const int32_t *order, const void *key, VxCmpFn compare, int32_t &found,
                     int32_t &index)
{
    int32_t low = 0;
    int32_t high = list.count - 1;
    int32_t mid = 0;
    int32_t result = 0;
    while (low <= high) {
        mid = low + (high - low) / 2;
        void *element = nullptr;
        if (VxListGetPtr(&list, order[mid], &element))
            return 1;
        result = compare(key, element);
        if (result == 0) {
            found = 1;
            index = order[mid];
            return 0;
        }
        if (result < 0)
            high = mid - 1;
        else
            low = mid + 1;
    }
    if (list.count == 1)
        index = 0;
    else if (mid > 0)
        index = result < 0 ? order[mid - 1] : order[mid];
    return 0;
}

}

}

using namespace vx::containers;

uint32_t VxListSort(VxList *list, VxCmpFn compare)
{
    if (!list || !compare)
        return 1;
    if (list->layout != array && list->layout != pointers && list->layout != wrapped)
        return 1;
    if (list->count < 2)
        return 0;
    if (list->layout == pointers)
        Quicksort(PointerSlots(static_cast<void **>(list->data), compare))(list->count);
    else if (list->pageLevel > 0)
        sortPages(*list, compare);
    else
        sortBlock(list->data, elementBytes(*list), list->count, compare);
    return 0;
}

uint32_t VxListSort2(VxList *list, VxCmpFn compare, int32_t **order)
{
    return sortedIndices(list, compare, order, [compare](Indexed *first, int32_t n) {
        Quicksort(PointerSlots(first, compare))(n);
    });
}

uint32_t VxListSort3(VxList *list, VxCmpFn compare, int32_t **order)
{
    return sortedIndices(list, compare, order, [compare](Indexed *first, int32_t n) {
        std::stable_sort(first, first + n, [compare](const Indexed &a, const Indexed &b) {
            return compare(a.element, b.element) < 0;
        });
    });
}

uint32_t VxListSrch(VxList *list, const int32_t *order, const void *key, VxCmpFn compare, int32_t *found,
                    int32_t *index)
{
    if (!found || !index)
        return 1;
    *found = 0;
    *index = -1;
    if (!layoutOf(list) || !compare)
        return 1;
    return order ? searchOrder(*list, order, key, compare, *found, *index)
                 : searchAll(*list, key, compare, *found, *index);
}
