// The trie of the keyed layout.

#include "containers/key_trie.h"

#include <algorithm>

#include "vx/mem.h"

namespace vx::containers {

namespace {

constexpr size_t cacheLine = 64;
constexpr size_t tagAlignment = 16; ///< leaves the bits of a cell's tag free

constexpr size_t gapBegin = offsetof(VxLnkNode, key) + sizeof(VxLnkNode::key);
constexpr size_t gapEnd = offsetof(VxLnkNode, next);

}

KeyTrie::KeyTrie(size_t elementBytes) noexcept
    : elementAt_(gapBegin + elementBytes <= gapEnd ? gapBegin : sizeof(VxLnkNode)),
      nodes_(std::max(sizeof(VxLnkNode), elementAt_ + elementBytes), tagAlignment),
      buckets_(sizeof(Bucket), tagAlignment), branches_(sizeof(Branch), cacheLine)
{
}

/** Let hasRoom() hold where a key belongs; false for want of memory. */
bool KeyTrie::makeRoom(int32_t key)
{
    if (count_ >= widenAt_ && !widen())
        return false;
    uint32_t shift = 0;
    Cell *cell = cellFor(key, shift);
    for (; countOf(*cell) == bucketSize; cell = cellFor(key, shift))
        if (!split(*cell, shift))
            return false;
    return nodes_.prepare() && (countOf(*cell) != 1 || buckets_.prepare());
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
    widenAt_ = shift_ < widest ? cells * 16 * 8 : UINT32_MAX;
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

/** Add a node to a bucket that is not full; false for want of memory. */
inline bool KeyTrie::add(Cell &cell, int32_t key, VxLnkNode *node)
{
    if (countOf(cell) == 1 && !buckets_.prepare())
        return false;
    put(cell, key, node);
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
