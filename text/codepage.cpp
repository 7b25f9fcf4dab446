#include "text/codepage.h"

#include "platform/os/os.h"
#include "text/codepage_tables.h"

namespace vx::text {

namespace {

struct Range {
    uint8_t first, last;
};

constexpr CodePage makePage(int32_t number, CodePage::Kind kind, const CodePageTables *tables)
{
    CodePage page{};
    page.number = number;
    page.kind = kind;
    page.tables = tables;
    for (int byte : {' ', '\t', '\n', '\v', '\f', '\r'})
        page.flags[byte] |= CodePage::whiteSpace;
    return page;
}

constexpr void mark(CodePage &page, Range range, CodePage::Flag flag)
{
    for (int byte = range.first; byte <= range.last; ++byte)
        page.flags[byte] = static_cast<uint8_t>(page.flags[byte] | flag);
}

template <size_t L, size_t T>
constexpr CodePage doubleByte(int32_t number, const CodePageTables &tables, const Range (&leads)[L],
                              const Range (&trails)[T], const char (&space)[3])
{
    CodePage page = makePage(number, CodePage::Kind::doubleByte, &tables);
    for (Range range : leads)
        mark(page, range, CodePage::leadByte);
    for (Range range : trails)
        mark(page, range, CodePage::trailByte);
    page.ideographicSpace[0] = space[0];
    page.ideographicSpace[1] = space[1];
    return page;
}

constexpr CodePage utf8()
{
    CodePage page = makePage(65001, CodePage::Kind::utf8, nullptr);
    mark(page, {0xC2, 0xF4}, CodePage::leadByte);
    mark(page, {0x80, 0xBF}, CodePage::trailByte);
    page.ideographicSpace[0] = '\xE3';
    page.ideographicSpace[1] = '\x80';
    page.ideographicSpace[2] = '\x80';
    return page;
}

constexpr CodePage singleByte(int32_t number, const CodePageTables &tables)
{
    return makePage(number, CodePage::Kind::singleByte, &tables);
}

constexpr CodePage pages[] = {
    singleByte(1252, tables1252),
    utf8(),
    doubleByte(932, tables932, {{0x81, 0x9F}, {0xE0, 0xFC}}, {{0x40, 0x7E}, {0x80, 0xFC}}, "\x81\x40"),
    doubleByte(936, tables936, {{0x81, 0xFE}}, {{0x40, 0x7E}, {0x80, 0xFE}}, "\xA1\xA1"),
    doubleByte(949, tables949, {{0x81, 0xFE}}, {{0x41, 0x5A}, {0x61, 0x7A}, {0x81, 0xFE}}, "\xA1\xA1"),
    doubleByte(950, tables950, {{0x81, 0xFE}}, {{0x40, 0x7E}, {0xA1, 0xFE}}, "\xA1\x40"),
    singleByte(874, tables874),
    singleByte(1250, tables1250),
    singleByte(1251, tables1251),
    singleByte(1253, tables1253),
    singleByte(1254, tables1254),
    singleByte(1255, tables1255),
    singleByte(1256, tables1256),
    singleByte(1257, tables1257),
    singleByte(1258, tables1258),
};

// What was set; -1 asks the locale.
std::atomic<int32_t> multibyteSet{0};
std::atomic<int32_t> systemSet{-1};

}

namespace detail {

std::atomic<const CodePage *> current{nullptr};

const CodePage &resolveCurrent() noexcept
{
    int32_t number = multibyteCodePage();
    if (number == 0)
        number = systemCodePage();
    const CodePage *page = findCodePage(number);
    if (!page)
        page = &pages[0];
    current.store(page, std::memory_order_release);
    return *page;
}

// Well-formed sequences only: no overlong forms, no surrogates, nothing above
// U+10FFFF (The Unicode Standard, table 3-7).
int utf8CharBytes(const char *p) noexcept
{
    auto byte = [p](int i) { return static_cast<uint8_t>(p[i]); };
    auto continues = [&](int i) { return (byte(i) & 0xC0) == 0x80; };
    uint8_t first = byte(0);
    if (first >= 0xC2 && first <= 0xDF)
        return continues(1) ? 2 : 1;
    if (first >= 0xE0 && first <= 0xEF) {
        uint8_t low = first == 0xE0 ? 0xA0 : 0x80;
        uint8_t high = first == 0xED ? 0x9F : 0xBF;
        return byte(1) >= low && byte(1) <= high && continues(2) ? 3 : 1;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        uint8_t low = first == 0xF0 ? 0x90 : 0x80;
        uint8_t high = first == 0xF4 ? 0x8F : 0xBF;
        return byte(1) >= low && byte(1) <= high && continues(2) && continues(3) ? 4 : 1;
    }
    return 1;
}

}

void setCodePage(int32_t multibyte, int32_t system) noexcept
{
    multibyteSet = multibyte;
    systemSet = system;
    detail::resolveCurrent();
}

int32_t multibyteCodePage() noexcept
{
    return multibyteSet;
}

int32_t systemCodePage() noexcept
{
    int32_t set = systemSet;
    return set >= 0 ? set : os::localeCodePage();
}

const CodePage *findCodePage(int32_t number) noexcept
{
    for (const CodePage &page : pages)
        if (page.number == number)
            return &page;
    return nullptr;
}

const char *prevChar(const CodePage &page, const char *start, const char *p) noexcept
{
    if (p <= start)
        return start;
    return start + boundaryBefore(page, start, static_cast<size_t>(p - start) - 1);
}

ByteType byteType(const CodePage &page, const char *text, size_t position) noexcept
{
    size_t boundary = boundaryBefore(page, text, position);
    if (boundary != position)
        return ByteType::trail;
    return charBytes(page, text + position) > 1 ? ByteType::lead : ByteType::single;
}

size_t boundaryBefore(const CodePage &page, const char *text, size_t position) noexcept
{
    if (page.kind == CodePage::Kind::singleByte)
        return position;
    // Back over bytes that may have begun a character reaching `position`, to
    // one that surely did not; characters are then counted off from there.
    size_t start = position;
    if (page.kind == CodePage::Kind::utf8) {
        if (!page.has(text[position], CodePage::trailByte))
            return position;
        while (start > 0 && position - start < 3 && page.has(text[start], CodePage::trailByte))
            --start;
    } else {
        if (!page.has(text[position], CodePage::trailByte))
            return position;
        while (start > 0 && page.has(text[start - 1], CodePage::leadByte))
            --start;
    }
    for (;;) {
        size_t next = start + static_cast<size_t>(charBytes(page, text + start));
        if (next > position)
            return start;
        start = next;
    }
}

}
