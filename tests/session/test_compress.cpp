#include "vx/compress.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "talm/base.hpp"
#include "tests/session/one_byte_zlib.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/mem.h"
#include "vx/tools.h"

using namespace vx;
using HESKET::Talm::Ap::Base;
using test::Bytes;

namespace {

constexpr unsigned seed = 6601;

std::vector<intptr_t> progressSeen;

int32_t noteProgress(intptr_t value, intptr_t b, intptr_t c, intptr_t d)
{
    EXPECT_EQ(b | c | d, 0);
    progressSeen.push_back(value);
    return 1;
}

class Compress : public test::StartedToolkit {
protected:
    void SetUp() override
    {
        StartedToolkit::SetUp();
        VgProgressCb = noteProgress;
    }
    void TearDown() override
    {
        VgProgressCb = nullptr;
        StartedToolkit::TearDown();
    }
};

/** What a function gave, its block freed; nothing when it failed. */
template <typename Function>
std::optional<Bytes> call(Function function, const Bytes &source, int32_t size = 0)
{
    void *block = nullptr;
    if (function(source.data(), static_cast<int32_t>(source.size()), &block, &size) != 0) {
        EXPECT_EQ(block, nullptr);
        return {};
    }
    auto bytes = static_cast<unsigned char *>(block);
    Bytes out(bytes, bytes + size);
    VxMemFree(&block);
    return out;
}

std::optional<Bytes> compressed(const Bytes &source)
{
    progressSeen.clear();
    return call(VxLibDeflate, source);
}

std::optional<Bytes> expanded(const Bytes &source, int32_t size = 0)
{
    return call(VxLibInflate, source, size);
}

/** As VxLibInflate sees it: an empty result is a failure, since no block is that small. */
std::optional<Bytes> expandedByBytes(const Bytes &source, int32_t size)
{
    auto out = test::inflateOneByte(source, size > 0 ? static_cast<size_t>(size) : 8 * source.size());
    return out && out->empty() ? std::nullopt : out;
}

Bytes textOf(size_t size, std::mt19937 &random)
{
    const char *words[] = {"length", "width", " = ", "12.5", " mm\n", "sin(", ")", "*", "# bracket"};
    std::string text;
    while (text.size() < size)
        text += words[random() % std::size(words)];
    return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size)};
}

Bytes noiseOf(size_t size, std::mt19937 &random)
{
    Bytes noise(size);
    for (auto &byte : noise)
        byte = static_cast<unsigned char>(random());
    return noise;
}

/** Records with counters, lengths and doubles, as a drawing has them. */
Bytes recordsOf(size_t size, std::mt19937 &random)
{
    Bytes bytes(size);
    for (size_t at = 0, n = 0; at + 16 <= size; at += 16, ++n) {
        double value = 0.25 * static_cast<double>(random() % 4096);
        std::memcpy(bytes.data() + at, &n, 8);
        std::memcpy(bytes.data() + at + 8, &value, 8);
    }
    return bytes;
}

std::vector<Bytes> smallSources()
{
    std::mt19937 random(seed);
    std::vector<Bytes> all;
    for (size_t size = 1; size <= 45; ++size)
        all.push_back(textOf(size, random));
    for (size_t size : {1u, 2u, 19u, 20u, 21u, 257u, 258u, 259u, 1000u, 3000u}) {
        all.push_back(Bytes(size, 'x'));
        all.push_back(noiseOf(size, random));
        all.push_back(textOf(size, random));
        all.push_back(recordsOf(size, random));
    }
    return all;
}

std::vector<Bytes> largeSources()
{
    std::mt19937 random(seed + 1);
    std::vector<Bytes> all = {Bytes(1 << 20, 0), noiseOf(1 << 20, random), textOf(1 << 20, random),
                              recordsOf(1 << 20, random)};
    Bytes mixed;
    while (mixed.size() < 1 << 20) {
        Bytes piece = random() % 2 ? noiseOf(random() % 70000, random) : textOf(random() % 70000, random);
        mixed.insert(mixed.end(), piece.begin(), piece.end());
    }
    all.push_back(mixed);
    return all;
}

void compareCompression(const Bytes &source)
{
    std::vector<intptr_t> progress;
    auto expected = test::deflateOneByte(source, progress);
    auto out = compressed(source);
    ASSERT_TRUE(out && expected);
    EXPECT_TRUE(*out == *expected) << source.size();
    EXPECT_EQ(progressSeen, progress) << source.size();
}

void compareExpansion(const Bytes &source, int32_t size)
{
    auto expected = expandedByBytes(source, size);
    auto out = expanded(source, size);
    ASSERT_EQ(out.has_value(), expected.has_value()) << source.size() << " into " << size;
    EXPECT_TRUE(out == expected) << source.size() << " into " << size;
}

TEST_F(Compress, BytesAndProgressAreThoseOfSingleBytes)
{
    for (const Bytes &source : smallSources())
        compareCompression(source);
    for (const Bytes &source : largeSources())
        compareCompression(source);
}

TEST_F(Compress, ExpansionIsThatOfSingleBytesWhateverRoomThereIs)
{
    for (const Bytes &source : smallSources()) {
        Bytes small = *compressed(source);
        auto whole = static_cast<int32_t>(source.size());
        for (int32_t size : {0, 1, 2, whole / 2, whole - 1, whole, whole + 1, 5 * whole})
            compareExpansion(small, size);
    }
    for (const Bytes &source : largeSources()) {
        Bytes small = *compressed(source);
        auto whole = static_cast<int32_t>(source.size());
        for (int32_t size : {0, whole - 1, whole, whole + 1})
            compareExpansion(small, size);
        EXPECT_TRUE(expanded(small, whole) == source);
    }
}

TEST_F(Compress, TenMegabytesGoThereAndBack)
{
    std::mt19937 random(seed + 4);
    Bytes source = textOf(1 << 20, random), noise = noiseOf(5 << 20, random);
    source.insert(source.end(), noise.begin(), noise.end());
    source.resize(10 << 20);
    std::vector<intptr_t> progress;
    auto out = compressed(source);
    ASSERT_TRUE(out);
    EXPECT_TRUE(out == test::deflateOneByte(source, progress));
    EXPECT_EQ(progressSeen, progress);
    EXPECT_TRUE(expanded(*out, static_cast<int32_t>(source.size())) == source);
}

TEST_F(Compress, TruncatedInputGivesWhatSingleBytesGiveAtEveryLength)
{
    for (const Bytes &source : smallSources()) {
        Bytes whole = *compressed(source);
        if (whole.size() > 700)
            continue;
        for (size_t length = 1; length < whole.size(); ++length) {
            Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            compareExpansion(cut, 0);
            compareExpansion(cut, static_cast<int32_t>(source.size()));
            compareExpansion(cut, static_cast<int32_t>(source.size() / 2));
        }
    }
}

TEST_F(Compress, DamagedInputGivesWhatSingleBytesGive)
{
    std::mt19937 random(seed + 2);
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
        compareExpansion(noiseOf(1 + random() % 40, random), static_cast<int32_t>(random() % 50));
}

TEST_F(Compress, WithoutASizeEightTimesTheInputIsGivenAndTheRestIsCut)
{
    Bytes zeros(100000, 0);
    Bytes small = *compressed(zeros);
    auto out = expanded(small);
    ASSERT_TRUE(out);
    EXPECT_EQ(out->size(), 8 * small.size());
    EXPECT_EQ(expanded(small, 100000), zeros);
}

TEST_F(Compress, ArgumentsThatMakeNoSenseAllocateNothing)
{
    for (auto function : {VxLibDeflate, VxLibInflate}) {
        char bytes[] = "bytes";
        void *taken = bytes, *block = nullptr;
        int32_t size = 0;
        fault::refuse(fault::Kind::allocation, 0);
        EXPECT_EQ(function(bytes, 5, &taken, &size), 1u);
        EXPECT_EQ(taken, bytes);
        EXPECT_EQ(function(bytes, 0, &block, &size), 1u);
        EXPECT_EQ(function(bytes, -1, &block, &size), 1u);
        EXPECT_EQ(function(nullptr, 5, &block, &size), 1u);
        EXPECT_EQ(function(bytes, 5, nullptr, &size), 1u);
        EXPECT_EQ(function(bytes, 5, &block, nullptr), 1u);
        EXPECT_EQ(fault::calls(fault::Kind::allocation), 0);
        EXPECT_EQ(block, nullptr);
    }
    void *block = nullptr;
    int32_t size = 0;
    EXPECT_EQ(VxLibDeflate("x", 1073741825, &block, &size), 1u);
}

TEST_F(Compress, ARefusedAllocationGivesNoResultAtAll)
{
    VgProgressCb = nullptr; // it allocates too
    std::mt19937 random(seed + 3);
    Bytes source = textOf(5000, random);
    Bytes small = *compressed(source);
    for (bool deflates : {true, false}) {
        const Bytes &in = deflates ? source : small;
        auto function = deflates ? VxLibDeflate : VxLibInflate;
        auto length = static_cast<int32_t>(in.size());
        int failures = 0;
        int64_t allocations = test::refusingEachAllocation([&] {
            void *block = nullptr;
            int32_t size = 7000;
            bool failed = function(in.data(), length, &block, &size) != 0;
            failures += failed;
            EXPECT_EQ(block == nullptr, failed);
            size_t whole = deflates ? small.size() : source.size();
            EXPECT_EQ(size, failed ? 7000 : static_cast<int32_t>(whole));
            VxMemFree(&block);
            VxErrClear();
        });
        EXPECT_GE(failures, 3) << "zlib's own, and the block";
        EXPECT_GE(allocations, failures);
    }
}

TEST_F(Compress, TheHostAnswersThreeQueriesAndItsAbsenceIsZero)
{
    Base &host = Base::Instance();
    EXPECT_EQ(VerNum(), 0);
    EXPECT_EQ(HkVersionLessThan(1, 2, 3, 4), 0);
    EXPECT_EQ(HkQaTestIsActive(), 0);

    static std::string shown;
    auto show = +[](const char *text) {
        shown = text;
        return 5;
    };
    auto compare = +[](intptr_t w, intptr_t x, intptr_t y, intptr_t z) {
        return static_cast<int32_t>(w * 1000 + x * 100 + y * 10 + z);
    };
    int32_t active = 42;
    host.SetFunction(71, reinterpret_cast<void *>(show));
    host.SetFunction(232, reinterpret_cast<void *>(compare));
    host.SetVariable(14, &active);
    EXPECT_EQ(VerNum(), 5);
    EXPECT_EQ(shown, GetVerNum());
    EXPECT_EQ(HkVersionLessThan(1, 2, 3, 4), 1234);
    EXPECT_EQ(HkQaTestIsActive(), 42);
    host.SetFunction(71, nullptr);
    host.SetFunction(232, nullptr);
    host.SetVariable(14, nullptr);
}

}
