#ifndef VX_ESCAPE_H
#define VX_ESCAPE_H

/**
 * @file
 * Escapes: how the user interrupts a long computation; the call-backs of a
 * fatal signal; progress.
 *
 * Raising   The application sees the user's wish, perhaps on a thread of its
 *           own, and calls VxEscHandler. That raises VgEscapeFlag and runs
 *           the escape call-backs.
 * Polling   A computation brackets its work with the hooks VxEscStart(n) and
 *           VxEscEnd() and counts each step in VgEscNumChk. When the count
 *           passes VgEscMaxChk it asks the hook VxEscCheck, whose non-zero
 *           answer ends the work. Otherwise VgEscapeFlag ends it, unless
 *           VgEscapeDisable is set. An interrupted function returns 1 and
 *           files nothing.
 * Silence   While VgEscapeFlag is up the error log files nothing.
 * Hooks     The hook variables are called through, so that an application can
 *           put its own functions there; start-up puts the VxEscFn functions
 *           into three of them. Replace them while nothing computes.
 * Threads   Flag and counters are plain integers that several threads may
 *           touch: VxEscHandler, VxEscReset and the call-back tables may be
 *           used from any thread. Computations that run at once share one
 *           count, and one escape ends them all.
 */

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- state */

/** 1 while an escape is in force. */
extern VX_API int32_t VgEscapeFlag;

/** Non-zero: polls ignore VgEscapeFlag; the check hook is still asked and obeyed. */
extern VX_API int32_t VgEscapeDisable;

/** Steps counted since the check hook was last asked. */
extern VX_API int32_t VgEscNumChk;

/** Steps after which the check hook is asked: 0 at first, 0x7fffffff after an operation. */
extern VX_API int32_t VgEscMaxChk;

/** Of the application's escape dialog and monitor: 0, and without meaning to the toolkit. */
extern VX_API int32_t VgEscDlgFlag;
extern VX_API int32_t VgEcsDlgIsPop;
extern VX_API int32_t VgEscMoniThread;
extern VX_API int32_t VgEscapeErrorTime;
extern VX_API int32_t VgInLowLevelEscape;
extern VX_API int32_t VgSkipPushEscaper;
extern VX_API int32_t VgEchoEscaped;

/* ---------------------------------------------------------------- hooks */

/** Begins an operation that asks every n steps, usually VgEscapeCnt; gives n. Start-up: VxEscFnStart. */
extern VX_API int32_t (*VxEscStart)(int32_t n);

/** Whether to stop now. Gives 0; start-up: VxEscFnCheck. */
extern VX_API int32_t (*VxEscCheck)(void);

/** Ends an operation. Does nothing; start-up: VxEscFnEnd. */
extern VX_API void (*VxEscEnd)(void);

/** After the outermost command (vx/escape.hpp). Does nothing. */
extern VX_API void (*VxEscRecover)(void);

/** For the application alone: the first gives 0, the next two do nothing, the last two are null. */
extern VX_API int32_t (*VxEscCnt)(void);
extern VX_API void (*VxEscDlgPopStart)(void);
extern VX_API void (*VxEscDlgPopEnd)(void);
extern VX_API void (*VxEscaperPush)(void);
extern VX_API void (*VxEscaperPop)(void);

/** The standard hooks: lower the flag, set count and interval; reset the count and tell the flag; end. */
VX_API int32_t VxEscFnStart(int32_t n);
VX_API int32_t VxEscFnCheck(void);
VX_API void VxEscFnEnd(void);

/* ---------------------------------------------------------------- escaping */

/**
 * The user escapes: raise the flag and run the escape call-backs in slot
 * order. Does nothing while the flag is up.
 *
 * @return 0
 */
VX_API uint32_t VxEscHandler(void);

/** Lower the flag. @return 0 */
VX_API uint32_t VxEscReset(void);

/**
 * Put a call-back into the first empty of the 4 slots. The same function may
 * take several. Call-backs run on the thread that escapes.
 *
 * @return 0, or 1 for null (without a report) and when all slots are taken (toolkit error 29)
 */
VX_API uint32_t VxEscAddCall(VxCallFn fn);

/** Empty the first slot that holds `fn`, if any. @return 0 */
VX_API uint32_t VxEscDelCall(VxCallFn fn);

/** Empty all slots; both do the same. @return 0 */
VX_API uint32_t VxEscDelAllCalls(void);
VX_API uint32_t VxEscInit(void);

/* ---------------------------------------------------------------- fatal signals
 *
 * Call-backs that run in slot order in the handler that VxSigInit installs,
 * before the process goes down, for instance to save the user's work. They
 * run in a signal handler, on a small stack, in a process whose state may be
 * damaged: a call-back that fails itself ends the process at once.
 */

/** As VxEscAddCall, for the 32 signal slots; all taken is toolkit error 30. */
VX_API uint32_t VxSigAddCall(VxCallFn fn);

/** Empty the first slot that holds `fn`, if any. @return 0 */
VX_API uint32_t VxSigDelCall(VxCallFn fn);

/** Empty all signal slots. @return 0 */
VX_API uint32_t VxSigDelAllCalls(void);

/* ---------------------------------------------------------------- progress */

/** Hand progress, in words of its own, on to VgProgressCb (vx/tools.h): its result, or 0 without one. */
VX_API int32_t VxProgress(intptr_t a0 VX_DEFAULT(0), intptr_t a1 VX_DEFAULT(0), intptr_t a2 VX_DEFAULT(0),
                          intptr_t a3 VX_DEFAULT(0));

VX_C_END

#endif
