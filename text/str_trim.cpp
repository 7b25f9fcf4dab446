// Trims, drops and cuts in place. No text grows here.

#include "vx/str.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "text/codepage.h"
#include "text/str_integer.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

/** Drop every character for which `bytesToDrop(p)` is not 0: so many bytes. */
template <typename BytesToDrop> void dropChars(char *s, BytesToDrop bytesToDrop)
{
    const text::CodePage &page = text::codePage();
    char *out = s;
    for (const char *p = s; *p;) {
        if (int bytes = bytesToDrop(page, p)) {
            p += bytes;
            continue;
        }
        for (int bytes = text::charBytes(page, p); bytes > 0; --bytes)
            *out++ = *p++;
    }
    *out = '\0';
}

void dropFront(char *s, const char *kept)
{
    if (kept != s)
        std::memmove(s, kept, std::strlen(kept) + 1);
}

}

uint32_t VxStrRem(char *s)
{
    if (!s)
        return 1;
    const text::CodePage &page = text::codePage();
    const char *first = text::skipBlanks(page, s);
    const char *end = text::endWithoutBlanks(page, first, first + std::strlen(first));
    size_t length = static_cast<size_t>(end - first);
    if (first != s)
        std::memmove(s, first, length);
    s[length] = '\0';
    return 0;
}

uint32_t VxStrClean(char *s)
{
    if (!s)
        return 1;
    bool cut = !std::memchr(s, '\0', text::workSize);
    if (cut)
        text::cutAt(s, text::workSize - 1);
    dropChars(s, text::spaceBytes);
    return cut;
}

uint32_t VxStrRemNL(char *s)
{
    if (!s)
        return 1;
    size_t length = std::strlen(s);
    while (length > 0 && (s[length - 1] == '\n' || s[length - 1] == '\r'))
        --length;
    s[length] = '\0';
    return 0;
}

uint32_t VxStrDelRtn(char *s)
{
    if (!s)
        return 1;
    *std::remove(s, s + std::strlen(s), '\r') = '\0';
    return 0;
}

uint32_t VxStrProcNewline(char *s)
{
    if (!s)
        return 1;
    const text::CodePage &page = text::codePage();
    char *out = s;
    for (const char *p = s; *p;) {
        // A backslash may be the second half of a character: only whole characters are looked at.
        if (std::strncmp(p, "\\r\\n", 4) == 0) {
            *out++ = '\n';
            p += 4;
        } else if (std::strncmp(p, "\\n", 2) == 0) {
            *out++ = '\n';
            p += 2;
        } else {
            for (int bytes = text::charBytes(page, p); bytes > 0; --bytes)
                *out++ = *p++;
        }
    }
    *out = '\0';
    return 0;
}

uint32_t VxStrRemZero(char *s)
{
    if (!s)
        return 1;
    size_t end = std::strlen(s);
    size_t point = end;
    while (point > 0 && text::isDecimalDigit(s[point - 1]))
        --point;
    // The zeros of an exponent or of a whole number count.
    if (point == 0 || s[point - 1] != '.')
        return 0;
    while (end > point && s[end - 1] == '0')
        --end;
    if (end == point) {
        --end;
        bool wholePart = end > 0 && text::isDecimalDigit(s[end - 1]);
        if (!wholePart && s[point] == '0')
            s[end++] = '0';
    }
    s[end] = '\0';
    return 0;
}

char *VxStrNextChar(char *p)
{
    return const_cast<char *>(VxStrNextCharCONST(p));
}

const char *VxStrNextCharCONST(const char *p)
{
    return p ? text::skipBlanks(text::codePage(), p) : nullptr;
}

uint32_t VxStrRemLeadChar(char *s, int32_t ch)
{
    if (!s)
        return 1;
    const text::CodePage &page = text::codePage();
    const uint32_t unwanted = text::asCharValue(ch);
    const char *p = s;
    for (int bytes; *p; p += bytes) {
        bytes = text::charBytes(page, p);
        if (text::charValue(p, bytes) != unwanted)
            break;
    }
    dropFront(s, p);
    return 0;
}

uint32_t VxStrRemChar(char *s, int32_t ch, int32_t max)
{
    if (!s)
        return 1;
    const uint32_t unwanted = text::asCharValue(ch);
    int32_t left = max < 1 ? std::numeric_limits<int32_t>::max() : max;
    dropChars(s, [&](const text::CodePage &page, const char *p) {
        int bytes = text::charBytes(page, p);
        bool drop = left > 0 && text::charValue(p, bytes) == unwanted;
        left -= drop;
        return drop ? bytes : 0;
    });
    return 0;
}

uint32_t VxStrTruncAtDelim(char *s, int32_t delim)
{
    if (!s)
        return 1;
    if (const char *found = text::findChar(text::codePage(), s, text::asCharValue(delim)))
        s[found - s] = '\0';
    return 0;
}

uint32_t VxStrTruncEnd(char *s, int32_t n)
{
    if (!s || n < 0)
        return 1;
    int32_t kept = std::max(VxStrlen(s) - n, 0);
    const text::CodePage &page = text::codePage();
    char *p = s;
    for (; kept > 0; --kept)
        p += text::charBytes(page, p);
    *p = '\0';
    return 0;
}

uint32_t VxStrTrunc(char *s, int32_t length)
{
    return VxStrTruncAt(s, length);
}
