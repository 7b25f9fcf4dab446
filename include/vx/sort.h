#ifndef VX_SORT_H
#define VX_SORT_H

/**
 * @file
 * Sorted arrays of records, and tables of pairs.
 *
 * The functions work on a plain array of the caller's and own nothing: the
 * caller passes the array, its count and the size of a record in bytes, and
 * before an insertion has room for one record more; it is not checked.
 *
 * Order        Each record compares not below any in front of it. Equal
 *              records may stand side by side.
 * Search       Binary: the middle of low and high is (low + high) / 2, and of
 *              equal records the first one met is taken.
 * ForNL        Forms for comparisons that call records equal which do not
 *              stand at their sorted place. Where the binary search finds
 *              nothing, the records at positions 1, 2, ... are compared in
 *              turn. The one at position 0 is not looked at again. An absent
 *              key costs count - 1 comparisons more.
 * Comparison   compare(key, record), or compare(c1, c2, key, record) with two
 *              words of the caller's. Negative: the key belongs in front of
 *              the record; positive: behind it.
 * Results      1 or 0, but for VxPairAdd. 0 also for a null array, count,
 *              record or comparison, and for a size below 1.
 * Threads      The caller keeps two threads from using one array at once;
 *              there is no other state.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- finding */

/**
 * Find a record that is equal to a key.
 *
 * @param record  receives its address in the array, or null; may be null
 * @return 1 when there is one
 */
VX_API int32_t VxSortFind(void *array, int32_t count, int32_t size, const void *key, VxCmpFn compare,
                          void **record);
VX_API int32_t VxSortFind2(void *array, int32_t count, int32_t size, const void *key, VxCmp4Fn compare,
                           void **record, void *c1, void *c2);
VX_API int32_t VxSortFindForNL(void *array, int32_t count, int32_t size, const void *key, VxCmp4Fn compare,
                               void **record, void *c1, void *c2);

/* ---------------------------------------------------------------- inserting */

/**
 * Insert a copy of a record at its sorted place, behind an equal one that the
 * search met, and add 1 to the count.
 *
 * @return 1
 */
VX_API int32_t VxSortIns(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare);

/** VxSortIns that refuses equals: 0, with the array as it was, when the search meets an equal record. */
VX_API int32_t VxSortIns2(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare);

/** VxSortIns behind an equal record wherever it stands, see ForNL above; without one, at the sorted place. */
VX_API int32_t VxSortInsForNL(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare);

/* ---------------------------------------------------------------- deleting */

/** Remove a record that is equal to a key and close the gap: 1, or 0 when there is none. */
VX_API int32_t VxSortDel(void *array, int32_t *count, int32_t size, const void *key, VxCmpFn compare);

/**
 * The same with a call-back.
 *
 * @param onDelete  called once, with c1, c2 and the record while it still
 *                  stands in the array, so that what it refers to can be
 *                  freed; may be null
 */
VX_API int32_t VxSortDel2(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare,
                          VxDelFn onDelete, void *c1, void *c2);
VX_API int32_t VxSortDelForNL(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare,
                              VxDelFn onDelete, void *c1, void *c2);

/* ---------------------------------------------------------------- integers and pairs
 *
 * Both are in descending order, the largest first.
 */

/** Sort n integers, the largest first. */
VX_API void VxSortInt(int32_t *array, int32_t n);

/** A key and its value. */
typedef struct VxPair {
    int32_t key, value;
} VxPair;

/**
 * A table of pairs in descending order of keys. A new one is all zeros but
 * for its increment; its owner frees `pairs` with VxMemFree.
 */
typedef struct VxPairTable {
    int32_t increment; /* pairs added when the table is full, 1 or more */
    int32_t capacity;  /* pairs allocated */
    int32_t count;
    VxPair *pairs;
    int32_t changed; /* set to 1 by every VxPairAdd, cleared by the owner */
} VxPairTable;

/**
 * Add a pair. Equal keys are kept as pairs of their own.
 *
 * @return 0; 1 when a full table cannot grow, which leaves it as it was
 */
VX_API uint32_t VxPairAdd(VxPairTable *table, int32_t key, int32_t value);

/**
 * Look a key up.
 *
 * @param value  receives the value of a pair with this key, else 0; may be null
 * @return 1 when the key is in the table
 */
VX_API int32_t VxPairIsOnList(VxPairTable *table, int32_t key, int32_t *value);

VX_C_END

#endif
