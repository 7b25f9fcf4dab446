// The keyed layout: a map from 32-bit keys to elements.
//
// `data` is a KeyedStore, `order` the oldest node of the chain in which the
// storage-order walk goes. `capacity` is the highest key ever stored.

#include <algorithm>
#include <memory>

#include "containers/keyed_store.h"
#include "containers/layout.h"
#include "containers/memory.h"

namespace vx::containers {

namespace {

KeyedStore *newStore(VxList &list)
{
    Block<KeyedStore> block = allocate<KeyedStore>(1);
    if (block)
        list.data = std::construct_at(block.release(), elementBytes(list));
    return storeOf(list);
}

/** The store, made anew for a list whose storage was deleted; null for want of memory. */
inline KeyedStore *storeFor(VxList &list)
{
    return list.data ? storeOf(list) : newStore(list);
}

uint32_t make(VxList &list)
{
    list.capacity = 0;
    list.increment = 1;
    return storeFor(list) ? 0 : 1;
}

void discard(VxList &list)
{
    if (KeyedStore *store = storeOf(list)) {
        std::destroy_at(store);
        VxMemFree(&list.data);
    }
    list.order = nullptr;
    list.count = 0;
}

uint32_t reset(VxList &list)
{
    if (KeyedStore *store = storeOf(list)) {
        store->order.drop();
        store->trie.clear();
    }
    list.order = nullptr;
    list.count = 0;
    return 0;
}

uint32_t put(VxList &list, int32_t key, const void *element, bool replace)
{
    MadeElement stored = keyedElementMade(list, key);
    if (!stored.element)
        return 1;
    if (stored.made || replace)
        copyElement(list, stored.element, element);
    return 0;
}

uint32_t set(VxList &list, int32_t key, const void *element)
{
    return put(list, key, element, true);
}

uint32_t insert(VxList &list, int32_t key, const void *element)
{
    return put(list, key, element, false);
}

void *at(VxList &list, int32_t key)
{
    return keyedElement(list, key);
}

bool removeKey(VxList &list, int32_t key) noexcept
{
    KeyedStore *store = storeOf(list);
    if (!store || !store->trie.remove(key))
        return false;
    store->order.removed(key);
    list.order = store->trie.chain();
    --list.count;
    return true;
}

/** A gap in the keys ends the removal. */
uint32_t remove(VxList &list, int32_t first, int32_t last)
{
    int64_t key = first;
    while (key <= last && removeKey(list, static_cast<int32_t>(key)))
        ++key;
    return key > first ? 0 : 1;
}

uint32_t removeEqual(VxList &list, const void *element)
{
    VxLnkNode *node = list.order;
    for (int32_t left = list.count; left > 0; --left) {
        VxLnkNode *next = node->chainNext;
        if (equal(list, node->element, element))
            removeKey(list, node->key);
        node = next;
    }
    return 0;
}

uint32_t truncate(VxList &, int32_t)
{
    return 1;
}

uint32_t grow(VxList &, int32_t)
{
    return 0;
}

uint32_t append(VxList &, VxList &)
{
    return 1;
}

void reverse(VxList &) {}

int32_t smallestInChain(const VxList &list) noexcept
{
    const VxLnkNode *node = list.order;
    int32_t smallest = node->key;
    for (int32_t i = 1; i < list.count; ++i) {
        node = node->chainNext;
        smallest = std::min(smallest, node->key);
    }
    return smallest;
}

Range range(VxList &list)
{
    if (list.count < 1)
        return {0, 0};
    KeyedStore *store = storeOf(list);
    if (!store->order.make(list.order, list.count))
        return {smallestInChain(list), list.capacity};
    return {store->order.keyAt(store->order.notBelow(INT32_MIN)), list.capacity};
}

/** In the order in which the keys came. */
int32_t stepChain(VxListIter &iter, void **ptr)
{
    auto node = static_cast<VxLnkNode *>(iter.cursor);
    node = node ? node->chainNext : iter.list->order;
    if (!node || (iter.cursor && node == iter.list->order))
        return -1;
    iter.cursor = node;
    iter.index = node->key;
    *ptr = node->element;
    return 0;
}

// The cursor of an ordered walk is not a node, which might be removed, but its
// place in the order plus 1, a hint that is held against the key before use.

size_t placeOf(const void *cursor) noexcept
{
    return reinterpret_cast<uintptr_t>(cursor) - 1;
}

int32_t stepOrdered(VxListIter &iter, void **ptr)
{
    KeyedStore *store = storeOf(*iter.list);
    KeyOrder &order = store->order;
    if (!order.make(iter.list->order, iter.list->count))
        return 1;
    bool up = iter.direction == 1;
    size_t place = KeyOrder::none;
    if (!iter.cursor)
        place = up ? order.notBelow(iter.index) : order.notAbove(iter.index);
    else
        place = up ? order.above(iter.index, placeOf(iter.cursor))
                   : order.below(iter.index, placeOf(iter.cursor));
    if (place == KeyOrder::none)
        return -1;
    int32_t key = order.keyAt(place);
    if (up ? key > iter.bound : key < iter.bound)
        return -1;
    order.prefetch(place, up);
    iter.index = key;
    iter.cursor = reinterpret_cast<void *>(place + 1);
    *ptr = order.elementAt(place);
    return 0;
}

int32_t step(VxListIter &iter, void **ptr)
{
    if (iter.list->count < 1)
        return -1;
    return iter.direction == 0 ? stepChain(iter, ptr) : stepOrdered(iter, ptr);
}

}

MadeElement keyedElementMade(VxList &list, int32_t key)
{
    KeyedStore *store = storeFor(list);
    auto [node, made] = store ? store->trie.at(key) : KeyTrie::Entry{};
    if (!node)
        return {nullptr, false};
    if (made) {
        ++list.count;
        list.capacity = std::max(list.capacity, key);
        list.order = store->trie.chain();
        store->order.added(node);
    }
    return {store->trie.elementOf(node), made};
}

const Layout keyedLayout = {
    .make = make,
    .discard = discard,
    .reset = reset,
    .set = set,
    .insert = insert,
    .at = at,
    .remove = remove,
    .removeEqual = removeEqual,
    .truncate = truncate,
    .grow = grow,
    .append = append,
    .reverse = reverse,
    .range = range,
    .step = step,
};

}
