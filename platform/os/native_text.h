#pragma once

// Texts that are no paths between the process code page and the system's
// UTF-8. Nothing but the characters' bytes is changed.

#include <cstddef>
#include <string>
#include <string_view>

#include "text/codepage.h"

namespace vx::os {

/** Room for one character in any code page. */
using CharRoom = char[4];

/** The character of `bytes` bytes at `p` as UTF-8, or as it stands when it is none; in `room` or at `p`. */
std::string_view utf8Char(const text::CodePage &page, const char *p, int bytes, CharRoom &room) noexcept;

/** The UTF-8 character of `bytes` bytes at `p` in a code page, "?" where that lacks it. */
std::string_view pageChar(const text::CodePage &page, const char *p, int bytes, CharRoom &room) noexcept;

/** A text of the process code page as UTF-8. */
std::string toUtf8(const char *text);

/** A UTF-8 text in the process code page; one that does not fit is cut between characters. */
void fromUtf8(const char *text, char *out, size_t size) noexcept;

}
