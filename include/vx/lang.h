#ifndef VX_LANG_H
#define VX_LANG_H

/**
 * @file
 * Languages, code pages and encodings.
 */

#include <uchar.h>

#include "vx/types.h"

VX_C_BEGIN

VX_API uint32_t VxLangSet(const char *locale);
VX_API uint32_t VxLangGet(char *name, int32_t nameSize, char *tag, int32_t tagSize);
VX_API uint32_t VxLangString(char *buf, int32_t size);
VX_API uint32_t VxLangGetLocale(char *buf, int32_t size);
VX_API int32_t VxLangIsChanged(const char *locale);
VX_API int32_t VxLangVerify(const char *kind);
VX_API int32_t VxLangGetCodePage(void);
VX_API uint32_t VxLangFromCmd(int32_t argc, char **argv);
VX_API uint32_t VxLangFree(void);
VX_API int32_t VxSurrogateToUTF32(uint32_t high, uint32_t low, uint32_t *codePoint);
VX_API char *VxStrFromCIFStr(const char *text);
VX_API char *VxStrToUTF8(const char *text);
VX_API char *VxStrFromUTF8(const char *text);
VX_API char16_t *VxStrToUTF16(const char *text);
VX_API char *VxStrFromUTF16(const char16_t *text);

VX_C_END

#endif
