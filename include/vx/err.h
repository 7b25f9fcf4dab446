#ifndef VX_ERR_H
#define VX_ERR_H

/**
 * @file
 * Error reporting and the error log.
 */

#include <stdarg.h>

#include "vx/types.h"

VX_C_BEGIN

/** Shows one error to the user: module (alert-file id), severity, text. */
typedef void (*VxErrDspFn)(int32_t module, int32_t severity, const char *text);

VX_API uint32_t VxErrLoadFile(const char *name, int32_t *id);
VX_API uint32_t VxErrGet(int32_t id, int32_t number, int32_t *severity, char *text, int32_t size);
VX_API char *VxErr(int32_t id, int32_t number, char *text, int32_t size);
VX_API uint32_t VxErrLogNum(int32_t id, int32_t number, const char *where, int32_t extra);
VX_API uint32_t VxErrLogFmt(int32_t id, int32_t number, const char *where, int32_t extra, ...);
VX_API uint32_t VxErrLogArgs(int32_t id, int32_t number, const char *where, int32_t extra, va_list args);
VX_API uint32_t VxErrLogMsg(int32_t number, int32_t severity, const char *where, int32_t extra, const char *format, ...);
VX_API uint32_t VxErrLogVa(int32_t marker, int32_t number, int32_t severity, const char *where, int32_t extra, const char *format, ...);
VX_API uint32_t VxErrLogVarArg(int32_t marker, int32_t number, int32_t severity, const char *where, int32_t extra, const char *format, va_list args);
VX_API uint32_t VxErrLogSys(const char *prefix, const char *where, int32_t extra);
VX_API uint32_t VxErrLogSysFmt(int32_t id, int32_t number, const char *where, int32_t extra, ...);
VX_API uint32_t VxErrLogNumTime(int32_t id, int32_t number, int32_t interval, int64_t *last);
VX_API uint32_t VxErrInt(int32_t number, int32_t value);
VX_API uint32_t VxErrStr(int32_t number, const char *text);
VX_API uint32_t VxErrDisable(void);
VX_API uint32_t VxErrEnable(void);
VX_API uint32_t VxErrDisableOverride(int32_t flag);
VX_API int32_t VxErrIsDisabled(void);
VX_API uint32_t VxErrTempEnable(int32_t flag);
VX_API int32_t VxErrCnt(void);
VX_API uint32_t VxErrClear(void);
VX_API int32_t VxErrIsLogged(int32_t id, int32_t number);
VX_API uint32_t VxErrStatus(int32_t *errors, int32_t *warnings, int32_t *others);
VX_API uint32_t VxErrDisplay(void);
VX_API int32_t VxErrCheck(int32_t level);
VX_API uint32_t VxErrSetDspFun(VxErrDspFn fn);
VX_API uint32_t VxErrDefDspFun(void);

VX_C_END

#endif
