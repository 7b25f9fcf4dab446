#ifndef VX_INTSET_H
#define VX_INTSET_H

/**
 * @file
 * Sets of integers.
 */

#include "vx/types.h"
#include "vx/list.h"

VX_C_BEGIN

typedef struct VxIntSet {
    VxList *values;
    VxList *index;
} VxIntSet;

VX_API uint32_t VxIntSetInit(VxList *values, VxIntSet *set);
VX_API uint32_t VxIntSetMk(VxList *values, VxIntSet **set);
VX_API uint32_t VxIntSetDel(VxIntSet **set);
VX_API uint32_t VxIntSetPurge(VxIntSet *set);
VX_API uint32_t VxIntSetReset(VxIntSet *set);
VX_API uint32_t VxIntSetOptimize(VxIntSet *set);
VX_API int32_t VxIntSetEmpty(VxIntSet *set);
VX_API int32_t VxIntSetContains(VxIntSet *set, int32_t value);
VX_API uint32_t VxIntSetAdd(VxIntSet *set, int32_t value, int32_t *added);
VX_API uint32_t VxIntSetDelVal(VxIntSet *set, int32_t value);
VX_API uint32_t VxIntSetKeyList(VxIntSet *set, VxList **index);
VX_API uint32_t VxIntSetItrInit(VxIntSet *set, int32_t direction, VxListIter *iter);
VX_API int32_t VxIntSetItr(VxListIter *iter, int32_t *value);
VX_API int32_t *VxIntSetBegin(VxIntSet *set, VxListIter *iter);
VX_API int32_t *VxIntSetIncr(VxListIter *iter);

VX_C_END

#endif
