#include <clocale>

#include "tests/support/test.h"
#include "tools/vxsh/conditional.h"
#include "tools/vxsh/diagnostic.h"
#include "tools/vxsh/number.h"

using namespace vx;

namespace vxsh {

namespace {

Texts parts(const std::string &formula)
{
    auto split = splitConditional(formula);
    if (!split)
        return {};
    Texts texts;
    for (Span part : {split->condition, split->thenPart, split->elsePart})
        texts.emplace_back(trimmed(std::string_view(formula).substr(part.at, part.length)));
    return texts;
}

}

TEST(Number, hasFifteenDigitsAndAPointInEveryLocale)
{
    std::string kept = std::setlocale(LC_NUMERIC, nullptr);
    ASSERT_TRUE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8")) << "LOCPATH names the locale that the build makes";
    for (auto [number, text] : {std::pair{1.0 / 3, "0.333333333333333"}, {1e15, "1e+15"},
                                {123456789012345, "123456789012345"}, {-2.5e-7, "-2.5e-07"}})
        EXPECT_EQ(formatNumber(number), text);
    EXPECT_EQ(formatCount(1234567), "1,234,567");
    std::setlocale(LC_NUMERIC, kept.c_str());
}

TEST(Number, namesTheBaseUnitOfAnyDimension)
{
    const std::tuple<double, double, double, const char *> cases[] = {
        {0, 0, 0, ""},        {1, 0, 0, "mm"},    {0, 1, 0, "deg"},      {-3, 0, 1, "kg/mm^3"},
        {2, 0, 1, "kg*mm^2"}, {-1, 0, 0, "1/mm"}, {0.5, 0, 0, "mm^0.5"}, {-2, -1, 1, "kg/(mm^2*deg)"}};
    for (const auto &[length, angle, mass, unit] : cases)
        EXPECT_EQ(baseUnit({1, length, angle, mass, 1}), unit);
}

TEST(Diagnostic, showsAWindowOfALongLine)
{
    std::string line = std::string(500, 'a') + "*bad*" + std::string(500, 'z');
    EXPECT_EQ(renderProblem("f", line, 7, {"Wrong.", {501, 3}}),
              "f:7:502: error: Wrong.\n    ..." + std::string(59, 'a') + "*bad*" + std::string(36, 'z') +
                  "...\n       " + std::string(60, ' ') + "^~~\n");
}

TEST(Diagnostic, alignsTheCaretUnderTabsControlAndWideCharacters)
{
    EXPECT_EQ(renderProblem("f", "\ta\x1b[1m = x", 1, {"W", {8, 1}}),
              "f:1:9: error: W\n     a?[1m = x\n            ^\n");
    EXPECT_EQ(renderProblem("f", "\xE5\xB9\x85 = x", 1, {"W", {6, 1}}),
              "f:1:5: error: W\n    \xE5\xB9\x85 = x\n         ^\n");
}

TEST(Diagnostic, staysInTheLineWhateverThePlace)
{
    EXPECT_EQ(renderProblem("f", "ab", 1, {"W", {2, 5}}), "f:1:3: error: W\n    ab\n      ^\n");
    EXPECT_EQ(renderProblem("vxsh", "", 0, {"W", {9, 5}}), "vxsh: error: W\n    \n    ^\n");
}

TEST(Conditional, isSplitAtItsOwnKeywords)
{
    EXPECT_EQ(parts("a THEN b"), (Texts{"a", "b", ""}));
    EXPECT_EQ(parts("a then b then c else d else e"), (Texts{"a", "b then c else d", "e"}));
    EXPECT_EQ(parts("a then b then c else d"), (Texts{"a", "b then c else d", ""}));
    EXPECT_EQ(parts("a then b else c then d else e"), (Texts{"a", "b", "c then d else e"}));
    EXPECT_EQ(parts(" ((a then (b then c) else d)) "), (Texts{"a", "(b then c)", "d"}));
    EXPECT_EQ(parts("[x then y] then \"else\" else z"), (Texts{"[x then y]", "\"else\"", "z"}));
    for (const char *none :
         {"", "a", "(a then b) + 1", "\"then\"", "(a) + (b)", "f(a then b)", ")then(", "(("})
        EXPECT_EQ(parts(none), Texts{}) << none;
}

}
