// The linked layout: nodes in a circle, `data` the first of them.

#include <utility>

#include "containers/layout.h"
#include "containers/nodes.h"
#include "containers/slots.h"
#include "vx/mem.h"

namespace vx::containers {

namespace {

VxLnkNode *headOf(const VxList &list) noexcept
{
    return static_cast<VxLnkNode *>(list.data);
}

uint32_t make(VxList &list)
{
    list.capacity = 0;
    list.increment = 1;
    return 0;
}

/** Free nodes from one on, as many as given. */
void freeNodes(VxLnkNode *node, int32_t n) noexcept
{
    for (; n > 0; --n) {
        VxLnkNode *next = node->next;
        freeNode(node);
        node = next;
    }
}

void discard(VxList &list)
{
    freeNodes(headOf(list), list.count);
    list.data = nullptr;
    list.count = 0;
}

uint32_t reset(VxList &list)
{
    discard(list);
    return 0;
}

void *at(VxList &list, int32_t index)
{
    VxLnkNode *node = nullptr;
    return LnkListSeekNode(&list, index, &node) == 0 ? node->element : nullptr;
}

uint32_t insert(VxList &list, int32_t index, const void *element)
{
    return VxLnkLstInsNode(&list, index, element);
}

uint32_t set(VxList &list, int32_t index, const void *element)
{
    if (index == list.count)
        return VxLnkLstInsNode(&list, index, element);
    void *old = at(list, index);
    if (!old)
        return 1;
    copyElement(list, old, element);
    return 0;
}

uint32_t remove(VxList &list, int32_t first, int32_t last)
{
    if (first < 0 || last < first || last >= list.count)
        return 1;
    for (int32_t left = last - first + 1; left > 0; --left) {
        void *element = nullptr;
        VxLnkLstDelNode(&list, first, &element);
        VxMemFree(&element);
    }
    return 0;
}

uint32_t removeEqual(VxList &list, const void *element)
{
    VxLnkNode *node = headOf(list);
    for (int32_t left = list.count; left > 0; --left) {
        VxLnkNode *next = node->next;
        if (equal(list, node->element, element)) {
            node->prev->next = next;
            next->prev = node->prev;
            if (node == list.data)
                list.data = next;
            freeNode(node);
            --list.count;
        }
        node = next;
    }
    if (list.count == 0)
        list.data = nullptr;
    return 0;
}

uint32_t truncate(VxList &list, int32_t n)
{
    VxLnkNode *head = headOf(list);
    VxLnkNode *first = seek<links>(head, list.count, n);
    VxLnkNode *last = first->prev;
    freeNodes(first, list.count - n);
    if (n > 0) {
        last->next = head;
        head->prev = last;
    } else {
        list.data = nullptr;
    }
    list.capacity = list.count = n;
    return 0;
}

uint32_t grow(VxList &, int32_t)
{
    return 0;
}

/** The nodes of the source move over. */
uint32_t append(VxList &list, VxList &source)
{
    if (int64_t{list.count} + source.count > INT32_MAX)
        return 1;
    VxLnkNode *moved = headOf(source);
    if (VxLnkNode *head = headOf(list)) {
        VxLnkNode *last = std::exchange(head->prev, moved->prev);
        head->prev->next = head;
        last->next = moved;
        moved->prev = last;
    } else {
        list.data = moved;
    }
    list.count += source.count;
    source.data = nullptr;
    source.count = 0;
    return 0;
}

void reverse(VxList &list)
{
    VxLnkNode *node = headOf(list);
    for (int32_t i = 0; i < list.count; ++i) {
        std::swap(node->next, node->prev);
        node = node->prev;
    }
    list.data = node->next;
}

int32_t step(VxListIter &iter, void **ptr)
{
    return stepNodes<links>(iter, headOf(*iter.list), ptr);
}

}

const Layout linkedLayout = {
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
