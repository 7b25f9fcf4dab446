#include "text/str_scan.h"

#include <cstdarg>

#include "platform/os/os.h"

namespace vx::text {

namespace {

bool foundAsByte(const CodePage &page, uint32_t wanted) noexcept
{
    return wanted < 0x100 && standsAlone(page, static_cast<char>(wanted));
}

}

const char *findChar(const CodePage &page, const char *p, uint32_t wanted) noexcept
{
    if (wanted == 0)
        return nullptr;
    if (foundAsByte(page, wanted))
        return std::strchr(p, static_cast<int>(wanted));
    for (int bytes; *p; p += bytes) {
        bytes = charBytes(page, p);
        if (charValue(p, bytes) == wanted)
            return p;
    }
    return nullptr;
}

const char *findLastChar(const CodePage &page, const char *text, uint32_t wanted) noexcept
{
    if (wanted == 0)
        return nullptr;
    if (foundAsByte(page, wanted))
        return std::strrchr(text, static_cast<int>(wanted));
    const char *last = nullptr;
    for (int bytes; *text; text += bytes) {
        bytes = charBytes(page, text);
        if (charValue(text, bytes) == wanted)
            last = text;
    }
    return last;
}

const char *findText(const CodePage &page, const char *p, const char *part, size_t length) noexcept
{
    while (const char *hit = std::strstr(p, part)) {
        p = boundaryFrom(page, p, hit);
        if (p == hit) {
            if (boundaryFrom(page, hit, hit + length) == hit + length)
                return hit;
            p += charBytes(page, p);
        }
    }
    return nullptr;
}

const char *endWithoutBlanks(const CodePage &page, const char *text, const char *end) noexcept
{
    // White space of one byte is never the end of a longer character.
    while (end > text && page.has(end[-1], CodePage::whiteSpace))
        --end;
    size_t wide = std::strlen(page.ideographicSpace);
    if (wide == 0 || static_cast<size_t>(end - text) < wide ||
        std::memcmp(end - wide, page.ideographicSpace, wide) != 0)
        return end;
    // Only a walk from the front tells a wide space from the ends of other characters.
    const char *kept = text;
    while (text < end) {
        int blank = spaceBytes(page, text);
        text += blank ? blank : charBytes(page, text);
        if (!blank)
            kept = text;
    }
    return kept;
}

void copyCut(char *out, size_t size, const char *text) noexcept
{
    size_t cut = boundaryBefore(codePage(), text, size - 1);
    std::memmove(out, text, cut);
    std::memset(out + cut, 0, size - cut);
}

void cutAt(char *text, size_t position) noexcept
{
    size_t cut = boundaryBefore(codePage(), text, position);
    std::memset(text + cut, 0, position - cut + 1);
}

size_t unfinishedBytes(const CodePage &page, const char *text, size_t length) noexcept
{
    if (page.kind == CodePage::Kind::singleByte || length == 0)
        return 0;
    if (page.kind == CodePage::Kind::doubleByte) {
        bool lone = page.has(text[length - 1], CodePage::leadByte) &&
                    boundaryBefore(page, text, length - 1) == length - 1;
        return lone ? 1 : 0;
    }
    for (size_t back = 1; back <= 3 && back <= length; ++back) {
        uint8_t byte = static_cast<uint8_t>(text[length - back]);
        if (page.has(static_cast<char>(byte), CodePage::trailByte))
            continue;
        size_t needed = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        return page.has(static_cast<char>(byte), CodePage::leadByte) && needed > back ? back : 0;
    }
    return 0;
}

int32_t formatText(char *out, size_t size, const char *format, ...) noexcept
{
    va_list args;
    va_start(args, format);
    int32_t length = os::formatArgs(out, size, format, args);
    va_end(args);
    return length;
}

}
