// What characters are. Nothing here asks the C locale: ASCII is as in C, all
// else is decided by the code point that the code page gives a character.

#include "vx/str.h"

#include <cstring>

#include "text/codepage.h"
#include "text/str_scan.h"
#include "text/unicode.h"

using namespace vx;

namespace {

/** The character that a caller's number stands for, as bytes. */
class Character {
public:
    explicit Character(int32_t ch)
    {
        const uint32_t value = text::asCharValue(ch);
        length_ = text::valueBytes(value);
        for (int i = 0; i < length_; ++i)
            bytes_[i] = static_cast<char>(value >> 8 * (length_ - 1 - i));
    }

    bool isSpace() const { return text::spaceBytes(text::codePage(), bytes_) == length_; }

    /** Whether the code page has such a character for which `test` holds. */
    bool is(bool (*test)(char32_t) noexcept) const
    {
        const text::CodePage &page = text::codePage();
        char32_t codePoint;
        return text::charBytes(page, bytes_) == length_ && text::decode(page, bytes_, length_, codePoint) &&
               test(codePoint);
    }

private:
    char bytes_[5] = {};
    int length_;
};

bool withinText(const char *s, int32_t position)
{
    return s && position >= 0 && !std::memchr(s, '\0', static_cast<size_t>(position));
}

}

int32_t VxIsalnum(int32_t ch)
{
    return Character(ch).is([](char32_t c) noexcept { return text::isLetter(c) || text::isDigit(c); });
}

int32_t VxIsalpha(int32_t ch)
{
    return Character(ch).is(text::isLetter);
}

int32_t VxIsdigit(int32_t ch)
{
    return ch >= '0' && ch <= '9';
}

int32_t VxIsspace(int32_t ch)
{
    return Character(ch).isSpace();
}

int32_t VxIsprint(int32_t ch)
{
    return Character(ch).is(text::isPrintable);
}

int32_t VxStrIsprint(const char *s)
{
    if (!s)
        return 0;
    const text::CodePage &page = text::codePage();
    for (int bytes; *s; s += bytes) {
        bytes = text::charBytes(page, s);
        char32_t codePoint;
        if (!text::decode(page, s, bytes, codePoint) || !text::isPrintable(codePoint))
            return 0;
    }
    return 1;
}

int32_t VxStrIsBlank(const char *s)
{
    return s && *text::skipBlanks(text::codePage(), s) == '\0';
}

int32_t VxStrIsBlankN(const char *s, int32_t n)
{
    if (!s)
        return 0;
    const text::CodePage &page = text::codePage();
    for (; *s && n > 0; --n) {
        int bytes = text::spaceBytes(page, s);
        if (bytes == 0)
            return 0;
        s += bytes;
    }
    return 1;
}

int32_t VxStrIsBlankW(const char16_t *s)
{
    constexpr char16_t ideographicSpace = 0x3000;
    if (!s)
        return 0;
    while (*s == ' ' || (*s >= '\t' && *s <= '\r') || *s == ideographicSpace)
        ++s;
    return *s == 0;
}

int32_t VxIsCharLead(const char *s, int32_t position)
{
    return withinText(s, position) &&
           text::byteType(text::codePage(), s, static_cast<size_t>(position)) != text::ByteType::trail;
}

int32_t VxIsCharSglByte(const char *s, int32_t position)
{
    return withinText(s, position) &&
           text::byteType(text::codePage(), s, static_cast<size_t>(position)) == text::ByteType::single;
}

int32_t VxCharDb2Sb(uint8_t lead, uint8_t trail, int32_t *value)
{
    if (!value)
        return 0;
    const char pair[] = {static_cast<char>(lead), static_cast<char>(trail), '\0'};
    const bool valid = text::charBytes(text::codePage(), pair) == 2;
    *value = valid ? lead * 256 + trail : lead;
    return valid;
}
