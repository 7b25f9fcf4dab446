#include "text/codepage.h"

#include "text/codepage_tables.h"

namespace vx::text {

namespace {

char32_t decodeUtf8(const char *p, int bytes) noexcept
{
    auto byte = [p](int i) { return static_cast<char32_t>(static_cast<uint8_t>(p[i])); };
    switch (bytes) {
    case 2: return (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
    case 3: return (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
    default:
        return (byte(0) & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
    }
}

int encodeUtf8(char32_t c, char *out) noexcept
{
    auto put = [out](int i, char32_t bits) { out[i] = static_cast<char>(bits); };
    if (c < 0x800) {
        put(0, 0xC0 | c >> 6);
        put(1, 0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        if (c >= 0xD800 && c <= 0xDFFF)
            return 0;
        put(0, 0xE0 | c >> 12);
        put(1, 0x80 | (c >> 6 & 0x3F));
        put(2, 0x80 | (c & 0x3F));
        return 3;
    }
    if (c > 0x10FFFF)
        return 0;
    put(0, 0xF0 | c >> 18);
    put(1, 0x80 | (c >> 12 & 0x3F));
    put(2, 0x80 | (c >> 6 & 0x3F));
    put(3, 0x80 | (c & 0x3F));
    return 4;
}

}

bool decode(const CodePage &page, const char *p, int bytes, char32_t &codePoint) noexcept
{
    auto byte = [p](int i) { return static_cast<uint8_t>(p[i]); };
    if (byte(0) < 0x80) {
        codePoint = byte(0);
        return true;
    }
    if (page.kind == CodePage::Kind::utf8) {
        if (bytes < 2)
            return false;
        codePoint = decodeUtf8(p, bytes);
        return true;
    }
    codePoint = bytes < 2 ? page.tables->single(byte(0)) : page.tables->pair(byte(0), byte(1));
    return codePoint != 0;
}

int encode(const CodePage &page, char32_t codePoint, char *out) noexcept
{
    if (codePoint < 0x80) {
        *out = static_cast<char>(codePoint);
        return 1;
    }
    if (page.kind == CodePage::Kind::utf8)
        return encodeUtf8(codePoint, out);
    if (codePoint > 0xFFFF)
        return 0;
    unsigned code = page.tables->code(static_cast<char16_t>(codePoint));
    if (code == 0)
        return 0;
    if (code < 0x100) {
        *out = static_cast<char>(code);
        return 1;
    }
    out[0] = static_cast<char>(code >> 8);
    out[1] = static_cast<char>(code & 0xFF);
    return 2;
}

}
