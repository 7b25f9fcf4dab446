#ifndef VX_QUEUE_H
#define VX_QUEUE_H

/**
 * @file
 * Linked nodes, binary trees, queues and stacks.
 */

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxList VxList;
typedef struct VxListIter VxListIter;

/** A node of a linked list or of a tree's chain. */
typedef struct VxLnkNode {
    int32_t key;
    struct VxLnkNode *next, *prev, *chainNext, *chainPrev;
    void *element;
} VxLnkNode;

/** A cell of a binary tree. */
typedef struct VxBintree {
    struct VxBintree *left, *right;
    VxLnkNode *node;
} VxBintree;

typedef struct VxQueue {
    int32_t elemSize;
    void *items;
} VxQueue;

typedef VxQueue VxStack;

VX_API uint32_t VxLnkLstInsNode(VxList *list, int32_t position, const void *element);
VX_API uint32_t VxLnkLstDelNode(VxList *list, int32_t position, void **element);
VX_API uint32_t VxLnkLstLocIns(VxList *list, VxListIter *iter, int32_t before, const void *element);
VX_API uint32_t LnkListSeekNode(VxList *list, int32_t position, VxLnkNode **node);
VX_API uint32_t VxBintreeMk(VxBintree **tree);
VX_API uint32_t VxBintreeIns(VxBintree *tree, VxCmpFn compare, int32_t elemSize, const void *element, VxLnkNode **node);
VX_API uint32_t VxBintreeDel(VxBintree **tree);
VX_API uint32_t VxBintreeDel2(VxBintree **tree);
VX_API uint32_t VxBintreeToList(int32_t elemSize, VxBintree **tree, VxList **list);
VX_API uint32_t VxQueueMk(int32_t elemSize, VxQueue **queue);
VX_API uint32_t VxQueueDel(VxQueue **queue);
VX_API uint32_t VxQueuePush(VxQueue *q, const void *element);
VX_API uint32_t VxStackPush(VxQueue *q, const void *element);
VX_API uint32_t VxQueuePop(VxQueue *q, void *buffer, int32_t size);
VX_API uint32_t VxStackPop(VxQueue *q, void *buffer, int32_t size);
VX_API uint32_t VxQueueShorten(VxQueue *q, void *buffer, int32_t size);
VX_API uint32_t VxResizeArr(VxList *list, int32_t extra);

VX_C_END

#endif
