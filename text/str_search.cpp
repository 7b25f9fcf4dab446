// Finds characters and texts, and the parts before and behind them.

#include "vx/str.h"

#include <algorithm>
#include <cstring>

#include "text/codepage.h"
#include "text/str_case.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

char *asResult(const char *p)
{
    return const_cast<char *>(p);
}

int32_t offset(const char *start, const char *p)
{
    return p ? static_cast<int32_t>(p - start) : -1;
}

bool sameIgnoringCase(const text::CodePage &page, const char *a, const char *b, int bytes)
{
    char lowerA[4];
    char lowerB[4];
    text::lowerChar(page, a, bytes, lowerA);
    text::lowerChar(page, b, bytes, lowerB);
    return std::memcmp(lowerA, lowerB, static_cast<size_t>(bytes)) == 0;
}

bool beginsWithIgnoringCase(const text::CodePage &page, const char *p, const char *part)
{
    while (*part) {
        int bytes = text::charBytes(page, part);
        if (text::charBytes(page, p) != bytes || !sameIgnoringCase(page, p, part, bytes))
            return false;
        p += bytes;
        part += bytes;
    }
    return true;
}

/** `length` bytes into the caller's buffer; 1 when they had to be cut. */
uint32_t give(const char *piece, const char *end, char *out, int32_t size)
{
    return !text::copyPiece(out, static_cast<size_t>(size), piece, static_cast<size_t>(end - piece));
}

/** What the prefix and suffix functions share: the found delimiter, or null after emptying the result. */
template <typename Find>
const char *delimiterFor(Find find, const char *s, int32_t delim, char *out, int32_t size)
{
    if (!out || size < 1)
        return nullptr;
    const char *found = s ? find(text::codePage(), s, text::asCharValue(delim)) : nullptr;
    if (!found)
        *out = '\0';
    return found;
}

}

char *VxStrchr(char *s, int32_t ch)
{
    return asResult(VxStrchrCONST(s, ch));
}

char *VxStrrchr(char *s, int32_t ch)
{
    return asResult(VxStrrchrCONST(s, ch));
}

const char *VxStrchrCONST(const char *s, int32_t ch)
{
    if (!s)
        return nullptr;
    return ch == 0 ? s + std::strlen(s) : text::findChar(text::codePage(), s, text::asCharValue(ch));
}

const char *VxStrrchrCONST(const char *s, int32_t ch)
{
    if (!s)
        return nullptr;
    return ch == 0 ? s + std::strlen(s) : text::findLastChar(text::codePage(), s, text::asCharValue(ch));
}

char *VxStrstr(const char *s, const char *sub)
{
    return s && sub && !*sub ? asResult(s) : VxStrFind(s, sub);
}

int32_t VxStrlen(const char *s)
{
    if (!s)
        return 0;
    const text::CodePage &page = text::codePage();
    if (page.kind == text::CodePage::Kind::singleByte)
        return VxStrByteLen(s);
    int32_t count = 0;
    for (; *s; s += text::charBytes(page, s))
        ++count;
    return count;
}

int32_t VxStrByteLen(const char *s)
{
    return s ? static_cast<int32_t>(std::strlen(s)) : 0;
}

int32_t VxStrIsSub(const char *part, const char *whole)
{
    return VxStrFind(whole, part) != nullptr;
}

int32_t VxStrIsSub2(const char *whole, const char *part, int32_t ignoreCase)
{
    return (ignoreCase ? VxStrcaseFind(whole, part) : VxStrFind(whole, part)) != nullptr;
}

char *VxStrFind(const char *s, const char *sub)
{
    if (!s || !sub || !*sub)
        return nullptr;
    return asResult(text::findText(text::codePage(), s, sub, std::strlen(sub)));
}

char *VxStrcaseFind(const char *s, const char *sub)
{
    if (!s || !sub || !*sub)
        return nullptr;
    const text::CodePage &page = text::codePage();
    for (; *s; s += text::charBytes(page, s))
        if (beginsWithIgnoringCase(page, s, sub))
            return asResult(s);
    return nullptr;
}

int32_t VxStrPos(const char *s, const char *sub)
{
    return offset(s, VxStrFind(s, sub));
}

int32_t VxStrStart(const char *s, const char *part)
{
    if (!s || !part)
        return 0;
    char cleaned[text::workSize];
    VxStrCpy(cleaned, s, sizeof cleaned);
    VxStrClean(cleaned);
    return VxStrAtStart(cleaned, part);
}

int32_t VxStrAtStart(const char *s, const char *part)
{
    return s && part && text::beginsWith(text::codePage(), s, part, std::strlen(part));
}

int32_t VxStrAtEnd(const char *s, const char *part)
{
    if (!s || !part)
        return 0;
    const size_t length = std::strlen(s);
    const size_t partLength = std::strlen(part);
    if (partLength > length)
        return 0;
    const size_t start = length - partLength;
    return std::strcmp(s + start, part) == 0 && text::boundaryBefore(text::codePage(), s, start) == start;
}

uint32_t VxStrPrefix(const char *s, int32_t delim, char *out, int32_t size)
{
    const char *found = delimiterFor(text::findChar, s, delim, out, size);
    return found ? give(s, found, out, size) : 1;
}

uint32_t VxStrPrefix2(const char *s, int32_t delim, char *out, int32_t size)
{
    const char *found = delimiterFor(text::findLastChar, s, delim, out, size);
    return found ? give(s, found, out, size) : 1;
}

uint32_t VxStrSuffix(const char *s, int32_t delim, char *out, int32_t size)
{
    const char *found = delimiterFor(text::findLastChar, s, delim, out, size);
    if (!found)
        return 1;
    const char *rest = found + text::valueBytes(text::asCharValue(delim));
    return give(rest, rest + std::strlen(rest), out, size);
}

int32_t VxStrMatch(const char *s, int32_t n, const char *const *table)
{
    if (!s || !table)
        return 0;
    return std::any_of(table, table + std::max(n, 0),
                       [s](const char *candidate) { return VxStrAtStart(s, candidate) != 0; });
}

int32_t VxStrCnt(const char *s, int32_t end, int32_t stop)
{
    if (!s)
        return 0;
    const text::CodePage &page = text::codePage();
    const uint32_t endValue = text::asCharValue(end);
    const uint32_t stopValue = text::asCharValue(stop);
    int32_t count = 0;
    for (int bytes; *s; s += bytes) {
        bytes = text::charBytes(page, s);
        uint32_t value = text::charValue(s, bytes);
        if (value == endValue || value == stopValue)
            break;
        if (!text::spaceBytes(page, s))
            count += bytes;
    }
    return count;
}

int32_t VxStrCharOffset(const char *s, int32_t ch)
{
    return offset(s, VxStrchrCONST(s, ch));
}

char *VxStrFirstChar(const char *s)
{
    const char *first = VxStrNextCharCONST(s);
    return first && *first ? asResult(first) : nullptr;
}

char *VxStrLastChar(const char *s)
{
    if (!s)
        return nullptr;
    const text::CodePage &page = text::codePage();
    const char *end = text::endWithoutBlanks(page, s, s + std::strlen(s));
    return end > s ? asResult(text::prevChar(page, s, end)) : nullptr;
}

char *VxStrEndChar(const char *s)
{
    if (!s || !*s)
        return nullptr;
    return asResult(text::prevChar(text::codePage(), s, s + std::strlen(s)));
}
