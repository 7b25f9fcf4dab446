#ifndef VX_MEM_H
#define VX_MEM_H

/**
 * @file
 * The general allocator with its emergency reserve.
 */

#include "vx/types.h"

VX_C_BEGIN

extern VX_API uint32_t (*VgEmergency)(int32_t);
extern VX_API int64_t VgMemUsed;
VX_API uint32_t VxMemInit(void);
VX_API uint32_t VxMemExit(void);
VX_API uint32_t VxMemEmerFree(void);
VX_API uint32_t VxMemAlloc(int32_t size, void **block);
VX_API uint32_t VxMemAllocZero(int32_t size, void **block);
VX_API uint32_t VxMemAllocAlt(int32_t size, void **block);
VX_API uint32_t VxMemAllocNoEmer(int32_t size, void **block);
VX_API uint32_t VxMemResize(int32_t size, void **block);
VX_API uint32_t VxMemResizeNoEmer(int32_t size, void **block);
VX_API uint32_t VxMemSmrtResize(int32_t size, void **block);
VX_API uint32_t VxMemFree(void **block);
VX_API uint32_t VxMemDup(int32_t size, const void *source, void **copy);
VX_API uint32_t VxMemCpy(void *dst, int32_t dstSize, const void *src, int32_t count);
VX_API int32_t VxMemIsZero(const void *bytes, int32_t count);
VX_API void *VxMemZero(void *bytes, int32_t count);
VX_API double *VxMemSetDouble(double *p, double value, int32_t count);
VX_API int32_t *VxMemSetInt(int32_t *p, int32_t value, int32_t count);
VX_API uint32_t Vx2DArrAlloc(int32_t elemSize, int32_t rows, int32_t columns, void ***array);
VX_API uint32_t Vx2DArrFree(void ***array);
VX_API void **VxMemAllocA2(int32_t rows, int32_t columns, int32_t elemSize);
VX_API int32_t **VxMemAllocA2Int(int32_t rows, int32_t columns);
VX_API uint32_t VxMemFreeA2(void **array);
VX_API uint32_t VxMemFreeA2Int(int32_t **array);
VX_API uint32_t VxMemCompress(int32_t direction, int32_t marker, const void *bytes, int32_t count, void **result, int32_t *resultSize);
VX_API void VxMemTracerLastMallocFailed(int32_t size);

VX_C_END

#endif
