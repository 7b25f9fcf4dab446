#ifndef VX_DEBUG_H
#define VX_DEBUG_H

/**
 * @file
 * Debug channels and trace output.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

VX_API int32_t VxGetDbgConfig(const char *name, char *file, int32_t size, int32_t *append, int32_t *group, int32_t *level);
VX_API uint32_t VxSetDbgCondCnfg(void);
VX_API uint32_t VxSetDbgDspCnfg(void);
VX_API int32_t VxSetDbgDispLvl(int32_t level);
VX_API int32_t VxDebugOutput(FILE *stream, int32_t kind, const char *module, int32_t line, int32_t newline, const char *format, ...);
extern VX_API FILE *VgToolsDbgFileDesc;
extern VX_API FILE *VgMathDbgFileDesc;
extern VX_API int32_t VgToolsDbgGroup;
extern VX_API int32_t VgToolsDbgLevel;
extern VX_API int32_t VgDbgDisplayLevel;
extern VX_API int32_t VgDbgDisplayLoc;
extern VX_API int32_t VgCondDbg;
extern VX_API int32_t VgMathDbgLevel;
extern VX_API int32_t VgMathDbgGroup;
extern VX_API char VgDbgFopenMode[5];

VX_C_END

#endif
