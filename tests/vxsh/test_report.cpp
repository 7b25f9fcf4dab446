#include <clocale>

#include <gtest/gtest.h>

#include "tools/vxsh/conditional.h"
#include "tools/vxsh/diagnostic.h"
#include "tools/vxsh/number.h"

namespace vxsh {

namespace {

std::vector<std::string> parts(const std::string &formula)
{
    auto split = splitConditional(formula);
    if (!split)
        return {};
    std::vector<std::string> texts;
    for (Span part : {split->condition, split->thenPart, split->elsePart})
        texts.emplace_back(trimmed(std::string_view(formula).substr(part.at, part.length)));
    return texts;
}

using Parts = std::vector<std::string>;

}

TEST(Number, hasFifteenDigitsAndAPointInEveryLocale)
{
    const char *old = std::setlocale(LC_NUMERIC, nullptr);
    std::string kept = old ? old : "C";
    ASSERT_TRUE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) << "LOCPATH names the locale that the build makes";
    EXPECT_EQ(formatNumber(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(formatNumber(1e15), "1e+15");
    EXPECT_EQ(formatNumber(123456789012345), "123456789012345");
    EXPECT_EQ(formatNumber(-2.5e-7), "-2.5e-07");
    EXPECT_EQ(formatCount(1234567), "1,234,567");
    std::setlocale(LC_NUMERIC, kept.c_str());
}

TEST(Number, namesTheBaseUnitOfAnyDimension)
{
    const struct {
        double length, angle, mass;
        const char *unit;
    } cases[] = {{0, 0, 0, ""},         {1, 0, 0, "mm"},        {0, 1, 0, "deg"},
                 {-3, 0, 1, "kg/mm^3"}, {2, 0, 1, "kg*mm^2"},   {-1, 0, 0, "1/mm"},
                 {0.5, 0, 0, "mm^0.5"}, {-2, -1, 1, "kg/(mm^2*deg)"}};
    for (const auto &[length, angle, mass, unit] : cases)
        EXPECT_EQ(baseUnit({1, length, angle, mass, 1}), unit);
}

TEST(Diagnostic, showsAWindowOfALongLine)
{
    std::string line = std::string(500, 'a') + "*bad*" + std::string(500, 'z');
    std::string text = renderProblem("f", line, 7, {"Wrong.", {501, 3}});
    EXPECT_EQ(text, "f:7:502: error: Wrong.\n"
                    "    ..." + std::string(59, 'a') + "*bad*" + std::string(36, 'z') + "...\n"
                    "       " + std::string(60, ' ') + "^~~\n");
}

TEST(Diagnostic, alignsTheCaretUnderTabsControlAndWideCharacters)
{
    EXPECT_EQ(renderProblem("f", "\ta\x1b[1m = x", 1, {"W", {8, 1}}), "f:1:9: error: W\n     a?[1m = x\n            ^\n");
    EXPECT_EQ(renderProblem("f", "\xE5\xB9\x85 = x", 1, {"W", {6, 1}}), "f:1:5: error: W\n    \xE5\xB9\x85 = x\n         ^\n");
}

TEST(Diagnostic, staysInTheLineWhateverThePlace)
{
    EXPECT_EQ(renderProblem("f", "ab", 1, {"W", {2, 5}}), "f:1:3: error: W\n    ab\n      ^\n");
    EXPECT_EQ(renderProblem("vxsh", "", 0, {"W", {9, 5}}), "vxsh: error: W\n    \n    ^\n");
}

TEST(Conditional, isSplitAtItsOwnKeywords)
{
    EXPECT_EQ(parts("a THEN b"), (Parts{"a", "b", ""}));
    EXPECT_EQ(parts("a then b then c else d else e"), (Parts{"a", "b then c else d", "e"}));
    EXPECT_EQ(parts("a then b then c else d"), (Parts{"a", "b then c else d", ""}));
    EXPECT_EQ(parts("a then b else c then d else e"), (Parts{"a", "b", "c then d else e"}));
    EXPECT_EQ(parts(" ((a then (b then c) else d)) "), (Parts{"a", "(b then c)", "d"}));
    EXPECT_EQ(parts("[x then y] then \"else\" else z"), (Parts{"[x then y]", "\"else\"", "z"}));
    for (const char *none : {"", "a", "(a then b) + 1", "\"then\"", "(a) + (b)", "f(a then b)", ")then(", "(("})
        EXPECT_EQ(parts(none), Parts{}) << none;
}

}
