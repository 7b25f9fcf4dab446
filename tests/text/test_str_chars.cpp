#include "vx/str.h"

#include <cctype>
#include <cstring>

#include <gtest/gtest.h>

#include "tests/text/str_model.h"

using namespace vx::test;

namespace {

using StrChars = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrChars, testing::Values(932, 936, 949, 950, 1252, 65001));

TEST_P(StrChars, AsciiIsClassifiedAsInC)
{
    for (int c = 0; c < 128; ++c) {
        SCOPED_TRACE(c);
        EXPECT_EQ(VxIsalnum(c), std::isalnum(c) != 0);
        EXPECT_EQ(VxIsalpha(c), std::isalpha(c) != 0);
        EXPECT_EQ(VxIsdigit(c), std::isdigit(c) != 0);
        EXPECT_EQ(VxIsspace(c), std::isspace(c) != 0);
        EXPECT_EQ(VxIsprint(c), std::isprint(c) != 0);
    }
}

TEST_P(StrChars, EveryByteOfATextIsALeadASingleByteOrInside)
{
    for (int run = 0; run < 1000; ++run) {
        SCOPED_TRACE(run);
        const std::string s = anyText(8);
        int32_t at = 0;
        for (const std::string &ch : split(s))
            for (size_t i = 0; i < ch.size(); ++i, ++at) {
                ASSERT_EQ(VxIsCharLead(s.c_str(), at), i == 0) << at;
                ASSERT_EQ(VxIsCharSglByte(s.c_str(), at), ch.size() == 1) << at;
            }
        ASSERT_EQ(VxIsCharLead(s.c_str(), at + 1), 0);
        ASSERT_EQ(VxIsCharLead(s.c_str(), -1), 0);
        ASSERT_EQ(VxIsCharSglByte(s.c_str(), at + 1), 0);
    }
}

TEST_P(StrChars, APairIsOneNumberOnlyWhenItIsOneCharacter)
{
    for (int lead = 0; lead < 256; ++lead)
        for (int trail = 0; trail < 256; ++trail) {
            const std::string pair = {static_cast<char>(lead), static_cast<char>(trail)};
            const bool valid = lead != 0 && split(pair).front().size() == 2;
            int32_t number = -1;
            ASSERT_EQ(VxCharDb2Sb(static_cast<uint8_t>(lead), static_cast<uint8_t>(trail), &number), valid);
            ASSERT_EQ(number, valid ? lead * 256 + trail : lead);
        }
}

TEST(StrCharsBytes, OtherCharactersAreClassifiedByTheirCodePage)
{
    struct Case {
        int32_t page;
        const char *ch;
        bool alpha, alnum, space, print;
    };
    const Case cases[] = {
        {1252, "\xE9", true, true, false, true},        // e acute
        {1252, "\xD7", false, false, false, true},      // multiplication sign
        {1252, "\x81", false, false, false, false},     // no character
        {932, "\xB1", true, true, false, true},         // half-width katakana a
        {932, "\x82\x4F", false, true, false, true},    // full-width 0
        {932, "\x81\x40", false, false, true, true},    // ideographic space
        {932, "\x81", false, false, false, false},      // a lead byte alone
        {936, "\xD6\xD0", true, true, false, true},     // an ideograph
        {949, "\xB0\xA1", true, true, false, true},     // hangul ga
        {65001, "\xC3\xA9", true, true, false, true},   // e acute
        {65001, "\xE3\x80\x80", false, false, true, true},
        {65001, "\xF0\x9F\x98\x80", false, false, false, true}};
    for (const Case &c : cases) {
        CodePageScope page(c.page);
        const int32_t ch = value(c.ch);
        SCOPED_TRACE(testing::Message() << c.page << ": " << std::hex << ch);
        EXPECT_EQ(VxIsalpha(ch), c.alpha);
        EXPECT_EQ(VxIsalnum(ch), c.alnum);
        EXPECT_EQ(VxIsspace(ch), c.space);
        EXPECT_EQ(VxIsprint(ch), c.print);
        EXPECT_EQ(VxIsdigit(ch), 0);
        EXPECT_EQ(VxStrIsprint(c.ch), c.print);
        EXPECT_EQ(VxStrIsBlank(c.ch), c.space);
    }
    CodePageScope page(1252);
    EXPECT_EQ(VxIsalpha('\xE9'), 1) << "the sign of a plain char is no part of it";
}

TEST_P(StrChars, ATextIsBlankWhenAllItsCharactersAre)
{
    for (int run = 0; run < 1000; ++run) {
        SCOPED_TRACE(run);
        const std::string s = anyText(3);
        const Chars chars = split(s);
        const auto blank = std::find_if_not(chars.begin(), chars.end(), isBlank) - chars.begin();
        ASSERT_EQ(VxStrIsBlank(s.c_str()), blank == static_cast<ptrdiff_t>(chars.size()));
        for (int32_t n = 0; n < 5; ++n)
            ASSERT_EQ(VxStrIsBlankN(s.c_str(), n), blank >= std::min<ptrdiff_t>(n, std::ssize(chars)));
    }
    EXPECT_EQ(VxStrIsBlankW(u" \t\r\n\v\f\u3000"), 1);
    EXPECT_EQ(VxStrIsBlankW(u" x"), 0);
    EXPECT_EQ(VxStrIsBlankW(u""), 1);
    EXPECT_EQ(VxStrIsprint(""), 1);
    EXPECT_EQ(VxStrIsprint("a\tb"), 0);
}

}
