#ifndef VX_DEBUG_H
#define VX_DEBUG_H

/**
 * @file
 * Trace channels: switched on by options, written to a stream and to the
 * debugger.
 *
 * A channel has a name, usually a module's. Options (vx/config.h) of a channel
 * called Tools:
 *
 *     Debug.Tools         integer: on when present and not 0
 *     Debug.Tools.File    where it goes: a text with "stdout" or "stderr" in
 *                         it is that stream; ">>name" appends to a file; any
 *                         other text names a file to overwrite
 *     Debug.Tools.Group   integer: groups to trace, as the channel's owner
 *                         reads it
 *     Debug.Tools.Level   integer: how much of them
 *
 * For all channels: Debug.DisplayLoc, lines show where they come from, and
 * Debug.ValidMac, conditional debugging, which only the value 1 switches on.
 *
 * Threads   read options on the main thread. VxDebugOutput may be called
 *           from any thread; lines of two threads may mix.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

/** The toolkit's channel; the stream is standard error after VxToolsGlobal, null before. */
extern VX_API FILE *VgToolsDbgFileDesc;
extern VX_API int32_t VgToolsDbgGroup;
extern VX_API int32_t VgToolsDbgLevel;

/** The mathematics channel; standard error after VxMathGlobal, null before. */
extern VX_API FILE *VgMathDbgFileDesc;
extern VX_API int32_t VgMathDbgGroup;
extern VX_API int32_t VgMathDbgLevel;

/** How the trace file of the channel read last is opened: "w" or "a". */
extern VX_API char VgDbgFopenMode[5];

/** Not 0: trace lines show module and line. 1 after VxToolsGlobal. */
extern VX_API int32_t VgDbgDisplayLoc;

/** As VxSetDbgDispLvl set it. */
extern VX_API int32_t VgDbgDisplayLevel;

/** 1 while conditional debugging is on. */
extern VX_API int32_t VgCondDbg;

/**
 * Read a channel's options.
 *
 * @param name    the channel; the keys made of it hold at most 255 bytes
 * @param file    receives "stdout", "stderr" or a bare file name: the text of
 *                the option up to the first character that is not an ASCII
 *                letter, a digit or one of "._-+". "stderr" when there is
 *                none. Cut to `size` bytes.
 * @param append  receives 1 for a file to append to, else 0; VgDbgFopenMode
 *                becomes "a" or "w"
 * @param group, level  receive the integers, 0 when absent
 * @return 1 when the channel is on; else 0, with an empty file and zeros
 */
VX_API int32_t VxGetDbgConfig(const char *name, char *file, int32_t size, int32_t *append, int32_t *group,
                              int32_t *level);

/** Set VgCondDbg by its option; when that is absent, only a 1 stays. Always 0. */
VX_API uint32_t VxSetDbgCondCnfg(void);

/**
 * Set VgDbgDisplayLoc by its option, if present.
 *
 * @return 1 when it is on in the end, and when the option is absent; else 0
 */
VX_API uint32_t VxSetDbgDspCnfg(void);

/** Set VgDbgDisplayLevel: `level`. */
VX_API int32_t VxSetDbgDispLvl(int32_t level);

/**
 * Write one trace entry and flush the stream: the message, at most 2039
 * bytes, two blanks, and with VgDbgDisplayLoc "Module:<module>, Line:<line>"
 * behind "ERROR @ " for kind 16 or "WARN @ " for kind 32. The debugger gets
 * the message alone.
 *
 * @param newline  not 0: end the line
 * @param format   printf's, under the C locale
 * @return 0, or EOF for a null argument, a bad format or a failed flush
 */
VX_API int32_t VxDebugOutput(FILE *stream, int32_t kind, const char *module, int32_t line, int32_t newline,
                             const char *format, ...);

VX_C_END

#endif
