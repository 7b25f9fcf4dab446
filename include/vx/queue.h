#ifndef VX_QUEUE_H
#define VX_QUEUE_H

/**
 * @file
 * Linked nodes, binary trees, queues and stacks.
 *
 * Elements are copied in and out. A node and its copy of an element are one
 * block that begins with the element: who takes an element out of a list
 * frees it with VxMemFree, and the node goes with it. Nothing is locked, and
 * nothing recurses: depth costs no stack.
 *
 * Failure leaves list, tree or queue as it was; refused memory is reported as
 * vx/mem.h says.
 */

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxList VxList;
typedef struct VxListIter VxListIter;

/** A node of a linked or keyed list, or of a tree. */
typedef struct VxLnkNode {
    int32_t key; /**< keyed: the key; linked: the position at insertion, not kept up; tree: the tree's own */
    struct VxLnkNode *next, *prev;           /**< linked: a circle */
    struct VxLnkNode *chainNext, *chainPrev; /**< keyed and tree lists: a circle in the order they came */
    void *element;
} VxLnkNode;

/** A cell of a binary tree; an empty tree is one whose node is null. */
typedef struct VxBintree {
    struct VxBintree *left, *right;
    VxLnkNode *node;
} VxBintree;

/** A queue or a stack, or both in one. */
typedef struct VxQueue {
    int32_t elemSize; /**< bytes of what is pushed */
    void *items;
} VxQueue;

typedef VxQueue VxStack;

/* ---------------------------------------------------------------- linked lists
 *
 * Lists of layout 1 (vx/list.h): `data` is the first node, whose previous one
 * is the last.
 */

/** Insert a copy of an element before a position, 0 to count. Other layouts fail. */
VX_API uint32_t VxLnkLstInsNode(VxList *list, int32_t position, const void *element);

/**
 * Take the node at a position out.
 *
 * @param element  receives the element, the caller's block; null after a failure
 * @return 0, also for other layouts, where nothing is done; 1 for a position
 *         outside
 */
VX_API uint32_t VxLnkLstDelNode(VxList *list, int32_t position, void **element);

/**
 * Insert a copy of an element beside the current node of a walk: behind it, or
 * before it when `before` is not 0. The walk stays where it is. 1 for an empty
 * list, another layout, or a walk that has not begun.
 */
VX_API uint32_t VxLnkLstLocIns(VxList *list, VxListIter *iter, int32_t before, const void *element);

/**
 * The node at a position of a linked list or a tree's chain, from the nearer
 * end, or that of a key of a keyed list. Null after a failure; other layouts
 * have no nodes.
 */
VX_API uint32_t LnkListSeekNode(VxList *list, int32_t position, VxLnkNode **node);

/* ---------------------------------------------------------------- binary trees
 *
 * Trees are kept balanced (Adelson-Velsky and Landis, 1962), so that elements
 * that come in order cost no more than others. The first cell keeps its
 * address.
 */

/** A new, empty tree. */
VX_API uint32_t VxBintreeMk(VxBintree **tree);

/**
 * Insert a copy of an element.
 *
 * @param compare  gets the new element and one of the tree: 0 when the new one
 *                 belongs behind it (equal ones too, if they are kept), 2 when
 *                 it is there already and is rejected, any other when it belongs
 *                 before. A three-way comparator does not do: a positive result
 *                 means before as well
 * @param node     receives the new node. That of a rejected element is in no
 *                 tree, and the caller's: free its element
 * @return 0, also for a rejected element; 1 for null pointers and no memory
 */
VX_API uint32_t VxBintreeIns(VxBintree *tree, VxCmpFn compare, int32_t elemSize, const void *element,
                             VxLnkNode **node);

/** Delete a tree with nodes and elements, and clear the pointer. */
VX_API uint32_t VxBintreeDel(VxBintree **tree);

/** Delete only the cells; nodes and elements have another owner. */
VX_API uint32_t VxBintreeDel2(VxBintree **tree);

/**
 * Turn a tree into a linked list, first element first. Its cells are freed and
 * the pointer is cleared; nodes and elements are the list's.
 *
 * @param list  receives the list; null after a failure, the tree is then as it was
 */
VX_API uint32_t VxBintreeToList(int32_t elemSize, VxBintree **tree, VxList **list);

/* ---------------------------------------------------------------- queues and stacks
 *
 * A sequence of items, each with its own number of bytes. What is pushed at
 * the back and popped at the front leaves in the order it came, what is pushed
 * at the front leaves last in, first out. Items of up to 4 bytes need no block
 * of their own.
 */

/** A new queue: 0; 2 when there is no memory for the record, else 1. */
VX_API uint32_t VxQueueMk(int32_t elemSize, VxQueue **queue);

/** Delete a queue, if there is one, with its items, and clear the pointer. */
VX_API uint32_t VxQueueDel(VxQueue **queue);

/** Push a copy of elemSize bytes at the back. */
VX_API uint32_t VxQueuePush(VxQueue *queue, const void *element);

/** Push a copy of elemSize bytes at the front. */
VX_API uint32_t VxStackPush(VxStack *stack, const void *element);

/**
 * Remove the front item.
 *
 * @param buffer  receives its bytes, at most `size`; not written when there is
 *                no item, which is a failure
 */
VX_API uint32_t VxQueuePop(VxQueue *queue, void *buffer, int32_t size);
VX_API uint32_t VxStackPop(VxStack *stack, void *buffer, int32_t size);

/** Remove the back item, in the same way. */
VX_API uint32_t VxQueueShorten(VxQueue *queue, void *buffer, int32_t size);

/* ---------------------------------------------------------------- arrays in one block */

/**
 * Add `extra` slots filled with zeros to a list of layout 2 in one block,
 * which stays one whatever its size. Others fail. VxMkArr (vx/mem.h) makes
 * such lists.
 */
VX_API uint32_t VxResizeArr(VxList *list, int32_t extra);

VX_C_END

#endif
