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
 * Host         Functions of the application's (talm/base.h). Predicates take no
 *              arguments; mapping functions take a name, a buffer and its
 *              size, 335, and count when what they write is there. One that
 *              is absent is not asked.
 *                28  the host manages paths itself: nothing is saved, and
 *                29  maps a name that was found nowhere
 *                52  a vault is in use, and 30 maps names first of all
 *                50  asked when 52 says no: a project is, and 49 maps names
 *                63  takes a locator, "://part" or a text with a slash, and
 *                    answers non-zero when it has the file
 *                71  shows a text to the user
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
 * is none; one that cannot be opened or read is shown to the user (message
 * 45).
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

/* ---------------------------------------------------------------- finding files
 *
 * Finders give 1 for found, else 0. A candidate of 335 bytes or more, or one
 * that does not fit the caller's buffer, is passed over.
 */

/**
 * Find a file by its name. The first that exists of these counts:
 *
 *   what the host's vault (30) or project (49) maps the name to
 *   {active path}\{name}; when it is not there, and the search is confined to
 *   the active path (DmPathCheckActiveOnlySet), it ends
 *   the component path, whatever the name
 *   the name as it is given, relative to the current directory
 *   with the list searched at all (DmPathSearchSet):
 *     the active path with its subdirectories, when it ends in "\..."
 *     each entry of the list (DmPathFindSubDir), unless option
 *     "Vx.AutoSearchInSearchPaths" is answered no
 *     what the host (29) maps the name to
 *
 * A name with a backslash is only tried as it is given.
 *
 * @param name  receives what was found; on a miss it stays
 */
VX_API int32_t DmPathFind(char *name, int32_t size);

/**
 * Look for a file in one directory, and when that ends in "\..." in its
 * subdirectories too: in theirs no more, ignoring case in their order.
 */
VX_API int32_t DmPathFindSubDir(const char *dir, char *name, int32_t size);

/**
 * The general look-up. The first of these counts:
 *
 *   the locator, when the host (63) takes it
 *   the name in the path registry (VxPathFind), while VgPathFindTPL or
 *   VgPathFindBDL is set
 *   the name by DmPathFind, by VxPathFind, and by VxPathFindPDM with
 *   VgFileVersion and VgGetLatestRev, made canonical (VxPathReal); while the
 *   search is confined to the active path only DmPathFind is asked
 *
 * @param out  receives what was found, and on a miss becomes empty; may be `name`
 */
VX_API int32_t DmFileFind(const char *name, int32_t size, char *out);

/* ---------------------------------------------------------------- the cache
 *
 * While it is enabled, the subdirectories of entries are remembered, which
 * spares reading a directory for each file that is looked for. It never
 * changes an answer: what was remembered is used only while the directory's
 * status shows that nothing came or went since, and the file itself is always
 * looked for on the disk. A directory that changed within the last seconds,
 * has links in it or cannot be read is read each time.
 */

/**
 * Enable the cache, and with the first call fill it from the list; every call
 * needs a DmFilePathCacheDisable().
 * @return 0, or 1 for no memory; nothing is then enabled
 */
VX_API uint32_t DmFilePathCacheEnable(void);

/** Take an enabling back; with the last one the cache is emptied. 1 when there is none. */
VX_API uint32_t DmFilePathCacheDisable(void);

/**
 * The directory in which the list, searched with the cache, has a file.
 * @param dir  receives the first one; empty on a miss
 * @return 1, or 0 when there is none, when it does not fit, or while the
 *         cache is not enabled
 */
VX_API int32_t DmFilePathCacheGet(const char *name, char *dir, int32_t size);

/* ---------------------------------------------------------------- directories and files */

/**
 * Whether an entry's directory is there. An answer is kept for 5 seconds, so
 * that a list on display does not wait for a server again and again.
 */
VX_API int32_t DmPathIsOkay(const char *path);

/**
 * Find a file (DmFileFind) and open it for reading, as VxFileOpen() does.
 * @param stream  receives the stream, or null
 */
VX_API uint32_t DmFileRead(const char *name, FILE **stream);

/** Make or empty the file of this name, which is not looked for, and open it for writing. */
VX_API uint32_t DmFileWrite(const char *name, FILE **stream);

/**
 * Find a file (DmFileFind) and give it another name on the same device. It
 * stays in its folder when `to` names none.
 * @return 0, or 1 when it is not found, when `to` is there already, or when
 *         the system refuses
 */
VX_API uint32_t DmFileRename(const char *from, const char *to);

VX_C_END

#endif
