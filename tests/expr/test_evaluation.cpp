#include <cmath>
#include <initializer_list>

#include "tests/expr/formula.h"

using namespace vx::test;

namespace {

constexpr VxDimNum lengthInCm = {0.0, 1.0, 0.0, 0.0, 10.0};

/** Evaluate quietly into a record that says what is expected. */
uint32_t evaluateInto(VxDimNum &record, const VsCnsGenOp *tree, void *ctx1 = nullptr, void *ctx2 = nullptr)
{
    return quietly([&] { return VxGenExEvalRcrs(tree, ctx1, ctx2, &record); });
}

/** Its value, the exponents of length, angle and mass, and its factor. */
std::string shown(const VxDimNum &record)
{
    char text[128];
    std::snprintf(text, sizeof text, "%.10g, %.10g %.10g %.10g, %.16g", record.value, record.len_exp,
                  record.ang_exp, record.mass_exp, record.factor);
    return text;
}

struct Case {
    const char *text;
    double expected; ///< value, or number of the error
    const char *unit = "";
};

void expectValues(std::initializer_list<Case> cases)
{
    for (const auto &[text, value, unit] : cases) {
        Outcome outcome = evaluate(text, unit);
        EXPECT_EQ(outcome.error, 0) << text << " in " << unit;
        EXPECT_NEAR(outcome.value, value, 1e-12 * (1.0 + std::fabs(value))) << text << " in " << unit;
    }
}

void expectFailures(std::initializer_list<Case> cases)
{
    for (const auto &[text, error, unit] : cases)
        EXPECT_EQ(evaluate(text, unit).error, error) << text << " in " << unit;
}

TEST(Evaluation, FollowsTheRuleOfEachOperation)
{
    expectValues({
        {"(-8)^(1/3)", -2},        {"0^2", 0},               {"5^0", 1},
        {"2^0.5", std::sqrt(2.0)}, {"(-2)^3", -8},           {"round(-2.5)", -3},
        {"round(2.5)", 3},         {"round(-0.2)", 0},       {"floor(-1.5)", -2},
        {"ceiling(1.2)", 2},       {"mod(2.25)", 0.25},      {"mod(-2.25)", -0.75},
        {"mod2(-7,3)", -1},        {"dec(3.14159,2)", 3.14}, {"dec(1250.5,-2.7)", 1300},
        {"0 then 5", 0},           {"1e-13 then 5 else 6", 6}, {"1=1.0000000000001", 1},
        {"1=1.00001", 0},          {"1&0", 0},               {"1&-2", 1},
        {"0|1e-13", 0},            {"0|3", 1},               {"sqrt(-1e-13)", 0},
        {"log(1000)", 3},          {"exp(0)", 1},            {"cos(60)", 0.5},
        {"tan(45)", 1},            {"sec(60)", 2},           {"csc(30)", 2},
        {"cot(45)", 1},            {"sinh(0)", 0},           {"cosh(0)", 1},
        {"tanh(0)", 0},            {"acos(0.5)", 60},        {"atan(1)", 45},
        {"atan2(1,-1)", 135},      {"sin(asin(0.5))", 0.5},  {"deg(1)", 57.29577951308232},
        {"deg(asin(0.5))", 30},    {"max(2,7)", 7},          {"rad(180)", 3.141592653589793},
        {"min(2,7)", 2},           {"rad(asin(0.5))", 0.5235987755982989},
        {"tan(89.999)", std::tan(89.999 * 0.017453292519943295)},
    });
}

TEST(Evaluation, TakesAnglesInRadiansWhenTheHostDoes)
{
    Variables settings;
    VgCdValIsRad = 1;
    expectValues({{"cos(1.0471975511965976)", 0.5}, {"rad(2)", 2}});
    expectFailures({{"tan(1.5707963267948966)", 186}, {"cot(3.141592653589793)", 190}});
}

TEST(Evaluation, RefusesWhatIsNotDefined)
{
    expectFailures({
        {"tan(90)", 186},   {"tan(-270)", 186},     {"sec(90)", 186},      {"csc(90)", 186},
        {"asin(1.1)", 187}, {"acos(-1.1)", 187},    {"log(0)", 188},       {"ln(1e-12)", 188},
        {"cot(0)", 190},    {"sqrt(-1e-11)", 189},  {"cot(180)", 190},     {"1/1e-13", 191},
        {"0^0", 191},       {"mod2(1,0)", 191},     {"0^-1", 49},          {"0^(-1)", 191},
        {"1+\"a\"", 50},    {"vector(1,2,3)", 50},  {"time()", 50},        {"num2str(2)", 50},
        {"b+1", 81},        {"1 then b else 2", 81}, {"0 then b else 2", 0}, {"Dist(b)", 52},
    });
}

TEST(Dimensions, AreGivenInTheUnitAskedFor)
{
    expectValues({
        {"1.in + 1.cm", 3.54, "cm"},     {"1.cm + 1", 2, "cm"},      {"1.cm + 1", 11},
        {"3", 3, "cm"},                  {"2*3", 6, "mm"},           {"atan2(1,1)", 45, "deg"},
        {"(1+2)*1.cm", 3, "cm"},         {"(1+2)*(3+4)", 21, "cm"},  {"sin(10+20)", 0.5, "cm"},
        {"6/(1+2)", 2, "cm"},            {"3.cm", 30},               {"2.cm*3.cm", 6, "cm^2"},
        {"sqrt(4.cm*9.cm)", 6, "cm"},    {"floor(2.57.cm)", 2, "cm"}, {"floor(2.57)", 2, "cm"},
        {"dec(1.26.in,1)", 1.3, "in"},   {"floor(2.57.cm)", 25},     {"max(3.cm,2.in)", 5.08, "cm"},
        {"max(3.cm,2)", 3, "cm"},        {"abs(-3.cm)", 3, "cm"},    {"0 then 1.cm else 1.in", 25.4, "mm"},
        {"1.cm.mm", 10, "mm"},           {"1.cm<2.in", 1},           {"1.cm>2", 1, "mm"},
        {"1.cm=1.kg", 0},                {"1.cm=10.mm", 1},          {"90.deg+1.rad", 147.29, "deg"},
        {"1 then 1+2", 3, "cm"},
    });
}

TEST(Dimensions, AreRefusedWhereTheyDoNotAgree)
{
    expectFailures({
        {"1.cm + 1.kg", 83},        {"1.cm + 1", 83, "kg"},       {"1.cm < 1.kg", 83},
        {"(1.cm).kg", 83},          {"max(1.cm,1.kg)", 83},       {"1.cm", 219, "kg"},
        {"floor(1.cm)", 219, "kg"}, {"dec(1.cm,1)", 219, "kg"},   {"1.cm*1.cm", 219, "cm"},
        {"1", 219, "bogus"},        {"2.cm*(1.cm+1)", 83, "cm^2"},
    });
}

TEST(Dimensions, AreInTheRecordThatComesBack)
{
    const std::tuple<const char *, VxDimNum, const char *> cases[] = {
        {"3", lengthInCm, "3, 0 0 0, 1"},        {"1+2", lengthInCm, "3, 1 0 0, 10"},
        {"1.cm+2", lengthInCm, "30, 1 0 0, 1"},  {"1.cm+2.cm", plain, "30, 1 0 0, 1"},
        {"2.kg/4.cm", plain, "0.05, -1 0 1, 1"}, {"(2.cm)^3", plain, "8000, 3 0 0, 1"},
        {"sqrt(4.kg)", plain, "2, 0 0 0.5, 1"},
        {"asin(0.5)", plain, "0.5235987756, 0 1 0, 57.29577951308232"},
    };
    for (auto [text, record, expected] : cases) {
        EXPECT_EQ(evaluateInto(record, Parsed(text).tree), 0u) << text;
        EXPECT_EQ(shown(record), expected) << text;
    }
}

TEST(Variables, ComeFromTheHostWithTheirDimension)
{
    Variables variables({{"width", {3, 1, 0, 0, 25.4}}, {"z", {24, 0, 0, 0, 1}}, {"m", {2.5, 1, 0, 0, 1}}});
    expectValues({{"width+1.cm", 86.2, "mm"}, {"(z+2)*m", 65, "mm"}});
    expectFailures({{"width+1.kg", 83}, {"wide", 81}});
}

uint32_t sumOfContexts(const char *, void *ctx1, void *ctx2, VxDimNum *record)
{
    record->value = *static_cast<int *>(ctx1) + *static_cast<int *>(ctx2);
    return 0;
}

TEST(Variables, SeeTheContextsAndTheExpectedRecord)
{
    Variables settings;
    VgfVarGetVal = sumOfContexts;
    int one = 1, two = 2;
    VxDimNum record = lengthInCm;
    EXPECT_EQ(evaluateInto(record, Parsed("a").tree, &one, &two), 0u);
    EXPECT_EQ(shown(record), "3, 1 0 0, 10");
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
    expectValues({{"2.fathom", 3.6576, "m"}, {"3.6576.m", 2, "fathom"}});
    expectFailures({{"2.fathom", 219, "kg"}});
    Parsed parsed("1.fathom");
    VxCbGetUnitConv(nullptr);
    VxDimNum record = plain;
    EXPECT_EQ(evaluateInto(record, parsed.tree), 1U) << "the unit is gone";
}

TEST(Evaluation, LeavesTheResultAloneWhenItFails)
{
    VxDimNum record = lengthInCm;
    EXPECT_EQ(evaluateInto(record, Parsed("1+1/0").tree), 1U);
    EXPECT_EQ(shown(record), shown(lengthInCm));
    double result = 7.0;
    for (const char *text : {"1/0", "1/"})
        EXPECT_EQ(quietly([&] { return VxCharExprEval(text, "cm", nullptr, &result); }), 1U);
    EXPECT_EQ(result, 7.0);
}

TEST(Evaluation, RefusesTreesThatNoParserMakes)
{
    VsCnsGenOp child{}, node{};
    VxDimNum record = plain;
    double derivative;
    node.op = 2;
    for (int32_t argc : {-1, 0, 1, 4})
        for (int32_t kind : {0, 1, 2, 3, 99}) {
            node.argc = argc;
            node.slot[0].kind = kind;
            node.slot[0].value.ptr = kind == 1 && argc == 1 ? &child : nullptr;
            EXPECT_EQ(evaluateInto(record, &node), 1U);
            EXPECT_EQ(quietly([&] { return VxGenDrvEvlRcrs(&node, 1, &derivative); }), 1U);
        }
    EXPECT_EQ(evaluateInto(record, nullptr), 1U);
}

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
    const Case cases[] = { // NAN: there is no derivative
        {"y", 0},                               {"y-x", -1},                    {"x*x", 4},
        {"y/x", -0.75},                         {"x^3", 12},                    {"x*y", 3},
        {"cos(x)", -std::sin(2 * degree)},      {"y^x", 9 * std::log(3.0)},     {"atan(x)", 0.2},
        {"asin(x/4)", 0.25 / std::sqrt(0.75)},  {"exp(x)", std::exp(2.0)},      {"ln(x)", 0.5},
        {"acos(x/4)", -0.25 / std::sqrt(0.75)}, {"deg(x)", 2 / degree},         {"abs(-x)", 1},
        {"log(x)", 1 / (2 * std::log(10.0))},   {"rad(x)", 2 * degree},         {"floor(x+0.7)", 2},
        {"sqrt(x)", 0.5 / std::sqrt(2.0)},      {"x>5 then x^2 else x*y", 3},   {"round(x+0.7)", 3},
        {"sin(x*x)", std::cos(4 * degree) * 4}, {"sin(x)", std::cos(2 * degree)}, {"tan(90)+x", NAN},
        {"tan(1.5707963267948966+0*x)", NAN},   {"asin(1+0*x)", NAN},           {"ln(0*x)", NAN},
        {"unknown*x", NAN},                     {"y/(x-2)", NAN},               {"(0*x)^2", NAN},
        {"sqrt(0*x)", NAN},                     {"abs(0*x)", NAN},              {"x<y", NAN},
        {"tan(x)", 1 / std::pow(std::cos(2 * degree), 2)}, {"x.cm", NAN},       {"\"x\"", NAN},
    };
    for (const Case &c : cases) {
        Parsed parsed(c.text);
        ASSERT_NE(parsed.tree, nullptr) << c.text;
        numberVariables(parsed.tree);
        double derivative = 99.0;
        quietly([&] { return VxGenDrvEvlRcrs(parsed.tree, 1, &derivative); });
        EXPECT_NEAR(derivative, std::isnan(c.expected) ? 99.0 : c.expected, 1e-9) << c.text;
    }
}

}
