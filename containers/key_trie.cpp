// The trie of the keyed layout.

#include "containers/key_trie.h"

#include <new>

namespace vx::containers {

namespace {

constexpr size_t cacheLine = 64;

/** Chain a node into its bucket behind `before`, or as the first. */
void linkIntoBucket(uintptr_t &cell, VxLnkNode *before, VxLnkNode *node) noexcept
{
    auto first = reinterpret_cast<VxLnkNode *>(cell);
    node->prev = before;
    node->next = before ? before->next : first;
    if (node->next)
        node->next->prev = node;
    if (before)
        before->next = node;
    else
        cell = reinterpret_cast<uintptr_t>(node);
}

}

KeyTrie::KeyTrie(size_t elementBytes) noexcept
    : nodes_(sizeof(VxLnkNode) + elementBytes, alignof(std::max_align_t)), branches_(sizeof(Branch), cacheLine)
{
}

VxLnkNode *KeyTrie::at(int32_t key, bool &made)
{
    made = false;
    Cell *cell = &root_;
    uint32_t shift = 0;
    for (;;) {
        for (; isBranch(*cell); shift += 4)
            cell = &branch(*cell)->child[static_cast<uint32_t>(key) >> shift & 15];
        VxLnkNode *before = nullptr;
        VxLnkNode *node = bucket(*cell);
        int passed = 0;
        for (; node && node->key < key; ++passed, node = node->next)
            before = node;
        if (node && node->key == key)
            return node;
        for (; node; node = node->next)
            ++passed;
        if (passed < bucketSize) {
            VxLnkNode *added = newNode(key);
            if (!added)
                return nullptr;
            linkIntoBucket(*cell, before, added);
            made = true;
            return added;
        }
        if (!split(*cell, shift))
            return nullptr;
    }
}

/** Turn a bucket into a branch, its nodes shared out by the nibble at `shift`. */
bool KeyTrie::split(Cell &cell, uint32_t shift)
{
    void *block = branches_.take();
    if (!block)
        return false;
    auto made = new (block) Branch{};
    VxLnkNode *last[16] = {};
    VxLnkNode *next = nullptr;
    for (VxLnkNode *node = bucket(cell); node; node = next) {
        next = node->next;
        uint32_t nibble = static_cast<uint32_t>(node->key) >> shift & 15;
        linkIntoBucket(made->child[nibble], last[nibble], node);
        last[nibble] = node;
    }
    cell = reinterpret_cast<Cell>(made) + 1;
    return true;
}

/** A node at the end of the circle, in no bucket yet. */
VxLnkNode *KeyTrie::newNode(int32_t key)
{
    void *block = nodes_.take();
    if (!block)
        return nullptr;
    auto node = new (block) VxLnkNode;
    node->key = key;
    node->element = node + 1;
    if (!chain_)
        chain_ = node->chainPrev = node;
    node->chainNext = chain_;
    node->chainPrev = chain_->chainPrev;
    node->chainPrev->chainNext = node;
    chain_->chainPrev = node;
    return node;
}

void KeyTrie::remove(VxLnkNode *node) noexcept
{
    if (node->next)
        node->next->prev = node->prev;
    if (node->prev) {
        node->prev->next = node->next;
    } else {
        Cell *cell = &root_;
        for (auto rest = static_cast<uint32_t>(node->key); isBranch(*cell); rest >>= 4)
            cell = &branch(*cell)->child[rest & 15];
        *cell = reinterpret_cast<Cell>(node->next);
    }
    node->chainPrev->chainNext = node->chainNext;
    node->chainNext->chainPrev = node->chainPrev;
    if (chain_ == node)
        chain_ = node->chainNext != node ? node->chainNext : nullptr;
    nodes_.giveBack(node);
}

void KeyTrie::clear() noexcept
{
    root_ = 0;
    chain_ = nullptr;
    nodes_.freeAll();
    branches_.freeAll();
}

}
