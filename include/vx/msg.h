#ifndef VX_MSG_H
#define VX_MSG_H

/**
 * @file
 * Message catalogues, user messages and mapped files.
 */

#include "vx/types.h"

VX_C_BEGIN

VX_API uint32_t VxMsgLoadFile(const char *name, int32_t *id);
VX_API const char *VxMsg(int32_t id, int32_t number);
VX_API const char *VxMsgFile(const char *name, int32_t number);
VX_API uint32_t VxMsgFree(void);
VX_API uint32_t VxMessage(const char *text);
VX_API uint32_t VxMessage2(int32_t number);
VX_API void *VxMap(const char *fileName, int32_t mode, int64_t *size);
VX_API uint32_t VxUnMap(void *view);

VX_C_END

#endif
