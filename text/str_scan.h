#pragma once

// What the string functions share: finding, comparing and cutting by whole
// characters. A search for bare bytes does the heavy lifting wherever the byte
// cannot be part of a longer character; only the other cases walk the text.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/codepage.h"

namespace vx::text {

/** Buffers in which a text is built before it goes back to the caller. */
constexpr size_t workSize = 1024;

/** A character as one number: its bytes, the first most significant. */
inline uint32_t charValue(const char *p, int bytes) noexcept
{
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
        value = value << 8 | static_cast<uint8_t>(p[i]);
    return value;
}

/** The number that a caller's argument stands for; a plain char's sign is taken off. */
inline uint32_t asCharValue(int32_t ch) noexcept
{
    return ch < 0 && ch >= -128 ? static_cast<uint8_t>(ch) : static_cast<uint32_t>(ch);
}

/** Bytes of the character that `value` stands for. */
inline int valueBytes(uint32_t value) noexcept
{
    return value > 0xFFFFFF ? 4 : value > 0xFFFF ? 3 : value > 0xFF ? 2 : 1;
}

/** Whether `byte` is always a character of its own, so that a search for the bare byte is right. */
inline bool standsAlone(const CodePage &page, char byte) noexcept
{
    return page.kind == CodePage::Kind::singleByte ||
           !(page.has(byte, CodePage::leadByte) || page.has(byte, CodePage::trailByte));
}

/** The first character `wanted` from the boundary `p` on, which is no terminator; null when there is none. */
const char *findChar(const CodePage &page, const char *p, uint32_t wanted) noexcept;

/** The last character `wanted` of a text; null when there is none. */
const char *findLastChar(const CodePage &page, const char *text, uint32_t wanted) noexcept;

/** The first boundary at or after `target`, seen from the boundary `p` before it. */
inline const char *boundaryFrom(const CodePage &page, const char *p, const char *target) noexcept
{
    if (page.kind == CodePage::Kind::singleByte || !page.has(*target, CodePage::trailByte))
        return target;
    while (p < target)
        p += charBytes(page, p);
    return p;
}

/** Whether the boundary `p` begins with the `length` bytes of `part`, and a character ends where they do. */
inline bool beginsWith(const CodePage &page, const char *p, const char *part, size_t length) noexcept
{
    return std::strncmp(p, part, length) == 0 && boundaryFrom(page, p, p + length) == p + length;
}

/** The first place from the boundary `p` on that beginsWith() the non-empty `part`; null for none. */
const char *findText(const CodePage &page, const char *p, const char *part, size_t length) noexcept;

/** The end of what is left of a text that ends at `end` when its trailing white space goes. */
const char *endWithoutBlanks(const CodePage &page, const char *text, const char *end) noexcept;

/** The first position from `p` on that is no white space. */
inline const char *skipBlanks(const CodePage &page, const char *p) noexcept
{
    while (int bytes = spaceBytes(page, p))
        p += bytes;
    return p;
}

/** The first white space from the boundary `p` on, or the terminator. */
inline const char *skipToBlank(const CodePage &page, const char *p) noexcept
{
    while (*p && !spaceBytes(page, p))
        p += charBytes(page, p);
    return p;
}

/** Copy what fits in `size` bytes of a text of at least so many that begins at a boundary; clear the rest. */
void copyCut(char *out, size_t size, const char *text) noexcept;

/** End a text at `position`, or where the character there begins; the bytes passed are cleared. */
void cutAt(char *text, size_t position) noexcept;

/**
 * Copy `length` bytes that begin at a boundary and terminate them; when they
 * do not fit, as many characters as do.
 * @return whether they fitted
 */
inline bool copyPiece(char *out, size_t size, const char *text, size_t length) noexcept
{
    if (length >= size) {
        copyCut(out, size, text);
        return false;
    }
    std::memmove(out, text, length);
    out[length] = '\0';
    return true;
}

/** Bytes at the end of a text that was cut off at `length` which begin a character and do not finish it. */
size_t unfinishedBytes(const CodePage &page, const char *text, size_t length) noexcept;

/** snprintf under the C locale: the length needed, negative on failure. */
int32_t formatText(char *out, size_t size, const char *format, ...) noexcept;

}
