#include "vx/lang.h"
#include "vx/lang.hpp"

#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/code_page.h"
#include "tests/support/faults.h"
#include "vx/mem.h"

using namespace vx;

namespace {

constexpr int32_t everyPage[] = {874,  932,  936,  949,  950,  1250, 1251, 1252,
                                 1253, 1254, 1255, 1256, 1257, 1258, 65001};

/** A vector's text, which must end in its only terminator that was put there. */
template <typename Unit> std::basic_string<Unit> textOf(const std::vector<Unit> &units)
{
    if (units.empty() || units.back() != 0) {
        ADD_FAILURE() << "no terminator";
        return {};
    }
    return {units.data(), units.size() - 1};
}

std::u16string wide(std::string_view text)
{
    std::vector<char16_t> out;
    EXPECT_EQ(VxMultiByteToWideChar(text.data(), static_cast<int32_t>(text.size()), out), 0u);
    return textOf(out);
}

std::string escaped(std::u16string_view text)
{
    std::vector<char> out;
    EXPECT_EQ(VxWideCharToMultiByte(text.data(), static_cast<int32_t>(text.size()), out), 0u);
    return textOf(out);
}

std::u16string parsed(std::u16string_view text)
{
    std::vector<char16_t> out;
    EXPECT_EQ(VxWideCharParseCIF(text.data(), static_cast<int32_t>(text.size()), out), 0u);
    return textOf(out);
}

/** The text of a new block, which is freed. */
template <typename Unit> std::basic_string<Unit> taken(Unit *block)
{
    if (!block) {
        ADD_FAILURE() << "no block";
        return {};
    }
    std::basic_string<Unit> text = block;
    void *memory = block;
    VxMemFree(&memory);
    return text;
}

std::u16string cutAtTerminator(std::u16string text)
{
    return text.substr(0, text.find(u'\0'));
}

class Conversions : public testing::TestWithParam<int32_t> {
protected:
    std::u16string wideNoise()
    {
        constexpr char16_t common[] = {u'\\', u'U', u'u', u'+',   u'0',   u'9',  u'a',
                                       u'F',  u'g', 0xE9, 0x4E00, 0xAC00, 0xFF71};
        std::u16string text;
        for (size_t n = random_() % 24; n > 0; --n)
            switch (random_() % 6) {
            case 0: text += static_cast<char16_t>(1 + random_() % 0xFFFF); break;
            case 1: text += static_cast<char16_t>(0xD800 + random_() % 0x800); break;
            case 2: text += u"\\U+"; break;
            default: text += common[random_() % std::size(common)];
            }
        return text;
    }

    std::string noise()
    {
        std::string text;
        for (size_t n = random_() % 24; n > 0; --n)
            switch (random_() % 8) {
            case 0: text += "\\U+00E9"; break;
            case 1: text += static_cast<char>(1 + random_() % 0x7F); break;
            case 2: text += "\\u+4e"; break;
            default: text += static_cast<char>(0x80 + random_() % 0x80);
            }
        return text;
    }

private:
    test::CodePageScope page_{GetParam()};
    std::mt19937 random_{20261121};
};

INSTANTIATE_TEST_SUITE_P(EveryCodePage, Conversions, testing::ValuesIn(everyPage),
                         testing::PrintToStringParamName());

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
        const std::u16string utf16 = taken(VxStrToUTF16(text.c_str()));
        const std::string utf8 = taken(VxStrToUTF8(text.c_str()));
        ASSERT_EQ(taken(VxStrFromUTF8(utf8.c_str())), taken(VxStrFromUTF16(utf16.c_str()))) << utf8;
        if (text.find('\\') == text.npos) {
            ASSERT_EQ(utf16, wide(text));
        }
        ASSERT_EQ(taken(VxStrFromCIFStr(text.c_str())),
                  taken(VxStrFromUTF16(cutAtTerminator(wide(text)).c_str())));

    }
}

TEST(Escapes, AreWrittenInUpperCaseAndReadInEitherButOnlyWhole)
{
    test::CodePageScope western(1252);
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
    test::CodePageScope japanese(932);
    EXPECT_EQ(wide("\x95\x5CU+0041"), u"\u8868U+0041");
    EXPECT_EQ(taken(VxStrFromCIFStr("\x95\x5CU+0041\\U+8868\\U+00E9")), "\x95\x5CU+0041\x95\x5C\\U+00E9");
}

TEST(Conversion, BytesWithoutACharacterKeepTheirValue)
{
    {
        test::CodePageScope japanese(932);
        EXPECT_EQ(wide("\x85\x9Fx\x81"), u"\u859Fx\u0081");
    }
    test::CodePageScope utf8(65001);
    EXPECT_EQ(wide("\xE9\xF0\x9F\x98\x80\xC0\x80\xED\xA0\x80"),
              u"\u00E9\U0001F600\u00C0\u0080\u00ED\u00A0\u0080");
    EXPECT_EQ(taken(VxStrToUTF8("\xE9")), "\xC3\xA9");
}

TEST(Conversion, StopsAtATerminatorAndAtTheLength)
{
    for (auto [text, length] : {std::pair{"ab\0cd", 5}, {"abc", 2}}) {
        std::vector<char16_t> units;
        EXPECT_EQ(VxMultiByteToWideChar(text, length, units), 0u);
        EXPECT_EQ(textOf(units), u"ab");
    }
}

TEST(Conversion, LongTextsComeOutWhole)
{
    test::CodePageScope western(1252);
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
    auto refused = [] { return fault::refusals(fault::Kind::allocation) > 0; };
    std::vector<char16_t> units = {u'x', 0};
    test::refusingEachAllocation([&] {
        const uint32_t failed = VxMultiByteToWideChar("abc", 3, units);
        EXPECT_EQ(failed, refused());
        EXPECT_EQ(units[0], failed ? u'x' : u'a');
    });
    test::refusingEachAllocation([&] {
        void *block = VxStrFromCIFStr("abc");
        EXPECT_EQ(block == nullptr, refused());
        VxMemFree(&block);
    });
}

}
