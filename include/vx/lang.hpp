#ifndef VX_LANG_HPP
#define VX_LANG_HPP

/**
 * @file
 * The conversions of vx/lang.h that work on standard vectors, and the choice
 * of the process code page. What vx/lang.h says of escapes, content and
 * threads holds here too.
 *
 * The conversions read up to a terminator or up to `length`, whichever comes
 * first, and never look behind it; a character cut by the length is taken as
 * single bytes. The result ends with a terminator, which is counted in its
 * size(). They return 0, or 1 for a null text, a negative length or no memory;
 * the vector is then as it was. It may hold the text that is converted.
 */

#include <cstdint>
#include <vector>

#include "vx/lang.h"

/**
 * Text in the process code page, with escapes, to UTF-16: an escape gives its
 * code unit, a character beyond U+FFFF two.
 *
 * @param length  in bytes
 */
VX_API uint32_t VxMultiByteToWideChar(const char *text, int32_t length, std::vector<char16_t> &out);

/**
 * UTF-16 to text with escapes, for any code page: every code unit from 0x80 on
 * becomes an escape. VxMultiByteToWideChar gives the code units back; only an
 * escape that was spelled out in the wide text comes back as its code unit.
 *
 * @param length  in code units
 * @see VxStrFromUTF16, which writes the characters that the code page has
 */
VX_API uint32_t VxWideCharToMultiByte(const char16_t *text, int32_t length, std::vector<char> &out);

/**
 * Replace escapes spelled out in wide text by the code units that they name.
 *
 * @param length  in code units
 */
VX_API uint32_t VxWideCharParseCIF(const char16_t *text, int32_t length, std::vector<char16_t> &out);

namespace VX {

/**
 * Set the process code page.
 *
 * @param multibyte  the toolkit's own, which comes first; 0 for none
 * @param system     what counts as the system's when the toolkit has none of
 *                   its own; 0 for none, which makes it 1252; -1 for that of
 *                   the user's locale, as it is at the start
 *
 * A number that is none of the code pages in vx/lang.h counts as 0.
 */
VX_API void CodePageSet(int32_t multibyte, int32_t system);

}

#endif
