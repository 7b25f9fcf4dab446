#include "platform/os/native_text.h"

namespace vx::os {

namespace {

const text::CodePage &utf8() noexcept
{
    static const text::CodePage &page = *text::findCodePage(65001);
    return page;
}

}

std::string_view utf8Char(const text::CodePage &page, const char *p, int bytes, CharRoom &room) noexcept
{
    char32_t c;
    if (page.kind == text::CodePage::Kind::utf8 || !text::decode(page, p, bytes, c))
        return {p, static_cast<size_t>(bytes)};
    return {room, static_cast<size_t>(text::encode(utf8(), c, room))};
}

std::string_view pageChar(const text::CodePage &page, const char *p, int bytes, CharRoom &room) noexcept
{
    if (page.kind == text::CodePage::Kind::utf8)
        return {p, static_cast<size_t>(bytes)};
    char32_t c;
    int n = text::decode(utf8(), p, bytes, c) ? text::encode(page, c, room) : 0;
    return n > 0 ? std::string_view(room, static_cast<size_t>(n)) : "?";
}

std::string toUtf8(const char *text)
{
    const text::CodePage &page = text::codePage();
    std::string out;
    CharRoom room;
    for (int bytes; *text; text += bytes) {
        bytes = text::charBytes(page, text);
        out += utf8Char(page, text, bytes, room);
    }
    return out;
}

void fromUtf8(const char *text, char *out, size_t size) noexcept
{
    const text::CodePage &page = text::codePage();
    size_t length = 0;
    CharRoom room;
    for (int bytes; *text; text += bytes) {
        bytes = text::charBytes(utf8(), text);
        std::string_view character = pageChar(page, text, bytes, room);
        if (character.size() >= size - length)
            break;
        length += character.copy(out + length, character.size());
    }
    out[length] = '\0';
}

}
