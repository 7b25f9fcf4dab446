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
 *              a file, or one may write it.
 * Threads      Every function here works on its arguments only and may be
 *              called from any thread, as far as the errors are the caller's
 *              own to expect.
 */

#include <stdio.h>

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

/* ---------------------------------------------------------------- names */

/** Whether a file or folder of this name exists; a blank name does not. */
VX_API int32_t VxFileExists(const char *name);

/** Delete a file; a failure, also for a missing file, files error 20. */
VX_API uint32_t VxFileDel(const char *name);

/**
 * The first of the names {base}001.{ext} to {base}999.{ext} that is free in a
 * folder. Nothing is made: another process may take the name meanwhile.
 * @param out  receives the name, without the folder
 * @return 0, or 1 when none is free, the name does not fit `out`, or the
 *         whole path has more than 511 bytes
 */
VX_API uint32_t VxFileUniqueName(const char *dir, const char *base, const char *ext, char *out, int32_t size);

/* ---------------------------------------------------------------- folders */

/**
 * Make one folder, in a folder that exists (VxPathMk makes whole chains).
 * @return 0, also when something of this name is there already; 1 when it
 *         cannot be made or the path has 260 bytes or more
 */
VX_API uint32_t VxDirMk(const char *path);

/* ---------------------------------------------------------------- status */

/**
 * The status of a file or folder; links are followed.
 * @return 0, or -1 with errno; `out` is then as it was. A file of 2 GiB or
 *         more is EOVERFLOW.
 */
VX_API int32_t vxstat(const char *path, VxStat *out);

/** As vxstat(), for files of any size. */
VX_API int32_t vxstat64(const char *path, VxStat64 *out);

VX_C_END

#endif
