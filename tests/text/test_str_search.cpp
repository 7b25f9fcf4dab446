#include "tests/text/str_model.h"

using namespace vx::test;

namespace {

using StrSearch = OnEveryPage;
INSTANTIATE_TEST_SUITE_P(Pages, StrSearch, testing::Values(932, 936, 949, 950, 1252, 65001));

int32_t sign(int32_t n)
{
    return (n > 0) - (n < 0);
}

/** The byte offset of a place among characters, -1 for the end. */
int32_t offsetOf(const Chars &chars, Chars::const_iterator place)
{
    return place == chars.end() ? -1 : static_cast<int32_t>(join(chars.begin(), place).size());
}

int32_t offsetIn(const std::string &s, const char *p)
{
    return p ? static_cast<int32_t>(p - s.c_str()) : -1;
}

TEST_P(StrSearch, CharactersAreFoundWhereTheyStandAlone)
{
    for (const std::string &s : texts(2000, 8)) {
        const std::string ch = anyChar(s);
        const Chars chars = split(s);
        const auto first = std::find(chars.begin(), chars.end(), ch);
        const auto last = std::find_end(chars.begin(), chars.end(), &ch, &ch + 1);

        ASSERT_EQ(offsetIn(s, VxStrchrCONST(s.c_str(), value(ch))), offsetOf(chars, first));
        ASSERT_EQ(offsetIn(s, VxStrrchrCONST(s.c_str(), value(ch))), offsetOf(chars, last));
        ASSERT_EQ(VxStrCharOffset(s.c_str(), value(ch)), offsetOf(chars, first));
        ASSERT_EQ(VxStrlen(s.c_str()), static_cast<int32_t>(chars.size()));

        const auto nonBlank = std::find_if_not(chars.begin(), chars.end(), isBlank);
        ASSERT_EQ(offsetIn(s, VxStrFirstChar(s.c_str())), offsetOf(chars, nonBlank));
        const auto behind = std::find_if_not(chars.rbegin(), chars.rend(), isBlank).base();
        ASSERT_EQ(offsetIn(s, VxStrLastChar(s.c_str())),
                  behind == chars.begin() ? -1 : offsetOf(chars, behind - 1));
        ASSERT_EQ(offsetIn(s, VxStrEndChar(s.c_str())),
                  chars.empty() ? -1 : offsetOf(chars, chars.end() - 1));

        const bool found = first != chars.end();
        auto expectPiece = [&](auto function, const std::string &piece) {
            Buffer out("old", 1 + any(10));
            ASSERT_EQ(function(s.c_str(), value(ch), out.data(), out.size()),
                      !found || piece.size() > out.room());
            ASSERT_EQ(out.text(), found ? whole(piece, out.room()) : "");
        };
        expectPiece(VxStrPrefix, join(chars.begin(), first));
        expectPiece(VxStrPrefix2, join(chars.begin(), last));
        expectPiece(VxStrSuffix, found ? join(last + 1, chars.end()) : "");
    }
}

TEST_P(StrSearch, TextsAreFoundWhereTheirCharactersStand)
{
    for (const std::string &s : texts(4000, 8)) {
        const std::string part = anyText(2);
        const Chars chars = split(s);
        const Chars sought = split(part);
        const auto found = std::search(chars.begin(), chars.end(), sought.begin(), sought.end());
        const int32_t expected = part.empty() ? -1 : offsetOf(chars, found);
        ASSERT_EQ(offsetIn(s, VxStrFind(s.c_str(), part.c_str())), expected);
        ASSERT_EQ(VxStrPos(s.c_str(), part.c_str()), expected);
        ASSERT_EQ(VxStrIsSub(part.c_str(), s.c_str()), expected >= 0);
        ASSERT_EQ(VxStrIsSub2(s.c_str(), part.c_str(), 0), expected >= 0);

        ASSERT_EQ(VxStrAtStart(s.c_str(), part.c_str()),
                  std::ranges::mismatch(sought, chars).in1 == sought.end());
        const auto atEnd = std::mismatch(sought.rbegin(), sought.rend(), chars.rbegin(), chars.rend());
        ASSERT_EQ(VxStrAtEnd(s.c_str(), part.c_str()), atEnd.first == sought.rend());
        const char *table[] = {nullptr, part.c_str()};
        ASSERT_EQ(VxStrMatch(s.c_str(), 2, table), VxStrAtStart(s.c_str(), part.c_str()));
        ASSERT_EQ(VxStrMatch(s.c_str(), 1, table), 0);

        std::string cleaned = edited(s, VxStrClean);
        ASSERT_EQ(VxStrStart(s.c_str(), part.c_str()), VxStrAtStart(cleaned.c_str(), part.c_str()));
    }
}

TEST_P(StrSearch, TheOrderIsThatOfTheCharactersNumbers)
{
    auto numbers = [](const std::string &s) {
        std::vector<uint32_t> result;
        for (const std::string &ch : split(s))
            result.push_back(static_cast<uint32_t>(value(ch)));
        return result;
    };
    for (int run = 0; run < 4000; ++run) {
        const std::string common = anyText(3), a = common + anyText(3), b = common + anyText(3);
        auto x = numbers(a), y = numbers(b);
        ASSERT_EQ(sign(VxStrcmp(a.c_str(), b.c_str())), (x > y) - (x < y)) << run;
        ASSERT_EQ(VxStrSame(a.c_str(), b.c_str()), a == b) << run;
        const size_t n = any(8);
        x.resize(std::min(n, x.size()));
        y.resize(std::min(n, y.size()));
        ASSERT_EQ(sign(VxStrncmp(a.c_str(), b.c_str(), static_cast<int32_t>(n))), (x > y) - (x < y)) << run;
    }
}

TEST_P(StrSearch, SortingGivesTheSameRecordsInOrder)
{
    constexpr size_t width = 24;
    for (size_t count : {0u, 1u, 2u, 3u, 1000u}) {
        std::vector<char> array(count * width + 1, '\0');
        std::vector<std::string> expected;
        for (size_t i = 0; i < count; ++i) {
            expected.push_back(whole(anyText(5), width - 1));
            expected.back().copy(&array[i * width], width - 1);
        }
        ASSERT_EQ(VxStrSort(static_cast<int32_t>(count), array.data(), width), 0u);
        std::ranges::stable_sort(
            expected, [](auto &a, auto &b) { return VxStrcmp(a.c_str(), b.c_str()) < 0; });
        for (size_t i = 0; i < count; ++i)
            ASSERT_EQ(&array[i * width], expected[i]);
    }
}

TEST_P(StrSearch, CaseIsThatOfWholeCharacters)
{
    // A second half that is a letter has no case.
    const char small[] = "x\260a1z", capital[] = "X\260A1Z";
    const bool pairs = split("\260a").size() == 1;
    EXPECT_EQ(VxStrcasecmp(small, capital) == 0, !pairs);
    EXPECT_EQ(VxStrcaseFind(small, capital) != nullptr, !pairs);
    EXPECT_EQ(VxStrSameI(capital, small), !pairs);
    EXPECT_EQ(edited(small, [](char *p) { VxStrToupper(p, 0); }), pairs ? "X\260a1Z" : capital);
}

TEST(StrSearchBytes, LettersBeyondAsciiHaveTheCaseOfTheirCodePage)
{
    using Case = std::tuple<int32_t, const char *, const char *>;
    for (auto [number, small, capital] : {Case{1252, "\xE9\xFF", "\xC9\x9F"},
                                          Case{65001, "\xC3\xA9\xD0\xB6", "\xC3\x89\xD0\x96"},
                                          Case{932, "\x82\x81", "\x82\x60"}}) {
        CodePageScope page(number);
        EXPECT_EQ(edited(small, [](char *p) { VxStrToupper(p, 0); }), capital) << number;
        EXPECT_TRUE(VxStrcasecmp(small, capital) == 0 && VxStrIsSub2(small, capital, 1)) << number;
        EXPECT_TRUE(VxStrSameI(capital, small) && !VxStrSameI(small, capital))
            << number << ": one-sided, the first text is the keyword";
    }
}

TEST(StrSearchBytes, NumbersInTextsAreComparedByValue)
{
    // Texts of one place in the order are equal.
    const std::pair<int, const char *> order[] = {
        {0, ""},      {1, "18446744073709551615"}, {1, "0018446744073709551615"}, {2, "18446744073709551616"},
        {3, "a7"},    {3, "a007"},                 {4, "a7b0"},                   {4, "a07b00"},
        {5, "a70"},   {6, "a071b"},                {6, "a71b"},                   {7, "a-"},
        {8, "file9"}, {9, "file10"},               {10, "\xE9"}};
    for (auto [i, a] : order)
        for (auto [j, b] : order)
            EXPECT_EQ(sign(VxStrCmpAlphaNum(a, b)), (i > j) - (i < j)) << a << ", " << b;
}

}
