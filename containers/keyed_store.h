#pragma once

// What `data` of a keyed list points to.

#include "containers/key_order.h"
#include "containers/key_trie.h"

namespace vx::containers {

struct KeyedStore {
    explicit KeyedStore(size_t elementBytes) noexcept : trie(elementBytes) {}

    KeyTrie trie;
    KeyOrder order;
};

inline KeyedStore *storeOf(const VxList &list) noexcept
{
    return static_cast<KeyedStore *>(list.data);
}

/** The node of a key, or null. */
inline VxLnkNode *keyedNode(const VxList &list, int32_t key) noexcept
{
    const KeyedStore *store = storeOf(list);
    return store ? store->trie.find(key) : nullptr;
}

/** The element of a key, or null. */
inline void *keyedElement(const VxList &list, int32_t key) noexcept
{
    VxLnkNode *node = keyedNode(list, key);
    return node ? storeOf(list)->trie.elementOf(node) : nullptr;
}

struct MadeElement {
    void *element; ///< null for want of memory
    bool made;     ///< the key was absent: the element is to be set
};

/** The element of a key, made when the key is absent. */
MadeElement keyedElementMade(VxList &list, int32_t key);

}
