#pragma once

// What a code point is, by simple rules that hold for the characters of the
// supported code pages; no tables of the system and no locale.

namespace vx::text {

/** A letter or ideograph. Combining marks, signs and private use are none. */
bool isLetter(char32_t c) noexcept;

/** ASCII 0 to 9, and their full-width forms. */
bool isDigit(char32_t c) noexcept;

/** Anything but controls, surrogates and the code points that are no characters. */
bool isPrintable(char32_t c) noexcept;

/** The other case of a Latin, Greek, Cyrillic, Armenian or full-width letter; any other code point itself. */
char32_t upperCase(char32_t c) noexcept;
char32_t lowerCase(char32_t c) noexcept;

}
