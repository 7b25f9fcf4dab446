#ifndef VX_SORT_H
#define VX_SORT_H

/**
 * @file
 * Sorted arrays of records, and tables of pairs.
 */

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxPair {
    int32_t key, value;
} VxPair;

typedef struct VxPairTable {
    int32_t increment, capacity, count;
    VxPair *pairs;
    int32_t changed;
} VxPairTable;

VX_API int32_t VxSortFind(void *array, int32_t count, int32_t size, const void *key, VxCmpFn compare, void **record);
VX_API int32_t VxSortFind2(void *array, int32_t count, int32_t size, const void *key, VxCmp4Fn compare, void **record, void *c1, void *c2);
VX_API int32_t VxSortFindForNL(void *array, int32_t count, int32_t size, const void *key, VxCmp4Fn compare, void **record, void *c1, void *c2);
VX_API int32_t VxSortIns(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare);
VX_API int32_t VxSortIns2(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare);
VX_API int32_t VxSortInsForNL(void *array, int32_t *count, int32_t size, const void *record, VxCmpFn compare);
VX_API int32_t VxSortDel(void *array, int32_t *count, int32_t size, const void *key, VxCmpFn compare);
VX_API int32_t VxSortDel2(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare, VxDelFn onDelete, void *c1, void *c2);
VX_API int32_t VxSortDelForNL(void *array, int32_t *count, int32_t size, const void *key, VxCmp4Fn compare, VxDelFn onDelete, void *c1, void *c2);
VX_API void VxSortInt(int32_t *array, int32_t n);
VX_API uint32_t VxPairAdd(VxPairTable *table, int32_t key, int32_t value);
VX_API int32_t VxPairIsOnList(VxPairTable *table, int32_t key, int32_t *value);

VX_C_END

#endif
