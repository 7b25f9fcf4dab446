#ifndef VX_PATH_H
#define VX_PATH_H

/**
 * @file
 * The path registry: where the program, its data and the user's files are,
 * and where a file that is given by its bare name is looked for. And the path
 * utilities that every file function uses.
 *
 * Spelling     The separator is the backslash; a slash in a path that is
 *              registered, composed or made canonical becomes one. A byte
 *              0x5C that belongs to a character of a double-byte code page
 *              is no separator. Paths are compared ignoring case.
 * Places       The install path is the folder of the running program, without
 *              a final separator. The root is the base of the `languages`
 *              tree and of shared data, with one. Registered directories are
 *              searched after the fixed places, in order of registration.
 * Lengths      A registered directory has at most 255 bytes, its final
 *              separator included, and so has a canonical path. A candidate
 *              of a search that fits neither the search's buffer nor the
 *              caller's is passed over.
 * Results      0 done, 1 failed, unless a function says otherwise. Finders
 *              and predicates give 1 for found or true.
 * Errors       Numbers are those of Tools.ALERT. What is not mentioned fails
 *              without a message.
 * Threads      The registry is built on the main thread at start-up and read
 *              afterwards; nothing locks it. The utilities of the last two
 *              groups work on their arguments only and may be called from
 *              any thread.
 *
 * A host starts with VxPathInit(), sets the language, calls VxPathLogLang()
 * and registers directories of its own. VxToolsExit() frees the list.
 */

#include "vx/types.h"

VX_C_BEGIN

/** One directory of a list; shared with the search paths (vx/dmpath.h). */
typedef struct VxPathNode {
    char text[256];
    struct VxPathNode *next;
} VxPathNode;

/** The user's working folder: set by VxPathInit(), and by the host as it likes. */
extern VX_API char VgPathUserFolder[260];

/** A folder for temporary files, for hosts; the toolkit neither sets nor reads it. */
extern VX_API char VgPathTemp[260];

/* ---------------------------------------------------------------- start-up */

/**
 * Find the install path, the root and the user's folders, and register the
 * first directories. Does nothing while directories are registered.
 *
 * The last name of a folder decides: one that VxPathIsDebug() knows is a
 * development build. The folder is the program's own when its base name is
 * the text of host variable 1, else (a foreign process) the current one.
 *
 *   development  root {src}\driver\, with {src} two folders up; registered
 *                are the root, the install path, {src}\qa\ and {bin}\HK_QA\n\
 *                with {bin} three folders up and n a hundredth of the version
 *                (host variable 2, else TsCadVer)
 *   installed    root = install path; registered is the root. Unless
 *                VgTplCompile is set, user folder 5 goes to VgPathUserFolder,
 *                and unless VgInstance is set, user folder 4 is made, with
 *                its parents, and becomes the current directory
 *
 * User folders 9 and 10 follow in both. Steps go to the event log, category
 * 6, at level 8; what the system refuses at level 9, and the start goes on.
 *
 * @return 0, or 1 when a directory cannot be registered or user folder 4 not
 *         be made; then everything is as it was before, except that a folder
 *         10 which cannot be registered leaves the rest in place
 */
VX_API uint32_t VxPathInit(void);

/**
 * Register the directories of the current language under the root, and the
 * places of output definitions, supplements, templates and stamps under the
 * current directory and the root. What cannot be registered is left out.
 * @return 0
 */
VX_API uint32_t VxPathLogLang(void);

/** The install path; cut, with 1, when it does not fit. */
VX_API uint32_t VxPathInstallGet(char *buffer, int32_t size);

/* ---------------------------------------------------------------- registered directories */

/**
 * Register a directory, which gets a final separator. An empty path and one
 * that is registered already are no failure and change nothing. Host function
 * 67 is told of a new one, with the text as it was passed.
 * @return 0, or 1 for a text of 260 bytes or more, for a directory of more
 *         than 255 (told on standard output), or for no memory (error 1)
 */
VX_API uint32_t VxPathSet(const char *path);

/**
 * Take a directory out of the list. The final separator must be given. No
 * failure when there is no such directory.
 */
VX_API uint32_t VxPathDel(const char *path);

/** As VxPathDel(), on any list of nodes from VxMemAlloc. */
VX_API uint32_t VxPathDelUtil(VxPathNode **list, const char *path);

/**
 * Whether a directory is registered; its final separator may be missing. The
 * slashes in `path` become backslashes.
 */
VX_API int32_t VxPathLogged(char *path);

/** Free the list; VxPathInit() may then run again. */
VX_API uint32_t VxPathFree(void);

/** 255: the longest directory that the list can hold. */
VX_API int32_t VxPathLen(void);

/* ---------------------------------------------------------------- finding files */

/**
 * Find a file by its name. The first that exists of these counts:
 *
 *   the name as it is given, relative to the current directory
 *   {root}languages\{locale}\{name}
 *   {directory}{name} for each registered directory
 *
 * A name with a backslash is only tried as it is given. An empty name becomes
 * the root. When nothing exists, host function 68 is asked, with (name, name,
 * size), and its result given.
 *
 * @param name  receives what was found; on a miss it stays
 * @param size  of `name` in bytes; paths up to 511 bytes are found
 * @return 1 when found, else 0
 */
VX_API int32_t VxPathFind(char *name, int32_t size);

/**
 * As VxPathFind(), with a folder of its own for each kind of file:
 *
 *   the name as it is given
 *   .\local\{name}
 *   .\{subdir}\{name}
 *   mode 2 ends here
 *   {root}languages\{locale}\{subdir}\{name}
 *   {root}{subdir}\{name}; in mode 0 this is taken though it does not exist,
 *       being the place for a file that is to be made
 *   {directory}{name} and {directory}{subdir}\{name} for each registered one
 *
 * @param subdir  null leaves out every place with it
 * @param size    of `name` in bytes; paths up to 255 bytes are found
 */
VX_API int32_t VxPathFindIn(char *name, int32_t size, const char *subdir, int32_t mode);

/**
 * Have the host's product-data management find a file: host function 69, as
 * int32(name, aux, pathOut, auxOut, a, b) with two outputs of 256 bytes and 0
 * for found. Asked only while host variable 5 is 1, and not when the one-shot
 * flag VgPathFindPDMSkip is set, which this clears.
 *
 * @param name  receives the path; one that does not fit is not found
 * @param aux   receives the auxiliary text, cut to `auxSize`; may be null
 */
VX_API int32_t VxPathFindPDM(char *name, int32_t size, char *aux, int32_t auxSize, int32_t a, int32_t b);

/** Whether texts of a locale ("en_US") are installed: {root}languages\{locale}\text. */
VX_API int32_t VxPathLangExist(const char *locale);

/** Whether a folder's name begins as those of development builds do: Debug, Release, RelNoOpt. */
VX_API int32_t VxPathIsDebug(const char *name);

/* ---------------------------------------------------------------- the text of a path */

/** Make every slash a backslash, in place. */
VX_API uint32_t VxPathCheck(char *path);

/** Append a backslash unless the path ends in one or is empty. The caller has room for it. */
VX_API uint32_t VxPathAddDelim(char *path);

/**
 * Append a name to a path, with a backslash between them when needed.
 * @param size    of `path` in bytes; at most 1023 bytes can be composed
 * @param report  non-zero files error 55 when the result is too long
 * @return 0, or 1 when it is; `path` is then as it was
 */
VX_API uint32_t VxPathCompose(char *path, int32_t size, const char *name, int32_t report);

/** 0 when a path is shorter than `size`, else 1, with error 55 when `report` is non-zero. */
VX_API uint32_t VxPathErr(const char *path, int32_t size, int32_t report);

/**
 * The part before the last backslash: "D:\a" of "D:\a\b", nothing of "\a",
 * and ".\" of a path without one. `out` may be the path.
 * @return 0, or 1 when it does not fit; `out` is then empty
 */
VX_API uint32_t VxPathDir(const char *path, char *out, int32_t size);

/**
 * The part behind the last backslash. Note the order of the arguments.
 * @return 0, or 1 for a name that is empty, "." or "..", and for one that
 *         does not fit (error 56; `out` is then empty)
 */
VX_API uint32_t VxPathName(const char *path, int32_t size, char *out);

/**
 * Take a path apart; slashes separate too. A part that is not wanted may be null.
 * @param drive  3 bytes: "D:"
 * @param dir    256 bytes, with its final separator
 * @param name   256 bytes, without extension
 * @param ext    256 bytes, with its point
 * @return 0, or 1 when a part was cut to fit
 */
VX_API uint32_t VxPathSplit(const char *path, char *drive, char *dir, char *name, char *ext);

/**
 * Replace what stands for environment values: a leading "~" by HOME, a
 * leading "~" with anything behind it, up to a separator, by USERPROFILE,
 * "$NAME", up to a separator, by the variable. Slashes become backslashes, in
 * the values they stay. An empty path becomes ".". What is not set stays as
 * it is written. `dst` may be `src`.
 *
 * @return 1 when everything was replaced and fits; 0 when not, and then `dst`
 *         has the text all the same, cut to `size`. Note the sense.
 */
VX_API int32_t VxPathExpand(const char *src, char *dst, int32_t size);

/**
 * Expand a path (VxPathExpand) and make it full (VX::realpath): a relative
 * one starts in the current directory, "." and ".." are folded. Nothing need
 * exist, and links are not followed. `dst` may be `src`.
 *
 * @param report  non-zero files error 44 on failure
 * @return 0, or 1 when a variable is not set or the result has more than 255
 *         bytes or does not fit; `dst` then has the expanded path
 */
VX_API uint32_t VxPathReal(int32_t report, const char *src, char *dst, int32_t size);

/** As VxPathReal(), in place and always reporting; longer than 511 bytes is refused. */
VX_API uint32_t VxPathReal2(char *path, int32_t size);

/* ---------------------------------------------------------------- paths on the disk */

/**
 * Make a folder with all its parents. Of a network path the server is passed
 * over. A line break at the end is dropped.
 * @return 0, also when all are there; 1 for 512 bytes or more, or when one
 *         cannot be made; those made before it stay
 */
VX_API uint32_t VxPathMk(const char *path);

/** Whether a path is an existing folder. */
VX_API int32_t VxPathIsDir(const char *path);

/**
 * Try whether files can be made in a folder, by making one and deleting it.
 * @return 0 they can, 1 access is denied, -1 anything else
 */
VX_API int32_t VxPathAccess(const char *dir);

/**
 * The user's documents folder for the product: the setting "Personal" of the
 * user's shell folders (vx/sys.h) with VgCompanyProduct behind it; when there
 * is no such setting, user folder 18 as it is.
 * @return 0, or 1 when neither is known or it does not fit
 */
VX_API uint32_t VxPathUserFiles(char *buffer, int32_t size);

VX_C_END

#endif
