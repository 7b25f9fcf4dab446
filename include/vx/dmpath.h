#ifndef VX_DMPATH_H
#define VX_DMPATH_H

/**
 * @file
 * The user's search paths.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

VX_API uint32_t DmPathInit(void);
VX_API uint32_t DmPathSet(char *path, int32_t atFront, int32_t *added);
VX_API uint32_t DmPathAdd(const char *path);
VX_API uint32_t DmPathDel(const char *path);
VX_API uint32_t DmPathActive(const char *path);
VX_API uint32_t DmCompPathActive(const char *path);
VX_API int32_t DmPathIsLogged(char *path, int32_t size);
VX_API uint32_t DmPathGet(int32_t *first, char *out, int32_t size);
VX_API uint32_t DmPathSave(int32_t force);
VX_API uint32_t DmPathActiveGet(char *out, int32_t size);
VX_API uint32_t DmCompPathRestore(void);
VX_API int32_t DmPathCheckActiveOnlySet(int32_t flag);
VX_API int32_t DmPathSearchSet(int32_t flag);
VX_API int32_t DmPathCheckActiveOnlyGet(void);
VX_API int32_t DmPathSearchGet(void);

VX_C_END

#endif
