#include "text/unicode.h"

#include <algorithm>
#include <iterator>

#include "platform/ascii.h"

namespace vx::text {

namespace {

struct Range {
    char32_t first, last;
};

// From U+0080 on everything is a letter but what lies here. Ascending.
constexpr Range notLetters[] = {
    {0x0080, 0x00A9}, {0x00AB, 0x00B4}, {0x00B6, 0x00B9}, {0x00BB, 0x00BF}, {0x00D7, 0x00D7},
    {0x00F7, 0x00F7}, {0x02C2, 0x02C5}, {0x02D2, 0x02DF}, {0x02E5, 0x02EB}, {0x02ED, 0x02ED},
    {0x02EF, 0x036F}, {0x0375, 0x0375}, {0x037E, 0x037E}, {0x0384, 0x0385}, {0x0387, 0x0387},
    {0x03F6, 0x03F6}, {0x0482, 0x0489}, {0x055A, 0x055F}, {0x0589, 0x05CF}, {0x05F3, 0x061F},
    {0x064B, 0x066D}, {0x06D4, 0x06D4}, {0x06D6, 0x06ED}, {0x0E31, 0x0E31}, {0x0E34, 0x0E3F},
    {0x0E47, 0x0E5B}, {0x2000, 0x2070}, {0x2072, 0x207E}, {0x2080, 0x2101}, {0x2103, 0x2106},
    {0x2108, 0x2109}, {0x2114, 0x2114}, {0x2116, 0x2118}, {0x211E, 0x2123}, {0x2125, 0x2125},
    {0x2127, 0x2127}, {0x2129, 0x2129}, {0x212E, 0x212E}, {0x213A, 0x213B}, {0x2140, 0x2144},
    {0x214A, 0x214D}, {0x214F, 0x215F}, {0x2189, 0x2BFF}, {0x2E00, 0x3004}, {0x3008, 0x3020},
    {0x302A, 0x3030}, {0x3036, 0x3037}, {0x303D, 0x3040}, {0x3099, 0x309C}, {0x30A0, 0x30A0},
    {0x30FB, 0x30FB}, {0x3190, 0x319F}, {0x31C0, 0x31EF}, {0x3200, 0x33FF}, {0x4DC0, 0x4DFF},
    {0xD800, 0xF8FF}, {0xFB1E, 0xFB1E}, {0xFB29, 0xFB29}, {0xFD3E, 0xFD3F}, {0xFE00, 0xFE6F},
    {0xFEFF, 0xFF20}, {0xFF3B, 0xFF40}, {0xFF5B, 0xFF65}, {0xFFE0, 0xFFFF}, {0x1D165, 0x1D244},
    {0x1F000, 0x1FBFF}, {0xE0000, 0x10FFFF},
};

/** Capitals `first` to `last`, every `step`-th of them; small letters lie `distance` behind them. */
struct CaseRun {
    char32_t first, last, step, distance;
};

constexpr CaseRun caseRuns[] = {
    {'A', 'Z', 1, 32},          {0x00C0, 0x00D6, 1, 32},  {0x00D8, 0x00DE, 1, 32},  {0x0100, 0x012E, 2, 1},
    {0x0132, 0x0136, 2, 1},     {0x0139, 0x0147, 2, 1},   {0x014A, 0x0176, 2, 1},   {0x0179, 0x017D, 2, 1},
    {0x01CD, 0x01DB, 2, 1},     {0x01DE, 0x01EE, 2, 1},   {0x01F8, 0x021E, 2, 1},   {0x0222, 0x0232, 2, 1},
    {0x0386, 0x0386, 1, 38},    {0x0388, 0x038A, 1, 37},  {0x038C, 0x038C, 1, 64},  {0x038E, 0x038F, 1, 63},
    {0x0391, 0x03A1, 1, 32},    {0x03A3, 0x03AB, 1, 32},  {0x0400, 0x040F, 1, 80},  {0x0410, 0x042F, 1, 32},
    {0x0460, 0x0480, 2, 1},     {0x048A, 0x04BE, 2, 1},   {0x04C1, 0x04CD, 2, 1},   {0x04D0, 0x052E, 2, 1},
    {0x0531, 0x0556, 1, 48},    {0x1E00, 0x1E94, 2, 1},   {0x1EA0, 0x1EFE, 2, 1},   {0x2160, 0x216F, 1, 16},
    {0xFF21, 0xFF3A, 1, 32},
};

// Single letters whose small form does not lie behind the capital.
constexpr Range casePairs[] = {{0x0178, 0x00FF}, {0x018F, 0x0259}};

bool inRun(char32_t c, char32_t first, const CaseRun &run) noexcept
{
    return c >= first && c - first <= run.last - run.first && (c - first) % run.step == 0;
}

}

bool isLetter(char32_t c) noexcept
{
    if (c < 0x80)
        return ascii::isLetter(static_cast<char>(c));
    auto behind = std::upper_bound(std::begin(notLetters), std::end(notLetters), c,
                                   [](char32_t value, const Range &range) { return value < range.first; });
    return c <= 0x10FFFF && (behind == std::begin(notLetters) || c > std::prev(behind)->last) && !isDigit(c);
}

bool isDigit(char32_t c) noexcept
{
    return (c >= '0' && c <= '9') || (c >= 0xFF10 && c <= 0xFF19);
}

bool isPrintable(char32_t c) noexcept
{
    bool control = c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
    bool surrogate = c >= 0xD800 && c <= 0xDFFF;
    bool noCharacter = (c & 0xFFFE) == 0xFFFE || (c >= 0xFDD0 && c <= 0xFDEF) || c > 0x10FFFF;
    return !control && !surrogate && !noCharacter;
}

char32_t upperCase(char32_t c) noexcept
{
    for (const CaseRun &run : caseRuns)
        if (inRun(c, run.first + run.distance, run))
            return c - run.distance;
    for (const Range &pair : casePairs)
        if (c == pair.last)
            return pair.first;
    return c;
}

char32_t lowerCase(char32_t c) noexcept
{
    for (const CaseRun &run : caseRuns)
        if (inRun(c, run.first, run))
            return c + run.distance;
    for (const Range &pair : casePairs)
        if (c == pair.first)
            return pair.last;
    return c;
}

}
