// Splits lines into arrays of fields.

#include "vx/str.h"

#include <cstring>

#include "text/codepage.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

/** A line up to its terminator or carriage return. */
struct Line {
    explicit Line(const char *s) : first(s)
    {
        const size_t length = std::strlen(s);
        const void *stop = std::memchr(s, '\r', length);
        end = stop ? static_cast<const char *>(stop) : s + length;
    }

    const char *first;
    const char *end;
};

/** Next place of one delimiter byte that is never part of a longer character. */
class ByteFinder {
public:
    ByteFinder(char byte, const char *end) : byte_(byte), end_(end) {}

    const char *find(const char *p, int &bytes)
    {
        bytes = 1;
        const void *found = byte_ ? std::memchr(p, byte_, static_cast<size_t>(end_ - p)) : nullptr;
        return found ? static_cast<const char *>(found) : end_;
    }

private:
    char byte_;
    const char *end_;
};

/** The nearer one of two such bytes. Each place is remembered until it is passed. */
class BytePairFinder {
public:
    BytePairFinder(char byte1, char byte2, const char *end) : finders_{{byte1, end}, {byte2, end}} {}

    const char *find(const char *p, int &bytes)
    {
        for (int i : {0, 1})
            if (!next_[i] || next_[i] < p)
                next_[i] = finders_[i].find(p, bytes);
        bytes = 1;
        return next_[0] < next_[1] ? next_[0] : next_[1];
    }

private:
    ByteFinder finders_[2];
    const char *next_[2] = {};
};

/** Delimiters that may be part of longer characters, or be such: every character is looked at. */
template <typename IsDelimiter> class CharFinder {
public:
    CharFinder(const text::CodePage &page, IsDelimiter isDelimiter, const char *end)
        : page_(page), isDelimiter_(isDelimiter), end_(end)
    {
    }

    const char *find(const char *p, int &bytes)
    {
        for (bytes = 0; p < end_; p += bytes) {
            bytes = text::charBytes(page_, p);
            if (isDelimiter_(text::charValue(p, bytes)))
                return p;
        }
        return end_;
    }

private:
    const text::CodePage &page_;
    IsDelimiter isDelimiter_;
    const char *end_;
};

/** The caller's array. */
struct Fields {
    char *first;
    size_t width;
    int32_t capacity;
};

template <typename Finder>
uint32_t splitLine(const Line &line, Finder finder, const Fields &fields, int32_t &count)
{
    bool whole = true;
    const char *p = line.first;
    char *field = fields.first;
    for (int32_t n = 0; n < fields.capacity; field += fields.width) {
        int bytes;
        const char *end = finder.find(p, bytes);
        const size_t length = static_cast<size_t>(end - p);
        const bool last = end == line.end;
        if (last && length == 0)
            break;
        whole &= text::copyPiece(field, fields.width, p, length);
        count = ++n;
        if (last)
            break;
        p = end + bytes;
    }
    return !whole;
}

/** Checks and clears what the caller gave; false when there is nothing to split into. */
bool prepare(int32_t width, char *fields, int32_t *count, Fields &out)
{
    if (!count)
        return false;
    out = {fields, static_cast<size_t>(width), *count};
    *count = 0;
    if (!fields || width < 1 || out.capacity < 1)
        return false;
    std::memset(fields, 0, out.width * static_cast<size_t>(out.capacity));
    return true;
}

uint32_t trimmed(uint32_t result, char *fields, int32_t width, const int32_t *count)
{
    if (fields && count)
        for (int32_t i = 0; i < *count; ++i)
            VxStrRem(fields + static_cast<ptrdiff_t>(i) * width);
    return result;
}

bool isByte(const text::CodePage &page, uint32_t value)
{
    return value < 0x100 && text::standsAlone(page, static_cast<char>(value));
}

}

uint32_t VxStrParseUtil(const char *s, int32_t d1, int32_t d2, int32_t width, char *fields, int32_t *count)
{
    Fields array;
    if (!prepare(width, fields, count, array))
        return 1;
    if (!s)
        return 0;
    const text::CodePage &page = text::codePage();
    const Line line(s);
    const uint32_t value1 = text::asCharValue(d1);
    const uint32_t value2 = text::asCharValue(d2);
    // A control character at a place that the code page calls invalid ends a
    // field too; such a byte counts as a character of its own everywhere here.
    if (!isByte(page, value1) || !isByte(page, value2)) {
        auto isDelimiter = [=](uint32_t value) { return value == value1 || value == value2; };
        return splitLine(line, CharFinder(page, isDelimiter, line.end), array, *count);
    }
    const char byte1 = static_cast<char>(value1);
    const char byte2 = static_cast<char>(value2);
    if (byte1 == byte2)
        return splitLine(line, ByteFinder(byte1, line.end), array, *count);
    return splitLine(line, BytePairFinder(byte1, byte2, line.end), array, *count);
}

uint32_t VxStrParse(const char *s, int32_t delim, char *fields, int32_t *count)
{
    return VxStrParseUtil(s, delim, delim, 32, fields, count);
}

uint32_t VxStrParse80(const char *s, int32_t delim, char *fields, int32_t *count)
{
    return VxStrParseUtil(s, delim, delim, 80, fields, count);
}

uint32_t VxStrParse128(const char *s, int32_t delim, char *fields, int32_t *count)
{
    return VxStrParseUtil(s, delim, delim, 128, fields, count);
}

uint32_t VxStrParse256(const char *s, int32_t delim, char *fields, int32_t *count)
{
    return VxStrParseUtil(s, delim, delim, 256, fields, count);
}

uint32_t VxStrParse80_Clean(const char *s, int32_t delim, char *fields, int32_t *count)
{
    return trimmed(VxStrParse80(s, delim, fields, count), fields, 80, count);
}

uint32_t VxStrParse256_Clean(const char *s, int32_t delim, char *fields, int32_t *count)
{
    return trimmed(VxStrParse256(s, delim, fields, count), fields, 256, count);
}

uint32_t VxStrParse2(const char *s, int32_t d1, int32_t d2, char *fields, int32_t *count)
{
    return VxStrParseUtil(s, d1, d2, 32, fields, count);
}

uint32_t VxStrParse2_Clean(const char *s, int32_t d1, int32_t d2, char *fields, int32_t *count)
{
    return trimmed(VxStrParse2(s, d1, d2, fields, count), fields, 32, count);
}

uint32_t VxStrParse_Space(const char *s, char *fields, int32_t *count)
{
    return VxStrParse2(s, ' ', '\t', fields, count);
}

uint32_t VxStrParse3(const char *s, const char *delims, int32_t width, char *fields, int32_t *count)
{
    Fields array;
    if (!prepare(width, fields, count, array) || !delims)
        return 1;
    if (!s)
        return 0;
    const text::CodePage &page = text::codePage();
    const Line line(s);
    auto isDelimiter = [&page, delims](uint32_t value) {
        for (const char *p = delims; *p; p += text::charBytes(page, p))
            if (text::charValue(p, text::charBytes(page, p)) == value)
                return true;
        return false;
    };
    return splitLine(line, CharFinder(page, isDelimiter, line.end), array, *count);
}
