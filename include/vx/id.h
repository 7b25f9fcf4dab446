#ifndef VX_ID_H
#define VX_ID_H

/**
 * @file
 * Identifiers and labels.
 */

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxId {
    int32_t a, b, c;
} VxId;

typedef struct VxIdEntry {
    VxId id;
    int32_t value;
    int32_t position;
    uint8_t flag;
} VxIdEntry;

typedef struct VxIdList {
    int32_t increment, capacity, count;
    VxIdEntry *entries;
    int32_t sorted;
} VxIdList;

/** A label; size - 20 payload bytes follow it. */
typedef struct VxLbl {
    int32_t size;
    int32_t kind;
    VxId id;
} VxLbl;

VX_API uint32_t VxIdNew(VxId *id);
VX_API uint32_t VxIdInit(VxId *id);
VX_API void VxIdZero(VxId *id);
VX_API void VxIdMinusOne(VxId *id);
VX_API void VxIdNegate(VxId *id);
VX_API int32_t VxIdIsZero(const VxId *id);
VX_API int32_t VxIdNull(const VxId *id);
VX_API int32_t VxIdIsNegative(const VxId *id);
VX_API int32_t VxIdSame(const VxId *x, const VxId *y);
VX_API void VxIdAdd(VxId *id, int32_t da, int32_t db, int32_t dc);
VX_API void VxIdIncr(VxId *id, int32_t d);
VX_API void VxIdCombine(const VxId *x, const VxId *y, VxId *z);
VX_API uint32_t VxIdListAdd(VxIdList *list, VxIdEntry *entry);
VX_API uint32_t VxIdListAdd2(VxIdList *list, VxIdEntry *entry);
VX_API uint32_t VxIdListSort(VxIdList *list, int32_t removeDuplicates);
VX_API int32_t VxIdOnList(VxIdList *list, VxIdEntry *entry);
VX_API uint32_t VxLblLog(const VxLbl *label);
VX_API int32_t VxLblIsLogged(const VxLbl *label);
VX_API uint32_t VxLblDup(const VxLbl *label, VxLbl **copy);
VX_API int32_t VxLblSize(const VxLbl *label);

VX_C_END

#endif
