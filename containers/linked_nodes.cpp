// Nodes, and linked lists node by node.

#include "vx/queue.h"

#include <memory>

#include "containers/keyed_store.h"
#include "containers/layout.h"
#include "containers/memory.h"
#include "containers/nodes.h"

namespace vx::containers {

namespace {

inline VxLnkNode *makeNode(int32_t key, int32_t elemSize, const void *element)
{
    constexpr uint32_t alignment = alignof(VxLnkNode);
    uint32_t offset = (static_cast<uint32_t>(elemSize) + alignment - 1) & ~(alignment - 1);
    char *block = allocate<char>(int64_t{offset} + static_cast<int64_t>(sizeof(VxLnkNode))).release();
    if (!block)
        return nullptr;
    copyBytes(block, element, elemSize);
    return new (block + offset) VxLnkNode{key, nullptr, nullptr, nullptr, nullptr, block};
}

/** Apart from VxLnkLstInsNode, which mostly appends. */
[[gnu::noinline]] VxLnkNode *nodeAt(const VxList &list, int32_t position) noexcept
{
    return seek<links>(static_cast<VxLnkNode *>(list.data), list.count, position);
}

}

VxLnkNode *newNode(int32_t key, int32_t elemSize, const void *element)
{
    return makeNode(key, elemSize, element);
}

void freeNode(VxLnkNode *node) noexcept
{
    void *block = node->element;
    VxMemFree(&block);
}

}

using namespace vx::containers;

uint32_t VxLnkLstInsNode(VxList *list, int32_t position, const void *element)
{
    if (!list || !element || list->layout != linked || position < 0 || position > list->count)
        return 1;
    if (list->count == INT32_MAX)
        return 1;
    VxLnkNode *node = makeNode(position, list->elemSize, element);
    if (!node)
        return 1;
    auto head = static_cast<VxLnkNode *>(list->data);
    linkBefore<links>(node, position == list->count ? head : nodeAt(*list, position));
    if (position == 0)
        list->data = node;
    ++list->count;
    return 0;
}

uint32_t VxLnkLstDelNode(VxList *list, int32_t position, void **element)
{
    if (!list || !element)
        return 1;
    *element = nullptr;
    if (list->layout != linked)
        return 0;
    if (position < 0 || position >= list->count)
        return 1;
    VxLnkNode *node = seek<links>(static_cast<VxLnkNode *>(list->data), list->count, position);
    node->prev->next = node->next;
    node->next->prev = node->prev;
    if (position == 0)
        list->data = node->next != node ? node->next : nullptr;
    --list->count;
    *element = node->element;
    return 0;
}

uint32_t VxLnkLstLocIns(VxList *list, VxListIter *iter, int32_t before, const void *element)
{
    if (!list || !iter || !element || list->layout != linked || list->count < 1 || !iter->cursor)
        return 1;
    if (list->count == INT32_MAX)
        return 1;
    auto current = static_cast<VxLnkNode *>(iter->cursor);
    VxLnkNode *node = newNode(iter->index, list->elemSize, element);
    if (!node)
        return 1;
    linkBefore<links>(node, before ? current : current->next);
    if (before && current == list->data)
        list->data = node;
    ++list->count;
    return 0;
}

uint32_t LnkListSeekNode(VxList *list, int32_t position, VxLnkNode **node)
{
    if (!node)
        return 1;
    *node = nullptr;
    if (!list)
        return 1;
    bool inside = position >= 0 && position < list->count;
    if (list->layout == keyed)
        *node = keyedNode(*list, position);
    else if (list->layout == linked && inside)
        *node = seek<links>(static_cast<VxLnkNode *>(list->data), list->count, position);
    else if (list->layout == tree && inside)
        *node = seek<chain>(list->order, list->count, position);
    return *node ? 0 : 1;
}
