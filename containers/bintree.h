#pragma once

// Cells of binary trees.

#include "vx/queue.h"

namespace vx::containers {

/** A cell without node and children; null for want of memory. */
VxBintree *newCell();

void freeCell(VxBintree *cell) noexcept;

/** The way from a root to where a node belongs. */
class TreePath {
public:
    TreePath(VxBintree *root, VxCmpFn compare, const void *element) noexcept;

    /** The comparator gave 2: the element has no place in the tree. */
    bool rejected() const noexcept { return rejected_; }

    /** The tree is an empty cell, which takes the node itself. */
    bool atRoot() const noexcept { return !rejected_ && depth_ == 0; }

    void attachToRoot(VxLnkNode *node) noexcept;

    /** Hang a cell below the last one of the way. */
    void attach(VxBintree *cell, VxLnkNode *node) noexcept;

private:
    // The height of a balanced tree of 2^31 cells is at most 45.
    static constexpr int longest = 64;

    VxBintree *root_;
    VxBintree *cells_[longest];
    VxBintree **place_ = nullptr; ///< where the new cell is to hang
    int depth_ = 0;
    bool rejected_ = false;
};

/** Take a tree apart from the smallest cell on, in constant space: each(cell) may free it. */
template <typename Each> void unravel(VxBintree *cell, Each each)
{
    while (cell) {
        if (VxBintree *left = cell->left) {
            cell->left = left->right;
            left->right = cell;
            cell = left;
            continue;
        }
        VxBintree *next = cell->right;
        each(cell);
        cell = next;
    }
}

}
