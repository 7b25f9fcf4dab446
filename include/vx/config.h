#ifndef VX_CONFIG_H
#define VX_CONFIG_H

/**
 * @file
 * Configuration options, typed.
 */

#include "vx/types.h"

VX_C_BEGIN

VX_API char *MapIn(const char *key);
VX_API char *MapOut(const char *key);
VX_API uint32_t VxConfigInt(const char *key, int32_t *out);
VX_API uint32_t VxConfigYesOrNo(const char *key, int32_t *out);
VX_API uint32_t VxLaDefaultInt(const char *key, int32_t *out);
VX_API uint32_t VxLaDefaultYesOrNo(const char *key, int32_t *out);
VX_API int32_t VxConfigNum(const char *key);
VX_API int32_t VxConfigYes(const char *key);
VX_API int32_t VxConfigNo(const char *key);
VX_API int32_t VxConfigColor(const char *key);
VX_API int32_t VxConfigVuColor(const char *key);
VX_API int32_t VxLaDefaultColor(const char *key);
VX_API int32_t VxLaDefaultVuColor(const char *key);
VX_API uint32_t VxConfigVal(const char *key, double *out);
VX_API uint32_t VxLaDefaultVal(const char *key, double *out);
VX_API uint32_t VxConfigString(const char *key, int32_t size, char *out);
VX_API uint32_t VxLaDefaultString(const char *key, int32_t size, char *out);
VX_API uint32_t VxConfigRGB(const char *key, int32_t *r, int32_t *g, int32_t *b);
VX_API uint32_t VxLaDefaultRGB(const char *key, int32_t *r, int32_t *g, int32_t *b);
VX_API int32_t VxConfigOpt(const char *key, const char *list);
VX_API int32_t VxLaDefaultOpt(const char *key, const char *list);
VX_API uint32_t VxAcmLoad(void);
VX_API uint32_t VxAcmMod(const char *key, const char *value);
VX_API uint32_t VxAcmInt(const char *key, int32_t value);
VX_API uint32_t VxAcmMerge(char *line);

VX_C_END

#endif
