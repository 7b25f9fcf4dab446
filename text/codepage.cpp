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

const CodePage &choosePage() noexcept
{
    int32_t number = multibyteCodePage();
    if (number == 0)
        number = systemCodePage();
    const CodePage *page = findCodePage(number);
    return page ? *page : pages[0];
}

// Both are asked about a byte that may continue a character.

size_t utf8BoundaryBefore(const char *text, size_t position) noexcept
{
    for (size_t back = 1; back <= 3 && back <= position; ++back) {
        const char *start = text + position - back;
        if ((*start & 0xC0) != 0x80)
            return static_cast<size_t>(detail::utf8CharBytes(start)) > back ? position - back : position;
    }
    return position;
}

size_t pairBoundaryBefore(const CodePage &page, const char *text, size_t position) noexcept
{
    // Back to a byte that begins a character because it cannot be the second
    // of a pair. From there on all are pairs, so that counting is enough.
    size_t start = position;
    while (start > 0 && page.has(text[start], CodePage::trailByte) &&
           page.has(text[start - 1], CodePage::leadByte))
        --start;
    return position - (position - start) % 2;
}

/** The number of a page that the toolkit has, else 0. */
int32_t known(int32_t number) noexcept
{
    return findCodePage(number) ? number : 0;
}

}

namespace detail {

std::atomic<const CodePage *> current{nullptr};

const CodePage &resolveCurrent() noexcept
{
    const CodePage *page = &choosePage();
    // Another thread may have set a page since this one looked; that one stands.
    const CodePage *none = nullptr;
    return current.compare_exchange_strong(none, page) ? *page : *none;
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
    systemSet = system == -1 ? -1 : known(system);
    setMultibyteCodePage(multibyte);
}

void setMultibyteCodePage(int32_t multibyte) noexcept
{
    multibyteSet = known(multibyte);
    detail::current = &choosePage();
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
    if (!page.has(text[position], CodePage::trailByte))
        return position;
    return page.kind == CodePage::Kind::utf8 ? utf8BoundaryBefore(text, position)
                                             : pairBoundaryBefore(page, text, position);
}

}
