#pragma once

// A 16-way digital trie over 32-bit keys, lowest nibble first.
//
// A cell is a branch of 16 cells, or a bucket: a chain of at most 6 nodes in
// ascending order of keys. A full bucket becomes a branch before its seventh
// node comes; branches are not merged back. At most 8 levels of branches.
//
// Nodes and branches come from chunks of the trie's own. A node's element lies
// right behind it, and all nodes form a circle in the order they came. Buckets
// are chained one way: who removes a node comes from its cell.

#include <cstddef>
#include <cstdint>

#include "containers/block_pool.h"
#include "vx/queue.h"

namespace vx::containers {

class KeyTrie {
public:
    explicit KeyTrie(size_t elementBytes) noexcept;

    /** The node of a key, or null. */
    VxLnkNode *find(int32_t key) const noexcept
    {
        auto rest = static_cast<uint32_t>(key);
        Cell cell = root_;
        for (; isBranch(cell); rest >>= 4)
            cell = branch(cell)->child[rest & 15];
        VxLnkNode *node = bucket(cell);
        while (node && node->key < key)
            node = node->next;
        return node && node->key == key ? node : nullptr;
    }

    /** A node's element. */
    static void *elementOf(VxLnkNode *node) noexcept { return node + 1; }

    /**
     * The node of a key, made when the key is absent: its element is then to
     * be set. Null for want of memory, the trie is then as it was.
     */
    VxLnkNode *at(int32_t key, bool &made);

    /** Remove a key; false when it is absent. */
    bool remove(int32_t key) noexcept;

    void clear() noexcept;

    /** The oldest node of the circle, or null. */
    VxLnkNode *chain() const noexcept { return chain_; }

private:
    // A cell is one word. A branch has the lowest bit set; a bucket's first
    // node has the number of nodes in the three bits above.
    using Cell = uintptr_t;

    static constexpr Cell branchBit = 1;
    static constexpr Cell oneNode = 2;
    static constexpr Cell countBits = 14;
    static constexpr Cell bucketSize = 6;

    struct Branch {
        Cell child[16];
    };

    static bool isBranch(Cell cell) noexcept { return cell & branchBit; }
    static Branch *branch(Cell cell) noexcept { return reinterpret_cast<Branch *>(cell - branchBit); }
    static VxLnkNode *bucket(Cell cell) noexcept { return reinterpret_cast<VxLnkNode *>(cell & ~countBits); }
    static Cell countOf(Cell cell) noexcept { return (cell & countBits) / oneNode; }
    static Cell bucketOf(const VxLnkNode *first, Cell count) noexcept
    {
        return reinterpret_cast<Cell>(first) + count * oneNode;
    }

    static void linkIntoBucket(Cell &cell, VxLnkNode *before, VxLnkNode *node) noexcept;
    Cell *bucketFor(int32_t key, uint32_t &shift) noexcept;
    bool split(Cell &cell, uint32_t shift);
    VxLnkNode *newNode(int32_t key);

    Cell root_ = 0;
    VxLnkNode *chain_ = nullptr;
    BlockPool nodes_;
    BlockPool branches_;
};

}
