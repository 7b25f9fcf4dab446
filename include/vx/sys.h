#ifndef VX_SYS_H
#define VX_SYS_H

/**
 * @file
 * Processes, system information and settings.
 */

#include "vx/types.h"

VX_C_BEGIN

VX_API uint32_t VxRegistryGet(int32_t root, const char *key, const char *value, char *buf, int32_t size);
VX_API uint32_t VxRegistrySet(int32_t root, const char *key, const char *value, const char *text);

VX_C_END

#endif
