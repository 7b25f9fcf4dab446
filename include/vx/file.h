#ifndef VX_FILE_H
#define VX_FILE_H

/**
 * @file
 * Files and folders.
 *
 * Paths        In the toolkit's spelling (vx/path.h); slashes are taken too.
 * Results      0 done, 1 failed, unless a function says otherwise.
 * Errors       Filed, with the path, only where a function names one; numbers
 *              are those of Tools.ALERT.
 * Sharing      Files opened here can be read by everybody. Toolkit openings,
 *              in this process or another, keep each other out: many may read
 *              a file, or one may write it. Copying reads its source so and
 *              writes its target.
 * Whole        What VxFileCpy, VxFileMv and VxFileClean write is written
 *              beside its target and takes its name at the end: whatever fails
 *              on the way, a full disk or the end of the process too, the name
 *              leads to the old content or to all of the new. Where it is a
 *              link, the file that it leads to is replaced. A process that is
 *              killed may leave a file ".vx-*.new".
 * Lists        of names are of layout 2 (vx/list.h), elements char[256], to be
 *              deleted with VxListDel; null after a failure. Names come in
 *              order ignoring case, without "." and "..". Left out are names
 *              that hold a backslash, and texts of more than 255 bytes.
 * Walks        through trees do not follow links to folders, unless said
 *              otherwise, and go on past what cannot be read or vanishes.
 * Threads      Every function here works on its arguments only and may be
 *              called from any thread, as far as the errors are the caller's
 *              own to expect. Texts that a function keeps, and the matches of
 *              VxFileFindFirst, are the calling thread's.
 */

#include <stdio.h>

#include "vx/list.h"
#include "vx/types.h"

VX_C_BEGIN

/** What is known of a file; times in seconds since 1970-01-01 00:00 UTC. */
typedef struct VxStat {
    uint64_t device, inode;
    uint32_t mode; /**< type in 0xF000 (0x4000 folder, 0x8000 file), permissions in 0777 */
    uint32_t links;
    int32_t size; /**< bytes */
    int64_t atime_s, mtime_s, ctime_s;
} VxStat;

/** As VxStat, for files of any size. */
typedef struct VxStat64 {
    uint64_t device, inode;
    uint32_t mode, links;
    int64_t size;
    int64_t atime_s, mtime_s, ctime_s;
} VxStat64;

/* ---------------------------------------------------------------- streams */

/**
 * Open a file.
 * @param stream  receives the stream, or null
 * @param mode    as fopen's; the letters c, n, t, N, S, R and T have no
 *                effect, D deletes the file when it is closed
 * @return 0, or 1 when it cannot be opened: missing, a folder, no right to
 *         it, or held by a toolkit opening that would clash. Nothing is
 *         truncated then, and no file left behind. errno has the reason
 *         (EACCES for held).
 */
VX_API uint32_t VxFileOpen(FILE **stream, const char *name, const char *mode);

/**
 * Close a stream and clear the caller's variable. A null stream is no failure.
 * @param flush  non-zero: flush it first
 * @return 0, or EOF when data could not be written
 */
VX_API int32_t VxFileClose(FILE **stream, int32_t flush);

/** Go to an offset in bytes from `origin`: 0 the start, 1 where the stream stands, 2 the end. */
VX_API uint32_t VxFileSeek(FILE *stream, int64_t offset, int32_t origin);

/** Where a stream stands, in bytes; -1 where that cannot be told. */
VX_API int64_t VxFileTell(FILE *stream);

/**
 * Report when writing to a stream failed.
 * @param name  what error 61 names; null files none
 * @return 0, or 1 when the stream's error mark is set. What is still buffered
 *         fails, if it does, when it is flushed.
 */
VX_API uint32_t VxFileWriteError(FILE *stream, const char *name);

/**
 * Open a file without a stream.
 *
 * @param handle  receives a handle, never null, to be closed with
 *                VxFileCloseEx; stays on failure
 * @param flags   0x1 read, 0x2 write; others may meanwhile 0x10000 read,
 *                0x20000 write; 0x40000 a new file, which must not exist,
 *                0x80000 one that exists, also when both are set
 * @return 0, or 1 when it cannot be opened, and when neither 0x40000 nor
 *         0x80000 is set
 */
VX_API uint32_t VxFileOpenEx(void **handle, const char *name, uint32_t flags);

/** Close such a handle and clear it; 0 when it is null. */
VX_API uint32_t VxFileCloseEx(void **handle);

/* ---------------------------------------------------------------- lines */

/**
 * Read a line.
 * @param line  receives it without its end, LF or CR LF. A line that does not
 *              fit is cut behind a whole character, and its rest dropped
 * @param size  at least 2
 * @return 0, or -1 at the end of the file; `line` is then empty
 */
VX_API int32_t VxFileGetLine(FILE *stream, char *line, int32_t size);

/** As VxFileGetLine, passing over blank lines and those that begin, behind white space, with "#". */
VX_API int32_t VxFileNextLine(FILE *stream, char *line, int32_t size);

/**
 * Go forward to the next line that begins with a text, of at most 1023 bytes:
 * that line is the next to be read.
 * @return 0, or 1 when there is none, and the stream stands at its end
 */
VX_API uint32_t VxFileGoTo(FILE *stream, const char *text);

/* ---------------------------------------------------------------- whole files */

/**
 * Read a file.
 * @param data  receives a block of VxMemAlloc's: the bytes, and a zero byte
 *              that is not counted; null on failure
 * @param size  receives their number; files of up to 2^31 - 2 bytes are read
 * @return 0, or 1 for what cannot be read or is no file, and for no memory,
 *         which is reported as vx/mem.h says
 */
VX_API uint32_t VxFileToMem(const char *name, void **data, int32_t *size);

/** The same for a stream, from where it stands to its end. */
VX_API uint32_t VxFileToMem2(FILE *stream, void **data, int32_t *size);

/** As VxFileToMem, for a text, whose line ends stay as they are. */
VX_API uint32_t VxFileRead(const char *name, char **text);

/** Compare two files by their bytes: 0 the same, 1 different, -1 when one cannot be read. */
VX_API int32_t VxFileDiff(const char *a, const char *b);

/* ---------------------------------------------------------------- status */

/** Whether a file or folder of this name exists; a blank name does not. */
VX_API int32_t VxFileExists(const char *name);

/**
 * Whether a file may be written.
 * @return 1 it may; 0 when it may not, is held by another opening, or is a
 *         folder; -1 for a blank name and one that does not exist
 */
VX_API int32_t VxFileWrite(const char *name);

/** Size of a file in bytes; 0 for a blank or missing name and for a folder. */
VX_API int64_t VxFileSize(const char *name);

/** Time of the last change, in seconds since 1970; 0 for a blank or missing name. */
VX_API int64_t VxFileLastWrite(const char *name);

/**
 * The status of a file or folder; links are followed.
 * @return 0, or -1 with errno; `out` is then as it was. A file of 2 GiB or
 *         more is EOVERFLOW.
 */
VX_API int32_t vxstat(const char *path, VxStat *out);

/** As vxstat(), for files of any size. */
VX_API int32_t vxstat64(const char *path, VxStat64 *out);

/**
 * Room on the device that holds a path, or will when it is made.
 * @param freeMiB   what this user may still write, in MiB
 * @param totalMiB  all there is, in MiB
 * @return 0, or 1 when it cannot be told; both are then 0
 */
VX_API uint32_t VxDiskInfo(const char *path, double *freeMiB, double *totalMiB);

/* ---------------------------------------------------------------- attributes */

/**
 * The attributes of a file or folder: 0x1 read-only (files only), 0x2 hidden,
 * 0x10 folder, 0x20 archive, and 0x80 when it has none of them. On file
 * systems without a place for 0x2 and 0x20, this process remembers them.
 * @return 0xFFFFFFFF on failure
 */
VX_API uint32_t VxFileGetAttribute(const char *name);

/** Set 0x1, 0x2 and 0x20 as given; 0x80 alone clears them. Others have no effect. */
VX_API uint32_t VxFileSetAttribute(const char *name, uint32_t attributes);

/** Set hidden; the other attributes stay. */
VX_API uint32_t VxFileHide(const char *name);

/** Clear hidden, read-only and archive. */
VX_API uint32_t VxFileShow(const char *name);

VX_API int32_t VxFileIsHide(const char *name);

/** Clear read-only; the other attributes stay. */
VX_API uint32_t VxFileFixAtt(const char *name);

/* ---------------------------------------------------------------- deleting, copying, moving */

/** Delete a file; a failure, also for a missing file, files error 20. */
VX_API uint32_t VxFileDel(const char *name);

/** As VxFileDel, but what is not there, and a blank or null name, is no failure. */
VX_API uint32_t VxFileRem(const char *name);

/** Give a file or folder another name on the same device. A file of that name is replaced. */
VX_API uint32_t VxFileRename(const char *from, const char *to);

/**
 * Copy a file, with its times and permissions, to a new name or over another
 * file. Neither a folder nor a device is copied or replaced, and a file not
 * onto itself.
 */
VX_API uint32_t VxFileCpy(const char *from, const char *to);

/** Copy fromDir\name to toDir\name; error 55 for paths of more than 511 bytes. */
VX_API uint32_t VxFileCpy2(const char *name, const char *fromDir, const char *toDir);

/** Append a file to the end of another, which is made when it is missing. A failure leaves it as it was. */
VX_API uint32_t VxFileConcat(const char *from, const char *to);

/**
 * Move a file to a new name or over another file. On another device it is
 * copied, and deleted when the copy is safe: should that fail, there are both.
 * Error 61 names the file that is missing or may not be written, 22 the target
 * that cannot be made.
 */
VX_API uint32_t VxFileMv(const char *from, const char *to);

/**
 * Write a file anew, for files that grew in many small steps, with the same
 * content, times and permissions. What was there stays as {name}.bak, over
 * whatever had that name.
 * @return 0, or 1 with error 23 when the new file cannot be written, 69 when
 *         it cannot take the place of the old one. {name} then is what it was.
 */
VX_API uint32_t VxFileClean(const char *name);

/* ---------------------------------------------------------------- new names */

/**
 * The first of the names {base}001.{ext} to {base}999.{ext} that is free in a
 * folder. Nothing is made: another process may take the name meanwhile.
 * @param out  receives the name, without the folder
 * @return 0, or 1 when none is free, the name does not fit `out`, or the
 *         whole path has more than 511 bytes
 */
VX_API uint32_t VxFileUniqueName(const char *dir, const char *base, const char *ext, char *out, int32_t size);

/**
 * Take a free name in a folder: an empty file is made under it, so that nobody
 * else gets it.
 * @param pattern  the name with one "%d", of up to two digits width ("%03d"),
 *                 for the numbers 1, 2, ... 999999, and no other "%"
 * @param out      receives the name, without the folder
 * @return 0, or 1 as for VxFileUniqueName, and when no file can be made there
 */
VX_API uint32_t VxFileUniqueName2(const char *dir, const char *pattern, char *out, int32_t size);

/**
 * Make an empty file of a new name, "hk" and a number, in the folder of `path`,
 * or in the current one when it has none.
 * @param out   receives its path
 * @param size  of `out`, at least 8 bytes more than the folder takes
 * @return 0, or 1 when none of 100 names could be made
 */
VX_API uint32_t VxFileTemp(const char *path, int32_t size, char *out);

/** Open a new file in the system's temporary folder, mode "w+b", that is deleted when closed; or null. */
VX_API FILE *VxFileTmp(void);

/* ---------------------------------------------------------------- extensions */

/**
 * The extension of a file name: what stands behind the last point of its last
 * component, at most 15 bytes, "" without one. Kept in a buffer until this
 * thread's next call of a function of this group.
 */
VX_API const char *VxFileExt(const char *name);

/**
 * Whether the extension is one of the product's, ignoring case: VgViewerExt,
 * VgHKExt, VgVXExt, VgHKPrtExt or VgHKDrwExt (vx/tools.h).
 */
VX_API int32_t VxFileValidExt(const char *name);

/** Whether the extension is VgViewerExt, ignoring case. */
VX_API int32_t VxFileValidExt_Viewer(const char *name);

/**
 * Have a name end in "." and `ext`, in place of the extension it has.
 * @return 0 when the name was changed; 1 when not: its extension is `ext`,
 *         ignoring case, or the new name does not fit `size`
 */
VX_API int32_t VxFileSetExt(char *name, int32_t size, const char *ext);

/** Append "." and `ext`, in place of the extension if that is the product's: 0, or 1 when it does not fit. */
VX_API uint32_t VxFileSetExt2(char *name, int32_t size, const char *ext);

/** Cut the extension with its point off a name if it is the product's. */
VX_API uint32_t VxFileRmExt(char *name);

/** Cut the extension with its point off a name unless it is a number, as in "part.3". */
VX_API uint32_t VxFileRmExt2(char *name);

/* ---------------------------------------------------------------- finding files */

/**
 * Look for dir\name under the current directory, then under the root
 * (vx/path.h).
 * @param out  receives the path, the first one full; paths up to 511 bytes are
 *             found
 * @return 1 when found, else 0
 */
VX_API int32_t VxFileFind(const char *dir, const char *name, char *out, int32_t size);

/** Whether an entry is kept: non-zero for yes. */
typedef int32_t (*VxFileGlobFn)(const char *dir, const char *name, void *context);

/**
 * The files and folders in a folder whose names match a pattern (VX::fnmatch
 * in vx/posix.hpp, ignoring case).
 * @param filter  asked for each match, with `dir` and `context` as they are
 *                here; null keeps all
 * @param names   receives the list, without the folder; perhaps empty
 * @return 0, or 1 when the folder cannot be read or there is no memory
 */
VX_API uint32_t VxFileGlob(const char *dir, const char *pattern, VxFileGlobFn filter, void *context,
                           VxList **names);

/** As VxFileGlob: files, no folders. */
VX_API uint32_t VxFileList(const char *dir, const char *pattern, VxList **names);

/**
 * The first match of VxFileGlob; VxFileNext goes on from there.
 * @param out  receives the name; one that does not fit is passed over
 * @return 1, or 0 when there is none; `out` is then empty
 */
VX_API int32_t VxFileFindFirst(const char *dir, const char *pattern, char *out, int32_t size);

/** The next one. The matches are those of the time of VxFileFindFirst; behind the last they are forgotten. */
VX_API int32_t VxFileNext(char *out, int32_t size);

/* ---------------------------------------------------------------- folders */

/**
 * Make one folder, in a folder that exists.
 * @return 0, also when something of this name is there already; 1 when it
 *         cannot be made or the path has 260 bytes or more
 */
VX_API uint32_t VxDirMk(const char *path);

/** Make a folder with all its parents, as VxPathMk (vx/path.h). */
VX_API uint32_t VxDirsMk(const char *path);

/**
 * Remove a folder with all that is in it. Of links, and of one that `path`
 * itself is, only the link is removed.
 * @return 0, or 1 when there is no such folder or not all could be removed;
 *         the rest was
 */
VX_API uint32_t VxDirDel(const char *path);

/** VxDirCpy2, overwriting. */
VX_API uint32_t VxDirCpy(const char *from, const char *to);

/**
 * Copy what is in a folder, with all folders in it, into another, which is
 * made with its parents when it is missing. Links are followed; the target
 * itself, links to nothing, and those that lead back to a folder around them
 * are left out.
 *
 * @param overwrite  0 leaves files of the target that exist already as they are
 * @return 0, or 1 when `from` is no folder or is `to`, and when something could
 *         not be read or written; the rest was copied
 */
VX_API uint32_t VxDirCpy2(const char *from, const char *to, int32_t overwrite);

/** The names of the folders in a folder. */
VX_API uint32_t VxDirList(const char *dir, VxList **names);

/** The full paths of all folders below a folder, each before those in it. */
VX_API uint32_t VxDirSub(const char *dir, VxList **paths);

/**
 * The first folder of a name, ignoring case, below a folder; each is looked
 * into before the next beside it.
 * @param out  receives its path, which begins with `dir` as it is given; one
 *             that does not fit is passed over
 * @return 1 when found, else 0
 */
VX_API int32_t VxDirFind(const char *dir, const char *name, char *out, int32_t size);

/* ---------------------------------------------------------------- archives */

/** The program that packs ("zip.exe"), or for non-zero the one that unpacks ("unzip.exe"). */
VX_API const char *VxZip(int32_t unzip);

VX_C_END

#endif
