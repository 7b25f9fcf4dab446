// Formulas at and beyond their limits: depth, length, memory, threads, and how
// failures are told.

#include <pthread.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/expr/formula.h"
#include "tests/support/captured_output.h"
#include "tests/support/faults.h"

using namespace vx;
using namespace vx::test;
using HESKET::Talm::Tool::Evaluation::VxEvalValue;

namespace {

/** Run on a thread whose stack is as small as hosts make them. */
void onSmallStack(std::function<void()> body)
{
    constexpr size_t stackBytes = 256 * 1024;
    auto run = [](void *what) {
        (*static_cast<std::function<void()> *>(what))();
        return static_cast<void *>(nullptr);
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_t thread;
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackBytes), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &body), 0);
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
    CapturedOutput output;
    EXPECT_EQ(VxGenExPrint(parsed.tree), 0U);
    EXPECT_FALSE(output.text().empty());
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
        int levels = 1; ///< that `open` opens
    } forms[] = {{"(", "1", ")"},      {"1+2*(-", "a", ")"},        {"1^", "1", ""},
                 {"1 then ", "1", ""}, {"0 then 1 else ", "1", ""}, {"!(0|0&1<(", "1", "))", 2}};
    for (const auto &form : forms)
        onSmallStack([&form] {
            auto formula = [&form](int count) { return nested(form.open, form.core, form.close, count); };
            const int most = 1000 / form.levels;
            Variables variables({{"a", {1, 0, 0, 0, 1}}});
            EXPECT_EQ(evaluate(formula(most)).error, 0) << form.open;
            for (int tooMany : {most + 1, 100000})
                EXPECT_EQ(parseError(formula(tooMany)), 51) << form.open;
        });
    // Closed levels do not count.
    EXPECT_EQ(parseError("1" + repeated("+(1)^2", 5000)), 0);
}

TEST(Limits, RefusedMemoryLeavesNothingBehind)
{
    // Deep enough that the walks' stacks grow too.
    std::string formula = "max(a,[b c])+2.cm*(" + nested("1+2*(", "-a then \"x\" else 3", ")", 40) + ")";
    refusingEachAllocation([&] {
        Parsed parsed(formula);
        bool refused = fault::refusals(fault::Kind::allocation) > 0;
        EXPECT_EQ(parsed.result, refused ? 1U : 0U);
        EXPECT_EQ(parsed.tree == nullptr, refused);
        EXPECT_EQ(parsed.constant, 0);
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
    for (const auto &evaluation : evaluations)
        failsWhenRefused(fault::Kind::allocation, [&] { return quietly(evaluation); });
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
        std::vector<std::string> told; ///< token, operation, dimensions and texts of its operands, a name
    } cases[] = {
        {"1+(a + 3.kg)*2", "", 83, {"+", "+", "length", "mass", "a", "3.kg", ""}},
        {"density*a^2 < a", "", 83, {"<", "<", "length^-1*mass", "length", "density*a^2", "a", ""}},
        {"2*a.kg", "", 83, {".kg", "unit", "length", "mass", "a", "", ""}},
        {"1+asin(2)", "", 187, {"asin", "asin", "", "", "2", "", ""}},
        {"4/(a-a)", "", 191, {"/", "/", "", "", "4", "(a-a)", ""}},
        {"a+[no one]", "", 81, {"[no one]", "+", "", "", "a", "[no one]", "no one"}},
        {"a*a", "cm", 219, {"*", "*", "length^2", "length", "a", "a", ""}},
        {"1", "smoot", 219, {"1", "", "", "", "1", "", "smoot"}},
        {"1+\"x\"", "", 50, {"\"x\"", "+", "", "", "1", "\"x\"", ""}},
    };
    for (const auto &[text, unit, number, told] : cases) {
        SCOPED_TRACE(text);
        VxExprDiag diag;
        double result = 0;
        ASSERT_EQ(VxExprDiagEval(text, unit, nullptr, nullptr, 1, &result, &diag), 1U);
        auto piece = [whole = std::string(text)](int32_t offset, int32_t length) {
            return whole.substr(static_cast<size_t>(offset), static_cast<size_t>(length));
        };
        EXPECT_EQ(diag.number, number);
        EXPECT_EQ(piece(diag.offset, diag.length), diag.token);
        EXPECT_EQ((std::vector<std::string>{diag.token, diag.operation, diag.left, diag.right,
                                            piece(diag.leftOffset, diag.leftLength),
                                            piece(diag.rightOffset, diag.rightLength), diag.name}),
                  told);
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
