#pragma once

// A 16-way digital trie over 32-bit keys, lowest nibble first.
//
// A cell is a branch of 16 cells, or a bucket of at most 6 nodes in any order.
// A full bucket becomes a branch before its seventh node comes; branches are
// not merged back. At most 8 levels of branches.
//
// The upper levels are one table, as far as they are full: the lowest nibbles
// of a key, which would lead through its levels, are the index of a cell.
//
// Nodes, buckets and branches come from chunks of the trie's own. A bucket
// holds copies of its nodes' keys, so that a search touches no node; a bucket
// of one node is that node. A node's element lies right behind it, or in the
// gap behind its key where it fits; all nodes form a circle in the order they
// came.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>

#include "containers/block_pool.h"
#include "vx/queue.h"

namespace vx::containers {

class KeyTrie {
public:
    explicit KeyTrie(size_t elementBytes) noexcept;
    ~KeyTrie() { clear(); }

    /** The node of a key, or null. */
    VxLnkNode *find(int32_t key) const noexcept
    {
        auto rest = static_cast<uint32_t>(key);
        Cell cell = table_[rest & mask_];
        for (rest >>= shift_; isBranch(cell); rest >>= 4)
            cell = branch(cell)->child[rest & 15];
        return nodeIn(cell, key);
    }

    /** A node's element. */
    void *elementOf(VxLnkNode *node) const noexcept { return reinterpret_cast<char *>(node) + elementAt_; }

    struct Entry {
        VxLnkNode *node; ///< null for want of memory, no key has then come or gone
        bool made;       ///< the key was absent: the element is to be set
    };

    /** The node of a key, made when the key is absent. */
    Entry at(int32_t key)
    {
        for (;;) {
            uint32_t shift = 0;
            Cell *cell = cellFor(key, shift);
            if (VxLnkNode *known = nodeIn(*cell, key))
                return {known, false};
            if (hasRoom(*cell))
                return {addNode(*cell, key), true};
            if (!makeRoom(key))
                return {nullptr, false};
        }
    }

    /** Remove a key; false when it is absent. */
    bool remove(int32_t key) noexcept;

    void clear() noexcept;

    /** The oldest node of the circle, or null. */
    VxLnkNode *chain() const noexcept { return chain_; }

private:
    // A cell is one word, an address with a tag in its four lowest bits: 1 for
    // a branch, else twice the number of nodes.
    using Cell = uintptr_t;

    static constexpr uint32_t bucketSize = 6;
    static constexpr Cell branchTag = 1;
    static constexpr Cell tagBits = 15;

    struct Branch {
        Cell child[16];
    };

    struct alignas(16) Bucket {
        /** Four keys, compared at once. */
        using Keys [[gnu::vector_size(16)]] = int32_t;
        using Halves [[gnu::vector_size(16)]] = uint64_t;

        Keys keys[2]; ///< places behind the count hold anything
        VxLnkNode *nodes[bucketSize];

        int32_t keyAt(uint32_t place) const noexcept { return keys[place / 4][place % 4]; }
        /** Said to be there, so that who only asks whether a key is known does not read it. */
        VxLnkNode *nodeAt(uint32_t place) const noexcept
        {
            if (!nodes[place])
                __builtin_unreachable();
            return nodes[place];
        }
        void put(uint32_t place, int32_t key, VxLnkNode *node) noexcept
        {
            keys[place / 4][place % 4] = key;
            nodes[place] = node;
        }

        /** The first place with this key, or one behind all. */
        uint32_t placeOf(int32_t key) const noexcept
        {
            Keys same = ((keys[0] == key) & Keys{1, 2, 4, 8}) | ((keys[1] == key) & Keys{16, 32, 64, 128});
            auto halves = reinterpret_cast<Halves>(same);
            uint64_t places = halves[0] | halves[1];
            return static_cast<uint32_t>(std::countr_zero(places | places >> 32));
        }
    };

    static bool isBranch(Cell cell) noexcept { return cell & branchTag; }
    static uint32_t countOf(Cell cell) noexcept { return static_cast<uint32_t>(cell & tagBits) / 2; }
    static Branch *branch(Cell cell) noexcept { return reinterpret_cast<Branch *>(cell - branchTag); }
    static Bucket *bucket(Cell cell) noexcept { return reinterpret_cast<Bucket *>(cell & ~tagBits); }
    static VxLnkNode *single(Cell cell) noexcept { return reinterpret_cast<VxLnkNode *>(cell & ~tagBits); }
    static Cell cellOf(const void *block, uint32_t count) noexcept
    {
        return reinterpret_cast<Cell>(block) + 2 * Cell{count};
    }

    /** The node of a key in its bucket, or null. */
    static VxLnkNode *nodeIn(Cell cell, int32_t key) noexcept
    {
        uint32_t count = countOf(cell);
        if (count > 1) {
            const Bucket &several = *bucket(cell);
            uint32_t at = several.placeOf(key);
            return at < count ? several.nodeAt(at) : nullptr;
        }
        VxLnkNode *one = single(cell);
        return one && one->key == key ? one : nullptr;
    }

    /** The nibble of a key that stands at a shift. */
    static uint32_t nibble(int32_t key, uint32_t shift) noexcept
    {
        return static_cast<uint32_t>(key) >> shift & 15;
    }

    /** The bucket where a key belongs, and the position of the nibble that would part it. */
    Cell *cellFor(int32_t key, uint32_t &shift) noexcept
    {
        Cell *cell = &table_[static_cast<uint32_t>(key) & mask_];
        shift = shift_;
        for (; isBranch(*cell); shift += 4)
            cell = &branch(*cell)->child[nibble(key, shift)];
        return cell;
    }

    /** True when a node can be added to a bucket as everything stands. */
    bool hasRoom(Cell cell) const noexcept
    {
        uint32_t count = countOf(cell);
        return count_ < widenAt_ && count < bucketSize && nodes_.isReady() &&
               (count != 1 || buckets_.isReady());
    }

    /** A node for an absent key, the circle's last, in a bucket that has room; its element is not set. */
    VxLnkNode *addNode(Cell &cell, int32_t key) noexcept
    {
        auto node = static_cast<VxLnkNode *>(nodes_.takeReady());
        VxLnkNode *first = chain_ ? chain_ : node;
        VxLnkNode *last = chain_ ? chain_->chainPrev : node;
        new (node) VxLnkNode{key, nullptr, nullptr, first, last, elementOf(node)};
        last->chainNext = first->chainPrev = node;
        chain_ = first;
        put(cell, key, node);
        ++count_;
        return node;
    }

    /** Add a node to a bucket that is not full; the block of a bucket must be ready when it has one node. */
    void put(Cell &cell, int32_t key, VxLnkNode *node) noexcept
    {
        uint32_t count = countOf(cell);
        if (count == 0) {
            cell = cellOf(node, 1);
            return;
        }
        Bucket *several = bucket(cell);
        if (count == 1) {
            several = new (buckets_.takeReady()) Bucket;
            several->keys[0] = several->keys[1] = Bucket::Keys{};
            several->put(0, single(cell)->key, single(cell));
        }
        several->put(count, key, node);
        cell = cellOf(several, count + 1);
    }

    bool makeRoom(int32_t key);
    bool widen();
    bool spread(Cell cell, Cell *first);
    void takeBack(const Cell *wide, uint32_t cells) noexcept;
    void giveBackBlock(Cell cell) noexcept;
    void giveBackTable() noexcept;
    bool add(Cell &cell, int32_t key, VxLnkNode *node);
    bool split(Cell &cell, uint32_t shift);
    VxLnkNode *takeFrom(Cell &cell, int32_t key) noexcept;

    static constexpr uint32_t widest = 20;       ///< bits of an index
    static constexpr uint32_t fewestToWiden = 8; ///< nodes: half as many as there will be cells

    Cell root_ = 0;
    Cell *table_ = &root_;
    uint32_t mask_ = 0;
    uint32_t shift_ = 0;               ///< bits of an index
    uint32_t count_ = 0;               ///< nodes
    uint32_t widenAt_ = fewestToWiden; ///< nodes, at the next of which the table is to be widened
    VxLnkNode *chain_ = nullptr;
    size_t elementAt_; ///< in a node's block
    BlockPool nodes_;
    BlockPool buckets_;
    BlockPool branches_;
};

}
