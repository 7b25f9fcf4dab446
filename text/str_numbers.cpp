// Numbers in texts.

#include "vx/str.h"

#include <charconv>
#include <cstring>
#include <bit>

#include "platform/os/os.h"
#include "text/codepage.h"
#include "text/str_integer.h"
#include "text/str_scan.h"

using namespace vx;

namespace {

constexpr int32_t intDigits = 8;
constexpr int32_t doubleDigits = 16;

bool isHexDigit(char c)
{
    return text::isDecimalDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/** All of a text of 1 to `most` hexadecimal digits. */
template <typename Word> bool readHex(const char *s, size_t most, Word &value)
{
    const size_t length = std::strlen(s);
    if (!VxStrIsHex(s) || length > most)
        return false;
    return std::from_chars(s, s + length, value, 16).ec == std::errc();
}

/** All digits or, since half a number is none, nothing. */
uint32_t writeHex(uint64_t value, int32_t digits, char *buf, int32_t size)
{
    if (!buf || size < 1)
        return 1;
    buf[0] = '\0';
    if (size <= digits)
        return 1;
    buf[digits] = '\0';
    for (int32_t i = digits; i-- > 0; value >>= 4)
        buf[i] = "0123456789ABCDEF"[value & 0xF];
    return 0;
}

bool contains(const char *s, char c)
{
    return text::findChar(text::codePage(), s, static_cast<uint8_t>(c)) != nullptr;
}

}

int32_t VxStrIsInt(const char *s)
{
    if (!s || !text::isDecimalDigit(*s))
        return 0;
    int32_t value = text::readInteger(s).value;
    return *s == '\0' ? value : 0;
}

int32_t VxStrIsConst(const char *s)
{
    if (!s)
        return 0;
    char *end;
    os::parseDouble(s, &end);
    return end != s && *end == '\0';
}

int32_t VxStrType(const char *s)
{
    if (!s)
        return 0;
    // "inf" and "nan" are words here, though the standard library reads them as numbers.
    const char *first = text::skipBlanks(text::codePage(), s);
    first += *first == '-' || *first == '+';
    char *end;
    os::parseDouble(s, &end);
    if (end == s || !(text::isDecimalDigit(*first) || *first == '.'))
        return 0;
    return contains(s, '.') || contains(s, 'e') ? 2 : 1;
}

char *VxStrDbl(double v)
{
    thread_local char result[64];
    text::formatText(result, sizeof result, "%g", v);
    return result;
}

char *VxStrInt(int32_t v)
{
    thread_local char result[32];
    text::formatText(result, sizeof result, "%d", v);
    return result;
}

uint32_t VxStrHexToInt(const char *s, int32_t *v)
{
    uint32_t bits;
    if (!s || !v || !readHex(s, intDigits, bits))
        return 1;
    *v = static_cast<int32_t>(bits);
    return 0;
}

uint32_t VxStrIntToHex(int32_t v, char *buf, int32_t size)
{
    return writeHex(static_cast<uint32_t>(v), intDigits, buf, size);
}

uint32_t VxStrHexToDbl(const char *s, double *v)
{
    uint64_t bits;
    if (!s || !v || std::strlen(s) != doubleDigits || !readHex(s, doubleDigits, bits))
        return 1;
    *v = std::bit_cast<double>(bits);
    return 0;
}

uint32_t VxStrDblToHex(double v, char *buf, int32_t size)
{
    return writeHex(std::bit_cast<uint64_t>(v), doubleDigits, buf, size);
}

int32_t VxStrIsHex(const char *s)
{
    if (!s || *s == '\0')
        return 0;
    while (isHexDigit(*s))
        ++s;
    return *s == '\0';
}

uint32_t VxStrCvtNum(double v, int32_t width, int32_t precision, char *buf, int32_t size)
{
    if (!buf || size < 1)
        return 1;
    int32_t length = text::formatText(buf, static_cast<size_t>(size), "%*.*f", width, precision, v);
    if (length < 0)
        buf[0] = '\0';
    return length < 0 || length >= size;
}

uint32_t VxStrAddVal(char *s, int32_t size, double v)
{
    char number[64];
    text::formatText(number, sizeof number, "%g", v);
    return VxStrCat(s, number, size);
}
