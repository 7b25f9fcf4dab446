#include "text/str_case.h"

#include "platform/ascii.h"
#include "text/unicode.h"

namespace vx::text {

namespace {

void mapChar(const CodePage &page, const char *p, int bytes, char32_t (*map)(char32_t) noexcept,
             char *out) noexcept
{
    char32_t codePoint;
    char mapped[4];
    bool same = decode(page, p, bytes, codePoint) && encode(page, map(codePoint), mapped) == bytes;
    std::memmove(out, same ? mapped : p, static_cast<size_t>(bytes));
}

}

void upperChar(const CodePage &page, const char *p, int bytes, char *out) noexcept
{
    if (static_cast<uint8_t>(*p) < 0x80)
        *out = ascii::upper(*p);
    else
        mapChar(page, p, bytes, upperCase, out);
}

void lowerChar(const CodePage &page, const char *p, int bytes, char *out) noexcept
{
    if (static_cast<uint8_t>(*p) < 0x80)
        *out = ascii::lower(*p);
    else
        mapChar(page, p, bytes, lowerCase, out);
}

}
