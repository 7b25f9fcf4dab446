#ifndef VX_PATH_H
#define VX_PATH_H

/**
 * @file
 * The path registry and path utilities.
 */

#include "vx/types.h"

VX_C_BEGIN

/** One directory of a list; shared with the search paths. */
typedef struct VxPathNode {
    char text[256];
    struct VxPathNode *next;
} VxPathNode;

VX_API uint32_t VxPathSet(const char *path);
VX_API uint32_t VxPathDel(const char *path);
VX_API uint32_t VxPathDelUtil(VxPathNode **list, const char *path);
VX_API int32_t VxPathLogged(char *path);
VX_API uint32_t VxPathFree(void);
VX_API uint32_t VxPathInit(void);
VX_API uint32_t VxPathLogLang(void);
VX_API int32_t VxPathLen(void);
VX_API uint32_t VxPathInstallGet(char *buffer, int32_t size);
VX_API int32_t VxPathFind(char *name, int32_t size);
VX_API int32_t VxPathFindIn(char *name, int32_t size, const char *subdir, int32_t mode);
VX_API int32_t VxPathFindPDM(char *name, int32_t size, char *aux, int32_t auxSize, int32_t a, int32_t b);
VX_API int32_t VxPathLangExist(const char *locale);
VX_API int32_t VxPathIsDebug(const char *name);
VX_API uint32_t VxPathCheck(char *path);
VX_API uint32_t VxPathAddDelim(char *path);
VX_API uint32_t VxPathMk(const char *path);
VX_API uint32_t VxPathCompose(char *path, int32_t size, const char *name, int32_t report);
VX_API uint32_t VxPathErr(const char *path, int32_t size, int32_t report);
VX_API uint32_t VxPathDir(const char *path, char *out, int32_t size);
VX_API uint32_t VxPathName(const char *path, int32_t size, char *out);
VX_API uint32_t VxPathSplit(const char *path, char *drive, char *dir, char *name, char *ext);
VX_API int32_t VxPathExpand(const char *src, char *dst, int32_t size);
VX_API uint32_t VxPathReal(int32_t report, const char *src, char *dst, int32_t size);
VX_API uint32_t VxPathReal2(char *path, int32_t size);
VX_API int32_t VxPathIsDir(const char *path);
VX_API int32_t VxPathAccess(const char *dir);
VX_API uint32_t VxPathUserFiles(char *buffer, int32_t size);
extern VX_API char VgPathUserFolder[260];
extern VX_API char VgPathTemp[260];

VX_C_END

#endif
