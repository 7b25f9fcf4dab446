#ifndef VX_COMPRESS_H
#define VX_COMPRESS_H

/**
 * @file
 * Compression of memory blocks; queries to the host.
 */

#include "vx/types.h"

VX_C_BEGIN

VX_API uint32_t VxLibDeflate(const void *source, int32_t length, void **result, int32_t *resultLength);
VX_API uint32_t VxLibInflate(const void *source, int32_t length, void **result, int32_t *resultLength);
VX_API int32_t VerNum(void);
VX_API int32_t HkVersionLessThan(intptr_t a0 VX_DEFAULT(0), intptr_t a1 VX_DEFAULT(0), intptr_t a2 VX_DEFAULT(0), intptr_t a3 VX_DEFAULT(0));
VX_API int32_t HkQaTestIsActive(void);

VX_C_END

#endif
