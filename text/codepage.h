#pragma once

// The process code page: which bytes of a text belong together, and how they
// map to Unicode. A leaf: everything that walks text stands on it, the seam to
// the system included, and it stands on nothing.
//
// A byte that cannot begin or continue a character of the code page counts as
// a character of one byte, so that no walk ever skips the bytes behind it.

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vx::text {

enum class ByteType { single, lead, trail };

struct CodePageTables;

struct CodePage {
    enum class Kind : uint8_t { singleByte, doubleByte, utf8 };

    enum Flag : uint8_t { leadByte = 1, trailByte = 2, whiteSpace = 4 };

    int32_t number;
    Kind kind;
    uint8_t flags[256];
    /** Bytes of the ideographic space, zero-terminated; empty where there is none. */
    char ideographicSpace[4];
    /** Its characters; null for UTF-8, which is computed. */
    const CodePageTables *tables;

    bool has(char byte, Flag flag) const noexcept
    {
        return flags[static_cast<uint8_t>(byte)] & flag;
    }
};

namespace detail {
extern std::atomic<const CodePage *> current;
const CodePage &resolveCurrent() noexcept;
int utf8CharBytes(const char *p) noexcept;
}

/** The code page in force: the one set, else the locale's, else 1252. */
inline const CodePage &codePage() noexcept
{
    const CodePage *page = detail::current.load(std::memory_order_acquire);
    return page ? *page : detail::resolveCurrent();
}

/**
 * Set the toolkit's code page and the system's. 0, or a number that the
 * toolkit has no page for, leaves that one open; -1 asks the locale for the
 * system's.
 */
void setCodePage(int32_t multibyte, int32_t system) noexcept;

/** As setCodePage(), but leaves the system's as it is. */
void setMultibyteCodePage(int32_t multibyte) noexcept;

/** The toolkit's code page as set; 0 for none. */
int32_t multibyteCodePage() noexcept;

/** The system's code page: as set, else the locale's; 0 for none. */
int32_t systemCodePage() noexcept;

/** The page of this number, or null when the toolkit has no such code page. */
const CodePage *findCodePage(int32_t number) noexcept;

/** Bytes of the character at `p`: at least 1, also at a terminator, and never reaching past one. */
inline int charBytes(const CodePage &page, const char *p) noexcept
{
    if (static_cast<uint8_t>(*p) < 0x80 || page.kind == CodePage::Kind::singleByte)
        return 1;
    if (page.kind == CodePage::Kind::utf8)
        return detail::utf8CharBytes(p);
    return page.has(p[0], CodePage::leadByte) && page.has(p[1], CodePage::trailByte) ? 2 : 1;
}

/** The start of the character that ends just before `p`; `start` when `p` is there. */
const char *prevChar(const CodePage &page, const char *start, const char *p) noexcept;

/** What the byte at `position` of the text is; positions up to the terminator. */
ByteType byteType(const CodePage &page, const char *text, size_t position) noexcept;

/** The last character boundary at or before `position`. */
size_t boundaryBefore(const CodePage &page, const char *text, size_t position) noexcept;

/** Bytes of the white-space character at `p`, the ideographic space included; 0 when it is none. */
inline int spaceBytes(const CodePage &page, const char *p) noexcept
{
    if (page.has(*p, CodePage::whiteSpace))
        return 1;
    if (*p == '\0' || *p != page.ideographicSpace[0])
        return 0;
    int n = 1;
    while (page.ideographicSpace[n]) {
        if (p[n] != page.ideographicSpace[n])
            return 0;
        ++n;
    }
    return n;
}

/**
 * The code point of the character at `p`, of as many bytes as charBytes() says;
 * false when the code page has none for them.
 */
bool decode(const CodePage &page, const char *p, int bytes, char32_t &codePoint) noexcept;

/**
 * Write the character for a code point: its length, 1 to 4 bytes, not
 * terminated, or 0 when the code page has none.
 */
int encode(const CodePage &page, char32_t codePoint, char *out) noexcept;

}
