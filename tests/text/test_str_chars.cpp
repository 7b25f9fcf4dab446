#include "tests/support/faults.h"
#include "tests/text/str_model.h"
#include "vx/mem.h"

using namespace vx::test;

namespace {

using StrChars = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrChars, testing::Values(932, 936, 949, 950, 1252, 65001));

TEST_P(StrChars, EveryByteOfATextIsALeadASingleByteOrInside)
{
    for (const std::string &s : texts(1000, 8)) {
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
    using Classes = std::array<int32_t, 7>; // alpha, alnum, digit; space and print, also as texts
    const std::tuple<int32_t, const char *, Classes> cases[] = {
        {1252, "\xE9", {1, 1, 0, 0, 0, 1, 1}},      // e acute
        {1252, "\xD7", {0, 0, 0, 0, 0, 1, 1}},      // multiplication sign
        {1252, "\x81", {0, 0, 0, 0, 0, 0, 0}},      // no character
        {932, "\x82\x4F", {0, 1, 0, 0, 0, 1, 1}},   // full-width 0
        {932, "\x81\x40", {0, 0, 0, 1, 1, 1, 1}},   // ideographic space
        {932, "\x81", {0, 0, 0, 0, 0, 0, 0}},       // a lead byte alone
        {936, "\xD6\xD0", {1, 1, 0, 0, 0, 1, 1}},   // an ideograph
        {65001, "\xC3\xA9", {1, 1, 0, 0, 0, 1, 1}}, // e acute
    };
    for (const auto &[number, text, classes] : cases) {
        CodePageScope page(number);
        const int32_t ch = value(text);
        EXPECT_EQ((Classes{VxIsalpha(ch), VxIsalnum(ch), VxIsdigit(ch), VxIsspace(ch), VxStrIsBlank(text),
                           VxIsprint(ch), VxStrIsprint(text)}),
                  classes)
            << number << ": " << std::hex << ch;
    }
}

TEST_P(StrChars, ATextIsBlankWhenAllItsCharactersAre)
{
    for (const std::string &s : texts(1000, 3)) {
        const Chars chars = split(s);
        const auto blank = std::find_if_not(chars.begin(), chars.end(), isBlank) - chars.begin();
        ASSERT_EQ(VxStrIsBlank(s.c_str()), blank == static_cast<ptrdiff_t>(chars.size()));
        for (int32_t n = 0; n < 5; ++n)
            ASSERT_EQ(VxStrIsBlankN(s.c_str(), n), blank >= std::min<ptrdiff_t>(n, std::ssize(chars)));
    }
    EXPECT_EQ(VxStrIsBlankW(u" \t\r\n\v\f\u3000"), 1);
    EXPECT_EQ(VxStrIsBlankW(u" x"), 0);
}

TEST_P(StrChars, CopiesAndCutsEndWithAWholeCharacter)
{
    for (int run = 0; run < 300; ++run) {
        const std::string s = anyText(8);
        for (size_t size = 1; size <= s.size() + 2; ++size) {
            SCOPED_TRACE(testing::Message() << "run " << run << ", size " << size);
            const std::string kept = whole(s, size - 1);
            const uint32_t cut = s.size() >= size;

            Buffer copy("old", size);
            ASSERT_EQ(VxStrCpy(copy.data(), s.c_str(), copy.size()), cut);
            ASSERT_EQ(copy.text(), kept);

            const int32_t position = static_cast<int32_t>(size) - 1;
            ASSERT_EQ(edited(s, [&](char *p) { VxStrTruncAt(p, position); }), kept);
            ASSERT_EQ(edited(s, [&](char *p) { VxStrTrunc(p, position); }), kept);

            Buffer full(s, std::max(s.size(), size) + 1);
            ASSERT_EQ(VxStrTermAt(full.data(), position, full.size()), 0u);
            ASSERT_EQ(full.text(), kept);
            const std::string clean = withoutHalves(s);
            for (int32_t last : {position, position + 1}) {
                Buffer filled(clean, size);
                ASSERT_EQ(VxStrTermAt(filled.data(), last, filled.size()), last > position);
                ASSERT_EQ(filled.text(), whole(clean, size - 1));
            }
        }
    }
}

TEST_P(StrChars, CopyingToACharacterStopsThereOrAtTheBuffersEnd)
{
    for (const std::string &s : texts(1000, 8)) {
        const std::string stop = anyChar(s);
        const Chars chars = split(s);
        const auto at = std::find(chars.begin(), chars.end(), stop);
        const std::string before = join(chars.begin(), at);
        Buffer out("old", 1 + any(12));
        const char *next = VxStrCpyTo(out.data(), s.c_str(), value(stop), out.size());
        ASSERT_EQ(out.text(), whole(before, out.room()));
        const bool reached = at != chars.end() && before.size() <= out.room();
        ASSERT_EQ(next, reached ? s.c_str() + before.size() + stop.size() : nullptr);
    }
}

TEST(StrCharsBytes, CopyingOntoItselfOrFromBehindKeepsTheText)
{
    char s[16] = "abcdef";
    EXPECT_EQ(VxStrCpy(s, s, 2), 0u);
    EXPECT_EQ(VxStrCpy(s, s + 2, sizeof s), 0u);
    EXPECT_STREQ(s, "cdef");
}

TEST(StrCharsBytes, AppendsStopAtTheFirstThatDoesNotFitOrIsMissing)
{
    for (size_t size : {1u, 3u, 4u, 6u, 7u, 8u}) {
        Buffer buffer("abc", size), before = buffer;
        const bool fits = size >= 7;
        EXPECT_EQ(VxStrCat(buffer.data(), "def", buffer.size()), !fits);
        EXPECT_TRUE(fits ? buffer.text() == "abcdef" : buffer == before) << size;
    }
    char s[8] = "a";
    EXPECT_EQ(VxStrsCat(s, sizeof s, "b", "", nullptr, "x"), 0u);
    EXPECT_EQ(VxStrsCat(s, sizeof s, "cde", "toolong", "f"), 1u);
    EXPECT_EQ(VxStrsCat(s, sizeof s, "", "", "", "", "f", "g"), 0u);
    EXPECT_STREQ(s, "abcdefg");
}

TEST(StrCharsBytes, ADuplicateIsTheCallersOrNothing)
{
    refusingEachAllocation([] {
        char *copy = reinterpret_cast<char *>(1);
        const bool copied = VxStrDup("abc", &copy) == 0;
        EXPECT_STREQ(copy, copied ? "abc" : nullptr);
        void *block = copy;
        VxMemFree(&block);
    });
}

}
