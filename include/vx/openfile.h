#ifndef VX_OPENFILE_H
#define VX_OPENFILE_H

/**
 * @file
 * Streams that are remembered until they are closed, so that a developer can
 * list at any moment which files the process still holds. The report is in
 * the symbol table under the name "f_report".
 *
 * Remembering never changes the result of opening and closing: without memory
 * a file is open and only not in the list. For the main thread; nothing locks
 * the list.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

/** Open a file as VxFileOpen() does: the stream, or null. It is listed under its canonical path. */
VX_API FILE *f_open(const char *name, const char *mode);

/** Close a stream, listed or not: fclose's result, and 0 for null. */
VX_API int32_t f_close(FILE *stream);

/**
 * Print the open files to standard output, one a line with the stream's
 * address; nothing before the first f_open() and after f_free().
 * @return 0
 */
VX_API int32_t f_report(void);

/** Forget the list; the files stay open. @return 0 */
VX_API int32_t f_free(void);

VX_C_END

#endif
