#ifndef VX_SYM_H
#define VX_SYM_H

/**
 * @file
 * The symbol table: named functions, variables and tests.
 */

#include "vx/types.h"

VX_C_BEGIN

typedef int32_t (*VxSymFcn)(void);
typedef int32_t (*VxSymIntGetter)(const char *name, int32_t *value);
typedef int32_t (*VxSymIntSetter)(const char *name, int32_t value);
typedef int32_t (*VxSymDblGetter)(const char *name, double *value);
typedef int32_t (*VxSymDblSetter)(const char *name, double value);

VX_API void VxSymLog(const char *name, void *address);
VX_API void VxSymLogFcn(const char *name, VxSymFcn function);
VX_API void VxSymLog2(const char *name, uint64_t attributes);
VX_API void VxSymLogTestFcn(const char *name, VxSymFcn function);
VX_API void VxSymLogInt(const char *name, int32_t value);
VX_API void VxSymLogDbl(const char *name, double value);
VX_API void VxSymLogOff(const char *name);
VX_API uint32_t VxSymGet(const char *name, void **out);
VX_API VxSymFcn VxSymGetFcn(const char *name);
VX_API VxSymFcn VxSymGetFcnNoErr(const char *name);
VX_API VxSymFcn VxSymGetTestFcn(const char *name);
VX_API int32_t VxSymGetInt(const char *name);
VX_API int32_t VxSymTryGetInt(const char *name, int32_t *out);
VX_API double VxSymGetDbl(const char *name);
VX_API int32_t VxSymTryGetDbl(const char *name, double *out);
VX_API int32_t VxSymSetInt(const char *name, int32_t value);
VX_API int32_t VxSymSetDbl(const char *name, double value);
VX_API VxSymIntGetter VxSymSetIntGetter(VxSymIntGetter fn);
VX_API VxSymIntSetter VxSymSetIntSetter(VxSymIntSetter fn);
VX_API VxSymDblGetter VxSymSetDblGetter(VxSymDblGetter fn);
VX_API VxSymDblSetter VxSymSetDblSetter(VxSymDblSetter fn);
VX_API uint32_t VxSymGlobalReset(void);
VX_API void VxSymExecAllTestFcns(void);
VX_API uint32_t VxCheckMemory(void);

VX_C_END

#endif
