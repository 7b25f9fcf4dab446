#ifndef VX_ID_H
#define VX_ID_H

/**
 * @file
 * Identifiers of persistent objects, lists of them, and labels.
 *
 * An identifier has three components. 0 and -1 are reserved: an identifier of
 * nothing else is null. A component below -1 marks a negative identifier, that
 * of an object derived from another, such as its mirror image.
 *
 * Null         Functions without a result do nothing for a null pointer,
 *              predicates give 0.
 * Threads      The generator and the set of labels are shared by the process
 *              and not guarded: they are used by one thread at a time.
 */

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxId {
    int32_t a, b, c;
} VxId;

/* ---------------------------------------------------------------- making */

/**
 * Make an identifier that no other run of the application makes.
 *
 * The first one, and after each million the next, seeds the generator, which
 * waits for the next second of the clock: up to one second, at full load. The
 * component `a` then comes from that second by way of a random generator (its
 * own, rand() is left alone), `b` from the turns of the waiting loop. Each
 * further identifier adds 1 to both; `c` is 1.
 *
 * @param id  null only seeds, without waiting: `a` with the seconds since
 *            2014-09-29 06:00:00 UTC, `b` with |VgMemUsed + 1|
 * @return 0
 */
VX_API uint32_t VxIdNew(VxId *id);

/** The same as VxIdNew. */
VX_API uint32_t VxIdInit(VxId *id);

/** Set all components to 0, or to -1. */
VX_API void VxIdZero(VxId *id);
VX_API void VxIdMinusOne(VxId *id);

/* ---------------------------------------------------------------- predicates */

/** 1 when all components are 0. */
VX_API int32_t VxIdIsZero(const VxId *id);

/** 1 when each component is 0 or -1. */
VX_API int32_t VxIdNull(const VxId *id);

/** 1 when the first component is below -1; the others are not looked at. */
VX_API int32_t VxIdIsNegative(const VxId *id);

/** 1 when all components are equal. */
VX_API int32_t VxIdSame(const VxId *x, const VxId *y);

/* ---------------------------------------------------------------- arithmetic
 *
 * Sums wrap around at 32 bits. A component whose sum is reserved becomes 2.
 * Where a component below -1 becomes positive the sign is restored: the first
 * and third are negated, the second becomes the negated new first component.
 */

/** Add to each component. */
VX_API void VxIdAdd(VxId *id, int32_t da, int32_t db, int32_t dc);

/** Add one number to all components. */
VX_API void VxIdIncr(VxId *id, int32_t d);

/** z = x with the components of y added. z may be x or y. */
VX_API void VxIdCombine(const VxId *x, const VxId *y, VxId *z);

/** Negate the first component, if it is positive. */
VX_API void VxIdNegate(VxId *id);

/* ---------------------------------------------------------------- lists
 *
 * A list is searched one by one until VxIdListSort; from then on it is kept
 * in order, by a, b and c as signed numbers, and searched by halves.
 */

typedef struct VxIdEntry {
    VxId id;
    int32_t value;    /* the caller's */
    int32_t position; /* set when the entry is added */
    uint8_t flag;     /* the caller's */
} VxIdEntry;

/**
 * A new list is all zeros but for its increment; its owner frees `entries`
 * with VxMemFree.
 */
typedef struct VxIdList {
    int32_t increment; /* entries added when the list is full, 1 or more */
    int32_t capacity;  /* entries allocated */
    int32_t count;
    VxIdEntry *entries;
    int32_t sorted; /* not 0: in order */
} VxIdList;

/**
 * Add an entry unless its identifier is there.
 *
 * The position becomes the count after the addition, in the list and in the
 * caller's entry. For an identifier that is there only the caller's entry gets
 * it; on a list not sorted, that entry gets the value and flag found, too.
 *
 * @return 0, also for an identifier that is there; 1 when a full list cannot
 *         grow, with the list and the entry as they were
 */
VX_API uint32_t VxIdListAdd(VxIdList *list, VxIdEntry *entry);

/** VxIdListAdd without the search on a list not sorted; the position is the count before the addition. */
VX_API uint32_t VxIdListAdd2(VxIdList *list, VxIdEntry *entry);

/**
 * Sort a list, and keep it sorted.
 *
 * @param removeDuplicates  not 0: of entries with one identifier only the one
 *                          with the smallest position stays
 */
VX_API uint32_t VxIdListSort(VxIdList *list, int32_t removeDuplicates);

/** Look for the identifier of an entry: 1, with what was found put into the entry's other fields; else 0. */
VX_API int32_t VxIdOnList(VxIdList *list, VxIdEntry *entry);

/* ---------------------------------------------------------------- labels
 *
 * A label is told from others by all its bytes. One with a size below that of
 * this record is refused.
 */

/** A label; `size` is that of the record and the payload behind it, in bytes. */
typedef struct VxLbl {
    int32_t size;
    int32_t kind;
    VxId id;
} VxLbl;

/** Record a label in the set of the process, which keeps a copy until the end; again is no failure. */
VX_API uint32_t VxLblLog(const VxLbl *label);

/** 1 when a label with the same bytes was recorded. */
VX_API int32_t VxLblIsLogged(const VxLbl *label);

/** A copy in a new block; null after a failure. */
VX_API uint32_t VxLblDup(const VxLbl *label, VxLbl **copy);

/** The size of a label in bytes, payload included. */
VX_API int32_t VxLblSize(const VxLbl *label);

VX_C_END

#endif
