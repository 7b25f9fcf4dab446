#ifndef VX_LIST_H
#define VX_LIST_H

/**
 * @file
 * The generic list of fixed-size elements, in six layouts.
 */

#include "vx/types.h"
#include "vx/queue.h"

VX_C_BEGIN

struct VxList {
    int32_t layout, elemSize, count, capacity, increment, pageLevel, dirSlots, perPage, perPage2;
    void *data;
    VxLnkNode *order;
    VxCmpFn compare;
};

struct VxListIter {
    int32_t index;
    void *cursor;
    int32_t direction;
    VxList *list;
    int32_t bound;
};

typedef struct VxListIterOld {
    int32_t index;
    void *cursor;
} VxListIterOld;

/** Unit of paged storage in bytes: the system's page less 4; 0 before VxToolsGlobal (vx/tools.h). */
extern VX_API int32_t VgPageSize;
VX_API uint32_t VxListMk(int32_t layout, int32_t elemSize, int32_t capacity, int32_t increment, VxCmpFn compare, VxList **list);
VX_API uint32_t VxListWrapArr(int32_t elemSize, int32_t count, int32_t capacity, void *array, VxList *record);
VX_API uint32_t VxArrCnvrtList(int32_t elemSize, int32_t count, void *array, VxList **list);
VX_API uint32_t VxListDelList(VxList *list);
VX_API uint32_t VxListDel(VxList **list);
VX_API uint32_t VxListOfListDel(VxList **list);
VX_API uint32_t VxListReset(VxList *list);
VX_API uint32_t VxListSet(VxList *list, int32_t index, const void *element);
VX_API uint32_t VxListIns(VxList *list, int32_t index, const void *element);
VX_API uint32_t VxListGetPtr(VxList *list, int32_t index, void **ptr);
VX_API uint32_t VxListArrayPtr(VxList *list, int32_t index, void **ptr);
VX_API uint32_t VxListGet(VxList *list, int32_t index, void *element);
VX_API uint32_t VxListFill(VxList *list, int32_t first, int32_t n, const void *element);
VX_API uint32_t VxListSetUnique(VxList *list, const void *element, int32_t *index);
VX_API int32_t VxListIndexOf(VxList *list, const void *element, int32_t direction);
VX_API int32_t VxListIsArray(const VxList *list);
VX_API uint32_t VxListGetArray(VxList *list, void **ptr);
VX_API uint32_t VxLstGetNxtPtr(VxList *list, VxListIter *iter, void **ptr);
VX_API uint32_t VxListGetPrvPtr(VxList *list, VxListIter *iter, void **ptr);
VX_API uint32_t VxListDelElem(VxList *list, int32_t first, int32_t last);
VX_API uint32_t VxListDelVal(VxList *list, const void *element);
VX_API uint32_t VxListDownsize(VxList *list, int32_t n);
VX_API uint32_t VxListResizeArr(VxList *list, int32_t n);
VX_API uint32_t VxListSizeError(void);
VX_API uint32_t VxListCopy(VxList *source, VxList **copy);
VX_API uint32_t VxListCopy2(VxList *source, VxList *destination);
VX_API uint32_t VxListConcat(VxList *destination, VxList *source);
VX_API uint32_t VxListCnvrt(int32_t layout, VxList *list, VxList **newList);
VX_API uint32_t VxListConvert(int32_t layout, VxList *list);
VX_API uint32_t VxListCnvrtArr(int32_t elemSize, VxList *list, int32_t *count, void **array);
VX_API uint32_t HashConvertList(VxList *keyed, VxList *destination);
VX_API uint32_t VxKeyListCnvrt(VxList *keyed, VxList *destination);
VX_API uint32_t VxListRvrs(VxList *list);
VX_API uint32_t VxListItrInit2(VxList *list, int32_t direction, VxListIter *iter);
VX_API int32_t VxListItrPtr(VxListIter *iter, void **ptr);
VX_API int32_t VxListItr(VxListIter *iter, void *element);
VX_API uint32_t VxListItrInit(VxList *list, int32_t direction, VxListIterOld *start);
VX_API uint32_t VxListSort(VxList *list, VxCmpFn compare);
VX_API uint32_t VxListSort2(VxList *list, VxCmpFn compare, int32_t **order);
VX_API uint32_t VxListSort3(VxList *list, VxCmpFn compare, int32_t **order);
VX_API uint32_t VxListSrch(VxList *list, const int32_t *order, const void *key, VxCmpFn compare, int32_t *found, int32_t *index);

VX_C_END

#endif
