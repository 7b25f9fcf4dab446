#pragma once

// Nodes of linked lists and trees.
//
// Node and element are one block that begins with the element: what takes an
// element out of a list frees it, and its node with it, with VxMemFree.

#include <cstdint>

#include "vx/list.h"

namespace vx::containers {

/** A node of its own with a copy of an element; null for want of memory. */
VxLnkNode *newNode(int32_t key, int32_t elemSize, const void *element);

void freeNode(VxLnkNode *node) noexcept;

/** The two circles that a node can stand in. */
struct Circle {
    VxLnkNode *VxLnkNode::*next;
    VxLnkNode *VxLnkNode::*prev;
};

constexpr Circle links = {&VxLnkNode::next, &VxLnkNode::prev};
constexpr Circle chain = {&VxLnkNode::chainNext, &VxLnkNode::chainPrev};

/** The node at a position 0..count-1 of a circle, from the nearer end. */
template <Circle circle> VxLnkNode *seek(VxLnkNode *head, int32_t count, int32_t position) noexcept
{
    VxLnkNode *node = head;
    if (position < count / 2)
        for (int32_t i = 0; i < position; ++i)
            node = node->*circle.next;
    else
        for (int32_t i = position; i < count; ++i)
            node = node->*circle.prev;
    return node;
}

/** Link a node before another; before null it is a circle of its own. */
template <Circle circle> void linkBefore(VxLnkNode *node, VxLnkNode *other) noexcept
{
    if (!other)
        other = node->*circle.prev = node;
    node->*circle.next = other;
    node->*circle.prev = other->*circle.prev;
    node->*circle.prev->*circle.next = node;
    other->*circle.prev = node;
}

/** The next node of a walk: its first when it has none yet; null behind its last. */
template <Circle circle> VxLnkNode *nextNode(const VxListIter &iter, VxLnkNode *head, bool up) noexcept
{
    auto node = static_cast<VxLnkNode *>(iter.cursor);
    if (!head)
        return nullptr;
    if (!node)
        return up ? head : head->*circle.prev;
    if (up)
        return node->*circle.next != head ? node->*circle.next : nullptr;
    return node != head ? node->*circle.prev : nullptr;
}

/** Step of a walk over a circle: 0, or -1 at its end or the range's. */
template <Circle circle> int32_t stepNodes(VxListIter &iter, VxLnkNode *head, void **ptr) noexcept
{
    bool up = iter.direction != 2;
    VxLnkNode *node = nextNode<circle>(iter, head, up);
    int64_t index = iter.cursor ? int64_t{iter.index} + (up ? 1 : -1) : iter.index;
    bool over = up ? iter.direction == 1 && index > iter.bound : index < iter.bound;
    if (!node || over)
        return -1;
    iter.index = static_cast<int32_t>(index);
    iter.cursor = node;
    *ptr = node->element;
    return 0;
}

}
