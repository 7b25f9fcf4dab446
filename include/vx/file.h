#ifndef VX_FILE_H
#define VX_FILE_H

/**
 * @file
 * Files and directories.
 */

#include <stdio.h>

#include "vx/types.h"

VX_C_BEGIN

typedef struct VxStat {
    uint64_t device, inode;
    uint32_t mode, links;
    int32_t size;
    int64_t atime_s, mtime_s, ctime_s;
} VxStat;
typedef struct VxStat64 {
    uint64_t device, inode;
    uint32_t mode, links;
    int64_t size;
    int64_t atime_s, mtime_s, ctime_s;
} VxStat64;

VX_API uint32_t VxFileOpen(FILE **stream, const char *name, const char *mode);
VX_API int32_t VxFileClose(FILE **stream, int32_t flush);
VX_API int32_t VxFileExists(const char *name);
VX_API uint32_t VxFileDel(const char *name);
VX_API uint32_t VxFileUniqueName(const char *dir, const char *base, const char *ext, char *out, int32_t size);
VX_API uint32_t VxDirMk(const char *path);
VX_API int32_t vxstat(const char *path, VxStat *out);
VX_API int32_t vxstat64(const char *path, VxStat64 *out);

VX_C_END

#endif
