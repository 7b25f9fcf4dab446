#include <clocale>
#include <cmath>
#include <cstring>
#include <thread>

#include "tests/support/captured_output.h"
#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "tests/text/str_model.h"

using namespace vx::test;

namespace {

using StrFormat = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrFormat, testing::Values(932, 936, 949, 950, 1252, 65001));

TEST(StrNumbers, WhatATextIsAsANumber)
{
    using Numbers = std::array<int32_t, 3>; // of which type, whether a constant, and which integer
    const std::pair<const char *, Numbers> cases[] = {
        {"15", {1, 1, 15}},  {"1.5", {2, 1, 0}}, {"1E3", {1, 1, 0}}, {"", {0, 0, 0}},
        {"15 ", {1, 0, 0}},  {".", {0, 0, 0}},   {"inf", {0, 1, 0}}, {"nano", {0, 0, 0}},
        {"0x1F", {1, 1, 0}}, {"x", {0, 0, 0}},   {"2147483648", {1, 1, INT32_MAX}}};
    for (const auto &[text, numbers] : cases)
        EXPECT_EQ((Numbers{VxStrType(text), VxStrIsConst(text), VxStrIsInt(text)}), numbers) << text;
    CodePageScope page(936);
    EXPECT_EQ(VxStrType("1\260e"), 1) << "the second half of a character is no e";
}

TEST(StrNumbers, TheProcessLocaleIsNotAsked)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8")) << "LOCPATH names the locale that the build makes";
    EXPECT_STREQ(VxStrDbl(1.5), "1.5");
    EXPECT_EQ(VxStrIsConst("1.5"), 1);
    char number[16] = "x=";
    EXPECT_EQ(VxStrAddVal(number, sizeof number, -0.25), 0u);
    EXPECT_STREQ(number, "x=-0.25");
    std::setlocale(LC_ALL, before.c_str());
}

TEST(StrNumbers, HexadecimalTextsHoldEveryBit)
{
    char digits[17];
    for (int32_t v : {0, -1, INT32_MIN, INT32_MAX, 0x1234ABCD}) {
        int32_t back = 7;
        EXPECT_FALSE(VxStrIntToHex(v, digits, 9) || VxStrHexToInt(digits, &back));
        EXPECT_EQ(back, v);
    }
    for (double v : {-0.0, 1e-310, HUGE_VAL, std::nan(""), 1.0}) {
        double back = 7;
        EXPECT_FALSE(VxStrDblToHex(v, digits, 17) || VxStrHexToDbl(digits, &back));
        EXPECT_EQ(std::memcmp(&back, &v, sizeof v), 0);
    }
    EXPECT_STREQ(digits, "3FF0000000000000");
    EXPECT_EQ(VxStrDblToHex(1.0, digits, 16), 1u);
    EXPECT_STREQ(digits, "") << "half a number is none";
    int32_t value = 7;
    for (const char *bad : {"", "g", "0x1", " 1", "123456789"})
        EXPECT_EQ(VxStrHexToInt(bad, &value), 1u) << bad;
    double number;
    EXPECT_EQ(VxStrHexToDbl("3FF000000000000", &number), 1u);
}

TEST(StrLayout, TextsAreFittedIntoFieldsFromTheRight)
{
    CodePageScope page(932);
    const struct {
        const char *text;
        int32_t mode, decimals;
        const char *field;
        uint32_t cut = 0;
    } cases[] = {{"abc", 0, 0, "  abc"},      {"abcd", 0, 0, "abc", 1},     {"abc", 1, 0, "abc"},
                 {"abcd", 1, 0, "ab*", 1},    {"12.345", 2, 2, "   12.34"}, {"12.345", 2, -1, "  12.345"},
                 {"12.345", 2, 2, "12.*", 1}, {"12345.6", 2, 1, "123*", 1}, {"1.25e9", 2, 1, "   1.2e9"},
                 {"abcd", 3, 0, "***", 1},    {"a\x81\x40\x81\x40", 1, 0, "a\x81\x40*", 1}};
    for (const auto &[text, mode, decimals, expected, cut] : cases) {
        Buffer field("old", std::strlen(expected) + 1);
        const auto width = static_cast<int32_t>(field.room());
        EXPECT_EQ(VxStrFitToFrmt(text, mode, width, decimals, field.data()), cut) << text << ", " << mode;
        EXPECT_EQ(field.text(), expected);
    }
}

TEST_P(StrFormat, LinesKeepEveryWordAndTheirWidth)
{
    for (const std::string &s : texts(2000, 20)) {
        const int32_t width = 1 + static_cast<int32_t>(any(8));
        constexpr int32_t lineSize = 64;
        std::vector<char> lines(64 * lineSize, '#');
        int32_t count = 64;
        ASSERT_EQ(VxStrFmtLines(s.c_str(), width, lines.data(), lineSize, &count), 0u);
        Chars kept;
        for (int32_t i = 0; i < count; ++i) {
            const Chars line = split(&lines[static_cast<size_t>(i * lineSize)]);
            ASSERT_LE(line.size(), static_cast<size_t>(width));
            kept.insert(kept.end(), line.begin(), line.end());
        }
        Chars expected = split(s);
        std::erase_if(expected, isBlank);
        std::erase_if(kept, isBlank);
        ASSERT_EQ(kept, expected);
    }
}

TEST(StrLayout, LinesBreakAtBlanksAndNewlines)
{
    using Lines = std::vector<std::string>;
    const std::tuple<const char *, int32_t, int32_t, Lines, uint32_t> cases[] = { // width, room, lines, cut
        {"ab cd  ef", 5, 6, {"ab cd", "ef"}, 0},    {"abcdefg", 3, 6, {"abc", "def", "g"}, 0},
        {"a\r\n\nb\n", 3, 6, {"a", "", "b"}, 0},    {"a b c", 1, 2, {"a", "b"}, 1},
        {"abcdefgh", 9, 2, {"abcdefg"}, 1}};
    for (const auto &[text, width, room, expected, cut] : cases) {
        char lines[6][8];
        int32_t count = room;
        EXPECT_EQ(VxStrFmtLines(text, width, &lines[0][0], 8, &count), cut) << text;
        EXPECT_EQ(Lines(lines, lines + count), expected) << text;
    }
}

TEST_P(StrFormat, FormattedTextsAreCutAtACharacter)
{
    for (int run = 0; run < 1000; ++run) {
        SCOPED_TRACE(run);
        const std::string s = "x" + withoutHalves(anyText(8));
        Buffer buffer("old", 1 + any(s.size() + 2));
        ASSERT_EQ(VxSprintf(buffer.data(), buffer.size(), "%s", s.c_str()), 0u);
        ASSERT_EQ(buffer.text(), whole(s, buffer.room()));
    }
}

TEST(StrPrint, StandardErrorGoesToTheFileAndBack)
{
    TempFolder folder;
    CapturedOutput outer(stderr);
    for (const char *name : {"first.txt", "second.txt"}) {
        ASSERT_EQ(VxStdErrRedirect(folder.text(name).c_str()), 0u);
        VxFprintf(stderr, name);
    }
    ASSERT_EQ(VxStdErrRestore(), 0u);
    VxFprintf(stderr, "three");
    EXPECT_EQ(folder.read("first.txt") + folder.read("second.txt"), "first.txtsecond.txt");
    EXPECT_EQ(outer.text(), "three");
}

TEST(StrPrint, ARefusedRedirectionLeavesStandardErrorAlone)
{
    TempFolder folder;
    refusingEachVerb([&, file = folder.text("stderr.txt")] {
        const bool redirected = VxStdErrRedirect(file.c_str()) == 0;
        // A restoration that was refused can be asked for again.
        const bool restored = VxStdErrRestore() == 0 || VxStdErrRestore() == 0;
        EXPECT_EQ(redirected, restored);
    });
    EXPECT_EQ(VxStdErrRestore(), 1u);
}

TEST(StrNumbers, ResultsOfTheLibraryAreEachThreadsOwn)
{
    const char *here[] = {VxStrDbl(1.5), VxStrInt(1), VxStrElem("one two", 1)};
    std::thread([] { VxStrDbl(2.5), VxStrInt(2), VxStrElem("one two", 2); }).join();
    EXPECT_EQ(std::string(here[0]) + " " + here[1] + " " + here[2], "1.5 1 one");
}

}
