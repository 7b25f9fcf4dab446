// Fits texts into fields, lines and labels.

#include "vx/str.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "text/codepage.h"
#include "text/str_integer.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

/** What a field shows of a text that is too long for it. */
enum class Overflow { cut, star, stars };

/** The text of a field, in two parts since digits between them may have gone. */
struct FieldText {
    std::string_view head, tail;

    size_t size() const { return head.size() + tail.size(); }

    /** The same without what does not fit in `bytes`, which is fewer than there are. */
    FieldText cutTo(size_t bytes) const
    {
        const text::CodePage &page = text::codePage();
        if (bytes < head.size())
            return {head.substr(0, text::boundaryBefore(page, head.data(), bytes)), {}};
        if (tail.empty())
            return *this;
        return {head, tail.substr(0, text::boundaryBefore(page, tail.data(), bytes - head.size()))};
    }
};

uint32_t fillField(FieldText shown, Overflow overflow, size_t width, char *dst)
{
    const bool fits = shown.size() <= width;
    dst[width] = '\0';
    if (!fits && overflow == Overflow::stars) {
        std::memset(dst, '*', width);
        return 1;
    }
    const size_t star = !fits && overflow == Overflow::star;
    if (!fits)
        shown = shown.cutTo(width - star);
    const size_t blanks = width - star - shown.size();
    std::memset(dst, ' ', blanks);
    std::copy(shown.head.begin(), shown.head.end(), dst + blanks);
    std::copy(shown.tail.begin(), shown.tail.end(), dst + blanks + shown.head.size());
    if (star)
        dst[width - 1] = '*';
    return !fits;
}

/** A number with no more than `decimals` digits behind its point; what follows the digits stays. */
FieldText withDecimals(std::string_view number, int32_t decimals)
{
    const size_t point = number.find('.');
    if (point == number.npos || decimals < 0)
        return {number, {}};
    size_t end = point + 1;
    while (end < number.size() && text::isDecimalDigit(number[end]))
        ++end;
    const size_t wanted = decimals == 0 ? point : point + 1 + static_cast<size_t>(decimals);
    return {number.substr(0, std::min(wanted, end)), number.substr(end)};
}

int newlineBytes(const char *p)
{
    return p[0] == '\n' ? 1 : p[0] == '\r' && p[1] == '\n' ? 2 : 0;
}

struct Break {
    const char *end;  ///< of this line
    const char *next; ///< where the next one begins
};

/** Where the line at `p` ends: at a newline, else before the word that does not fit, else at the width. */
Break breakLine(const text::CodePage &page, const char *p, int32_t width)
{
    const char *at = p;
    const char *wordEnd = p;
    bool inWord = false;
    for (int32_t n = 0;; ++n) {
        if (*at == '\0')
            return {at, at};
        if (int newline = newlineBytes(at))
            return {at, at + newline};
        const bool blank = text::spaceBytes(page, at) != 0;
        if (blank && inWord)
            wordEnd = at;
        inWord = !blank;
        if (n == width)
            break;
        at += text::charBytes(page, at);
    }
    if (wordEnd == p)
        return {at, at};
    const char *next = wordEnd;
    while (!newlineBytes(next) && text::spaceBytes(page, next))
        next += text::spaceBytes(page, next);
    return {wordEnd, next + newlineBytes(next)};
}

}

uint32_t VxStrPad(char *s, int32_t width)
{
    return VxStrPadWith(s, width, ' ');
}

uint32_t VxStrPadWith(char *s, int32_t width, int32_t ch)
{
    const uint32_t fill = text::asCharValue(ch);
    if (!s || width < 0 || fill == 0 || fill > 0xFF)
        return 1;
    const size_t wanted = static_cast<size_t>(width);
    const size_t length = std::strlen(s);
    if (length >= wanted)
        return 0;
    std::memset(s + length, static_cast<int>(fill), wanted - length);
    s[wanted] = '\0';
    return 0;
}

uint32_t VxStrCenter(const char *src, int32_t width, char *dst)
{
    if (!dst || width < 0)
        return 1;
    if (!src) {
        *dst = '\0';
        return 1;
    }
    const size_t field = static_cast<size_t>(width);
    const size_t length = std::strlen(src);
    if (length >= field)
        return !text::copyPiece(dst, field + 1, src, length);
    const size_t left = (field - length) / 2;
    std::memmove(dst + left, src, length);
    std::memset(dst, ' ', left);
    std::memset(dst + left + length, ' ', field - left - length);
    dst[field] = '\0';
    return 0;
}

uint32_t VxStrFitToFrmt(const char *src, int32_t mode, int32_t width, int32_t decimals, char *dst)
{
    if (!dst || width < 1)
        return 1;
    if (!src) {
        *dst = '\0';
        return 1;
    }
    const size_t field = static_cast<size_t>(width);
    switch (mode) {
    case 0: return fillField({src, {}}, Overflow::cut, field, dst);
    case 1: return fillField({src, {}}, Overflow::star, field, dst);
    case 2: return fillField(withDecimals(src, decimals), Overflow::star, field, dst);
    default: return fillField({src, {}}, Overflow::stars, field, dst);
    }
}

uint32_t VxStrFmtLines(const char *text, int32_t width, char *lines, int32_t lineSize, int32_t *count)
{
    if (!count)
        return 1;
    const int32_t capacity = *count;
    *count = 0;
    if (!lines || lineSize < 1 || width < 1 || capacity < 1)
        return 1;
    const size_t size = static_cast<size_t>(lineSize);
    std::memset(lines, 0, size * static_cast<size_t>(capacity));
    if (!text)
        return 0;
    const text::CodePage &page = text::codePage();
    bool whole = true;
    while (*text) {
        if (*count == capacity)
            return 1;
        const Break line = breakLine(page, text, width);
        whole &= text::copyPiece(lines, size, text, static_cast<size_t>(line.end - text));
        ++*count;
        lines += size;
        text = line.next;
    }
    return !whole;
}

uint32_t VxStrFmtLbl(const VxLblFmt *format, char *buf, int32_t size)
{
    if (!buf || size < 1)
        return 1;
    buf[0] = '\0';
    if (!format)
        return 1;
    const size_t room = static_cast<size_t>(size);
    int32_t length = text::formatText(buf, room, "%.32s%*.*f%.32s", format->prefix, format->width,
                                      format->precision, format->value, format->suffix);
    if (length >= 0 && length < size)
        return 0;
    size_t kept = length < 0 ? 0 : room - 1;
    buf[kept - text::unfinishedBytes(text::codePage(), buf, kept)] = '\0';
    return 1;
}
