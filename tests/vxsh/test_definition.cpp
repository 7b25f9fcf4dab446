#include "tests/support/test.h"
#include "tools/vxsh/definition.h"
#include "tools/vxsh/name_scan.h"
#include "tools/vxsh/parameter_file.h"

using namespace vx;

namespace vxsh {

namespace {

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

Texts namesIn(std::string_view formula)
{
    Texts names;
    for (const NameToken &token : nameTokens(formula))
        names.emplace_back(token.name);
    return names;
}

}

TEST(Definition, isTakenApartAtTheFirstEqualsAndTheLastColonBeforeIt)
{
    const char *cases[][5] = {
        {"  pitch diameter :\tmm =  a = b : c \t", "pitch diameter", "mm", "a = b : c", "pitch diameter"},
        {"rate 1:2 : kg/m^3 = 1", "rate 1:2", "kg/m^3", "1", "rate 1:2"},
        {"[$x] = 1", "x", "", "1", "[$x]"},
        {"[rate 1:2]: cm = 1", "rate 1:2", "cm", "1", "[rate 1:2]"},
        {"[a] [b] = 1", "[a] [b]", "", "1", "[a] [b]"}, // these brackets do not enclose it
    };
    for (auto [line, name, unit, formula, written] : cases) {
        Definition d = read(line);
        EXPECT_THAT((std::tuple(d.name, d.unit, d.formula())), testing::FieldsAre(name, unit, formula));
        EXPECT_EQ(d.line.substr(d.nameAt.at, d.nameAt.length), written);
        EXPECT_EQ(d.line.substr(d.unitAt.at, d.unitAt.length), unit);
    }
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
