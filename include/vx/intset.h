#ifndef VX_INTSET_H
#define VX_INTSET_H

/**
 * @file
 * Sets of integers.
 *
 * A set is a list of values and an index. The value list holds the members in
 * the order they came; it is an ordinary list of the caller's, of 4-byte
 * elements, and may be read as one. The index is a keyed list of 1-byte
 * elements whose keys are the members. It is built when an eighth value is
 * added: up to 7 members are searched one by one, more by their key.
 *
 * A set may do without a value list. Its members are then the keys alone.
 *
 * Ownership    The set owns its index. The value list stays the caller's, who
 *              deletes it after the set.
 * Changes      Whoever changes the value list behind the set's back calls
 *              VxIntSetPurge, so that the index is built anew.
 * Failure      A list with elements of another size is refused with the
 *              toolkit's "List size mismatch". For want of memory the members
 *              stay as they were, but for one case: an index whose building
 *              fails stays with the keys that it has, until VxIntSetPurge
 *              removes it.
 * Threads      A set is used by one thread at a time.
 */

#include "vx/types.h"
#include "vx/list.h"

VX_C_BEGIN

/** A set; either list may be null. */
typedef struct VxIntSet {
    VxList *values;
    VxList *index;
} VxIntSet;

/* ---------------------------------------------------------------- life */

/** Fill a record of the caller's: a value list, or null, and no index. VxIntSetPurge ends its life. */
VX_API uint32_t VxIntSetInit(VxList *values, VxIntSet *set);

/** A new record, filled the same way; null after a failure. VxIntSetDel ends its life. */
VX_API uint32_t VxIntSetMk(VxList *values, VxIntSet **set);

/** Delete the index and the record, and clear the pointer. */
VX_API uint32_t VxIntSetDel(VxIntSet **set);

/** Delete the index. The members of a value list are still found, one by one. */
VX_API uint32_t VxIntSetPurge(VxIntSet *set);

/** Empty both lists: 1 when either cannot be. */
VX_API uint32_t VxIntSetReset(VxIntSet *set);

/** Build the index of a set that has none and holds more than 6 values; otherwise nothing is to be done. */
VX_API uint32_t VxIntSetOptimize(VxIntSet *set);

/* ---------------------------------------------------------------- members */

/** 1 when there are no members, and for a null set. */
VX_API int32_t VxIntSetEmpty(VxIntSet *set);

/** 1 when the value is a member; 0 also after a failure. */
VX_API int32_t VxIntSetContains(VxIntSet *set, int32_t value);

/**
 * Add a value. From 7 members on this builds the index, even for a value that
 * is there.
 *
 * @param added  receives 1 when the value was new, else 0; may be null
 */
VX_API uint32_t VxIntSetAdd(VxIntSet *set, int32_t value, int32_t *added);

/** Remove a value, which costs a walk over the value list: 1 when it was not there. */
VX_API uint32_t VxIntSetDelVal(VxIntSet *set, int32_t value);

/** The index, built if there is none; it stays the set's. Null after a failure. */
VX_API uint32_t VxIntSetKeyList(VxIntSet *set, VxList **index);

/* ---------------------------------------------------------------- walks
 *
 * Over the value list, or over the index of a set that has none.
 */

/**
 * Begin a walk.
 *
 * @param direction  0 as the members came; 1 and 2 forward and backward
 *                   through the value list, or by ascending and descending
 *                   keys of the index
 */
VX_API uint32_t VxIntSetItrInit(VxIntSet *set, int32_t direction, VxListIter *iter);

/** The next member: 0, -1 at the end, 1 after a failure. */
VX_API int32_t VxIntSetItr(VxListIter *iter, int32_t *value);

/**
 * Begin a walk as the members came, and step to the first.
 *
 * @return the member where the value list holds it, or in the iterator, where
 *         it stands until the next step; null for an empty set
 */
VX_API int32_t *VxIntSetBegin(VxIntSet *set, VxListIter *iter);

/** The next member in the same way; null at the end. */
VX_API int32_t *VxIntSetIncr(VxListIter *iter);

VX_C_END

#endif
