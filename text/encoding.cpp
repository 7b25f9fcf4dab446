// Texts in the process code page, with or without escapes, to UTF-16 or UTF-8
// and back. Every result is allocated once and to size: a conversion measures
// what it writes, into a scratch buffer, and runs again when that was too small.

#include "vx/lang.h"
#include "vx/lang.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "text/codepage.h"
#include "vx/mem.h"

namespace vx::text {

namespace {

constexpr size_t escapeUnits = 7; // \U+00E9

bool isHighSurrogate(char32_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/** Where a conversion puts its result: all of it is measured, and written as far as there is room. */
template <typename Unit> class Output {
public:
    Output(Unit *place, size_t room) noexcept : place_(place), room_(room) {}

    void put(char32_t unit) noexcept
    {
        if (length_ < room_)
            place_[length_] = static_cast<Unit>(unit);
        ++length_;
    }

    /** Put bytes that are units as they stand: ASCII, or a character where units are bytes. */
    void put(std::string_view bytes) noexcept
    {
        if (length_ < room_)
            std::copy_n(bytes.data(), std::min(bytes.size(), room_ - length_), place_ + length_);
        length_ += bytes.size();
    }

    size_t length() const noexcept { return length_; }
    bool fits() const noexcept { return length_ <= room_; }

private:
    Unit *place_;
    size_t room_;
    size_t length_ = 0;
};

constexpr size_t scratchUnits = 2048;

void putEscape(Output<char> &out, char32_t unit) noexcept
{
    out.put("\\U+");
    for (int shift = 12; shift >= 0; shift -= 4)
        out.put(U"0123456789ABCDEF"[unit >> shift & 0xF]);
}

void putUtf16(Output<char16_t> &out, char32_t character) noexcept
{
    if (character <= 0xFFFF) {
        out.put(character);
        return;
    }
    out.put(0xD800 + ((character - 0x10000) >> 10));
    out.put(0xDC00 + ((character - 0x10000) & 0x3FF));
}

/** A character in `page`, or its code units as escapes when the page has none for it. */
void putCharacter(Output<char> &out, const CodePage &page, char32_t character) noexcept
{
    char bytes[4];
    int n = encode(page, character, bytes);
    if (n > 0) {
        out.put({bytes, static_cast<size_t>(n)});
        return;
    }
    char16_t units[2];
    Output<char16_t> written(units, 2);
    putUtf16(written, character);
    for (size_t i = 0; i < written.length(); ++i)
        putEscape(out, units[i]);
}

int hexDigit(char32_t c) noexcept
{
    if (c >= '0' && c <= '9')
        return static_cast<int>(c - '0');
    if (c >= 'A' && c <= 'F')
        return static_cast<int>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f')
        return static_cast<int>(c - 'a' + 10);
    return -1;
}

/** Take an escape off the front of `rest`: whether there is one, and the code unit that it names. */
template <typename Unit> bool takeEscape(std::basic_string_view<Unit> &rest, char16_t &unit) noexcept
{
    if (rest.size() < escapeUnits || rest[0] != '\\' || (rest[1] != 'U' && rest[1] != 'u') || rest[2] != '+')
        return false;
    int value = 0;
    for (Unit c : rest.substr(3, 4)) {
        int digit = hexDigit(static_cast<std::make_unsigned_t<Unit>>(c));
        if (digit < 0)
            return false;
        value = value << 4 | digit;
    }
    unit = static_cast<char16_t>(value);
    rest.remove_prefix(escapeUnits);
    return true;
}

/** Take the bytes off `rest` that stand before the first byte beyond ASCII. */
std::string_view takeAscii(std::string_view &rest) noexcept
{
    constexpr uint64_t highBits = 0x8080808080808080;
    size_t n = 0;
    for (uint64_t word; n + sizeof word <= rest.size(); n += sizeof word) {
        std::memcpy(&word, rest.data() + n, sizeof word);
        if (word & highBits)
            break;
    }
    while (n < rest.size() && static_cast<uint8_t>(rest[n]) < 0x80)
        ++n;
    std::string_view run = rest.substr(0, n);
    rest.remove_prefix(n);
    return run;
}

/** charBytes() of the first character of a text that no terminator need follow. */
int firstCharBytes(const CodePage &page, std::string_view text) noexcept
{
    if (text.size() >= 4)
        return charBytes(page, text.data());
    char tail[4] = {};
    std::memcpy(tail, text.data(), text.size());
    return charBytes(page, tail);
}

/** Take the first character off `rest`; where the page has none for its bytes, their own value. */
char32_t takeCharacter(std::string_view &rest, const CodePage &page) noexcept
{
    if (static_cast<uint8_t>(rest[0]) < 0x80) {
        char32_t ascii = static_cast<uint8_t>(rest[0]);
        rest.remove_prefix(1);
        return ascii;
    }
    int bytes = firstCharBytes(page, rest);
    char32_t character;
    if (!decode(page, rest.data(), bytes, character)) {
        character = 0;
        for (char byte : rest.substr(0, static_cast<size_t>(bytes)))
            character = character << 8 | static_cast<uint8_t>(byte);
    }
    rest.remove_prefix(static_cast<size_t>(bytes));
    return character;
}

/** Take the first character off `rest`; a surrogate without its partner is taken as it is. */
char32_t takeCharacter(std::u16string_view &rest) noexcept
{
    uint32_t character = rest[0];
    size_t units = 1;
    if (rest.size() > 1 && VxSurrogateToUTF32(rest[0], rest[1], &character))
        units = 2;
    rest.remove_prefix(units);
    return character;
}

/** The text up to its terminator, or as far as `length`. */
template <typename Unit> std::basic_string_view<Unit> upTo(const Unit *text, int32_t length) noexcept
{
    size_t most = static_cast<size_t>(length);
    const Unit *end = std::char_traits<Unit>::find(text, most, Unit{});
    return {text, end ? static_cast<size_t>(end - text) : most};
}

/** Write to `place`, which has room for all, what a first run put into `scratch` as far as that went. */
template <typename Unit, typename Convert>
void writeAgain(const Output<Unit> &first, const Unit *scratch, Unit *place, Convert convert) noexcept
{
    if (first.fits()) {
        std::copy_n(scratch, first.length(), place);
        return;
    }
    Output<Unit> second(place, first.length());
    convert(second);
}

/** Fill a vector with what `convert` puts out and a terminator; on failure it is as it was. */
template <typename Unit, typename Convert> uint32_t fill(std::vector<Unit> &result, Convert convert) noexcept
{
    Unit scratch[scratchUnits];
    Output<Unit> first(scratch, scratchUnits);
    convert(first);
    try {
        std::vector<Unit> filled(first.length() + 1);
        writeAgain(first, scratch, filled.data(), convert);
        result.swap(filled);
        return 0;
    } catch (const std::bad_alloc &) {
        return 1;
    }
}

/** A new block with what `convert` puts out and a terminator, or null. */
template <typename Unit, typename Convert> Unit *newText(Convert convert) noexcept
{
    Unit scratch[scratchUnits];
    Output<Unit> first(scratch, scratchUnits);
    convert(first);
    if (first.length() >= INT32_MAX / sizeof(Unit))
        return nullptr;
    void *block = nullptr;
    if (VxMemAlloc(static_cast<int32_t>((first.length() + 1) * sizeof(Unit)), &block) != 0)
        return nullptr;
    Unit *text = static_cast<Unit *>(block);
    writeAgain(first, scratch, text, convert);
    text[first.length()] = Unit{};
    return text;
}

char *transcode(const char *text, const CodePage &from, const CodePage &to) noexcept
{
    if (!text)
        return nullptr;
    return newText<char>([&](Output<char> &out) {
        for (std::string_view rest = text; !rest.empty();) {
            out.put(takeAscii(rest));
            if (!rest.empty())
                putCharacter(out, to, takeCharacter(rest, from));
        }
    });
}

const CodePage &utf8() noexcept
{
    return *findCodePage(65001);
}

}

}

using namespace vx::text;

int32_t VxSurrogateToUTF32(uint32_t high, uint32_t low, uint32_t *codePoint)
{
    if (!codePoint)
        return 0;
    *codePoint = high;
    if (!isHighSurrogate(high) || !isLowSurrogate(low))
        return 0;
    *codePoint = (high - 0xD800) * 0x400 + (low - 0xDC00) + 0x10000;
    return 1;
}

uint32_t VxMultiByteToWideChar(const char *text, int32_t length, std::vector<char16_t> &out)
{
    if (!text || length < 0)
        return 1;
    const CodePage &page = codePage();
    return fill(out, [&](Output<char16_t> &wide) {
        for (std::string_view rest = upTo(text, length); !rest.empty();) {
            char16_t unit;
            if (takeEscape(rest, unit))
                wide.put(unit);
            else
                putUtf16(wide, takeCharacter(rest, page));
        }
    });
}

uint32_t VxWideCharToMultiByte(const char16_t *text, int32_t length, std::vector<char> &out)
{
    if (!text || length < 0)
        return 1;
    return fill(out, [&](Output<char> &bytes) {
        for (char16_t unit : upTo(text, length))
            if (unit < 0x80)
                bytes.put(unit);
            else
                putEscape(bytes, unit);
    });
}

uint32_t VxWideCharParseCIF(const char16_t *text, int32_t length, std::vector<char16_t> &out)
{
    if (!text || length < 0)
        return 1;
    return fill(out, [&](Output<char16_t> &wide) {
        for (std::u16string_view rest = upTo(text, length); !rest.empty();) {
            char16_t unit;
            if (!takeEscape(rest, unit)) {
                unit = rest[0];
                rest.remove_prefix(1);
            }
            wide.put(unit);
        }
    });
}

char *VxStrFromCIFStr(const char *text)
{
    size_t length = text ? std::strlen(text) : 0;
    std::vector<char16_t> wide;
    if (length > INT32_MAX || VxMultiByteToWideChar(text, static_cast<int32_t>(length), wide) != 0)
        return nullptr;
    return VxStrFromUTF16(wide.data());
}

char *VxStrToUTF8(const char *text)
{
    return transcode(text, codePage(), utf8());
}

char *VxStrFromUTF8(const char *text)
{
    return transcode(text, utf8(), codePage());
}

char16_t *VxStrToUTF16(const char *text)
{
    if (!text)
        return nullptr;
    const CodePage &page = codePage();
    return newText<char16_t>([&](Output<char16_t> &wide) {
        for (std::string_view rest = text; !rest.empty();) {
            wide.put(takeAscii(rest));
            if (!rest.empty())
                putUtf16(wide, takeCharacter(rest, page));
        }
    });
}

char *VxStrFromUTF16(const char16_t *text)
{
    if (!text)
        return nullptr;
    const CodePage &page = codePage();
    return newText<char>([&](Output<char> &bytes) {
        for (std::u16string_view rest = text; !rest.empty();)
            putCharacter(bytes, page, takeCharacter(rest));
    });
}
