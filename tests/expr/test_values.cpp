#include <gmock/gmock.h>

#include "platform/os/test_values.h"
#include "tests/expr/formula.h"
#include "tests/support/captured_output.h"
#include "tests/support/code_page.h"

using namespace vx;
using namespace vx::test;
using namespace HESKET::Talm::Tool::Evaluation;

namespace {

std::string shown(const VxEvalValue &value)
{
    char text[128] = "";
    if (const auto *number = boost::get<double>(&value))
        std::snprintf(text, sizeof text, "%.10g", *number);
    else if (const auto *vector = boost::get<TsVector>(&value))
        std::snprintf(text, sizeof text, "V %g %g %g", vector->x(), vector->y(), vector->z());
    else if (const auto *point = boost::get<TsPoint>(&value))
        std::snprintf(text, sizeof text, "P %g %g %g", point->x(), point->y(), point->z());
    else
        return '\'' + boost::get<std::string>(value) + '\'';
    return text;
}

/** The value of a formula, or the number of its failure in parentheses. */
std::string valueOf(const std::string &text)
{
    VxDimNum number = plain;
    VxEvalValue value;
    VxExprDiag diag;
    if (VxExprDiagEvalValue(text.c_str(), nullptr, nullptr, 1, &number, &value, &diag) == 0)
        return shown(value);
    return '(' + std::to_string(diag.number) +
           (*diag.left ? std::string(" ") + diag.left + ' ' + diag.right : "") + ')';
}

using Case = std::pair<const char *, const char *>;

void expectValues(std::initializer_list<Case> cases)
{
    for (auto [text, expected] : cases)
        EXPECT_EQ(valueOf(text), expected) << text;
}

TEST(Values, CombineByTheirKinds)
{
    expectValues({
        {"vector(1,2,3)+vector(1,1,1)", "V 2 3 4"}, {"vector(1,2,3)-vector(1,1,1)", "V 0 1 2"},
        {"point(1,2,3)+vector(1,1,1)", "P 2 3 4"},  {"vector(1,2,3)*vector(2,3,4)", "V 2 6 12"},
        {"point(1,2,3)-vector(1,1,1)", "P 0 1 2"},  {"point(1,2,3)-point(1,1,1)", "V 0 1 2"},
        {"2*vector(1,2,3)", "V 2 4 6"},             {"vector(1,2,3)*2", "V 2 4 6"},
        {"-vector(1,2,3)", "V -1 -2 -3"},           {"vector(2,4,6)/2", "V 1 2 3"},
        {"vector(1,2,3)/0", "V inf inf inf"},       {"\"a\"+\"b\"+\"c\"", "'abc'"},
        {"1/0", "inf"},                             {"vector(1.cm,2*3,0)", "V 10 6 0"},
        {"1+vector(1,2,3)", "(80 Number Vector)"},  {"point(1,2,3)+point(1,2,3)", "(80 Point Point)"},
        {"1/vector(1,2,3)", "(80 Number Vector)"},  {"vector(1,2,3)+point(1,2,3)", "(80 Vector Point)"},
        {"\"a\"-\"b\"", "(80 String String)"},      {"1+\"a\"", "(80 Number String)"},
        {"1.cm+1.kg", "(83 length mass)"},          {"vector(1,\"a\",3)", "(50)"},
        {"sin(\"a\")", "(50)"},                     {"unknown+vector(1,2,3)", "(81)"},
    });
}

TEST(Values, OfTextFunctions)
{
    expectValues({
        {"num2str(1/3)", "'0.3333333'"},       {"num2str(2.cm)", "'20'"},
        {"\"d=\"+num2str(1e10)", "'d=1e+10'"}, {"substr(\"abcdef\",2,3)", "'cde'"},
        {"substr(\"abc\",1,9)", "'bc'"},       {"substr(\"abc\",9,1)", "''"},
        {"substr(\"abc\",,2)", "'ab'"},        {"substr(\"a\"+\"bc\",1,1)", "'b'"},
        {"substr(\"abc\",1+1,1)", "(50)"},     {"substr(5,1,1)", "(50)"},
    });
    for (int32_t page : {932, 936, 949, 950, 65001}) {
        CodePageScope scope(page);
        const std::string wide = page == 65001 ? "\xE3\x81\x82" : page == 932 ? "\x83\x5C" : "\xB0\xA1";
        EXPECT_EQ(valueOf("substr(\"a" + wide + "b\",1,1)"), '\'' + wide + '\'') << page;
    }
}

TEST(Values, OfTheClock)
{
    os::setTestClock(1'795'000'000'000'000);
    EXPECT_THAT(valueOf("time()"), testing::MatchesRegex("'..:..:40'"));
    EXPECT_THAT(valueOf("date()"), testing::MatchesRegex("'2026/11/1[89]'"));
    os::setTestClock(-1);
}

uint32_t supplyObject(const char *name, VxEvalValue *value)
{
    std::string asked = name;
    if (asked == "v")
        *value = TsVector(1, 2, 3);
    else if (asked == "n")
        *value = 4.0;
    else if (asked == "Dist(Pnt(edge 1))" || asked == "Ang(3)")
        *value = 12.5;
    else
        return 1;
    return 0;
}

TEST(Values, OfVariablesComeAsObjectsFirst)
{
    Variables numbers({{"n", {9, 0, 0, 0, 1}}, {"w", {2, 0, 0, 0, 1}}});
    VxCbVarGetValObj(supplyObject);
    expectValues({{"v*w", "V 2 4 6"}, {"n", "4"}, {"n+sin(w-w)", "4"}, {"x", "(81)"}});
}

TEST(Values, OfGeometryComeFromTheHost)
{
    Variables numbers;
    VxCbVarGetValObj(supplyObject);
    for (auto [text, expected] :
         {Case{"Dist(Pnt(edge 1))*2", "25"}, {"Ang(1+2)", "12.5"}, {"Dir(v)", "refused"}}) {
        Parsed parsed(text, true);
        VxDimNum number = plain;
        VxEvalValue value;
        const bool failed = quietly([&] { return VxGenExEval(parsed.tree, &number, &value); });
        EXPECT_EQ(failed ? "refused" : shown(value), expected) << text;
    }
}

TEST(Values, LeaveTheNumberOneBesideOtherKinds)
{
    VxDimNum number = {7, 1, 0, 0, 10};
    VxEvalValue value;
    ASSERT_EQ(VxGenExEval(Parsed("vector(1,2,3)").tree, &number, &value), 0U);
    EXPECT_EQ(number.value, 1.0);
}

TEST(Printing, ShowsEachNodeOnALineOfItsDepth)
{
    for (auto [text, expected] : {Case{"", "Parse Tree Empty.\n"}, Case{"a", "EVAL a\n"},
                                  Case{"asin(a)*(b-1).cm", "*\n[1]arcSin a\n[1]unit\n[2]- b 1.000000 cm\n"},
                                  Case{"a then \"x\" else b+1", "if a _then x _else\n[1]+ b 1.000000\n"}}) {
        CapturedOutput output;
        VxGenExPrint(Parsed(text).tree);
        EXPECT_EQ(output.text(), expected) << text;
    }
    VsCnsGenOp node{};
    node.op = 99;
    node.argc = 1;
    CapturedOutput output;
    VxGenExPrint(&node);
    node.argc = 7;
    VxGenExPrint(&node);
    EXPECT_EQ(output.text(), " Invalid_OpTyp Invalid_Primary\nInvalid Operation.\n\n");
}

}
