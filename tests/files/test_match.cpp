#include "tests/support/test.h"
#include "vx/posix.hpp"

using namespace vx;

namespace {

enum { separates = 1, noEscape = 2, pointLiteral = 4, ignoreCase = 16 };

// Pattern and name with a bar between them.
TEST(Match, PatternsMatchAndDoNot)
{
    const std::tuple<int32_t, bool, const char *> rows[] = {
        {0, true,
         R"(| abc|abc ?|a a?c|abc a?c|a?c ??|ab ?|\ *| *|abc **|abc a*|a *a|ba *a*|bab a*c|abcbc )"
         R"(a*b*c|aXbYbZc *.*|a.b.c *.txt|x.txt *ab*ab*ab|abababab ?*?|ab [a]|a [abc]|c [a-c]|b )"
         R"([a-cx-z]|y [a-c]*[0-9]|bend7 [!a]|b [^a]|b [a!]|! [a^]|^ []a]|] []a]|a [!]a]|b [a-]|- )"
         R"([-a]|- [[]|[ [*?]|* [|[ [a|[a []|[] x[!|x[! *[|ab[ part[1].prt|part1.prt [[|[[ \*|* \a|a )"
         R"(\\|\ \|\ a\|a\ \[a]|[a] [\]]|] [a\-c]|- [\a-\c]|b [\!a]|! [a\]|[a] *|a\b a[\\]b|a\b )"
         R"(*c|a\b\c *|.a)"},
        {0, false,
         R"(|a a| abc|abd abc|abcd abcd|abc ?| ?|ab a*|ba *a|ab a*c|abcb a*b*c|acb *.*|a )"
         R"(*.txt|x.txt.old *ab*ab*ab|ababa *?| ?*?|a [a]|b [a-c]|d [c-a]|b [!a]|a [^a-c]|b [!a]| )"
         R"([!]a]|] [a-]|b [*?]|x [a|a part[1].prt|part[1].prt \*|a \?|a [a\-c]|b *.TXT|x.txt )"
         R"([A-C]|b)"},
        {separates, true, R"(?|/ *\\*|a\b *\*|a* *\\x*\\c|a\xy\c)"},
        {separates, false, R"(?|\ *|a\b *\*|a\b a[\\]b|a\b a[!x]b|a\b *\\c|a\b\c)"},
        {noEscape, true, R"(\*|\x \?|\x [\]|\)"},
        {noEscape, false, R"(\*|* [\-]]|])"},
        {separates | noEscape, true, R"(*\*|a\b *a*\b|xaya\b)"},
        {pointLiteral, true, R"(.*|.a \.a|.a a*|a.b *.b|a.b a\\*|a\.b)"},
        {pointLiteral, false, R"(*|.a ?a|.a [.]a|.a)"},
        {pointLiteral | separates, true, R"(a\\.*|a\.b a\\b?c|a\b.c)"},
        {pointLiteral | separates, false, R"(a\\*|a\.b *\\?b|a\.b)"},
        {ignoreCase, true, R"(*.TXT|x.txt x|X [a-c]|B [A-C]|b \X|x)"},
        {ignoreCase, false, R"([!A-C]|b)"},
    };
    for (auto [flags, match, row] : rows) {
        std::istringstream pairs(row);
        for (std::string pair; pairs >> pair;) {
            size_t bar = pair.find('|');
            EXPECT_EQ(VX::fnmatch(pair.substr(0, bar).c_str(), pair.c_str() + bar + 1, flags) == 0, match)
                << pair << " flags " << flags;
        }
    }
    EXPECT_EQ(VX::fnmatch(nullptr, "a", 0) + VX::fnmatch("a", nullptr, 0), 2);
}

TEST(Match, CharactersOfSeveralBytesAreOne)
{
    {
        test::CodePageScope utf8(65001);
        EXPECT_EQ(VX::fnmatch("[\xC3\xA0-\xC3\xBC]", "\xC3\xA4", 0), 0);
        EXPECT_EQ(VX::fnmatch("*\xC3\x84*", "x\xC3\xA4y", ignoreCase), 0);
        EXPECT_EQ(VX::fnmatch("*\xA4", "\xC3\xA4", 0), 1) << "no match within a character";
    }
    test::CodePageScope japanese(932);
    EXPECT_EQ(VX::fnmatch("\x95\x5C*", "\x95\x5C\x83\x5C", separates), 0) << "neither escapes nor separates";
}

/** What a pattern of letters, "?", "*" and simple brackets means, by trying everything. */
bool naive(const char *p, const char *s)
{
    if (!*p)
        return !*s;
    if (*p == '*')
        return naive(p + 1, s) || (*s && *s != '\\' && naive(p, s + 1));
    if (!*s)
        return false;
    if (*p == '[')
        return (*s == p[1] || *s == p[2]) && *s != '\\' && naive(p + 4, s + 1);
    return (*p == '?' ? *s != '\\' : *p == *s) && naive(p + 1, s + 1);
}

TEST(Match, RandomPatternsMatchAsTryingAllWaysDoes)
{
    test::Random random;
    const char *pieces[] = {"a", "b", "?", "*", "*", "[ab]", "[b\\]", "\\"};
    int matched = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string pattern = random.text(pieces, 0, 7), name = random.text(std::string("aabb\\"), 0, 7);
        bool expected = naive(pattern.c_str(), name.c_str());
        matched += expected;
        ASSERT_EQ(VX::fnmatch(pattern.c_str(), name.c_str(), separates | noEscape) == 0, expected)
            << pattern << " | " << name;
    }
    EXPECT_GT(matched, 100);
}

// Each of these would take longer than the world stands, were all ways tried.
TEST(Match, HostilePatternsEnd)
{
    std::string name(20000, 'a'), stars;
    for (int i = 0; i < 2000; ++i)
        stars += "*a";
    EXPECT_EQ(VX::fnmatch((stars + "b").c_str(), name.c_str(), 0), 1);
    EXPECT_EQ(VX::fnmatch((stars + "*").c_str(), name.c_str(), 0), 0);
    EXPECT_EQ(VX::fnmatch("*a*a*a*a*b", name.c_str(), ignoreCase), 1);
}

}
