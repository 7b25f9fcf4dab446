#include <clocale>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "tests/expr/formula.h"

using namespace vx::test;

namespace {

constexpr VxDimNum lengthInCm = {0.0, 1.0, 0.0, 0.0, 10.0};

/** The record that a formula evaluates to when `expected` is asked for. */
VxDimNum recordOf(const std::string &text, VxDimNum expected = plain)
{
    Parsed parsed(text);
    VxErrDisable();
    uint32_t result = VxGenExEvalRcrs(parsed.tree, nullptr, nullptr, &expected);
    VxErrEnable();
    return result == 0 ? expected : VxDimNum{NAN, 0, 0, 0, 0};
}

void expectRecord(const VxDimNum &record, const VxDimNum &expected, const char *text)
{
    EXPECT_NEAR(record.value, expected.value, 1e-9) << text;
    EXPECT_DOUBLE_EQ(record.len_exp, expected.len_exp) << text;
    EXPECT_DOUBLE_EQ(record.ang_exp, expected.ang_exp) << text;
    EXPECT_DOUBLE_EQ(record.mass_exp, expected.mass_exp) << text;
    EXPECT_DOUBLE_EQ(record.factor, expected.factor) << text;
}

TEST(Evaluation, FollowsTheRuleOfEachOperation)
{
    struct Case {
        const char *text;
        double value;
    };
    const Case cases[] = {
        {"(-8)^(1/3)", -2},              {"(-8)^2", 64},                  {"0^2", 0},
        {"5^0", 1},                      {"2^0.5", std::sqrt(2.0)},       {"(-2)^3", -8},
        {"round(-2.5)", -3},             {"round(2.5)", 3},               {"round(-0.2)", 0},
        {"floor(-1.5)", -2},             {"ceiling(1.2)", 2},             {"mod(2.25)", 0.25},
        {"mod(-2.25)", -0.75},           {"mod2(-7,3)", -1},              {"dec(3.14159,2)", 3.14},
        {"dec(1250.5,-2.7)", 1300},      {"1 then 5 else 6", 5},          {"0 then 5", 0},
        {"0 then 5 else 6", 6},          {"1e-13 then 5 else 6", 6},      {"1<2", 1},
        {"2<1", 0},                      {"2>1", 1},                      {"1=1.0000000000001", 1},
        {"1=1.00001", 0},                {"1&0", 0},                      {"1&-2", 1},
        {"0|1e-13", 0},                  {"0|3", 1},                      {"!0", 1},
        {"!3", 0},                       {"sqrt(16)", 4},                 {"sqrt(-1e-13)", 0},
        {"log(1000)", 3},                {"ln(1)", 0},                    {"exp(0)", 1},
        {"sin(30)", 0.5},                {"cos(60)", 0.5},                {"tan(45)", 1},
        {"sec(60)", 2},                  {"csc(30)", 2},                  {"cot(45)", 1},
        {"sinh(0)", 0},                  {"cosh(0)", 1},                  {"tanh(0)", 0},
        {"asin(0.5)", 30},               {"acos(0.5)", 60},               {"atan(1)", 45},
        {"atan2(1,-1)", 135},            {"sin(asin(0.5))", 0.5},         {"deg(1)", 57.29577951308232},
        {"deg(asin(0.5))", 30},          {"rad(180)", 3.141592653589793}, {"abs(-3)", 3},
        {"max(2,7)", 7},                 {"min(2,7)", 2},
        {"rad(asin(0.5))", 0.5235987755982989},
        {"tan(89.999)", std::tan(89.999 * 0.017453292519943295)},
    };
    for (const Case &c : cases) {
        Outcome outcome = evaluate(c.text);
        EXPECT_EQ(outcome.error, 0) << c.text;
        EXPECT_NEAR(outcome.value, c.value, 1e-12 * (1.0 + std::fabs(c.value))) << c.text;
    }
}

TEST(Evaluation, RefusesWhatIsNotDefined)
{
    struct Case {
        const char *text;
        int32_t error;
    };
    const Case cases[] = {
        {"tan(90)", 186},        {"tan(450)", 186},     {"tan(-270)", 186},
        {"sec(90)", 186},        {"csc(90)", 186},      {"asin(1.1)", 187},
        {"acos(-1.1)", 187},     {"log(0)", 188},       {"ln(-1)", 188},
        {"ln(1e-12)", 188},      {"sqrt(-1e-11)", 189}, {"cot(180)", 190},
        {"cot(0)", 190},         {"1/0", 191},          {"1/1e-13", 191},
        {"mod2(1,0)", 191},      {"0^0", 191},          {"0^-1", 49},
        {"0^(-1)", 191},         {"1+\"a\"", 50},       {"vector(1,2,3)", 50},
        {"time()", 50},          {"num2str(2)", 50},    {"b+1", 81},
        {"1 then b else 2", 81},
    };
    for (const Case &c : cases)
        EXPECT_EQ(evaluate(c.text).error, c.error) << c.text;
    EXPECT_EQ(evaluate("0 then b else 2").error, 0) << "only the branch taken is evaluated";
    EXPECT_EQ(evaluate("Dist(b)").error, 52) << "geometry is not known here";
}

TEST(Evaluation, TakesRadiansWhenTheHostSaysSo)
{
    Variables settings;
    VgCdValIsRad = 1;
    EXPECT_NEAR(evaluate("sin(1)").value, std::sin(1.0), 1e-15);
    EXPECT_EQ(evaluate("tan(1.5707963267948966)").error, 186);
    EXPECT_EQ(evaluate("rad(2)").value, 2.0);
}

TEST(Dimensions, AreGivenInTheUnitAskedFor)
{
    struct Case {
        const char *text, *unit;
        double value;
    };
    const Case cases[] = {
        {"1.in + 1.cm", "cm", 3.54},             {"1.cm + 1", "cm", 2},
        {"1.cm + 1", "", 11},                    {"3", "cm", 3},
        {"2*3", "mm", 6},                        {"1+2", "cm", 3},
        {"atan2(1,1)", "deg", 45},               {"(1+2)*1.cm", "cm", 3},
        {"(1+2)*(3+4)", "cm", 21},               {"sin(10+20)", "cm", 0.5},
        {"6/(1+2)", "cm", 2},                    {"1-3", "in", -2},
        {"3.cm", "", 30},                        {"2.cm*3.cm", "cm^2", 6},
        {"2.cm*3.cm", "mm^2", 600},              {"sqrt(4.cm*9.cm)", "cm", 6},
        {"floor(2.57.cm)", "cm", 2},             {"floor(2.57)", "cm", 2},
        {"dec(1.26.in,1)", "in", 1.3},           {"floor(2.57.cm)", "", 25},
        {"max(3.cm,2.in)", "cm", 5.08},          {"max(3.cm,2)", "cm", 3},
        {"abs(-3.cm)", "cm", 3},                 {"1>2 then 1.cm else 1.in", "mm", 25.4},
        {"1.cm.mm", "mm", 10},                   {"1.cm<2.in", "", 1},
        {"1.cm>2", "mm", 1},                     {"1.cm=1.kg", "", 0},
        {"1.cm=10.mm", "", 1},                   {"90.deg+1.rad", "deg", 147.29},
        {"1 then 1+2", "cm", 3},
    };
    for (const Case &c : cases) {
        Outcome outcome = evaluate(c.text, c.unit);
        EXPECT_EQ(outcome.error, 0) << c.text << " in " << c.unit;
        EXPECT_NEAR(outcome.value, c.value, 1e-9) << c.text << " in " << c.unit;
    }
}

TEST(Dimensions, AreRefusedWhereTheyDoNotAgree)
{
    struct Case {
        const char *text, *unit;
        int32_t error;
    };
    const Case cases[] = {
        {"1.cm + 1.kg", "", 83},    {"1.cm + 1", "kg", 83},        {"1.cm < 1.kg", "", 83},
        {"(1.cm).kg", "", 83},      {"max(1.cm,1.kg)", "", 83},    {"1.cm", "kg", 219},
        {"floor(1.cm)", "kg", 219}, {"dec(1.cm,1)", "kg", 219},    {"1.cm*1.cm", "cm", 219},
        {"1", "bogus", 219},        {"2.cm*(1.cm+1)", "cm^2", 83},
    };
    for (const Case &c : cases)
        EXPECT_EQ(evaluate(c.text, c.unit).error, c.error) << c.text << " in " << c.unit;
}

TEST(Dimensions, AreInTheRecordThatComesBack)
{
    struct Case {
        const char *text;
        VxDimNum expected, record;
    };
    const Case cases[] = {
        {"3", lengthInCm, {3, 0, 0, 0, 1}},        {"1+2", lengthInCm, {3, 1, 0, 0, 10}},
        {"1.cm+2", lengthInCm, {30, 1, 0, 0, 1}},  {"1.cm+2.cm", plain, {30, 1, 0, 0, 1}},
        {"2.kg/4.cm", plain, {0.05, -1, 0, 1, 1}}, {"(2.cm)^3", plain, {8000, 3, 0, 0, 1}},
        {"sqrt(4.kg)", plain, {2, 0, 0, 0.5, 1}},
        {"asin(0.5)", plain, {0.52359877559829, 0, 1, 0, 57.29577951308232}},
    };
    for (const Case &c : cases)
        expectRecord(recordOf(c.text, c.expected), c.record, c.text);
}

TEST(Dimensions, OfUnitClasses)
{
    const VxDimNum plainRecord = {7, 0, 0, 0, 5};
    const std::pair<int32_t, VxDimNum> classes[] = {
        {-1, plainRecord},      {1, plainRecord},       {2, {7, 1, 0, 0, 5}},  {3, {7, 0, 1, 0, 5}},
        {4, {7, 0, 0, 1, 5}},   {5, {7, -3, 0, 1, 5}},  {6, {7, 2, 0, 0, 5}},  {7, {7, 3, 0, 0, 5}},
        {8, {7, 2, 0, 1, 5}},   {9, plainRecord}};
    for (const auto &[unitClass, expected] : classes) {
        VxDimNum record = {7, 9, 9, 9, 5};
        EXPECT_EQ(VxGenExEvalUnit(unitClass, &record), 0U);
        expectRecord(record, expected, std::to_string(unitClass).c_str());
    }
}

TEST(Variables, ComeFromTheHostWithTheirDimension)
{
    Variables variables({{"width", {3, 1, 0, 0, 25.4}}, {"z", {24, 0, 0, 0, 1}}, {"m", {2.5, 1, 0, 0, 1}}});
    EXPECT_NEAR(evaluate("width+1.cm", "mm").value, 86.2, 1e-9);
    EXPECT_NEAR(evaluate("(z+2)*m", "mm").value, 65, 1e-9);
    EXPECT_EQ(evaluate("width+1.kg").error, 83);
    EXPECT_EQ(evaluate("wide").error, 81);
}

uint32_t expectingContexts(const char *, void *ctx1, void *ctx2, VxDimNum *record)
{
    record->value = *static_cast<int *>(ctx1) + *static_cast<int *>(ctx2);
    return 0;
}

TEST(Variables, SeeTheContextsAndTheExpectedRecord)
{
    Variables settings;
    VgfVarGetVal = expectingContexts;
    int one = 1, two = 2;
    Parsed parsed("a");
    VxDimNum record = lengthInCm;
    ASSERT_EQ(VxGenExEvalRcrs(parsed.tree, &one, &two, &record), 0U);
    expectRecord(record, {3, 1, 0, 0, 10}, "a");
}

uint32_t fathoms(const char *unit, double *factor, int32_t *unitClass)
{
    if (std::string(unit) != "fathom")
        return 1;
    *factor = 1828.8;
    if (unitClass)
        *unitClass = 2;
    return 0;
}

TEST(Units, OfTheHostComeFirst)
{
    Variables settings;
    VxCbGetUnitConv(fathoms);
    EXPECT_NEAR(evaluate("2.fathom", "m").value, 3.6576, 1e-12);
    EXPECT_NEAR(evaluate("3.6576.m", "fathom").value, 2.0, 1e-12);
    EXPECT_EQ(evaluate("2.fathom", "kg").error, 219);
    Parsed parsed("1.fathom");
    VxCbGetUnitConv(nullptr);
    VxDimNum record = plain;
    VxErrDisable();
    EXPECT_EQ(VxGenExEvalRcrs(parsed.tree, nullptr, nullptr, &record), 1U) << "the unit is gone";
    VxErrEnable();
}

TEST(Evaluation, LeavesTheResultAloneWhenItFails)
{
    Parsed parsed("1+1/0");
    VxDimNum record = lengthInCm;
    double result = 7.0;
    VxErrDisable();
    EXPECT_EQ(VxGenExEvalRcrs(parsed.tree, nullptr, nullptr, &record), 1U);
    EXPECT_EQ(VxCharExprEval("1/0", "cm", nullptr, &result), 1U);
    EXPECT_EQ(VxCharExprEval("1/", "cm", nullptr, &result), 1U);
    VxErrEnable();
    expectRecord(record, lengthInCm, "1+1/0");
    EXPECT_EQ(result, 7.0);
}

TEST(Evaluation, RefusesTreesThatNoParserMakes)
{
    VsCnsGenOp child{};
    VsCnsGenOp node{};
    VxErrDisable();
    for (int32_t argc : {-1, 0, 4})
        for (int32_t kind : {0, 1, 2, 3, 99}) {
            node.op = 2;
            node.argc = argc;
            node.slot[0].kind = kind;
            VxDimNum record = plain;
            EXPECT_EQ(VxGenExEvalRcrs(&node, nullptr, nullptr, &record), 1U);
            double derivative;
            EXPECT_EQ(VxGenDrvEvlRcrs(&node, 1, &derivative), 1U);
        }
    node.argc = 1;
    node.slot[0].kind = 1;
    node.slot[0].value.ptr = &child;
    VxDimNum record = plain;
    EXPECT_EQ(VxGenExEvalRcrs(&node, nullptr, nullptr, &record), 1U);
    EXPECT_EQ(VxGenExEvalRcrs(nullptr, nullptr, nullptr, &record), 1U);
    VxErrEnable();
}

TEST(Evaluation, DoesNotDependOnTheLocale)
{
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(evaluate("1.5+2.25e1").value, 24.0);
    EXPECT_EQ(evaluate("1.23456789012345678901").value, 1.23456789012345678901);
    std::setlocale(LC_ALL, "C");
}

// ---------------------------------------------------------------- derivatives

/** Number the variables of a tree: x is 1, every other one 2. */
void numberVariables(VsCnsGenOp *tree)
{
    for (int32_t i = 0; i < tree->argc; ++i) {
        VsCnsGenSlot &slot = tree->slot[i];
        if (slot.kind == 1)
            numberVariables(static_cast<VsCnsGenOp *>(slot.value.ptr));
        if (slot.kind == 2)
            slot.flag = std::string(static_cast<const char *>(slot.value.ptr)) == "x" ? 1 : 2;
    }
}

TEST(Derivative, FollowsTheRuleOfEachOperation)
{
    Variables variables({{"x", {2, 0, 0, 0, 1}}, {"y", {3, 0, 0, 0, 1}}, {"t", {0.5, 0, 0, 0, 1}}});
    const double degree = 0.017453292519943295;
    struct Case {
        const char *text;
        double value; ///< NAN: there is no derivative
    };
    const Case cases[] = {
        {"x", 1},                               {"y", 0},
        {"7", 0},                               {"x+y", 1},
        {"y-x", -1},                            {"x*x", 4},
        {"x*y", 3},                             {"y/x", -0.75},
        {"x^3", 12},                            {"y^x", 9 * std::log(3.0)},
        {"sin(x)", std::cos(2 * degree)},       {"cos(x)", -std::sin(2 * degree)},
        {"asin(x/4)", 0.25 / std::sqrt(0.75)},  {"acos(x/4)", -0.25 / std::sqrt(0.75)},
        {"atan(x)", 0.2},                       {"log(x)", 1 / (2 * std::log(10.0))},
        {"ln(x)", 0.5},                         {"exp(x)", std::exp(2.0)},
        {"sqrt(x)", 0.5 / std::sqrt(2.0)},      {"abs(-x)", 1},
        {"floor(x+0.7)", 2},                    {"round(x+0.7)", 3},
        {"deg(x)", 2 / degree},                 {"rad(x)", 2 * degree},
        {"x>1 then x^2 else y", 4},             {"x>5 then x^2 else x*y", 3},
        {"-x", -1},                             {"sin(x*x)", std::cos(4 * degree) * 4},
        {"tan(90)+x", NAN},                     {"asin(1+0*x)", NAN},
        {"ln(0*x)", NAN},                       {"sqrt(0*x)", NAN},
        {"abs(0*x)", NAN},                      {"y/(x-2)", NAN},
        {"(0*x)^2", NAN},                       {"x<y", NAN},
        {"max(x,y)", NAN},                      {"x.cm", NAN},
        {"sinh(x)", NAN},                       {"!x", NAN},
        {"\"x\"", NAN},                         {"unknown*x", NAN},
        {"tan(1.5707963267948966+0*x)", NAN},
        {"tan(x)", 1 / std::pow(std::cos(2 * degree), 2)},
    };
    for (const Case &c : cases) {
        Parsed parsed(c.text);
        ASSERT_NE(parsed.tree, nullptr) << c.text;
        numberVariables(parsed.tree);
        double derivative = 99.0;
        VxErrDisable();
        uint32_t result = VxGenDrvEvlRcrs(parsed.tree, 1, &derivative);
        VxErrEnable();
        EXPECT_EQ(result, std::isnan(c.value) ? 1U : 0U) << c.text;
        EXPECT_NEAR(derivative, std::isnan(c.value) ? 99.0 : c.value, 1e-9) << c.text;
    }
}

}
