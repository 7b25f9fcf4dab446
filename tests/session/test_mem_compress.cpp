#include <optional>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/faults.h"
#include "vx/mem.h"

using namespace vx;

namespace {

class MemCompress : public test::StartedToolkit {};

std::string_view textOf(const void *block, int32_t size)
{
    return {static_cast<const char *>(block), static_cast<size_t>(size)};
}

std::optional<std::string> convert(int32_t direction, int32_t marker, const std::string &bytes)
{
    void *block = nullptr;
    int32_t size = -7;
    auto count = static_cast<int32_t>(bytes.size());
    if (VxMemCompress(direction, marker, bytes.data(), count, &block, &size) != 0) {
        EXPECT_EQ(block, nullptr);
        EXPECT_EQ(size, -7);
        return {};
    }
    std::string out(textOf(block, size));
    VxMemFree(&block);
    return out;
}

std::string randomText(size_t size)
{
    std::mt19937 random(2101);
    std::string text(size, ' ');
    for (char &c : text)
        c = static_cast<char>('a' + random() % 20);
    return text;
}

TEST_F(MemCompress, WhatWasCompressedComesBackWholeHoweverMuchItExpands)
{
    std::string sources[] = {"x", std::string(2000, 'x'), std::string(3'000'000, '\0'), randomText(50000)};
    for (const std::string &source : sources) {
        auto plain = convert(1, 0, source);
        auto marked = convert(1, 'M', source);
        ASSERT_TRUE(plain && marked);
        EXPECT_EQ(*marked, 'M' + *plain);
        EXPECT_EQ(convert(0, 0, *plain), source);
        EXPECT_EQ(convert(0, 'M', *marked), source);
    }
    EXPECT_EQ(VxErrCnt(), 0);
}

TEST_F(MemCompress, ExactlyEightTimesTheInputIsNoSignOfACut)
{
    // The stored size decides where the first attempt's room ends; one of these meets it.
    bool met = false;
    for (size_t size = 1; size < 400; ++size) {
        std::string source(size, 'x');
        auto small = convert(1, 0, source);
        ASSERT_TRUE(small);
        met |= small->size() * 8 == size;
        EXPECT_EQ(convert(0, 0, *small), source) << size;
    }
    EXPECT_TRUE(met);
}

TEST_F(MemCompress, AMissingMarkerIsReported)
{
    auto marked = convert(1, 200, "some bytes");
    ASSERT_TRUE(marked);
    EXPECT_FALSE(convert(0, 201, *marked));
    EXPECT_TRUE(reported(73));
    EXPECT_EQ(convert(0, 200, *marked), "some bytes");
    EXPECT_FALSE(convert(0, 'M', "M")) << "nothing behind the marker";
    EXPECT_FALSE(convert(0, 0, "these are no compressed bytes"));
}

TEST_F(MemCompress, NullAndEmptyInputsFail)
{
    void *block = nullptr;
    int32_t size = 0;
    for (int32_t direction : {0, 1}) {
        EXPECT_EQ(VxMemCompress(direction, 0, nullptr, 3, &block, &size), 1u);
        EXPECT_EQ(VxMemCompress(direction, 0, "abc", 0, &block, &size), 1u);
        EXPECT_EQ(VxMemCompress(direction, 0, "abc", 3, nullptr, &size), 1u);
        EXPECT_EQ(VxMemCompress(direction, 0, "abc", 3, &block, nullptr), 1u);
    }
    EXPECT_EQ(block, nullptr);
}

TEST_F(MemCompress, ARefusedAllocationGivesNoResultAtAll)
{
    std::string source(10000, 'x');
    auto marked = convert(1, 'M', source);
    ASSERT_TRUE(marked);
    for (int32_t direction : {0, 1}) {
        const std::string &in = direction ? source : *marked;
        const std::string &expected = direction ? *marked : source;
        test::refusingEachAllocation([&] {
            void *block = nullptr;
            int32_t size = 0;
            auto length = static_cast<int32_t>(in.size());
            bool failed = VxMemCompress(direction, 'M', in.data(), length, &block, &size) != 0;
            EXPECT_EQ(block == nullptr, failed);
            EXPECT_TRUE(failed || textOf(block, size) == expected);
            VxMemFree(&block);
            VxErrClear();
        });
    }
}

}
