// The trie of the keyed layout.

#include "containers/key_trie.h"

#include <new>

#include "vx/mem.h"

namespace vx::containers {

namespace {

constexpr size_t cacheLine = 64;
constexpr size_t tagAlignment = 16; ///< leaves the bits of a cell's tag free

}

KeyTrie::KeyTrie(size_t elementBytes) noexcept
    : nodes_(sizeof(VxLnkNode) + elementBytes, tagAlignment), buckets_(sizeof(Bucket), tagAlignment),
      branches_(sizeof(Branch), cacheLine)
{
}

/** The bucket where a key belongs, and the position of the nibble that would part it. */
inline KeyTrie::Cell *KeyTrie::cellFor(int32_t key, uint32_t &shift) noexcept
{
    Cell *cell = &table_[static_cast<uint32_t>(key) & mask_];
    shift = shift_;
    for (; isBranch(*cell); shift += 4)
        cell = &branch(*cell)->child[nibble(key, shift)];
    return cell;
}

VxLnkNode *KeyTrie::at(int32_t key, bool &made)
{
    made = false;
    uint32_t shift = 0;
    Cell *cell = cellFor(key, shift);
    if (VxLnkNode *known = nodeIn(*cell, key))
        return known;
    if (count_ >= widenAt_ && shift_ < widest) {
        if (!widen())
            return nullptr;
        cell = cellFor(key, shift);
    }
    for (; countOf(*cell) == bucketSize; cell = cellFor(key, shift))
        if (!split(*cell, shift))
            return nullptr;
    VxLnkNode *node = newNode(key);
    if (!node)
        return nullptr;
    if (!add(*cell, key, node)) {
        nodes_.giveBack(node);
        return nullptr;
    }
    linkIntoChain(node);
    ++count_;
    made = true;
    return node;
}

/** Make the next level a part of the table. It stays as it is where there is no memory for a larger one. */
bool KeyTrie::widen()
{
    uint32_t cells = mask_ + 1;
    auto bytes = static_cast<int32_t>(cells * 16 * sizeof(Cell));
    void *block = nullptr;
    if (VxMemAllocNoEmer(bytes, &block)) {
        widenAt_ *= 2;
        return true;
    }
    auto wide = static_cast<Cell *>(VxMemZero(block, bytes));
    for (uint32_t done = 0; done < cells; ++done) {
        if (spread(table_[done], wide + done))
            continue;
        takeBack(wide, done + 1);
        VxMemFree(&block);
        return false;
    }
    for (uint32_t i = 0; i < cells; ++i)
        giveBackBlock(table_[i]);
    giveBackTable();
    table_ = wide;
    mask_ = cells * 16 - 1;
    shift_ += 4;
    widenAt_ = cells * 16 * 8;
    return true;
}

/** Share out what a cell of the table holds to the 16 cells that take its place. */
bool KeyTrie::spread(Cell cell, Cell *first)
{
    uint32_t apart = mask_ + 1;
    if (isBranch(cell)) {
        for (uint32_t i = 0; i < 16; ++i)
            first[i * apart] = branch(cell)->child[i];
        return true;
    }
    uint32_t count = countOf(cell);
    if (count == 1)
        first[nibble(single(cell)->key, shift_) * apart] = cell;
    for (uint32_t i = 0; count > 1 && i < count; ++i) {
        int32_t key = bucket(cell)->keyAt(i);
        if (!add(first[nibble(key, shift_) * apart], key, bucket(cell)->nodes[i]))
            return false;
    }
    return true;
}

/** Give back the buckets that spread() made for the first cells of the table. */
void KeyTrie::takeBack(const Cell *wide, uint32_t cells) noexcept
{
    for (uint32_t i = 0; i < cells; ++i)
        for (uint32_t j = 0; j < 16 && !isBranch(table_[i]); ++j)
            giveBackBlock(wide[i + j * (mask_ + 1)]);
}

/** Give back a cell's branch or bucket, whose nodes are elsewhere. */
void KeyTrie::giveBackBlock(Cell cell) noexcept
{
    if (isBranch(cell))
        branches_.giveBack(branch(cell));
    else if (countOf(cell) > 1)
        buckets_.giveBack(bucket(cell));
}

void KeyTrie::giveBackTable() noexcept
{
    void *table = table_ == &root_ ? nullptr : table_;
    VxMemFree(&table);
}

/** Add a node to a bucket that is not full. */
inline bool KeyTrie::add(Cell &cell, int32_t key, VxLnkNode *node)
{
    uint32_t count = countOf(cell);
    if (count == 0) {
        cell = cellOf(node, 1);
        return true;
    }
    Bucket *several = bucket(cell);
    if (count == 1) {
        void *block = buckets_.take();
        if (!block)
            return false;
        several = new (block) Bucket;
        several->keys[0] = several->keys[1] = Bucket::Keys{};
        several->put(0, single(cell)->key, single(cell));
    }
    several->put(count, key, node);
    cell = cellOf(several, count + 1);
    return true;
}

/** Turn a full bucket into a branch, its nodes shared out by the nibble at `shift`. */
bool KeyTrie::split(Cell &cell, uint32_t shift)
{
    void *block = branches_.take();
    if (!block)
        return false;
    auto made = new (block) Branch{};
    Bucket *full = bucket(cell);
    bool complete = true;
    for (uint32_t i = 0; i < bucketSize && complete; ++i) {
        int32_t key = full->keyAt(i);
        complete = add(made->child[nibble(key, shift)], key, full->nodes[i]);
    }
    if (complete) {
        cell = reinterpret_cast<Cell>(made) + branchTag;
        buckets_.giveBack(full);
        return true;
    }
    for (Cell child : made->child)
        giveBackBlock(child);
    branches_.giveBack(made);
    return false;
}

/** A node in no bucket and no chain; its element is not set. */
VxLnkNode *KeyTrie::newNode(int32_t key)
{
    void *block = nodes_.take();
    if (!block)
        return nullptr;
    auto node = new (block) VxLnkNode{};
    node->key = key;
    node->element = elementOf(node);
    return node;
}

/** The node becomes the circle's last. */
void KeyTrie::linkIntoChain(VxLnkNode *node) noexcept
{
    if (!chain_)
        chain_ = node->chainPrev = node;
    node->chainNext = chain_;
    node->chainPrev = chain_->chainPrev;
    node->chainPrev->chainNext = node;
    chain_->chainPrev = node;
}

/** Take a key's node out of its bucket; null when it is absent. */
inline VxLnkNode *KeyTrie::takeFrom(Cell &cell, int32_t key) noexcept
{
    uint32_t count = countOf(cell);
    if (count < 2) {
        VxLnkNode *one = single(cell);
        if (!one || one->key != key)
            return nullptr;
        cell = 0;
        return one;
    }
    Bucket *several = bucket(cell);
    uint32_t at = several->placeOf(key);
    if (at >= count)
        return nullptr;
    VxLnkNode *node = several->nodes[at];
    several->put(at, several->keyAt(count - 1), several->nodes[count - 1]);
    cell = cellOf(several, count - 1);
    if (count == 2) {
        cell = cellOf(several->nodes[0], 1);
        buckets_.giveBack(several);
    }
    return node;
}

bool KeyTrie::remove(int32_t key) noexcept
{
    uint32_t shift = 0;
    VxLnkNode *node = takeFrom(*cellFor(key, shift), key);
    if (!node)
        return false;
    node->chainPrev->chainNext = node->chainNext;
    node->chainNext->chainPrev = node->chainPrev;
    if (chain_ == node)
        chain_ = node->chainNext != node ? node->chainNext : nullptr;
    nodes_.giveBack(node);
    --count_;
    return true;
}

void KeyTrie::clear() noexcept
{
    giveBackTable();
    table_ = &root_;
    root_ = 0;
    mask_ = shift_ = count_ = 0;
    widenAt_ = fewestToWiden;
    chain_ = nullptr;
    nodes_.freeAll();
    buckets_.freeAll();
    branches_.freeAll();
}

}
