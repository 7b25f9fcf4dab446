#ifndef VX_DMPATH_H
#define VX_DMPATH_H

/**
 * @file
 * The user's search paths: the directories in which model and data files that
 * are named without a directory are looked for. The user edits the list; it
 * is saved in a file and comes back at the next start.
 *
 * Entries      Canonical paths (VxPathReal) of at most 255 bytes, no two
 *              equal ignoring case. An entry that ends in "\..." stands for
 *              a directory with its subdirectories.
 * Active path  The directory most recently set, searched before the list.
 * Component    A file that the application sets while it resolves one
 * path         referenced component.
 * Saved file   User folder 14, a text: an empty line, then each entry with an
 *              empty line behind it. When read, blanks around a line, empty
 *              lines and lines that begin with # do not count; a line has at
 *              most 255 bytes.
 * Reports      What the user must know goes to host function 71 as a text,
 *              Tools messages 45 and 46; nothing is filed in the error log.
 * Results      0 done, 1 failed, unless a function says otherwise.
 * Threads      Main thread only.
 *
 * VxDmgrInit() (vx/tools.h) resets paths and flags and reads the saved list;
 * VxDmgrExit() frees the list.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- the list */

/**
 * Add the entries of the saved file behind those of the list. A missing file
 * is none; one that cannot be opened is shown to the user (message 45).
 * @return 0, or 1 for no memory
 */
VX_API uint32_t DmPathInit(void);

/**
 * Add a directory and make it the active path, which it becomes also when the
 * list has it already. One that cannot be made canonical, or whose entry is
 * too long, is shown to the user (message 46) and is no failure.
 *
 * @param path     a final "\..." asks for the subdirectories too, and is cut
 *                 off in the caller's text
 * @param atFront  non-zero: in front of the others, else behind them
 * @param added    receives 1 when the list has a new entry, else 0; may be null
 * @return 0, or 1 for no memory; list and active path are then as they were
 */
VX_API uint32_t DmPathSet(char *path, int32_t atFront, int32_t *added);

/**
 * Add a directory in front, leaving the caller's text alone, and save the
 * list (DmPathSave(0)) when that made a new entry.
 * @return 0, or 1 for no memory; a list that could not be saved is no failure
 */
VX_API uint32_t DmPathAdd(const char *path);

/**
 * Take the entry of this text out of the list; no failure when there is none.
 * A walk with DmPathGet() goes on behind it.
 */
VX_API uint32_t DmPathDel(const char *path);

/** Make `path` canonical in place (VxPathReal2) and tell whether the list has it. */
VX_API int32_t DmPathIsLogged(char *path, int32_t size);

/**
 * Walk the list: `int32_t first = 1; while (DmPathGet(&first, text, size) == 0)`.
 * There is one walk for the process.
 *
 * @param first  non-zero starts at the first entry; cleared
 * @return 0, or 1 at the end, and for an entry that does not fit, which stays the next one
 */
VX_API uint32_t DmPathGet(int32_t *first, char *out, int32_t size);

/**
 * Save the list. Nothing is written, and that is no failure, while host
 * function 28 answers that the host manages paths itself, and, unless `force`
 * is non-zero, while option "Vx.AutoSavePaths" is answered no.
 * @return 0, or 1 when the file cannot be written, which is shown to the user
 *         (message 45); the file is then as it was
 */
VX_API uint32_t DmPathSave(int32_t force);

/* ---------------------------------------------------------------- what stands over the list */

/** Set or read the active path: 255 bytes, taken as it is; a longer one is refused. Empty for none. */
VX_API uint32_t DmPathActive(const char *path);
VX_API uint32_t DmPathActiveGet(char *out, int32_t size);

/** Set or clear the component path: 255 bytes, taken as it is; a longer one is refused. */
VX_API uint32_t DmCompPathActive(const char *path);
VX_API uint32_t DmCompPathRestore(void);

/** Whether the search ends when a file is not in the active path; at first 0. The setter gives the flag. */
VX_API int32_t DmPathCheckActiveOnlySet(int32_t flag);
VX_API int32_t DmPathCheckActiveOnlyGet(void);

/** Whether the list is searched at all; at first 1. The setter gives the flag. */
VX_API int32_t DmPathSearchSet(int32_t flag);
VX_API int32_t DmPathSearchGet(void);

VX_C_END

#endif
