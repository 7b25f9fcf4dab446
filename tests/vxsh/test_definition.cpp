#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/vxsh/definition.h"
#include "tools/vxsh/name_scan.h"
#include "tools/vxsh/parameter_file.h"

namespace vxsh {

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string cut(const std::string &line, Span span)
{
    return line.substr(span.at, span.length);
}

Definition read(const std::string &line)
{
    Definition definition;
    auto problem = readDefinition(line, definition);
    EXPECT_FALSE(problem) << line << ": " << (problem ? problem->message : "");
    return definition;
}

Problem problemOf(const std::string &line)
{
    Definition definition;
    auto problem = readDefinition(line, definition);
    EXPECT_TRUE(problem) << line;
    EXPECT_EQ(definition.line, line) << "the line is kept for the message";
    return problem.value_or(Problem{});
}

std::vector<std::string> namesIn(std::string_view formula)
{
    std::vector<std::string> names;
    for (const NameToken &token : nameTokens(formula))
        names.emplace_back(token.name);
    return names;
}

}

TEST(Definition, isTakenApartAtTheFirstEqualsAndTheLastColonBeforeIt)
{
    Definition d = read("  pitch diameter :\tmm =  a = b : c \t");
    EXPECT_EQ(d.name, "pitch diameter");
    EXPECT_EQ(d.unit, "mm");
    EXPECT_EQ(d.formula(), "a = b : c");
    EXPECT_EQ(cut(d.line, d.nameAt), "pitch diameter");
    EXPECT_EQ(cut(d.line, d.unitAt), "mm");

    EXPECT_EQ(read("rate 1:2 : kg/m^3 = 1").name, "rate 1:2");
}

TEST(Definition, takesBracketsOffTheNameAndLeavesColonsInThemAlone)
{
    EXPECT_EQ(read("[$x] = 1").name, "x");
    Definition d = read("[rate 1:2]: cm = 1");
    EXPECT_EQ(d.name, "rate 1:2");
    EXPECT_EQ(d.unit, "cm");
    EXPECT_EQ(read("[a] [b] = 1").name, "[a] [b]") << "these brackets do not enclose it";
}

TEST(Definition, refusesNamesThatNoFormulaCouldReferTo)
{
    EXPECT_EQ(read(std::string(longestName, 'n') + " = 1").name.size(), longestName);
    EXPECT_THAT(problemOf(std::string(longestName + 1, 'n') + " = 1").message, HasSubstr("1023 bytes"));
}

TEST(Definition, isToldFromAFormulaByItsName)
{
    for (const char *line : {"a = 1", "a:mm=1", "my var = 1", "[a+b] = 1", "= 1", ": mm = 1"})
        EXPECT_TRUE(looksLikeDefinition(line)) << line;
    for (const char *line : {"", "a", "a + b", "(a = 1)", "1 = 1", "2*a = 3", "[a] + 1 = 2", "sin(a) = 1"})
        EXPECT_FALSE(looksLikeDefinition(line)) << line;
}

TEST(NameScan, findsNamesAsFormulasHoldThem)
{
    EXPECT_THAT(namesIn("my var +1*[a + b]"), ElementsAre("my var", "a + b"));
    EXPECT_THAT(namesIn("\"text with words\" + p.x + 1e5 + len.cm + 2.in"), ElementsAre("p.x", "len"));
    EXPECT_THAT(namesIn("a>b THEN c else d"), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(namesIn("lengthen"), ElementsAre("leng")) << "then divides wherever it stands";
    EXPECT_THAT(namesIn("[a[\"]\"]b] + [open"), ElementsAre("a[\"]\"]b", "open"));
}

TEST(NameScan, placesTheFirstReferenceOrElseTheWholeFormula)
{
    EXPECT_EQ(placeOfName("ab + a", "a").at, 5u);
    EXPECT_EQ(placeOfName("1 + [a b]", "a b").length, 5u);
    EXPECT_EQ(placeOfName("1 + 2", "a").length, 5u);
}

TEST(NameScan, writesBracketsOnlyWhereANameNeedsThem)
{
    EXPECT_EQ(asReference("face width 2"), "face width 2");
    for (const char *name : {"a+b", "2x", "strengthen", "p.cm", "a, b", "a:b", "\"q\""})
        EXPECT_EQ(asReference(name), "[" + std::string(name) + "]");
}

TEST(ParameterFile, refusesOverlongLinesAndGoesOn)
{
    std::string longest = "a = " + std::string(longestLine - 5, ' ') + "1";
    ParameterFile file = readParameters(longest + "\n" + longest + "1\nc = 3\n");
    ASSERT_EQ(file.definitions.size(), 2u);
    EXPECT_EQ(file.definitions[1].name, "c");
    ASSERT_EQ(file.refused.size(), 1u);
    EXPECT_THAT(file.refused[0].problem.message, HasSubstr("longer than 1048576 bytes"));
    EXPECT_LT(file.refused[0].definition.line.size(), 100u) << "it is not kept whole";
}

}
