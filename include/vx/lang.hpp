#ifndef VX_LANG_HPP
#define VX_LANG_HPP

/**
 * @file
 * The conversions of vx/lang.h that work on standard vectors, and the choice
 * of the process code page.
 */

#include <cstdint>
#include <vector>

#include "vx/lang.h"

VX_API uint32_t VxMultiByteToWideChar(const char *text, int32_t length, std::vector<char16_t> &out);
VX_API uint32_t VxWideCharToMultiByte(const char16_t *text, int32_t length, std::vector<char> &out);
VX_API uint32_t VxWideCharParseCIF(const char16_t *text, int32_t length, std::vector<char16_t> &out);

namespace VX {

VX_API void CodePageSet(int32_t multibyte, int32_t system);

}

#endif
