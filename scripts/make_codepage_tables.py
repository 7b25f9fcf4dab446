#!/usr/bin/env python3
"""Writes text/tables/*.inc, the code page tables of the toolkit.

    scripts/make_codepage_tables.py            write the tables
    scripts/make_codepage_tables.py --check    compare them with what is checked in

The characters come from Python's own codecs. Those leave out what a code page
merely reserves: the user-defined rows of the double-byte pages and the unused
bytes of all of them. Windows gives each a code point of its own (a C1 control
or one of the private use area), so that such text survives the way to Unicode
and back; these are added here. Bytes below 0x80 are ASCII in every page and
need no table. 0 stands for "no character".

Needed only when the tables are to change; building the toolkit takes no Python.
"""

import pathlib
import sys

TABLES = pathlib.Path(__file__).resolve().parent.parent / "text" / "tables"
HEADER = "// Made by scripts/make_codepage_tables.py; not to be edited.\n"

# Unused bytes that do not become the C1 control of the same number.
RESERVED_BYTES = {
    874: {0xDB: 0xF8C1, 0xDC: 0xF8C2, 0xDD: 0xF8C3, 0xDE: 0xF8C4,
          0xFC: 0xF8C5, 0xFD: 0xF8C6, 0xFE: 0xF8C7, 0xFF: 0xF8C8},
    1253: {0xAA: 0xF8F9, 0xD2: 0xF8FA, 0xFF: 0xF8FB},
    1255: {0xCA: 0x05BA,
           0xD9: 0xF88D, 0xDA: 0xF88E, 0xDB: 0xF88F, 0xDC: 0xF890, 0xDD: 0xF891, 0xDE: 0xF892, 0xDF: 0xF893,
           0xFB: 0xF894, 0xFC: 0xF895, 0xFF: 0xF896},
    1257: {0xA1: 0xF8FC, 0xA5: 0xF8FD},
    932: {0x80: 0x80, 0xA0: 0xF8F0, 0xFD: 0xF8F1, 0xFE: 0xF8F2, 0xFF: 0xF8F3},
    936: {0x80: 0x20AC, 0xFF: 0xF8F5},
    949: {0x80: 0x80, 0xFF: 0xF8F7},
    950: {0x80: 0x80, 0xFF: 0xF8F8},
}

SINGLE_BYTE_PAGES = [874, *range(1250, 1259)]
CODECS = {932: "cp932", 936: "gbk", 949: "cp949", 950: "cp950"}
LEADS = range(0x81, 0xFF)
TRAILS = range(0x40, 0xFF)

# Rows of user-defined characters: first and last lead, first and last trail,
# and the code point of the first; they are numbered row by row.
USER_ROWS = {
    932: [],  # in the codec
    936: [(0xAA, 0xAF, 0xA1, 0xFE, 0xE000), (0xF8, 0xFE, 0xA1, 0xFE, 0xE234), (0xA1, 0xA7, 0x40, 0xA0, 0xE4C6)],
    949: [(0xC9, 0xC9, 0xA1, 0xFE, 0xE000), (0xFE, 0xFE, 0xA1, 0xFE, 0xE05E)],
    950: [(0xFA, 0xFE, 0x40, 0xFE, 0xE000), (0x8E, 0xA0, 0x40, 0xFE, 0xE311), (0x81, 0x8D, 0x40, 0xFE, 0xEEB8),
          (0xC6, 0xC6, 0xA1, 0xFE, 0xF6B1), (0xC7, 0xC8, 0x40, 0xFE, 0xF70F)],
}


def is_trail(page, trail):
    if page == 950:
        return 0x40 <= trail <= 0x7E or 0xA1 <= trail <= 0xFE
    return 0x40 <= trail <= 0xFE and trail != 0x7F


def decoded(codec, *code):
    """The code point of one character, or 0."""
    try:
        text = bytes(code).decode(codec)
    except UnicodeDecodeError:
        return 0
    return ord(text) if len(text) == 1 else 0


def single_bytes(page):
    codec = CODECS.get(page, f"cp{page}")
    table = []
    for byte in range(0x80, 0x100):
        character = RESERVED_BYTES.get(page, {}).get(byte) or decoded(codec, byte)
        if not character and page in SINGLE_BYTE_PAGES and byte < 0xA0:
            character = byte
        table.append(character)
    return table


def pairs(page):
    """{(lead, trail): code point}"""
    table = {}
    for lead in LEADS:
        for trail in TRAILS:
            character = decoded(CODECS[page], lead, trail)
            if character:
                table[lead, trail] = character
    for first, last, low, high, character in USER_ROWS[page]:
        for lead in range(first, last + 1):
            for trail in range(low, high + 1):
                if is_trail(page, trail):
                    table[lead, trail] = character
                    character += 1
    if page == 936:
        fill_gaps_936(table)
    return table


def fill_gaps_936(table):
    """The positions that the character set left open, from U+E766 in their order."""
    character = 0xE766
    for lead in [*range(0xA2, 0xAA), 0xD7, 0xFE]:
        for trail in TRAILS:
            if not is_trail(936, trail) or (lead, trail) in table:
                continue
            if lead == 0xFE and trail < 0x50:
                continue
            table[lead, trail] = character
            newer = decoded("gb18030", lead, trail)
            assert not 0xE000 <= newer < 0xF900 or newer == character, (hex(lead), hex(trail))
            character += 1
    assert character == 0xE865


def codec_differs(page, character, code):
    """Whether Windows writes the last code where Python's codec writes `code`."""
    if page == 932:
        return code[0] in (0xED, 0xEE)
    return page == 950 and character in (0x2550, 0x255E, 0x2561, 0x256A)


def preferred(page, table):
    """Codes to write for characters that have several, where it is not the last of them."""
    last = {character: code for code, character in sorted(table.items())}
    chosen = []
    for character, code in last.items():
        try:
            best = tuple(chr(character).encode(CODECS[page]))
        except UnicodeEncodeError:
            continue
        if best != code and table.get(best) == character and not codec_differs(page, character, best):
            chosen.append(best[0] << 8 | best[1])
    return sorted(chosen)


def number(value):
    return f"0x{value:X}" if value else "0"


def wrapped(values, indent):
    lines, line = [], indent
    for value in values:
        item = number(value) + ","
        if len(line) + len(item) > 110:
            lines.append(line)
            line = indent
        line += item
    lines.append(line)
    return "\n".join(lines)


def without_trailing_zeros(values):
    while values and not values[-1]:
        values.pop()
    return values


def single_byte_file():
    text = HEADER + "\n// The characters of the bytes 0x80 to 0xFF.\n"
    for page in SINGLE_BYTE_PAGES:
        text += f"\nconstexpr Singles singles{page} = {{{{\n{wrapped(single_bytes(page), '    ')}\n}}}};\n"
    return text


def double_byte_file(page):
    table = pairs(page)
    assert all(is_trail(page, trail) for _, trail in table), page
    assert not [c for c in table.values() if c < 0x80], page
    text = HEADER
    text += "\n// The characters of the bytes 0x80 to 0xFF that stand alone.\n"
    text += f"constexpr Singles singles{page} = {{{{\n{wrapped(single_bytes(page), '    ')}\n}}}};\n"
    text += "\n// The characters of the pairs: a row for each lead byte, in it one for each trail byte.\n"
    text += f"constexpr Pairs pairs{page} = {{{{\n"
    for lead in LEADS:
        row = without_trailing_zeros([table.get((lead, trail), 0) for trail in TRAILS])
        text += f"    {{{{ // {lead:02X}\n{wrapped(row, '    ')}\n    }}}},\n" if row else f"    {{}}, // {lead:02X}\n"
    text += "}};\n"
    codes = preferred(page, table)
    text += "\n// Of several codes for a character the last is the one to write, but these instead.\n"
    text += f"constexpr std::array<uint16_t, {len(codes)}> preferred{page} = {{"
    text += f"\n{wrapped(codes, '    ')}\n}};\n" if codes else "};\n"
    return text


def main():
    files = {"single_byte.inc": single_byte_file()}
    for page in CODECS:
        files[f"cp{page}.inc"] = double_byte_file(page)
    if "--check" in sys.argv[1:]:
        stale = [name for name, text in files.items() if (TABLES / name).read_text() != text]
        sys.exit(f"stale: {', '.join(stale)}" if stale else 0)
    TABLES.mkdir(exist_ok=True)
    for name, text in files.items():
        (TABLES / name).write_text(text)


main()
