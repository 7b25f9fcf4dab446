#include "vx/compress.h"

#include "tests/session/one_byte_zlib.h"
#include "tests/session/started_toolkit.h"
#include "vx/mem.h"
#include "vx/tools.h"

using namespace vx;
using test::Bytes;

namespace {

constexpr unsigned seed = 6601;

using Compress = test::StartedToolkit;

/** What a function gave, its block freed; nothing, and nothing changed, when it failed. */
template <typename Function> std::optional<Bytes> taken(int32_t size, Function function)
{
    void *block = nullptr;
    const int32_t before = size;
    if (function(&block, &size) != 0) {
        EXPECT_EQ(block, nullptr);
        EXPECT_EQ(size, before);
        return {};
    }
    auto bytes = static_cast<unsigned char *>(block);
    Bytes out(bytes, bytes + size);
    VxMemFree(&block);
    return out;
}

int32_t count(const Bytes &bytes)
{
    return static_cast<int32_t>(bytes.size());
}

std::optional<Bytes> compressed(const Bytes &source)
{
    return taken(0, [&](auto... out) { return VxLibDeflate(source.data(), count(source), out...); });
}

std::optional<Bytes> expanded(const Bytes &source, int32_t size)
{
    return taken(size, [&](auto... out) { return VxLibInflate(source.data(), count(source), out...); });
}

/** VxMemCompress() in a direction, with a marker. */
std::optional<Bytes> converted(int32_t direction, int32_t marker, const Bytes &bytes)
{
    return taken(-7, [&](auto... out) {
        return VxMemCompress(direction, marker, bytes.data(), count(bytes), out...);
    });
}

/** Bytes of so many values: few of them repeat like text, 256 are noise. */
Bytes bytesOf(unsigned values, size_t size, std::mt19937 &random)
{
    Bytes bytes(size);
    for (size_t at = 0; at < size; ++at) {
        bool repeats = values < 256 && at >= 16 && random() % 8;
        bytes[at] = repeats ? bytes[at - 16] : static_cast<unsigned char>(random() % values);
    }
    return bytes;
}

constexpr unsigned ofText = 30, ofRecords = 4, ofNoise = 256;

std::vector<Bytes> smallSources()
{
    std::mt19937 random(seed);
    std::vector<Bytes> all;
    for (size_t size = 1; size <= 45; ++size)
        all.push_back(bytesOf(ofText, size, random));
    for (size_t size : {1u, 2u, 19u, 20u, 21u, 257u, 258u, 259u, 1000u, 3000u})
        for (unsigned values : {1u, ofRecords, ofText, ofNoise})
            all.push_back(bytesOf(values, size, random));
    return all;
}

/** Of a megabyte each, and one of ten, of noise and of zeros. */
std::vector<Bytes> largeSources()
{
    std::mt19937 random(seed + 1);
    std::vector<Bytes> all;
    for (unsigned values : {1u, ofRecords, ofText, ofNoise})
        all.push_back(bytesOf(values, 1 << 20, random));
    all.push_back(bytesOf(ofNoise, 5 << 20, random));
    all.back().resize(10 << 20);
    return all;
}

void compareCompression(const Bytes &source)
{
    static std::vector<intptr_t> progressSeen;
    std::vector<intptr_t> progress;
    auto expected = test::deflateOneByte(source, progress);
    progressSeen.clear();
    VgProgressCb = [](intptr_t value, intptr_t b, intptr_t c, intptr_t d) {
        EXPECT_EQ(b | c | d, 0);
        progressSeen.push_back(value);
        return 1;
    };
    EXPECT_TRUE(expected && compressed(source) == expected) << source.size();
    VgProgressCb = nullptr;
    EXPECT_EQ(progressSeen, progress) << source.size();
}

void compareExpansion(const Bytes &source, int32_t size)
{
    size_t room = size > 0 ? static_cast<size_t>(size) : 8 * source.size();
    auto expected = test::inflateOneByte(source, room);
    if (expected && expected->empty()) // a failure, since no block is that small
        expected.reset();
    EXPECT_TRUE(expanded(source, size) == expected) << source.size() << " into " << size;
}

TEST_F(Compress, BytesAndProgressAreThoseOfSingleBytes)
{
    for (const auto &sources : {smallSources(), largeSources()})
        std::ranges::for_each(sources, compareCompression);
}

TEST_F(Compress, ExpansionIsThatOfSingleBytesWhateverRoomThereIs)
{
    for (const Bytes &source : smallSources()) {
        Bytes small = *compressed(source);
        for (int32_t size : {0, 1, 2, count(source) / 2, count(source) - 1, count(source), count(source) + 1})
            compareExpansion(small, size);
    }
    for (const Bytes &source : largeSources()) {
        Bytes small = *compressed(source);
        for (int32_t size : {0, count(source) - 1, count(source) + 1})
            compareExpansion(small, size);
        EXPECT_TRUE(expanded(small, count(source)) == source);
    }
}

TEST_F(Compress, TruncatedInputGivesWhatSingleBytesGiveAtEveryLength)
{
    for (const Bytes &source : smallSources())
        for (Bytes cut = *compressed(source); cut.size() < 700 && cut.size() > 1;) {
            cut.pop_back();
            for (int32_t size : {0, count(source), count(source) / 2})
                compareExpansion(cut, size);
        }
}

TEST_F(Compress, DamagedInputGivesWhatSingleBytesGive)
{
    test::Random random(seed + 2);
    for (const Bytes &source : smallSources()) {
        Bytes whole = *compressed(source);
        for (int run = 0; run < 200; ++run) {
            Bytes damaged = whole;
            for (size_t n = 1 + random() % 3; n > 0; --n)
                damaged[random() % damaged.size()] ^= static_cast<unsigned char>(1u << random() % 8);
            if (random() % 4 == 0)
                damaged.resize(1 + random() % damaged.size());
            if (random() % 4 == 0)
                damaged.push_back(static_cast<unsigned char>(random()));
            compareExpansion(damaged, static_cast<int32_t>(random() % 3 * source.size()));
        }
    }
    for (int run = 0; run < 2000; ++run)
        compareExpansion(bytesOf(ofNoise, 1 + random() % 40, random), static_cast<int32_t>(random() % 50));
}

TEST_F(Compress, WhatTheMarkedFormKeepsComesBackWholeHoweverMuchItExpands)
{
    std::mt19937 random(seed + 3);
    std::vector<Bytes> sources = {Bytes(3'000'000, 0), bytesOf(ofText, 50000, random)};
    for (size_t size = 1; size < 400; ++size)
        sources.emplace_back(size, 'x');
    bool met = false;
    for (const Bytes &source : sources) {
        auto plain = converted(1, 0, source), stored = converted(1, 'M', source);
        ASSERT_TRUE(plain && stored);
        met |= plain->size() * 8 == source.size();
        EXPECT_EQ(converted(0, 0, *plain), source);
        EXPECT_EQ(converted(0, 'M', *stored), source);
        plain->insert(plain->begin(), 'M');
        EXPECT_EQ(*stored, *plain);
    }
    EXPECT_TRUE(met) << "exactly eight times the input, where the first attempt's room ends";
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_FALSE(converted(0, 201, *converted(1, 200, {1, 2, 3})));
    EXPECT_TRUE(reported(73));
    EXPECT_FALSE(converted(0, 'M', {'M'})) << "nothing behind the marker";
}

template <int32_t direction> uint32_t marked(const void *in, int32_t length, void **block, int32_t *size)
{
    return VxMemCompress(direction, 'M', in, length, block, size);
}

TEST_F(Compress, ArgumentsThatMakeNoSenseAllocateNothing)
{
    for (auto function : {VxLibDeflate, VxLibInflate, marked<1>, marked<0>}) {
        void *block = nullptr;
        int32_t size = 0;
        fault::refuse(fault::Kind::allocation, 0);
        EXPECT_EQ(function("bytes", 0, &block, &size) & function("bytes", -1, &block, &size), 1u);
        EXPECT_EQ(function(nullptr, 5, &block, &size) & function("bytes", 5, nullptr, &size), 1u);
        EXPECT_EQ(function("bytes", 5, &block, nullptr), 1u);
        EXPECT_EQ(fault::calls(fault::Kind::allocation), 0);
        EXPECT_EQ(block, nullptr);
    }
    int32_t size = 0;
    void *held = &size;
    EXPECT_EQ(VxLibDeflate("bytes", 5, &held, &size), 1u);
    EXPECT_EQ(held, &size) << "a block that is still held is not lost";
}

TEST_F(Compress, ARefusedAllocationGivesNoResultAtAll)
{
    const Bytes source(10000, 'x'), small = *compressed(source), stored = *converted(1, 'M', source);
    auto refuse = [](auto function, const Bytes &in, const Bytes &out) {
        void *block = nullptr;
        int32_t size;
        auto act = [&] { function(in.data(), count(in), &block, &(size = 12000)); };
        int64_t calls = test::eachRefusal(fault::Kind::allocation, nullptr, act, [&](bool refused) {
            EXPECT_EQ(block == nullptr, refused);
            EXPECT_EQ(size, refused ? 12000 : count(out));
            VxMemFree(&block);
            VxErrClear();
        });
        EXPECT_GE(calls, 3) << "zlib's own, and the block";
    };
    refuse(VxLibDeflate, source, small);
    refuse(VxLibInflate, small, source);
    refuse(marked<1>, source, stored);
    refuse(marked<0>, stored, source);
}

TEST_F(Compress, TheHostAnswersThreeQueriesAndItsAbsenceIsZero)
{
    int32_t active = 42;
    {
        test::Host host;
        host(71, [](const char *text) { return text == std::string(GetVerNum()) ? 5 : -1; });
        host(232, [](intptr_t w, intptr_t x, intptr_t y, intptr_t z) {
            return static_cast<int32_t>(w * 1000 + x * 100 + y * 10 + z);
        });
        host.variable(14, &active);
        EXPECT_TRUE(VerNum() == 5 && HkVersionLessThan(1, 2, 3, 4) == 1234 && HkQaTestIsActive() == 42);
    }
    EXPECT_EQ(VerNum() | HkVersionLessThan(1, 2, 3, 4) | HkQaTestIsActive(), 0);
}

}
