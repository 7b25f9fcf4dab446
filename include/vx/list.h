#ifndef VX_LIST_H
#define VX_LIST_H

/**
 * @file
 * The generic list of fixed-size elements, in six layouts.
 *
 * Every function that hands out a collection hands out a VxList. One record
 * serves all layouts; functions dispatch on it. Elements are copied in and
 * out, element-size bytes each, and the list owns its copies.
 *
 * Layouts      code  name           index is          storage
 *              0     keyed          any 32-bit key    16-way digital trie over the key
 *              1     linked         position          circle of nodes (vx/queue.h)
 *              2     array          position          one block; above a page, pages
 *              3     pointer array  position          a block for each slot
 *              4     tree           position, in the  balanced tree, and a chain in the
 *                                   order they came   order in which elements came
 *              5     wrapped array  position          the caller's array, never grown
 * Positions    0 to count - 1. Slots of layouts 2, 3 and 5 between count and
 *              capacity can be read: zeros, or what was there before.
 * Order        storage order is that of positions; in a keyed list, that in
 *              which the keys came. Conversions and copies keep it.
 * Growth       layouts 2 and 3 grow by whole increments when a store goes to
 *              the capacity or behind. A store at or behind capacity + 11
 *              increments is refused, as a guard against runaway indices.
 * Pages        a list of layout 2 is one block (page level 0) up to VgPageSize
 *              bytes. Made larger, or growing past that, it lies in pages of
 *              VgPageSize / elemSize elements, reached through a directory of
 *              VgPageSize / sizeof(void *) pointers (level 1) or two steps of
 *              them (level 2); more does not fit. Elements larger than a page
 *              stay in one block, and so does a block that grows past what
 *              level 1 holds in one step.
 * Addresses    of elements hold until the element is removed in layouts 0, 1,
 *              3 and 4, at page levels 1 and 2, and in layout 5; until the
 *              next growth in one block. Insertion and removal move elements of
 *              layouts 2 and 5.
 * Comparing    elements "equal" are so byte for byte: zero the padding.
 * Aliasing     an element handed in must not lie in the list itself.
 * Failure      1: a null list, an index that the layout refuses, the wrong
 *              layout, unequal element sizes, no memory. The list, and every
 *              other list taking part, is then as it was. Refused memory is
 *              reported as vx/mem.h says; nothing else is, but for VxListMk
 *              and VxListSizeError.
 * Threads      a list is used by one thread at a time; different lists do not
 *              meet, sorts included.
 */

#include "vx/types.h"
#include "vx/queue.h"

VX_C_BEGIN

/** For reading; functions change it. */
struct VxList {
    int32_t layout;    /**< 0 to 5, above */
    int32_t elemSize;  /**< bytes of an element, 1 or more */
    int32_t count;     /**< elements held; keys */
    int32_t capacity;  /**< slots; keyed: the highest key ever stored, or 0; linked: count of the last cut */
    int32_t increment; /**< slots added by a step of growth */
    int32_t pageLevel; /**< layout 2: 0 one block, 1 a directory of pages, 2 two steps of directories */
    int32_t dirSlots;  /**< layout 2: pages or directories of a directory */
    int32_t perPage;   /**< level 1: elements of a page; level 2: slots of a second directory */
    int32_t perPage2;  /**< level 2: elements of a page; level 0: slots that a block that grew has room for */
    void *data;        /**< block, directory, pointers, first node, root or the caller's array */
    VxLnkNode *order;  /**< keyed and tree: the oldest node of the chain; null when empty */
    VxCmpFn compare;   /**< places elements in a tree, see VxBintreeIns */
};

/** How pages are found: right in front of what `data` points to in layout 2, page levels 1 and 2. */
typedef struct VxListPages {
    void **pages;        /**< all of them in order; null where a page is not there */
    uint64_t multiplier; /**< a position times this, shifted down by `shift`, is its page */
    uint32_t shift;
    int32_t perPage; /**< elements of a page */
    int32_t room;    /**< pages that there is room for */
} VxListPages;

/** A walk. */
struct VxListIter {
    int32_t index;     /**< of the element given last: position or key */
    void *cursor;      /**< null before the first step; the current node of nodes in storage order */
    int32_t direction; /**< 0 storage order, 1 ascending, 2 descending indices */
    VxList *list;
    int32_t bound;     /**< the last index of directions 1 and 2 */
};

/** The older form: only where a walk begins. */
typedef struct VxListIterOld {
    int32_t index;
    void *cursor;
} VxListIterOld;

/** Unit of paged storage in bytes: the system's page less 4; 0 before VxToolsGlobal (vx/tools.h). */
extern VX_API int32_t VgPageSize;

/* ---------------------------------------------------------------- life */

/**
 * A new, empty list.
 *
 * @param layout     0 to 5
 * @param elemSize   1 or more; else toolkit error 3 is filed
 * @param capacity   slots of layouts 2 and 3, at least 1 is taken, and of 5, at
 *                   least 0; else ignored
 * @param increment  of layouts 2 and 3, at least 1 is taken; else ignored
 * @param compare    places the elements of a tree, also of one that the list is
 *                   converted to later; may be null otherwise
 * @param list       receives the list, to be deleted with VxListDel; null after
 *                   a failure
 *
 * A wrapped list made here has an array of its own, which no function of the
 * list frees: take it with VxListGetArray and free it with VxMemFree.
 */
VX_API uint32_t VxListMk(int32_t layout, int32_t elemSize, int32_t capacity, int32_t increment,
                         VxCmpFn compare, VxList **list);

/**
 * Fill the caller's record as a wrapped list over the caller's array.
 *
 * @param count     elements that it holds, 0 to capacity
 * @param capacity  elements that it has room for
 * @param array     may be null, which makes both 0
 */
VX_API uint32_t VxListWrapArr(int32_t elemSize, int32_t count, int32_t capacity, void *array, VxList *record);

/** A new list of layout 2 that takes over a block of VxMemAlloc's of `count` elements; its increment is 4. */
VX_API uint32_t VxArrCnvrtList(int32_t elemSize, int32_t count, void *array, VxList **list);

/** Free storage and elements; the record stays and may be filled again. A wrapped array is only let go. */
VX_API uint32_t VxListDelList(VxList *list);

/** Delete a list, if there is one, with its record, and clear the pointer. */
VX_API uint32_t VxListDel(VxList **list);

/**
 * Delete a list whose elements are lists, VxList pointers that may be null,
 * with all of them. Elements of another size: VxListSizeError, nothing is
 * deleted.
 */
VX_API uint32_t VxListOfListDel(VxList **list);

/**
 * Remove all elements. Layouts 2, 3 and 5 keep their slots, and a keyed list
 * its highest key. 0 for a null list.
 */
VX_API uint32_t VxListReset(VxList *list);

/* ---------------------------------------------------------------- elements */

/**
 * Store a copy of an element.
 *
 *   keyed          `index` is the key; replaces what it held
 *   linked         replaces below count, appends at count
 *   array, pointer array
 *                  replaces below count; grows as told above; the count
 *                  becomes index + 1 when that is more
 *   tree           `index` is ignored; the element is the last of the chain. One
 *                  that the comparator rejects is held and counted, but has no
 *                  place in the tree
 *   wrapped        as array, below the capacity
 */
VX_API uint32_t VxListSet(VxList *list, int32_t index, const void *element);

/**
 * Insert a copy of an element before an index; those from there on move up.
 *
 *   keyed          a key that is present keeps its element, which is no failure
 *   linked         0 <= index <= count
 *   array, pointer array
 *                  -1 appends; an index behind the count stores there
 *   tree           fails
 *   wrapped        0 <= index < capacity, and count < capacity
 */
VX_API uint32_t VxListIns(VxList *list, int32_t index, const void *element);

/** The address of an element; null after a failure: no such key or position, no such slot. */
VX_API uint32_t VxListGetPtr(VxList *list, int32_t index, void **ptr);

/** VxListGetPtr for layouts 2 and 5; others fail. */
VX_API uint32_t VxListArrayPtr(VxList *list, int32_t index, void **ptr);

/** The number of the page with a position. */
static inline uint32_t VxListPageOf(const VxListPages *table, int32_t position)
{
    return (uint32_t)((uint32_t)position * table->multiplier >> table->shift);
}

/**
 * The address of an element of a list of layout 2 or 5, 0 <= position < count,
 * which is not checked. It is compiled into the caller, for loops over many
 * positions, where calls cost several times what they read.
 */
static inline void *VxListAt(const VxList *list, int32_t position)
{
    if (list->pageLevel == 0)
        return (char *)list->data + (int64_t)position * list->elemSize;
    const VxListPages *table = (const VxListPages *)list->data - 1;
    uint32_t page = VxListPageOf(table, position);
    uint32_t within = (uint32_t)position - page * (uint32_t)table->perPage;
    return (char *)table->pages[page] + (size_t)within * (size_t)list->elemSize;
}

/** Copy an element out; not written after a failure. */
VX_API uint32_t VxListGet(VxList *list, int32_t index, void *element);

/** VxListSet of the same element at `n` indices; ends at the first failure and leaves what was stored. */
VX_API uint32_t VxListFill(VxList *list, int32_t first, int32_t n, const void *element);

/**
 * Find an equal element, or store this one at index = count, in a keyed list at
 * the highest key ever + 1, which fails behind INT32_MAX.
 *
 * @param index  receives where it stands; -1 after a failure
 */
VX_API uint32_t VxListSetUnique(VxList *list, const void *element, int32_t *index);

/** Index of the first equal element of a walk in this direction, or -1. */
VX_API int32_t VxListIndexOf(VxList *list, const void *element, int32_t direction);

/** 1 when all elements stand in one block: layout 5, and 2 at page level 0. */
VX_API int32_t VxListIsArray(const VxList *list);

/**
 * The block of a list's elements, which stays the list's; null when it is
 * empty. A list that is not one block becomes one: layout 2, page level 0,
 * capacity = count.
 */
VX_API uint32_t VxListGetArray(VxList *list, void **ptr);

/* ---------------------------------------------------------------- removal and size */

/**
 * Remove the elements first to last.
 *
 *   keyed          keys, one by one; the first absent one ends the removal. 1
 *                  only when `first` is absent
 *   tree           fails
 *   others         0 <= first <= last < count; slots stay
 */
VX_API uint32_t VxListDelElem(VxList *list, int32_t first, int32_t last);

/** Remove every equal element. In a tree 1 when there is one. */
VX_API uint32_t VxListDelVal(VxList *list, const void *element);

/**
 * Cut to n elements, 0 <= n <= count; keyed lists and trees fail.
 *
 * 0 frees all storage but a wrapped array. Pages that are not needed are
 * freed: at level 1 the capacity is then that of the pages left, or the first
 * page becomes the one block when less than a page is left; at level 2 it is
 * at most what the directories left could hold. Else slots stay.
 */
VX_API uint32_t VxListDownsize(VxList *list, int32_t n);

/** Add n slots to layouts 2 and 3; 5 fails, and others have none to add. */
VX_API uint32_t VxListResizeArr(VxList *list, int32_t n);

/** File the message "List size mismatch" and hand it to VxStopError: 1. */
VX_API uint32_t VxListSizeError(void);

/* ---------------------------------------------------------------- copies and conversions */

/** A new list with the same layout and elements; of a wrapped list, one of layout 2. One block stays one. */
VX_API uint32_t VxListCopy(VxList *source, VxList **copy);

/**
 * Append copies of all elements: all of them or none. A keyed destination
 * takes them under the source's keys or positions, in place of what it held.
 */
VX_API uint32_t VxListCopy2(VxList *source, VxList *destination);

/**
 * Append the source's elements and empty it; it takes on the destination's
 * layout, and slots stay. A keyed destination and the list itself fail. A
 * wrapped one needs room for all, and the source keeps its layout.
 */
VX_API uint32_t VxListConcat(VxList *destination, VxList *source);

/**
 * A new list of another layout with the same elements in storage order. A
 * keyed list has the positions for keys.
 */
VX_API uint32_t VxListCnvrt(int32_t layout, VxList *list, VxList **newList);

/** VxListCnvrt in the record itself; the same layout stays as it is. */
VX_API uint32_t VxListConvert(int32_t layout, VxList *list);

/**
 * Copy all elements into a new block and free the list's storage.
 *
 * @param elemSize  the list's
 * @param count     receives the number of elements
 * @param array     receives the block, the caller's; null when there are none
 */
VX_API uint32_t VxListCnvrtArr(int32_t elemSize, VxList *list, int32_t *count, void **array);

/** Append copies of all elements in storage order, each at index = count. */
VX_API uint32_t HashConvertList(VxList *keyed, VxList *destination);

/** HashConvertList of a keyed list, others fail, to a destination that is emptied before. */
VX_API uint32_t VxKeyListCnvrt(VxList *keyed, VxList *destination);

/** Reverse the order. Keyed lists and trees stay as they are; 0 also for a null list. */
VX_API uint32_t VxListRvrs(VxList *list);

/* ---------------------------------------------------------------- walks
 *
 *     VxListIter iter;
 *     void *element;
 *     VxListItrInit2(list, 1, &iter);
 *     while (VxListItrPtr(&iter, &element) == 0)
 *         use(iter.index, element);
 *
 * Directions 1 and 2 go by index, in a keyed list by key, over the range that
 * was there when the walk began: from the smallest key to the highest ever
 * stored, or positions 0 to count - 1. Elements may be stored and removed
 * meanwhile; keys that come inside the range are visited, and none twice. In
 * direction 0 of nodes (layouts 0, 1 and 4), and in all directions of 1 and 4,
 * the current element must stay.
 *
 * The keys' order is made by the first ordered walk, which costs a sort of
 * all, and kept while no more than a few keys change between two steps. A
 * step then costs nothing that depends on the distance between keys.
 */

/** Begin a walk. 1 for a direction other than 0, 1 and 2. */
VX_API uint32_t VxListItrInit2(VxList *list, int32_t direction, VxListIter *iter);

/** The next element: 0; -1 at the end; 1 when the keys' order cannot be had for want of memory. */
VX_API int32_t VxListItrPtr(VxListIter *iter, void **ptr);

/** VxListItrPtr with a copy. */
VX_API int32_t VxListItr(VxListIter *iter, void *element);

/**
 * Where a walk would begin: 0 or count - 1; in a keyed list the smallest key or
 * the highest ever stored, 0 when it is empty.
 */
VX_API uint32_t VxListItrInit(VxList *list, int32_t direction, VxListIterOld *start);

/** A step to the next node of a linked list or a tree's chain, from none to the first. 1 at the end. */
VX_API uint32_t VxLstGetNxtPtr(VxList *list, VxListIter *iter, void **ptr);

/** A step back, from none to the last node. 1 at the begin. */
VX_API uint32_t VxListGetPrvPtr(VxList *list, VxListIter *iter, void **ptr);

/* ---------------------------------------------------------------- sort and search
 *
 * Comparators get two elements: negative, zero or positive. One that
 * contradicts itself leaves any order.
 */

/**
 * Sort layouts 2, 3 and 5 in place; not stable, others fail. Quicksort with
 * the median of three (Singleton, CACM Algorithm 347), whose large parts are
 * parted in blocks (Edelkamp and Weiss, BlockQuicksort, 2016). Pages are sorted
 * in a block beside them where there is memory for one. The elements of a
 * pointer array keep their addresses.
 */
VX_API uint32_t VxListSort(VxList *list, VxCmpFn compare);

/**
 * Indices (keys) in the order of their elements; the list stays as it is. Not
 * stable.
 *
 * @param order  receives a block of count indices, the caller's; null when the
 *               list is empty
 */
VX_API uint32_t VxListSort2(VxList *list, VxCmpFn compare, int32_t **order);

/** VxListSort2, stable: equal elements by ascending index. A merge sort. */
VX_API uint32_t VxListSort3(VxList *list, VxCmpFn compare, int32_t **order);

/**
 * Find an element.
 *
 * @param order    of VxListSort2 or VxListSort3: a binary search; null: the
 *                 first match in ascending order
 * @param compare  gets the key first and an element second
 * @param found    receives 1 or 0
 * @param index    receives its index. When nothing is found, -1; with an order
 *                 0 if the list has one element, else perhaps the index of an
 *                 element beside which the key belongs
 */
VX_API uint32_t VxListSrch(VxList *list, const int32_t *order, const void *key, VxCmpFn compare,
                           int32_t *found, int32_t *index);

VX_C_END

#endif
