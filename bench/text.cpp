// The string functions beside what a user would write with the C library.
// Peers do the same work: results are bounded and terminated, fields cleared.

#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "vx/lang.hpp"
#include "vx/str.h"

namespace {

// Code pages that the same ASCII texts are worked on under.
constexpr int32_t western = 1252;
constexpr int32_t chinese = 936;

/** Keeps the compiler from knowing what it is handed. */
template <typename Value> Value hidden(Value value)
{
    benchmark::DoNotOptimize(value);
    return value;
}

// ---------------------------------------------------------------- copy and append

// Peers are functions of the user's own library, called as ours are.

[[gnu::noinline]] bool peerCopy(char *dst, const char *src, size_t size)
{
    size_t length = std::strlen(src);
    bool fits = length < size;
    if (!fits)
        length = size - 1;
    std::memcpy(dst, src, length);
    dst[length] = '\0';
    return fits;
}

[[gnu::noinline]] bool peerAppend(char *dst, const char *src, size_t size)
{
    size_t used = std::strlen(dst);
    size_t length = std::strlen(src);
    if (used + length >= size)
        return false;
    std::memcpy(dst + used, src, length + 1);
    return true;
}

void copyVx(benchmark::State &state, size_t length)
{
    const std::string source(length, 'x');
    char buffer[256];
    for (auto _ : state) {
        benchmark::DoNotOptimize(VxStrCpy(hidden(buffer + 0), hidden(source.c_str()), hidden(256)));
        benchmark::ClobberMemory();
    }
}

void copyPeer(benchmark::State &state, size_t length)
{
    const std::string source(length, 'x');
    char buffer[256];
    for (auto _ : state) {
        benchmark::DoNotOptimize(peerCopy(hidden(buffer + 0), hidden(source.c_str()), hidden(size_t{256})));
        benchmark::ClobberMemory();
    }
}

void appendVx(benchmark::State &state, size_t length)
{
    const std::string source(length, 'x');
    char buffer[256] = "C:\\parts\\gears\\";
    const size_t used = std::strlen(buffer);
    for (auto _ : state) {
        benchmark::DoNotOptimize(VxStrCat(hidden(buffer + 0), hidden(source.c_str()), hidden(256)));
        benchmark::ClobberMemory();
        buffer[used] = '\0';
    }
}

void appendPeer(benchmark::State &state, size_t length)
{
    const std::string source(length, 'x');
    char buffer[256] = "C:\\parts\\gears\\";
    const size_t used = std::strlen(buffer);
    for (auto _ : state) {
        benchmark::DoNotOptimize(peerAppend(hidden(buffer + 0), hidden(source.c_str()), hidden(size_t{256})));
        benchmark::ClobberMemory();
        buffer[used] = '\0';
    }
}

// ---------------------------------------------------------------- natural comparison

constexpr const char *names[] = {
    "bracket9.prt",   "bracket10.prt", "bracket10_rev2.prt", "bracket10_rev12.prt", "gear_m2_z18_b20",
    "gear_m2_z18_b8", "M8x1.25x40",    "M8x1.25x100",        "assembly of part 7",  "assembly of part 7"};

template <typename Compare> void compareAll(benchmark::State &state, Compare compare)
{
    for (auto _ : state)
        for (size_t i = 1; i < std::size(names); ++i)
            benchmark::DoNotOptimize(compare(hidden(names[i - 1]), hidden(names[i])));
}

// ---------------------------------------------------------------- fields

constexpr char record[] =
    "1024,bracket,steel S235JR,7.85,120.5,40,3,sheet metal,released,2026-11-21,jm,rev B";
constexpr int32_t fieldCount = 12;
constexpr size_t fieldWidth = 80;

/** What a user writes who knows that his texts have one byte a character. */
[[gnu::noinline]] bool peerFields(const char *s, char delimiter, char *fields, int32_t *count)
{
    std::memset(fields, 0, fieldWidth * static_cast<size_t>(*count));
    const int32_t capacity = *count;
    bool whole = true;
    int32_t n = 0;
    while (n < capacity && *s && *s != '\r') {
        const char *end = std::strchr(s, delimiter);
        size_t length = end ? static_cast<size_t>(end - s) : std::strlen(s);
        if (!end)
            if (const char *stop = static_cast<const char *>(std::memchr(s, '\r', length)))
                length = static_cast<size_t>(stop - s);
        whole &= length < fieldWidth;
        std::memcpy(fields + fieldWidth * static_cast<size_t>(n++), s,
                    length < fieldWidth ? length : fieldWidth - 1);
        if (!end)
            break;
        s = end + 1;
    }
    *count = n;
    return whole;
}

void fieldsVx(benchmark::State &state, int32_t page, char delimiter)
{
    VX::CodePageSet(page, -1);
    std::string line = record;
    for (char &c : line)
        c = c == ',' ? delimiter : c;
    char fields[fieldCount][fieldWidth];
    for (auto _ : state) {
        int32_t count = fieldCount;
        VxStrParse80(hidden(line.c_str()), hidden(delimiter), fields[0], &count);
        benchmark::DoNotOptimize(count);
        benchmark::ClobberMemory();
    }
    VX::CodePageSet(0, -1);
}

void fieldsPeer(benchmark::State &state)
{
    char fields[fieldCount][fieldWidth];
    for (auto _ : state) {
        int32_t count = fieldCount;
        benchmark::DoNotOptimize(peerFields(hidden(record + 0), hidden(','), fields[0], &count));
        benchmark::DoNotOptimize(count);
        benchmark::ClobberMemory();
    }
}

// ---------------------------------------------------------------- substitution

constexpr char phrase[] = "The part %s is made of %s and weighs %s kg; see drawing %s for its tolerances.";

/** Into a work buffer and back, as far as it has room. */
[[gnu::noinline]] bool peerReplace(char *s, size_t size, const char *pattern, const char *replacement)
{
    char work[1024];
    const size_t patternLength = std::strlen(pattern);
    const size_t insertedLength = std::strlen(replacement);
    size_t used = 0;
    const char *from = s;
    while (const char *hit = std::strstr(from, pattern)) {
        const size_t before = static_cast<size_t>(hit - from);
        if (used + before + insertedLength >= sizeof work)
            break;
        std::memcpy(work + used, from, before);
        std::memcpy(work + used + before, replacement, insertedLength);
        used += before + insertedLength;
        from = hit + patternLength;
    }
    size_t rest = std::strlen(from);
    bool whole = rest < sizeof work - used;
    rest = whole ? rest : sizeof work - used - 1;
    std::memcpy(work + used, from, rest);
    used += rest;
    whole &= used < size;
    used = used < size ? used : size - 1;
    std::memcpy(s, work, used);
    s[used] = '\0';
    return whole;
}

template <typename Replace> void replaceAll(benchmark::State &state, int32_t page, Replace replace)
{
    VX::CodePageSet(page, -1);
    char text[256];
    for (auto _ : state) {
        std::memcpy(text, phrase, sizeof phrase);
        benchmark::DoNotOptimize(replace(hidden(text + 0), hidden("%s"), hidden("bracket-10")));
        benchmark::ClobberMemory();
    }
    VX::CodePageSet(0, -1);
}

bool replaceVx(char *s, const char *pattern, const char *replacement)
{
    return VxStrReplaceSub(s, 256, pattern, replacement) == 0;
}

bool replacePeer(char *s, const char *pattern, const char *replacement)
{
    return peerReplace(s, 256, pattern, replacement);
}

BENCHMARK_CAPTURE(copyVx, n12, 12)->Name("str copy 12 bytes/vx");
BENCHMARK_CAPTURE(copyPeer, n12, 12)->Name("str copy 12 bytes/strlen+memcpy");
BENCHMARK_CAPTURE(copyVx, n120, 120)->Name("str copy 120 bytes/vx");
BENCHMARK_CAPTURE(copyPeer, n120, 120)->Name("str copy 120 bytes/strlen+memcpy");
BENCHMARK_CAPTURE(appendVx, n12, 12)->Name("str append 12 bytes/vx");
BENCHMARK_CAPTURE(appendPeer, n12, 12)->Name("str append 12 bytes/strlen+memcpy");
BENCHMARK_CAPTURE(appendVx, n120, 120)->Name("str append 120 bytes/vx");
BENCHMARK_CAPTURE(appendPeer, n120, 120)->Name("str append 120 bytes/strlen+memcpy");
BENCHMARK_CAPTURE(compareAll, vx, VxStrCmpAlphaNum)->Name("str natural comparison/vx");
BENCHMARK_CAPTURE(compareAll, peer, strverscmp)->Name("str natural comparison/strverscmp");
BENCHMARK_CAPTURE(fieldsVx, single, western, ',')->Name("str 12 fields, single-byte/vx");
BENCHMARK(fieldsPeer)->Name("str 12 fields, single-byte/strchr+memcpy");
BENCHMARK_CAPTURE(fieldsVx, pair, chinese, ',')->Name("str 12 fields, double-byte/vx");
BENCHMARK(fieldsPeer)->Name("str 12 fields, double-byte/strchr+memcpy");
BENCHMARK_CAPTURE(fieldsVx, trail, chinese, '|')
    ->Name("str 12 fields, double-byte, delimiter may be half/vx");
BENCHMARK(fieldsPeer)->Name("str 12 fields, double-byte, delimiter may be half/strchr+memcpy");
BENCHMARK_CAPTURE(replaceAll, single, western, replaceVx)->Name("str substitution/vx");
BENCHMARK_CAPTURE(replaceAll, peer, western, replacePeer)->Name("str substitution/strstr");
BENCHMARK_CAPTURE(replaceAll, pair, chinese, replaceVx)->Name("str substitution, double-byte/vx");
BENCHMARK_CAPTURE(replaceAll, pairPeer, chinese, replacePeer)->Name("str substitution, double-byte/strstr");

}
