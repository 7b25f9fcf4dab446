// The trie of the keyed layout.

#include "containers/key_trie.h"

#include <new>

namespace vx::containers {

namespace {

constexpr size_t cacheLine = 64;

}

KeyTrie::KeyTrie(size_t elementBytes) noexcept
    : nodes_(sizeof(VxLnkNode) + elementBytes, alignof(std::max_align_t)), branches_(sizeof(Branch), cacheLine)
{
}

/** Chain a node into its bucket behind `before`, or as the first. */
inline void KeyTrie::linkIntoBucket(Cell &cell, VxLnkNode *before, VxLnkNode *node) noexcept
{
    node->next = before ? before->next : bucket(cell);
    if (before)
        before->next = node;
    cell = bucketOf(before ? bucket(cell) : node, countOf(cell) + 1);
}

/** The bucket where a key belongs, and the position of the nibble that parts it. */
inline KeyTrie::Cell *KeyTrie::bucketFor(int32_t key, uint32_t &shift) noexcept
{
    Cell *cell = &root_;
    shift = 0;
    for (; isBranch(*cell); shift += 4)
        cell = &branch(*cell)->child[static_cast<uint32_t>(key) >> shift & 15];
    return cell;
}

VxLnkNode *KeyTrie::at(int32_t key, bool &made)
{
    for (;;) {
        uint32_t shift = 0;
        Cell *cell = bucketFor(key, shift);
        VxLnkNode *before = nullptr;
        VxLnkNode *node = bucket(*cell);
        for (; node && node->key < key; node = node->next)
            before = node;
        made = !node || node->key != key;
        if (!made)
            return node;
        if (countOf(*cell) < bucketSize) {
            VxLnkNode *added = newNode(key);
            if (added)
                linkIntoBucket(*cell, before, added);
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
        node->next = nullptr;
        linkIntoBucket(made->child[nibble], last[nibble], node);
        last[nibble] = node;
    }
    cell = reinterpret_cast<Cell>(made) + branchBit;
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
    node->prev = nullptr;
    node->element = node + 1;
    if (!chain_)
        chain_ = node->chainPrev = node;
    node->chainNext = chain_;
    node->chainPrev = chain_->chainPrev;
    node->chainPrev->chainNext = node;
    chain_->chainPrev = node;
    return node;
}

bool KeyTrie::remove(int32_t key) noexcept
{
    uint32_t shift = 0;
    Cell *cell = bucketFor(key, shift);
    VxLnkNode *before = nullptr;
    VxLnkNode *node = bucket(*cell);
    for (; node && node->key < key; node = node->next)
        before = node;
    if (!node || node->key != key)
        return false;
    if (before)
        before->next = node->next;
    *cell = node->next || before ? bucketOf(before ? bucket(*cell) : node->next, countOf(*cell) - 1) : 0;
    node->chainPrev->chainNext = node->chainNext;
    node->chainNext->chainPrev = node->chainPrev;
    if (chain_ == node)
        chain_ = node->chainNext != node ? node->chainNext : nullptr;
    nodes_.giveBack(node);
    return true;
}

void KeyTrie::clear() noexcept
{
    root_ = 0;
    chain_ = nullptr;
    nodes_.freeAll();
    branches_.freeAll();
}

}
