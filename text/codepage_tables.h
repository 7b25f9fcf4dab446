#pragma once

// The characters of every code page but UTF-8, to Unicode and back. Data only,
// made by the compiler: nothing is built or allocated when the toolkit runs.

#include <cstdint>

namespace vx::text {

struct CodePageTables {
    static constexpr unsigned firstSingle = 0x80, firstLead = 0x81, firstTrail = 0x40;
    static constexpr unsigned trails = 0xFF - firstTrail;

    /** Character of each byte from 0x80 on that stands alone; 0 for none. */
    const char16_t *singles;
    /** Character of each pair, row after row of `trails`; null in a single-byte page. */
    const char16_t *pairs;

    /** Of the 256 characters with this upper byte: which of `codes`. */
    const uint8_t *blockOf;
    /** Code of each character by its lower byte: a byte, or lead * 256 + trail; 0 for none. */
    const uint16_t (*codes)[256];

    /** The character of a byte from 0x80 on; 0 for none. */
    char16_t single(unsigned byte) const noexcept { return singles[byte - firstSingle]; }

    /** The character of a lead and a trail byte of the page; 0 for none. */
    char16_t pair(unsigned lead, unsigned trail) const noexcept
    {
        return pairs[(lead - firstLead) * trails + (trail - firstTrail)];
    }

    /** The byte, or lead * 256 + trail, of a character from 0x80 on; 0 for none. */
    unsigned code(char16_t character) const noexcept
    {
        return codes[blockOf[character >> 8]][character & 0xFF];
    }
};

extern const CodePageTables tables874, tables932, tables936, tables949, tables950, tables1250, tables1251,
    tables1252, tables1253, tables1254, tables1255, tables1256, tables1257, tables1258;

}
