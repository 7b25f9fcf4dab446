#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "platform/os/test_values.h"
#include "tests/expr/formula.h"
#include "tests/support/captured_output.h"
#include "tests/support/code_page.h"
#include "vx/diagnose.hpp"
#include "vx/eval.hpp"

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

struct Case {
    const char *text;
    const char *expected;
};

TEST(Values, CombineByTheirKinds)
{
    const Case cases[] = {
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
    };
    for (const Case &c : cases)
        EXPECT_EQ(valueOf(c.text), c.expected) << c.text;
}

TEST(Values, OfTextFunctions)
{
    const Case cases[] = {
        {"num2str(1/3)", "'0.3333333'"},       {"num2str(2.cm)", "'20'"},
        {"\"d=\"+num2str(1e10)", "'d=1e+10'"}, {"substr(\"abcdef\",2,3)", "'cde'"},
        {"substr(\"abc\",1,9)", "'bc'"},       {"substr(\"abc\",9,1)", "''"},
        {"substr(\"abc\",,2)", "'ab'"},        {"substr(\"a\"+\"bc\",1,1)", "'b'"},
        {"substr(\"abc\",1+1,1)", "(50)"},     {"substr(5,1,1)", "(50)"},
    };
    for (const Case &c : cases)
        EXPECT_EQ(valueOf(c.text), c.expected) << c.text;
    for (int32_t page : {932, 936, 949, 950, 65001}) {
        CodePageScope scope(page);
        std::string wide = page == 65001 ? "\xE3\x81\x82" : "\xB0\xA1";
        if (page == 932)
            wide = "\x83\x5C";
        EXPECT_EQ(valueOf("substr(\"a" + wide + "b\",1,1)"), '\'' + wide + '\'') << page;
    }
}

TEST(Values, OfTheClock)
{
    os::setTestClock(1'795'000'000'000'000);
    EXPECT_TRUE(std::regex_match(valueOf("time()"), std::regex("'\\d\\d:\\d\\d:40'"))) << valueOf("time()");
    EXPECT_TRUE(std::regex_match(valueOf("date()"), std::regex("'2026/11/1[89]'"))) << valueOf("date()");
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
    EXPECT_EQ(valueOf("v*w"), "V 2 4 6");
    EXPECT_EQ(valueOf("n"), "4");
    EXPECT_EQ(valueOf("n+sin(w-w)"), "4");
    EXPECT_EQ(valueOf("x"), "(81)");
}

TEST(Values, OfGeometryComeFromTheHost)
{
    Variables numbers;
    VxCbVarGetValObj(supplyObject);
    for (const Case &c :
         {Case{"Dist(Pnt(edge 1))*2", "25"}, Case{"Ang(1+2)", "12.5"}, Case{"Dir(v)", "refused"}}) {
        Parsed parsed(c.text, true);
        VxDimNum number = plain;
        VxEvalValue value;
        VxErrDisable();
        uint32_t result = VxGenExEval(parsed.tree, &number, &value);
        VxErrEnable();
        EXPECT_EQ(result == 0 ? shown(value) : "refused", c.expected) << c.text;
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
    auto printed = [](const char *text) {
        CapturedOutput output;
        VxGenExPrint(Parsed(text).tree);
        return output.text();
    };
    EXPECT_EQ(printed(""), "Parse Tree Empty.\n");
    EXPECT_EQ(printed("a"), "EVAL a\n");
    EXPECT_EQ(printed("asin(a)*(b-1).cm"), "*\n[1]arcSin a\n[1]unit\n[2]- b 1.000000 cm\n");
    EXPECT_EQ(printed("a then \"x\" else b+1"), "if a _then x _else\n[1]+ b 1.000000\n");
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
