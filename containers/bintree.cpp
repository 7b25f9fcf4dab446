// Binary trees, kept balanced so that elements that come in order do not make
// a tree as deep as it is large.
//
// AVL trees (Adelson-Velsky and Landis, 1962). The height of a cell stands in
// the key of its node. A rotation exchanges the nodes of two cells and leaves
// the upper cell where it is: callers hold the address of the root.

#include "containers/bintree.h"

#include <algorithm>
#include <utility>

#include "containers/layout.h"
#include "containers/memory.h"
#include "containers/nodes.h"

namespace vx::containers {

namespace {

int32_t height(const VxBintree *cell) noexcept
{
    return cell ? cell->node->key : 0;
}

void setHeight(VxBintree *cell) noexcept
{
    cell->node->key = 1 + std::max(height(cell->left), height(cell->right));
}

void rotateRight(VxBintree *cell) noexcept
{
    VxBintree *child = cell->left;
    std::swap(cell->node, child->node);
    cell->left = child->left;
    child->left = child->right;
    child->right = cell->right;
    cell->right = child;
    setHeight(child);
}

void rotateLeft(VxBintree *cell) noexcept
{
    VxBintree *child = cell->right;
    std::swap(cell->node, child->node);
    cell->right = child->right;
    child->right = child->left;
    child->left = cell->left;
    cell->left = child;
    setHeight(child);
}

void balance(VxBintree *cell) noexcept
{
    int32_t lean = height(cell->left) - height(cell->right);
    if (lean > 1) {
        if (height(cell->left->left) < height(cell->left->right)) {
            rotateLeft(cell->left);
            setHeight(cell->left);
        }
        rotateRight(cell);
    } else if (lean < -1) {
        if (height(cell->right->right) < height(cell->right->left)) {
            rotateRight(cell->right);
            setHeight(cell->right);
        }
        rotateLeft(cell);
    }
    setHeight(cell);
}

}

VxBintree *newCell()
{
    return allocateZero<VxBintree>(1).release();
}

void freeCell(VxBintree *cell) noexcept
{
    void *block = cell;
    VxMemFree(&block);
}

TreePath::TreePath(VxBintree *root, VxCmpFn compare, const void *element) noexcept : root_(root)
{
    constexpr int32_t belongsBehind = 0;
    constexpr int32_t isThere = 2;
    VxBintree *cell = root->node ? root : nullptr;
    while (cell) {
        int32_t result = compare(element, cell->node->element);
        if (result == isThere) {
            rejected_ = true;
            return;
        }
        if (depth_ < longest)
            cells_[depth_] = cell;
        ++depth_;
        place_ = result == belongsBehind ? &cell->right : &cell->left;
        cell = *place_;
    }
}

void TreePath::attachToRoot(VxLnkNode *node) noexcept
{
    root_->node = node;
    node->key = 1;
}

void TreePath::attach(VxBintree *cell, VxLnkNode *node) noexcept
{
    cell->node = node;
    node->key = 1;
    *place_ = cell;
    if (depth_ > longest) // a tree that others put together
        return;
    for (int i = depth_ - 1; i >= 0; --i) {
        int32_t before = height(cells_[i]);
        balance(cells_[i]);
        if (height(cells_[i]) == before)
            return;
    }
}

}

using namespace vx::containers;

uint32_t VxBintreeMk(VxBintree **made)
{
    if (!made)
        return 1;
    *made = newCell();
    return *made ? 0 : 1;
}

uint32_t VxBintreeIns(VxBintree *root, VxCmpFn compare, int32_t elemSize, const void *element,
                      VxLnkNode **made)
{
    if (!made)
        return 1;
    *made = nullptr;
    if (!root || !compare || !element || elemSize < 1)
        return 1;
    VxLnkNode *node = newNode(0, elemSize, element);
    if (!node)
        return 1;
    TreePath path(root, compare, node->element);
    if (path.atRoot()) {
        path.attachToRoot(node);
    } else if (!path.rejected()) {
        VxBintree *cell = newCell();
        if (!cell) {
            freeNode(node);
            return 1;
        }
        path.attach(cell, node);
    }
    *made = node;
    return 0;
}

uint32_t VxBintreeDel(VxBintree **root)
{
    if (!root)
        return 1;
    unravel(std::exchange(*root, nullptr), [](VxBintree *cell) {
        if (cell->node)
            freeNode(cell->node);
        freeCell(cell);
    });
    return 0;
}

uint32_t VxBintreeDel2(VxBintree **root)
{
    if (!root)
        return 1;
    unravel(std::exchange(*root, nullptr), freeCell);
    return 0;
}

uint32_t VxBintreeToList(int32_t elemSize, VxBintree **root, VxList **made)
{
    if (!made)
        return 1;
    *made = nullptr;
    if (!root || VxListMk(linked, elemSize, 0, 1, nullptr, made))
        return 1;
    VxList &list = **made;
    unravel(std::exchange(*root, nullptr), [&list](VxBintree *cell) {
        if (VxLnkNode *node = cell->node) {
            auto head = static_cast<VxLnkNode *>(list.data);
            linkBefore<links>(node, head);
            if (!head)
                list.data = node;
            node->key = list.count++;
        }
        freeCell(cell);
    });
    return 0;
}
