#include "tests/text/str_model.h"

using namespace vx::test;

namespace {

using StrEdit = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrEdit, testing::Values(932, 936, 949, 950, 1252, 65001));

TEST_P(StrEdit, WhiteSpaceGoesByWholeCharacters)
{
    for (const std::string &s : texts(2000, 8)) {
        Chars chars = split(s);
        auto first = std::find_if_not(chars.begin(), chars.end(), isBlank);
        auto last = std::find_if_not(chars.rbegin(), std::make_reverse_iterator(first), isBlank).base();
        ASSERT_EQ(edited(s, VxStrRem), join(first, last));
        ASSERT_EQ(VxStrNextCharCONST(s.c_str()), s.c_str() + join(chars.begin(), first).size());
        std::erase_if(chars, isBlank);
        ASSERT_EQ(edited(s, VxStrClean), join(chars));
    }
}

TEST_P(StrEdit, CharactersAreDroppedOnlyWhole)
{
    for (const std::string &s : texts(2000, 8)) {
        const std::string ch = anyChar(s);
        const Chars chars = split(s);

        auto kept = std::find_if(chars.begin(), chars.end(), [&](auto &c) { return c != ch; });
        ASSERT_EQ(edited(s, [&](char *p) { VxStrRemLeadChar(p, value(ch)); }), join(kept, chars.end()));

        const int32_t max = static_cast<int32_t>(any(4));
        Chars without;
        int32_t dropped = 0;
        for (const std::string &c : chars)
            if (c != ch || (max > 0 && dropped++ >= max))
                without.push_back(c);
        ASSERT_EQ(edited(s, [&](char *p) { VxStrRemChar(p, value(ch), max); }), join(without));

        ASSERT_EQ(edited(s, [&](char *p) { VxStrTruncAtDelim(p, value(ch)); }),
                  join(chars.begin(), std::find(chars.begin(), chars.end(), ch)));

        const size_t n = any(chars.size() + 2);
        ASSERT_EQ(edited(s, [&](char *p) { VxStrTruncEnd(p, static_cast<int32_t>(n)); }),
                  join(chars.begin(), chars.end() - static_cast<ptrdiff_t>(std::min(n, chars.size()))));
    }
}

TEST_P(StrEdit, ReplacementsTakeWholeCharacters)
{
    for (const std::string &s : texts(2000, 8)) {
        Chars chars = split(s);
        const std::string from = anyChar(s);
        if (from.size() == 1) {
            Chars replaced = chars;
            std::replace(replaced.begin(), replaced.end(), from, std::string("_"));
            ASSERT_EQ(edited(s, [&](char *p) { VxStrReplace(p, value(from), '_'); }), join(replaced));
        }

        Chars widened = chars;
        std::replace(widened.begin(), widened.end(), std::string("\t"), std::string("   "));
        Buffer tabs(s, s.size() + 1 + any(4));
        ASSERT_EQ(VxStrReplaceTabs(tabs.data(), tabs.size(), 3), join(widened).size() > tabs.room());
        ASSERT_EQ(tabs.text(), whole(join(widened), tabs.room()));
    }
}

TEST_P(StrEdit, SubstitutionFindsPatternsOnlyAtCharacters)
{
    for (const std::string &s : texts(2000, 10)) {
        const Chars chars = split(s);
        const Chars pattern = split(any(2) ? anyChar(s) : anyPiece());
        std::string expected;
        for (size_t i = 0; i < chars.size();) {
            bool here = chars.size() - i >= pattern.size() &&
                        std::equal(pattern.begin(), pattern.end(), chars.begin() + static_cast<ptrdiff_t>(i));
            expected += here ? "<>" : chars[i];
            i += here ? pattern.size() : 1;
        }
        Buffer buffer(s, s.size() + 1 + any(6));
        const uint32_t cut = expected.size() > buffer.room();
        ASSERT_EQ(VxStrReplaceSub(buffer.data(), buffer.size(), join(pattern).c_str(), "<>"), cut);
        ASSERT_EQ(buffer.text(), whole(expected, buffer.room()));
    }
}

TEST_P(StrEdit, APieceIsReplacedByPositionUnlessThatTearsACharacter)
{
    for (const std::string &s : texts(2000, 6)) {
        const size_t first = any(s.size() + 2);
        const size_t length = any(4);
        const size_t end = first + length;
        Buffer buffer(s, s.size() + 1 + any(3));
        const size_t room = buffer.room();
        const uint32_t failed = VxStrReplaceSub2(buffer.data(), buffer.size(), static_cast<int32_t>(first),
                                                 static_cast<int32_t>(length), "[-]");
        std::string expected = s;
        const bool tears = end > s.size() || whole(s, first).size() != first || whole(s, end).size() != end;
        if (!tears) {
            const std::string front = (s.substr(0, first) + "[-]").substr(0, room);
            expected = front + whole(s.substr(end), room - front.size());
        }
        ASSERT_EQ(failed, tears || s.size() - length + 3 > room);
        ASSERT_EQ(buffer.text(), expected);
    }
}

TEST(StrEditBytes, CleaningLooksAt1023BytesOnly)
{
    for (size_t length : {1023u, 1024u, 2000u}) {
        std::string s(length, 'x');
        s[10] = ' ';
        Buffer buffer(s);
        EXPECT_EQ(VxStrClean(buffer.data()), length > 1023) << length;
        EXPECT_EQ(buffer.text().size(), std::min<size_t>(length, 1023) - 1);
    }
}

TEST(StrEditBytes, SubstitutionStopsWhenTheNextInsertionExceedsItsWorkSpace)
{
    // 511 insertions of two bytes leave one byte of 1023 for what follows.
    for (size_t count : {511u, 512u}) {
        Buffer buffer(std::string(count, 'a'), 4096);
        EXPECT_EQ(VxStrReplaceSub(buffer.data(), buffer.size(), "a", "bb"), count > 511);
        EXPECT_EQ(buffer.text(), std::string(1022, 'b') + (count > 511 ? "a" : ""));
    }
}

TEST(StrEditBytes, LineEndsAreDroppedOrNormalised)
{
    EXPECT_EQ(edited("a\rb\r\n\r\n", VxStrRemNL), "a\rb");
    EXPECT_EQ(edited("a\rb\r\n", VxStrDelRtn), "ab\n");
    EXPECT_EQ(edited("a\\nb\\r\\nc\\rd\\", VxStrProcNewline), "a\nb\nc\\rd\\");
    CodePageScope page(932);
    EXPECT_EQ(edited("\x81\\n\\n", VxStrProcNewline), "\x81\\n\n");
}

TEST(StrEditBytes, TrailingZerosGoOnlyBehindADecimalPoint)
{
    for (auto [before, after] : {std::pair{"1.500", "1.5"}, {"2.", "2"}, {"100", "100"}, {".0", "0"},
                                 {"1e10", "1e10"}, {"", ""}})
        EXPECT_EQ(edited(before, VxStrRemZero), after) << before;
}

}
