#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/code_page.h"
#include "vx/posix.hpp"

using namespace vx;

namespace {

enum { separates = 1, noEscape = 2, pointLiteral = 4, ignoreCase = 16 };

TEST(Match, Patterns)
{
    const struct {
        const char *pattern, *name;
        int32_t flags;
        bool matches;
    } cases[] = {
        {"", "", 0, true},
        {"", "a", 0, false},
        {"a", "", 0, false},
        {"abc", "abc", 0, true},
        {"abc", "abd", 0, false},
        {"abc", "abcd", 0, false},
        {"abcd", "abc", 0, false},
        // "?"
        {"?", "a", 0, true},
        {"?", "", 0, false},
        {"?", "ab", 0, false},
        {"a?c", "abc", 0, true},
        {"a?c", "a?c", 0, true},
        {"??", "ab", 0, true},
        {"?", "\\", 0, true},
        {"?", "\\", separates, false},
        {"?", "/", separates, true},
        // "*"
        {"*", "", 0, true},
        {"*", "abc", 0, true},
        {"**", "abc", 0, true},
        {"a*", "a", 0, true},
        {"a*", "ba", 0, false},
        {"*a", "ba", 0, true},
        {"*a", "ab", 0, false},
        {"*a*", "bab", 0, true},
        {"a*c", "abcbc", 0, true},
        {"a*c", "abcb", 0, false},
        {"a*b*c", "aXbYbZc", 0, true},
        {"a*b*c", "acb", 0, false},
        {"*.*", "a", 0, false},
        {"*.*", "a.b.c", 0, true},
        {"*.txt", "x.txt", 0, true},
        {"*.txt", "x.txt.old", 0, false},
        {"*ab*ab*ab", "abababab", 0, true},
        {"*ab*ab*ab", "ababa", 0, false},
        {"*?", "", 0, false},
        {"?*?", "ab", 0, true},
        {"?*?", "a", 0, false},
        // brackets
        {"[a]", "a", 0, true},
        {"[a]", "b", 0, false},
        {"[abc]", "c", 0, true},
        {"[a-c]", "b", 0, true},
        {"[a-c]", "d", 0, false},
        {"[c-a]", "b", 0, false},
        {"[a-cx-z]", "y", 0, true},
        {"[a-c]*[0-9]", "bend7", 0, true},
        {"[!a]", "b", 0, true},
        {"[!a]", "a", 0, false},
        {"[^a]", "b", 0, true},
        {"[^a-c]", "b", 0, false},
        {"[!a]", "", 0, false},
        {"[a!]", "!", 0, true},
        {"[a^]", "^", 0, true},
        {"[]a]", "]", 0, true},
        {"[]a]", "a", 0, true},
        {"[!]a]", "]", 0, false},
        {"[!]a]", "b", 0, true},
        {"[a-]", "-", 0, true},
        {"[-a]", "-", 0, true},
        {"[a-]", "b", 0, false},
        {"[[]", "[", 0, true},
        {"[*?]", "*", 0, true},
        {"[*?]", "x", 0, false},
        {"[", "[", 0, true},
        {"[a", "[a", 0, true},
        {"[a", "a", 0, false},
        {"[]", "[]", 0, true},
        {"x[!", "x[!", 0, true},
        {"*[", "ab[", 0, true},
        {"part[1].prt", "part1.prt", 0, true},
        {"part[1].prt", "part[1].prt", 0, false},
        {"[[", "[[", 0, true},
        // escapes
        {"\\*", "*", 0, true},
        {"\\*", "a", 0, false},
        {"\\?", "a", 0, false},
        {"\\a", "a", 0, true},
        {"\\\\", "\\", 0, true},
        {"\\", "\\", 0, true},
        {"a\\", "a\\", 0, true},
        {"\\[a]", "[a]", 0, true},
        {"[\\]]", "]", 0, true},
        {"[a\\-c]", "b", 0, false},
        {"[a\\-c]", "-", 0, true},
        {"[\\a-\\c]", "b", 0, true},
        {"[\\!a]", "!", 0, true},
        {"[a\\]", "[a]", 0, true},
        {"\\*", "\\x", noEscape, true},
        {"\\*", "*", noEscape, false},
        {"\\?", "\\x", noEscape, true},
        {"[\\]", "\\", noEscape, true},
        {"[\\-]]", "]", noEscape, false},
        // the separator
        {"*", "a\\b", 0, true},
        {"*", "a\\b", separates, false},
        {"*\\\\*", "a\\b", separates, true},
        {"*\\*", "a\\b", separates | noEscape, true},
        {"*\\*", "a\\b", separates, false},
        {"*\\*", "a*", separates, true},
        {"a[\\\\]b", "a\\b", 0, true},
        {"a[\\\\]b", "a\\b", separates, false},
        {"a[!x]b", "a\\b", separates, false},
        {"*\\\\x*\\\\c", "a\\xy\\c", separates, true},
        {"*\\\\c", "a\\b\\c", separates, false},
        {"*c", "a\\b\\c", 0, true},
        {"*a*\\b", "xaya\\b", separates | noEscape, true},
        // points
        {"*", ".a", 0, true},
        {"*", ".a", pointLiteral, false},
        {".*", ".a", pointLiteral, true},
        {"?a", ".a", pointLiteral, false},
        {"[.]a", ".a", pointLiteral, false},
        {"\\.a", ".a", pointLiteral, true},
        {"a*", "a.b", pointLiteral, true},
        {"*.b", "a.b", pointLiteral, true},
        {"a\\\\*", "a\\.b", pointLiteral, true},
        {"a\\\\*", "a\\.b", pointLiteral | separates, false},
        {"a\\\\.*", "a\\.b", pointLiteral | separates, true},
        {"*\\\\?b", "a\\.b", pointLiteral | separates, false},
        {"a\\\\b?c", "a\\b.c", pointLiteral | separates, true},
        // case
        {"*.TXT", "x.txt", ignoreCase, true},
        {"*.TXT", "x.txt", 0, false},
        {"x", "X", ignoreCase, true},
        {"[a-c]", "B", ignoreCase, true},
        {"[A-C]", "b", ignoreCase, true},
        {"[!A-C]", "b", ignoreCase, false},
        {"[A-C]", "b", 0, false},
        {"\\X", "x", ignoreCase, true},
    };
    for (const auto &c : cases)
        EXPECT_EQ(VX::fnmatch(c.pattern, c.name, c.flags), c.matches ? 0 : 1)
            << "pattern " << c.pattern << " name " << c.name << " flags " << c.flags;
    EXPECT_EQ(VX::fnmatch(nullptr, "a", 0) + VX::fnmatch("a", nullptr, 0), 2);
}

TEST(Match, CharactersOfSeveralBytesAreOne)
{
    {
        test::CodePageScope utf8(65001);
        EXPECT_EQ(VX::fnmatch("?", "\xC3\xA4", 0), 0);
        EXPECT_EQ(VX::fnmatch("[\xC3\xA0-\xC3\xBC]", "\xC3\xA4", 0), 0);
        EXPECT_EQ(VX::fnmatch("[\xC3\xA0-\xC3\xA2]", "\xC3\xA4", 0), 1);
        EXPECT_EQ(VX::fnmatch("*\xC3\x84*", "x\xC3\xA4y", ignoreCase), 0);
        EXPECT_EQ(VX::fnmatch("*\xA4", "\xC3\xA4", 0), 1) << "no match within a character";
    }
    // 0x5C as the second byte neither escapes nor separates.
    test::CodePageScope japanese(932);
    EXPECT_EQ(VX::fnmatch("\x95\x5C*", "\x95\x5C\x83\x5C", separates), 0);
    EXPECT_EQ(VX::fnmatch("?", "\x95\x5C", separates), 0);
    EXPECT_EQ(VX::fnmatch("[\x95\x5C]x", "\x95\x5Cx", 0), 0);
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
    auto seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const char *pieces[] = {"a", "b", "?", "*", "*", "[ab]", "[b\\]", "\\"};
    int matched = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string pattern;
        std::string name;
        for (auto n = random() % 8; n > 0; --n)
            pattern += pieces[random() % 8];
        for (auto n = random() % 8; n > 0; --n)
            name += "aabb\\"[random() % 5];
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
    std::string name(20000, 'a');
    std::string stars;
    std::string open;
    for (int i = 0; i < 2000; ++i) {
        stars += "*a";
        open += "*[";
    }
    EXPECT_EQ(VX::fnmatch((stars + "b").c_str(), name.c_str(), 0), 1);
    EXPECT_EQ(VX::fnmatch((stars + "*").c_str(), name.c_str(), 0), 0);
    EXPECT_EQ(VX::fnmatch((open + "\\]").c_str(), std::string(20000, '[').c_str(), 0), 1);
    EXPECT_EQ(VX::fnmatch("*a*a*a*a*b", name.c_str(), ignoreCase), 1);
}

}
