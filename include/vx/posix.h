#ifndef VX_POSIX_H
#define VX_POSIX_H

/**
 * @file
 * Reading folders in the manner of POSIX, over the toolkit's paths
 * (vx/path.h). The names that POSIX has itself are in vx/posix.hpp.
 *
 * Order        Names come ignoring case in order, "." and ".." in front.
 *              Names that hold a backslash, or have more than 255 bytes in
 *              the process code page, are passed over.
 * Stack        Open folders lie on one stack of 255: a folder that is opened
 *              while another is read is read to its end and closed before the
 *              other is read on.
 * Threads      The stack is the process's: one thread at a time. vxscandir
 *              and alphasort may be called from any thread.
 */

#include "vx/types.h"

VX_C_BEGIN

/** An entry; only the name is filled in. */
typedef struct VxDirEnt {
    int64_t ino;
    int64_t off;
    uint16_t reclen;
    uint8_t type;
    char name[256];
} VxDirEnt;

/** An open folder. */
typedef struct VxDir VxDir;

/**
 * Open a folder.
 * @return null when nothing has this name, the path has 260 bytes or more, or
 *         255 folders are open
 */
VX_API VxDir *vxopendir(const char *path);

/**
 * The next entry of the folder that was opened last, whatever `dir` is.
 *
 * When the last component of its path is, byte for byte, that of the current
 * directory, it is the current directory that is read. The first call reads
 * the whole folder; what comes or goes afterwards does not show.
 *
 * @return null behind the last, and when the folder cannot be read; the
 *         record holds until the next call for this folder
 */
VX_API VxDirEnt *vxreaddir(VxDir *dir);

/** Close the folder that was opened last, whatever `dir` is: 0, also when none is open. */
VX_API int32_t vxclosedir(VxDir *dir);

/**
 * All entries of a folder.
 *
 * @param list     receives an array of records; array and records are freed
 *                 with VxMemFree. Null when there are none
 * @param filter   keeps an entry when it answers non-zero; null keeps all
 * @param compare  sorts, being given the addresses of two pointers to records
 *                 as alphasort (vx/posix.hpp) is; null leaves the order told above
 * @return how many; -1, and null in `list`, when the folder cannot be read or
 *         there is no memory
 */
VX_API int32_t vxscandir(const char *dir, VxDirEnt ***list, int32_t (*filter)(const VxDirEnt *),
                         int (*compare)(const void *, const void *));

VX_C_END

#endif
