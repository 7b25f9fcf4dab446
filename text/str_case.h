#pragma once

// Letters' case in the code page in force. A letter whose other form the page
// lacks, or spells with another number of bytes, is its own.

#include <cstring>

#include "text/codepage.h"

namespace vx::text {

/** Copy the character at `p` in upper case; `out` takes `bytes` bytes. */
void upperChar(const CodePage &page, const char *p, int bytes, char *out) noexcept;

/** The same in lower case. */
void lowerChar(const CodePage &page, const char *p, int bytes, char *out) noexcept;

}
