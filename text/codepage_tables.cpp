#include "text/codepage_tables.h"

#include <array>
#include <cstddef>

namespace vx::text {

namespace {

constexpr unsigned firstSingle = CodePageTables::firstSingle;
constexpr unsigned firstLead = CodePageTables::firstLead;
constexpr unsigned firstTrail = CodePageTables::firstTrail;

using Singles = std::array<char16_t, 0x100 - firstSingle>;
using PairRow = std::array<char16_t, CodePageTables::trails>;
using Pairs = std::array<PairRow, 0xFF - firstLead>;

#include "text/tables/single_byte.inc"

#include "text/tables/cp932.inc"
#include "text/tables/cp936.inc"
#include "text/tables/cp949.inc"
#include "text/tables/cp950.inc"

constexpr Pairs noPairs{};

/** Call `visit(character, code)` for all of a page in the order of their codes. */
template <typename Visit>
constexpr void eachCharacter(const Singles &singles, const Pairs &pairs, Visit visit)
{
    for (unsigned i = 0; i < singles.size(); ++i)
        if (singles[i])
            visit(singles[i], firstSingle + i);
    if (&pairs == &noPairs)
        return;
    for (unsigned lead = 0; lead < pairs.size(); ++lead)
        for (unsigned trail = 0; trail < pairs[lead].size(); ++trail)
            if (pairs[lead][trail])
                visit(pairs[lead][trail], (firstLead + lead) << 8 | (firstTrail + trail));
}

/** Blocks of 256 characters that a page has any of, and an empty one for the rest. */
constexpr size_t countBlocks(const Singles &singles, const Pairs &pairs)
{
    std::array<bool, 256> used{};
    size_t blocks = 1;
    eachCharacter(singles, pairs, [&](char16_t character, unsigned) {
        bool &block = used[character >> 8];
        blocks += !block;
        block = true;
    });
    return blocks;
}

template <size_t Blocks> struct Reverse {
    uint8_t blockOf[256];
    uint16_t codes[Blocks][256];
};

template <const Singles &singles, const Pairs &pairs, const auto &preferred> constexpr auto reversed()
{
    Reverse<countBlocks(singles, pairs)> table{};
    uint8_t blocks = 1;
    eachCharacter(singles, pairs, [&](char16_t character, unsigned code) {
        uint8_t &block = table.blockOf[character >> 8];
        if (!block)
            block = blocks++;
        table.codes[block][character & 0xFF] = static_cast<uint16_t>(code);
    });
    for (unsigned code : preferred) {
        char16_t character = pairs[(code >> 8) - firstLead][(code & 0xFF) - firstTrail];
        table.codes[table.blockOf[character >> 8]][character & 0xFF] = static_cast<uint16_t>(code);
    }
    return table;
}

constexpr std::array<uint16_t, 0> nonePreferred{};

template <const Singles &singles, const Pairs &pairs = noPairs, const auto &preferred = nonePreferred>
constexpr auto reverse = reversed<singles, pairs, preferred>();

template <const Singles &singles> constexpr CodePageTables singleByteTables()
{
    const auto &back = reverse<singles>;
    return {singles.data(), nullptr, back.blockOf, back.codes};
}

template <const Singles &singles, const Pairs &pairs, const auto &preferred>
constexpr CodePageTables doubleByteTables()
{
    const auto &back = reverse<singles, pairs, preferred>;
    return {singles.data(), pairs[0].data(), back.blockOf, back.codes};
}

}

constexpr CodePageTables tables874 = singleByteTables<singles874>();
constexpr CodePageTables tables932 = doubleByteTables<singles932, pairs932, preferred932>();
constexpr CodePageTables tables936 = doubleByteTables<singles936, pairs936, preferred936>();
constexpr CodePageTables tables949 = doubleByteTables<singles949, pairs949, preferred949>();
constexpr CodePageTables tables950 = doubleByteTables<singles950, pairs950, preferred950>();
constexpr CodePageTables tables1250 = singleByteTables<singles1250>();
constexpr CodePageTables tables1251 = singleByteTables<singles1251>();
constexpr CodePageTables tables1252 = singleByteTables<singles1252>();
constexpr CodePageTables tables1253 = singleByteTables<singles1253>();
constexpr CodePageTables tables1254 = singleByteTables<singles1254>();
constexpr CodePageTables tables1255 = singleByteTables<singles1255>();
constexpr CodePageTables tables1256 = singleByteTables<singles1256>();
constexpr CodePageTables tables1257 = singleByteTables<singles1257>();
constexpr CodePageTables tables1258 = singleByteTables<singles1258>();

}
