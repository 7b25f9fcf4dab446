#ifndef VX_ESCAPE_H
#define VX_ESCAPE_H

/**
 * @file
 * Escapes: interrupting long computations; signal call-backs; progress.
 */

#include "vx/types.h"

VX_C_BEGIN

extern VX_API int32_t VgEscapeFlag;
extern VX_API int32_t VgEscapeDisable;
extern VX_API int32_t VgEscNumChk;
extern VX_API int32_t VgEscMaxChk;
extern VX_API int32_t VgEscDlgFlag;
extern VX_API int32_t VgEcsDlgIsPop;
extern VX_API int32_t VgEscMoniThread;
extern VX_API int32_t VgEscapeErrorTime;
extern VX_API int32_t VgInLowLevelEscape;
extern VX_API int32_t VgSkipPushEscaper;
extern VX_API int32_t VgEchoEscaped;
extern VX_API int32_t (*VxEscStart)(int32_t);
extern VX_API int32_t (*VxEscCheck)(void);
extern VX_API int32_t (*VxEscCnt)(void);
extern VX_API void (*VxEscEnd)(void);
extern VX_API void (*VxEscRecover)(void);
extern VX_API void (*VxEscDlgPopStart)(void);
extern VX_API void (*VxEscDlgPopEnd)(void);
extern VX_API void (*VxEscaperPush)(void);
extern VX_API void (*VxEscaperPop)(void);
VX_API int32_t VxEscFnStart(int32_t n);
VX_API int32_t VxEscFnCheck(void);
VX_API void VxEscFnEnd(void);
VX_API uint32_t VxEscHandler(void);
VX_API uint32_t VxEscReset(void);
VX_API uint32_t VxEscDelAllCalls(void);
VX_API uint32_t VxEscInit(void);
VX_API uint32_t VxSigDelAllCalls(void);
VX_API uint32_t VxEscAddCall(VxCallFn fn);
VX_API uint32_t VxEscDelCall(VxCallFn fn);
VX_API uint32_t VxSigAddCall(VxCallFn fn);
VX_API uint32_t VxSigDelCall(VxCallFn fn);
VX_API int32_t VxProgress(intptr_t a0 VX_DEFAULT(0), intptr_t a1 VX_DEFAULT(0), intptr_t a2 VX_DEFAULT(0), intptr_t a3 VX_DEFAULT(0));

VX_C_END

#endif
