// The tree layout: `data` is the tree, made with the first element, and
// `order` the first node of the chain that holds the elements in the order in
// which they came, rejected ones too. Positions are those of the chain.

#include <utility>

#include "containers/bintree.h"
#include "containers/layout.h"
#include "containers/nodes.h"
#include "containers/slots.h"

namespace vx::containers {

namespace {

uint32_t make(VxList &list)
{
    list.capacity = 0;
    list.increment = 0;
    return 0;
}

VxBintree *rootOf(const VxList &list) noexcept
{
    return static_cast<VxBintree *>(list.data);
}

void freeCells(VxList &list) noexcept
{
    VxBintree *root = rootOf(list);
    VxBintreeDel2(&root);
    list.data = nullptr;
}

void discard(VxList &list)
{
    freeCells(list);
    VxLnkNode *node = std::exchange(list.order, nullptr);
    for (int32_t left = std::exchange(list.count, 0); left > 0; --left) {
        VxLnkNode *next = node->chainNext;
        freeNode(node);
        node = next;
    }
}

uint32_t reset(VxList &list)
{
    discard(list);
    list.capacity = 0;
    return 0;
}

bool hasRoot(VxList &list)
{
    if (!list.data)
        list.data = newCell();
    return list.data != nullptr;
}

void addToChain(VxList &list, VxLnkNode *node) noexcept
{
    linkBefore<chain>(node, list.order);
    if (!list.order)
        list.order = node;
    ++list.count;
}

uint32_t set(VxList &list, int32_t, const void *element)
{
    VxLnkNode *node = nullptr;
    if (list.count == INT32_MAX || !hasRoot(list))
        return 1;
    if (VxBintreeIns(rootOf(list), list.compare, list.elemSize, element, &node))
        return 1;
    addToChain(list, node);
    return 0;
}

uint32_t insert(VxList &, int32_t, const void *)
{
    return 1;
}

void *at(VxList &list, int32_t index)
{
    VxLnkNode *node = nullptr;
    return LnkListSeekNode(&list, index, &node) == 0 ? node->element : nullptr;
}

uint32_t remove(VxList &, int32_t, int32_t)
{
    return 1;
}

/** Nothing can be removed, so this succeeds only where nothing has to be. */
uint32_t removeEqual(VxList &list, const void *element)
{
    const VxLnkNode *node = list.order;
    for (int32_t left = list.count; left > 0; --left, node = node->chainNext)
        if (equal(list, node->element, element))
            return 1;
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

void freeSpare(VxBintree *cells) noexcept
{
    while (cells)
        freeCell(std::exchange(cells, cells->right));
}

/** Cells chained by `right`; null for want of memory. */
VxBintree *spareCells(int32_t n)
{
    VxBintree *cells = nullptr;
    for (; n > 0; --n) {
        VxBintree *cell = newCell();
        if (!cell) {
            freeSpare(cells);
            return nullptr;
        }
        cell->right = cells;
        cells = cell;
    }
    return cells;
}

/** The nodes of the source move over; every cell that they may need is made before. */
uint32_t append(VxList &list, VxList &source)
{
    if (int64_t{list.count} + source.count > INT32_MAX || !list.compare || !hasRoot(list))
        return 1;
    VxBintree *spare = spareCells(source.count);
    if (!spare)
        return 1;
    freeCells(source);
    VxLnkNode *node = std::exchange(source.order, nullptr);
    for (int32_t left = std::exchange(source.count, 0); left > 0; --left) {
        VxLnkNode *next = node->chainNext;
        TreePath path(rootOf(list), list.compare, node->element);
        if (path.atRoot()) {
            path.attachToRoot(node);
        } else if (!path.rejected()) {
            VxBintree *cell = std::exchange(spare, spare->right);
            cell->right = nullptr;
            path.attach(cell, node);
        }
        addToChain(list, node);
        node = next;
    }
    freeSpare(spare);
    return 0;
}

void reverse(VxList &) {}

int32_t step(VxListIter &iter, void **ptr)
{
    return stepNodes<chain>(iter, iter.list->order, ptr);
}

}

const Layout treeLayout = {
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
    .range = positions,
    .step = step,
};

}
