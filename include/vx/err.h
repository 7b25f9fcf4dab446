#ifndef VX_ERR_H
#define VX_ERR_H

/**
 * @file
 * Error reporting and the error log.
 *
 * Every failure of the toolkit, and of modules built on it, goes through one
 * log per process. Filing an error counts it, appends it to the pending list
 * and forwards its text to the host's event log (talm/base.h). Later the host
 * shows and empties the list with VxErrDisplay.
 *
 * Name of an error   an alert-file id and a number. A module registers its
 *                    alert file at start-up and keeps the id; before that the
 *                    id is -1, which no look-up accepts.
 * Severity           0 error, 1 warning, 2 information; others are allowed
 *                    and counted together with 2.
 * Where              the caller's name of the place, usually a function. Of a
 *                    longer text the last 254 bytes are kept; null is empty.
 * Extra              an integer of the caller's, kept and not interpreted;
 *                    the toolkit passes 0.
 * Text               at most 512 bytes, cut at a character.
 * Formats            printf's, under the C locale.
 * Repeats            a pair of file and number filed again within the same
 *                    second is counted but not filed. Any repeat starts the
 *                    second anew.
 * Results            logging gives 0 when the error was filed or left out on
 *                    purpose, 1 when it could not be formed: no text for the
 *                    number, a bad format, no memory.
 * Failures           the log never files errors about itself. It prints them
 *                    with VxPrintf and gives 1.
 * Threads            every function may be called from any thread. No lock is
 *                    held while the event log, the host's functions or
 *                    VxPrintf run, so a handler of the event log may log
 *                    again. Suppression is a thread's own. A mutex that the
 *                    system refuses raises std::system_error.
 *
 * Alert files
 *
 *     # Widget errors: number, severity, text
 *     7,0,The widget %s is not valid.
 *     [Fr]7,0,Le composant %s n'est pas valable.
 *     8,1,The widget %s is worn.
 *     9,No severity, so it is an error.
 *
 * One entry a line: the number, a comma, the severity, a comma, the text, to
 * the end of the line. An empty or missing severity is 0; when what stands
 * between the two commas is no number, the text begins there. White space at
 * the start of a line does not count. Blank lines, lines that begin with "#"
 * and lines that are no entries are skipped. A line counts to its 255th byte;
 * it ends with LF or CR LF. Bytes are in the process code page.
 *
 * Entries for one number stand together, the plain line first. A line that
 * begins with a language's tag (vx/lang.h), in upper or lower case, counts
 * only while that language is set, and then wins over the plain line; other
 * languages' lines are passed over. The last line that counts is taken.
 *
 * Texts are formats for VxErrLogFmt and its like: a translation takes the
 * same conversions in the same order. Texts of errors that are filed with
 * VxErrLogNum are taken as they stand.
 */

#include <stdarg.h>

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- files and look-up */

/**
 * Register an alert file.
 *
 * @param name  at most 255 bytes; found as VxPathFindIn(name, "text", 1) does
 * @param id    receives the id; the same file gives the same id again
 * @return 0; 1 for a longer name ("Error file name is longer than %d
 *         characters." is printed), a file that is not found ("Unable to
 *         access error file %s."), or no memory; `id` is then as it was
 */
VX_API uint32_t VxErrLoadFile(const char *name, int32_t *id);

/**
 * Look an error up in the current language.
 *
 * @param severity  receives it; may be null
 * @param text      receives the text, cut to `size` bytes with its end
 * @return 0; 1 when the number is not there, silently, or when the file has
 *         gone ("Unable to access error file %s.") or the id is of no file
 *         ("Invalid error file id (%d)."), each printed with a line break.
 *         Nothing is written then.
 */
VX_API uint32_t VxErrGet(int32_t id, int32_t number, int32_t *severity, char *text, int32_t size);

/** VxErrGet for the text alone: `text`, empty when the look-up failed. */
VX_API char *VxErr(int32_t id, int32_t number, char *text, int32_t size);

/* ---------------------------------------------------------------- filing an error */

/**
 * File an error under its text and severity in an alert file. While
 * VgEscapeFlag (vx/escape.h) is set, nothing is filed and the result is 0.
 */
VX_API uint32_t VxErrLogNum(int32_t id, int32_t number, const char *where, int32_t extra);

/** VxErrLogNum with the looked-up text as a format for the further arguments. */
VX_API uint32_t VxErrLogFmt(int32_t id, int32_t number, const char *where, int32_t extra, ...);

/** VxErrLogFmt with a prepared list, and heedless of VgEscapeFlag. */
VX_API uint32_t VxErrLogArgs(int32_t id, int32_t number, const char *where, int32_t extra, va_list args);

/** File an error with the caller's text, under alert-file id 0; an empty text is not filed. */
VX_API uint32_t VxErrLogMsg(int32_t number, int32_t severity, const char *where, int32_t extra,
                            const char *format, ...);

/**
 * The general form.
 *
 * @param marker  an alert-file id: the text is looked up there when the error
 *                is shown, and `format`, which may be null or empty, serves
 *                until then. Negative: the text is `format`'s, and the error
 *                is kept under the id ~marker; with the text empty it is not
 *                filed.
 */
VX_API uint32_t VxErrLogVa(int32_t marker, int32_t number, int32_t severity, const char *where, int32_t extra,
                           const char *format, ...);

/** VxErrLogVa with a prepared list: what all the others come down to. */
VX_API uint32_t VxErrLogVarArg(int32_t marker, int32_t number, int32_t severity, const char *where,
                               int32_t extra, const char *format, va_list args);

/**
 * File what errno says, as number 1 with severity 0 under alert-file id 0:
 * the prefix and a blank, unless it is null, and the system's text.
 *
 * @return 1 also for an errno that the system has no text for
 */
VX_API uint32_t VxErrLogSys(const char *prefix, const char *where, int32_t extra);

/** VxErrLogFmt with ": " and the system's text for errno behind; kept under alert-file id 0. */
VX_API uint32_t VxErrLogSysFmt(int32_t id, int32_t number, const char *where, int32_t extra, ...);

/**
 * VxErrLogNum at most once in a while.
 *
 * @param interval  seconds; filed when more than this have passed since `last`
 * @param last      in: seconds since 1970 of the last time, 0 for never; set
 *                  to now when the error is passed on, whatever comes of it
 */
VX_API uint32_t VxErrLogNumTime(int32_t id, int32_t number, int32_t interval, int64_t *last);

/** File an error of the toolkit's own alert file whose text takes one integer. */
VX_API uint32_t VxErrInt(int32_t number, int32_t value);

/** File an error of the toolkit's own alert file whose text takes one text. */
VX_API uint32_t VxErrStr(int32_t number, const char *text);

/* ---------------------------------------------------------------- suppression, by thread
 *
 * While a thread's depth is above 0, its errors are neither filed, counted
 * nor forwarded; logging them succeeds. VgErrOccurred is set all the same.
 */

/** One level deeper. Always 0. */
VX_API uint32_t VxErrDisable(void);

/** One level back, not below 0. Always 0. */
VX_API uint32_t VxErrEnable(void);

/** Non-zero: VxErrDisable and VxErrEnable do nothing on this thread until it is called with 0. Always 0. */
VX_API uint32_t VxErrDisableOverride(int32_t flag);

/** 1 while this thread's errors are suppressed. */
VX_API int32_t VxErrIsDisabled(void);

/** Non-zero: remember the depth and go to 0. Zero: back to what was remembered. Does not nest. Always 0. */
VX_API uint32_t VxErrTempEnable(int32_t flag);

/* ---------------------------------------------------------------- pending errors */

/** Number of pending errors. */
VX_API int32_t VxErrCnt(void);

/** Drop the pending errors unseen. Always 0. */
VX_API uint32_t VxErrClear(void);

/** 1 when an error of this alert-file id and number is pending. */
VX_API int32_t VxErrIsLogged(int32_t id, int32_t number);

/**
 * Read the counters of severity 0, of 1, and of all others; repeats count
 * too. Each null argument sets its counter to 0 instead. Always 0.
 */
VX_API uint32_t VxErrStatus(int32_t *errors, int32_t *warnings, int32_t *others);

/**
 * Look up the texts still missing, note in VgActiveErrOccurred whether an
 * error with a text and a severity below 1 was pending, empty the list, and
 * have the event log report (EsReport). Host functions 28, 32, 33 and 35 may
 * take that note back beforehand or act on it: when 28 says yes, 32 no, and
 * level 4 is being checked, the note becomes 0 if 33 is absent or says yes,
 * else 35 is called.
 *
 * @return 0; 1 when a number is not in its file ("Unable to get error %d." is
 *         printed; its text stays empty), or when a file cannot be opened
 *         ("Unable to access error file %s."): then the display ends there
 *         and the list is kept
 */
VX_API uint32_t VxErrDisplay(void);

/** Whether the event log checks this level in the toolkit's category, 6. */
VX_API int32_t VxErrCheck(int32_t level);

/* ---------------------------------------------------------------- display hook */

/** Shows one error to the user: module (alert-file id), severity, text. */
typedef void (*VxErrDspFn)(int32_t module, int32_t severity, const char *text);

/** Keep a function for hosts that show errors themselves; the toolkit does not call it. Always 0. */
VX_API uint32_t VxErrSetDspFun(VxErrDspFn fn);

/**
 * Keep the default function, which prints severities 0 to 2 through the
 * formats 2 to 4 of the catalogue loaded as "Tools.MSG". Always 0.
 */
VX_API uint32_t VxErrDefDspFun(void);

VX_C_END

#endif
