// Formulas at and beyond their limits: depth, length, memory, threads, and how
// failures are told.

#include <pthread.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/os/fault.h"
#include "tests/expr/formula.h"
#include "tests/support/faults.h"
#include "vx/diagnose.hpp"
#include "vx/eval.hpp"
#include "vx/parse.hpp"

using namespace vx;
using namespace vx::test;
using HESKET::Talm::Tool::Evaluation::VxEvalValue;

namespace {

void *runBody(void *body)
{
    (*static_cast<std::function<void()> *>(body))();
    return nullptr;
}

/** Run on a thread whose stack is as small as hosts make them. */
void onSmallStack(std::function<void()> body)
{
    constexpr size_t stackBytes = 256 * 1024;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackBytes), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, runBody, &body), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

std::string repeated(const std::string &piece, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

std::string nested(const std::string &open, const std::string &core, const std::string &close, int count)
{
    return repeated(open, count) + core + repeated(close, count);
}

/** Everything that walks a tree, over one formula. */
void walkAll(const std::string &text, double expected)
{
    Variables variables({{"a", {1, 0, 0, 0, 1}}});
    Parsed parsed(text);
    ASSERT_EQ(parsed.result, 0U);
    VxDimNum record = plain;
    EXPECT_EQ(VxGenExEvalRcrs(parsed.tree, nullptr, nullptr, &record), 0U);
    EXPECT_EQ(record.value, expected);
    VxEvalValue value;
    record = plain;
    EXPECT_EQ(VxGenExEval(parsed.tree, &record, &value), 0U);
    EXPECT_EQ(boost::get<double>(value), expected);
    double derivative;
    EXPECT_EQ(VxGenDrvEvlRcrs(parsed.tree, 1, &derivative), 0U);
    testing::internal::CaptureStdout();
    EXPECT_EQ(VxGenExPrint(parsed.tree), 0U);
    EXPECT_FALSE(testing::internal::GetCapturedStdout().empty());
}

TEST(Limits, ALongChainIsNoNesting)
{
    onSmallStack([] {
        walkAll("a" + repeated("+1", 100000), 100001);
        walkAll("a" + repeated("*1", 100000), 1);
    });
}

TEST(Limits, AThousandLevelsMayBeOpen)
{
    const struct {
        const char *open, *core, *close;
        int levels; ///< that `open` opens
    } forms[] = {{"(", "1", ")", 1},      {"1+2*(-", "a", ")", 1},        {"1^", "1", "", 1},
                 {"1 then ", "1", "", 1}, {"0 then 1 else ", "1", "", 1}, {"!(0|0&1<(", "1", "))", 2}};
    for (const auto &form : forms)
        onSmallStack([&] {
            auto formula = [&form](int count) { return nested(form.open, form.core, form.close, count); };
            Variables variables({{"a", {1, 0, 0, 0, 1}}});
            EXPECT_EQ(evaluate(formula(1000 / form.levels)).error, 0) << form.open;
            EXPECT_EQ(parseError(formula(1000 / form.levels + 1)), 51) << form.open;
            EXPECT_EQ(parseError(formula(100000)), 51) << form.open;
        });
    // Closed levels do not count.
    EXPECT_EQ(parseError("1" + repeated("+(1)^2", 5000)), 0);
}

TEST(Limits, RefusedMemoryLeavesNothingBehind)
{
    // Deep enough that the walks' stacks grow too.
    std::string formula = "max(a,[b c])+2.cm*(" + nested("1+2*(", "-a then \"x\" else 3", ")", 40) + ")";
    refusingEachAllocation([&] {
        VsCnsGenOp *tree = nullptr;
        int32_t constant = 7;
        VxErrDisable();
        uint32_t result = VxParseGeEx(formula.c_str(), &constant, &tree);
        VxErrEnable();
        bool refused = fault::refusals(fault::Kind::allocation) > 0;
        EXPECT_EQ(result, refused ? 1U : 0U);
        EXPECT_EQ(tree == nullptr, refused);
        EXPECT_EQ(constant, 0);
        VxGenExFree(&tree);
    });
}

TEST(Limits, RefusedMemoryFailsAnEvaluation)
{
    Variables variables({{"a", {1, 0, 0, 0, 1}}});
    Parsed parsed(nested("1+2*(", "a", ")", 60));
    VxDimNum record = plain;
    VxEvalValue value;
    VxExprDiag diag;
    double number;
    const std::function<uint32_t()> evaluations[] = {
        [&] { return VxGenExEvalRcrs(parsed.tree, nullptr, nullptr, &(record = plain)); },
        [&] { return VxGenExEval(parsed.tree, &(record = plain), &value); },
        [&] { return VxGenDrvEvlRcrs(parsed.tree, 1, &number); },
        [&] { return VxExprDiagEval("max(a,2)+3.cm", "cm", nullptr, nullptr, 1, &number, &diag); }};
    VxErrDisable();
    for (const auto &evaluation : evaluations)
        refusingEachAllocation([&] {
            const uint32_t failed = evaluation();
            EXPECT_EQ(failed, fault::refusals(fault::Kind::allocation) > 0) << &evaluation - evaluations;
        });
    VxErrEnable();
}

TEST(Limits, RefusedMemoryCutsAListOfNamesShort)
{
    refusingEachAllocation([] {
        std::vector<std::string> names = VxParseVarInquire("a+[a name that needs memory of its own]+c");
        EXPECT_EQ(names.size() == 3, fault::refusals(fault::Kind::allocation) == 0);
    });
}

TEST(Threads, ParseAndEvaluateAtOnce)
{
    Variables variables({{"a", {2, 0, 0, 0, 1}}, {"b", {3, 1, 0, 0, 10}}});
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int n = 0; n < 8; ++n)
        threads.emplace_back([&wrong, n] {
            for (int run = 0; run < 300; ++run) {
                std::string number = std::to_string(n * 1000 + run);
                Outcome good = evaluate("max(a*" + number + ",0).mm+b-b", "mm");
                wrong += good.error != 0 || good.value != 2.0 * (n * 1000 + run);
                wrong += evaluate("b+" + number + ".kg").error != 83;
                wrong += parseError("(" + number) != 48;
                wrong += VxParseVarInquire("a+b").size() != 2;
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(Diagnosis, TellsTheOperationItsOperandsAndTheirDimensions)
{
    Variables variables({{"a", {3, 1, 0, 0, 10}}, {"density", {1, -3, 0, 1, 1}}});
    const struct {
        const char *text, *unit;
        int32_t number;
        const char *token, *operation, *left, *right, *leftText, *rightText, *name;
    } cases[] = {
        {"1+(a + 3.kg)*2", "", 83, "+", "+", "length", "mass", "a", "3.kg", ""},
        {"density*a^2 < a", "", 83, "<", "<", "length^-1*mass", "length", "density*a^2", "a", ""},
        {"2*a.kg", "", 83, ".kg", "unit", "length", "mass", "a", "", ""},
        {"1+asin(2)", "", 187, "asin", "asin", "", "", "2", "", ""},
        {"4/(a-a)", "", 191, "/", "/", "", "", "4", "(a-a)", ""},
        {"a+[no one]", "", 81, "[no one]", "+", "", "", "a", "[no one]", "no one"},
        {"a*a", "cm", 219, "*", "*", "length^2", "length", "a", "a", ""},
        {"1", "smoot", 219, "1", "", "", "", "1", "", "smoot"},
        {"1+\"x\"", "", 50, "\"x\"", "+", "", "", "1", "\"x\"", ""},
    };
    for (const auto &c : cases) {
        VxExprDiag diag;
        double result = 0;
        ASSERT_EQ(VxExprDiagEval(c.text, c.unit, nullptr, nullptr, 1, &result, &diag), 1U) << c.text;
        std::string text = c.text;
        auto piece = [&](int32_t offset, int32_t length) {
            return text.substr(static_cast<size_t>(offset), static_cast<size_t>(length));
        };
        SCOPED_TRACE(text);
        EXPECT_EQ(diag.number, c.number);
        EXPECT_STREQ(diag.token, c.token);
        EXPECT_EQ(piece(diag.offset, diag.length), c.token);
        EXPECT_STREQ(diag.operation, c.operation);
        EXPECT_STREQ(diag.left, c.left);
        EXPECT_STREQ(diag.right, c.right);
        EXPECT_EQ(piece(diag.leftOffset, diag.leftLength), c.leftText);
        EXPECT_EQ(piece(diag.rightOffset, diag.rightLength), c.rightText);
        EXPECT_STREQ(diag.name, c.name);
    }
}

TEST(Diagnosis, WritesADimensionWithoutMemory)
{
    const VxDimNum record = {1, -1.5, 1, 2, 1};
    char text[48];
    fault::refuseFrom(fault::Kind::allocation, 1);
    EXPECT_EQ(VxExprDimText(&record, text, sizeof text), 0U);
    fault::refuse(fault::Kind::allocation, 0);
    EXPECT_STREQ(text, "length^-1.5*angle*mass^2");
    EXPECT_EQ(VxExprDimText(&plain, text, 14), 0U);
    EXPECT_EQ(VxExprDimText(&plain, text, 13), 1U);
}

}
