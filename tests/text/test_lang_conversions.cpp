#include "tests/text/conversions.h"

#include <random>

#include <gtest/gtest.h>

#include "tests/support/code_page.h"
#include "tests/support/faults.h"

using namespace vx;
using namespace vx::test;

namespace {

class Conversions : public testing::TestWithParam<int32_t> {
protected:
    size_t between(size_t low, size_t high) { return low + random_() % (high - low + 1); }

    std::u16string wideNoise()
    {
        constexpr std::u16string_view common = u"\\Uu+09aFg\u00E9\u4E00\uAC00\uFF71";
        std::u16string text;
        for (size_t n = between(0, 23); n > 0; --n) {
            const char16_t units[] = {static_cast<char16_t>(between(1, 0xFFFF)),
                                      static_cast<char16_t>(between(0xD800, 0xDFFF)),
                                      common[between(0, common.size() - 1)]};
            const size_t kind = between(0, 5);
            text += kind == 5 ? u"\\U+" : std::u16string(1, units[std::min<size_t>(kind, 2)]);
        }
        return text;
    }

    std::string noise()
    {
        std::string text;
        for (size_t n = between(0, 23); n > 0; --n) {
            const size_t kind = between(0, 7);
            const char byte = static_cast<char>(kind == 2 ? between(1, 0x7F) : between(0x80, 0xFF));
            text += kind == 0 ? "\\U+00E9" : kind == 1 ? "\\u+4e" : std::string(1, byte);
        }
        return text;
    }

private:
    CodePageScope page_{GetParam()};
    std::mt19937 random_{20261121};
};

INSTANTIATE_TEST_SUITE_P(EveryCodePage, Conversions, testing::ValuesIn(everyCodePage));

TEST_P(Conversions, WideTextSurvivesTheWayThroughEscapesAndThroughTheCodePage)
{
    for (int run = 0; run < 3000; ++run) {
        const std::u16string text = wideNoise();
        // What looks like an escape in the wide text is read as one on the way back.
        const std::u16string expected = parsed(text);
        const std::string escapes = escaped(text);
        for (char c : escapes)
            ASSERT_GE(c, 0);
        ASSERT_EQ(wide(escapes), expected);
        ASSERT_EQ(wide(taken(VxStrFromUTF16(text.c_str()))), expected);
    }
}

TEST_P(Conversions, WholeTextsGoTheSameWayThroughUtf8AsThroughUtf16)
{
    for (int run = 0; run < 3000; ++run) {
        const std::string text = noise();
        ASSERT_TRUE(conversionsAgree(text)) << text;
    }
}

TEST(Escapes, AreWrittenInUpperCaseAndReadInEitherButOnlyWhole)
{
    CodePageScope western(1252);
    EXPECT_EQ(escaped(u"a\x7F\x80\uFFFF"), "a\x7F\\U+0080\\U+FFFF");
    EXPECT_EQ(escaped(u"\U0001F600"), "\\U+D83D\\U+DE00");
    EXPECT_EQ(wide("\\u+abCDx"), u"\uABCDx");
    EXPECT_EQ(wide("\\\\U+0041"), u"\\A");
    for (const char16_t *text : {u"\\U+12G4", u"\\U-1234", u"\\x+1234", u"U+1234", u"\\U+12\u06604"})
        EXPECT_EQ(parsed(text), text);
    for (const char *text : {"\\U+12G4", "\\U+123", "\\U-1234", "\\", "\\\\U+12"})
        EXPECT_EQ(escaped(wide(text)), text);
}

TEST(Escapes, AreNotSeenInTheSecondByteOfACharacter)
{
    CodePageScope japanese(932);
    EXPECT_EQ(wide("\x95\x5CU+0041"), u"\u8868U+0041");
    EXPECT_EQ(taken(VxStrFromCIFStr("\x95\x5CU+0041\\U+8868\\U+00E9")), "\x95\x5CU+0041\x95\x5C\\U+00E9");
}

TEST(Conversion, BytesWithoutACharacterKeepTheirValue)
{
    CodePageScope page(932);
    EXPECT_EQ(wide("\x85\x9Fx\x81"), u"\u859Fx\u0081");
    text::setCodePage(65001, -1);
    EXPECT_EQ(wide("\xE9\xF0\x9F\x98\x80\xC0\x80\xED\xA0\x80"),
              u"\u00E9\U0001F600\u00C0\u0080\u00ED\u00A0\u0080");
    EXPECT_EQ(taken(VxStrToUTF8("\xE9")), "\xC3\xA9");
}

TEST(Conversion, StopsAtATerminatorAndAtTheLength)
{
    EXPECT_EQ(wide({"ab\0cd", 5}), u"ab");
    EXPECT_EQ(wide({"abc", 2}), u"ab");
}

TEST(Conversion, LongTextsComeOutWhole)
{
    CodePageScope western(1252);
    for (size_t length : {292u, 293u, 100000u}) {
        const std::string text(length, '\xE9');
        const std::u16string utf16(length, u'\u00E9');
        EXPECT_EQ(wide(escaped(utf16)), utf16);
        EXPECT_EQ(taken(VxStrToUTF16(text.c_str())), utf16);
        EXPECT_EQ(taken(VxStrFromUTF16(utf16.c_str())), text);
        EXPECT_EQ(taken(VxStrFromUTF8(taken(VxStrToUTF8(text.c_str())).c_str())), text);
    }
}

TEST(Conversion, RefusedMemoryGivesNoTextAndLeavesAVectorAsItWas)
{
    std::vector<char16_t> units = {u'x', 0};
    failsWhenRefused(fault::Kind::allocation, [&] { return VxMultiByteToWideChar("abc", 3, units); },
                     [&](bool refused) { EXPECT_EQ(units[0], refused ? u'x' : u'a'); });
    failsWhenRefused(fault::Kind::allocation, [&] {
        void *block = VxStrFromCIFStr("abc");
        const bool none = !block;
        VxMemFree(&block);
        return none;
    });
}

}
