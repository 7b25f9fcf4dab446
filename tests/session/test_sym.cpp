#include "vx/sym.h"

#include "session/symbols.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/error_log.h"

using namespace vx;

namespace {

/** Gives the process's symbols a fresh start, and again to whoever comes after. */
struct SymbolTable : test::StartedToolkit {
    SymbolTable() { session::symbols() = {}; }
    ~SymbolTable() override
    {
        os::setTestMemoryStatus(nullptr);
        session::symbols() = {};
    }
};

TEST_F(SymbolTable, ResetBringsBackTheLastRegistrationWhereTheVariableStands)
{
    int32_t place = 1;
    for (auto [name, value] : {std::pair{"n", 2}, {"n", 3}, {"bound", 4}})
        VxSymLogInt(name, value);
    session::symbols().ints.table.find("bound")->bound = &place;
    EXPECT_EQ(VxSymGetInt("bound"), 1);
    EXPECT_EQ(VxSymSetInt("n", -5) + VxSymSetInt("bound", 6), 2);
    EXPECT_TRUE(VxSymGetInt("n") == -5 && place == 6);
    EXPECT_EQ(VxSymGlobalReset(), 0u);
    EXPECT_TRUE(VxSymGetInt("n") == 3 && place == 4);
}

TEST_F(SymbolTable, APlainVariablePublishedByAddressIsTheLastResort)
{
    int32_t global = 1;
    VxSymLog("g", &global);
    EXPECT_EQ(VxSymGetInt("g"), 1);
    EXPECT_EQ(VxSymSetInt("g", 2), 1);
    VxSymGlobalReset();
    EXPECT_EQ(global, 2) << "a reset is for variables only";
    VxSymLogInt("g", 3);
    VxSymSetInt("g", 4);
    EXPECT_EQ(global, 2) << "the variable hides the address";
}

TEST_F(SymbolTable, AnUnknownNameIsReportedByAllExceptTheTryingReader)
{
    int32_t before, after, warnings, others;
    VxErrStatus(&before, &warnings, &others);
    VxSymLogInt("Abc", 1);
    VxSymLog("nowhere", nullptr);
    for (const char *name : {"abc", "Ab", "Abcd", "", "nowhere"}) {
        int32_t value = 7;
        EXPECT_EQ(VxSymTryGetInt(name, &value) + VxSymGetInt(name) + VxSymSetInt(name, 1) + value, 0) << name;
    }
    VxErrStatus(&after, &warnings, &others);
    EXPECT_EQ(after, before + 2 * 5);
    EXPECT_TRUE(reported(66)) << "the others are repeats";
}

TEST_F(SymbolTable, AHookThatAnswersHidesTheTableAndOneThatDoesNotFallsThrough)
{
    static double taken;
    static int32_t answer;
    VxSymLogDbl("n", 0.1);
    VxSymSetDblGetter([](const char *name, double *value) {
        *value = std::string(name) == "n" ? 2.5 : -1e300;
        return answer;
    });
    VxSymSetDblSetter([](const char *, double value) {
        taken = value;
        return answer;
    });
    for (int32_t answering : {1, 0}) {
        SCOPED_TRACE(answering);
        answer = answering;
        double value = 0;
        EXPECT_EQ(VxSymGetDbl("n"), answer ? 2.5 : 0.1);
        EXPECT_EQ(VxSymTryGetDbl("unknown", &value), answer);
        EXPECT_EQ(value, answer ? -1e300 : 0.0) << "what a refusing hook wrote is dropped";
        EXPECT_EQ(VxSymSetDbl("n", 7.5), 1);
        EXPECT_EQ(taken, 7.5);
    }
    VxSymSetDblGetter(nullptr);
    VxSymSetDblSetter(nullptr);
    EXPECT_EQ(VxSymGetDbl("n"), 7.5) << "the refusing hook let the last set through";
    VxSymGlobalReset();
    EXPECT_EQ(VxSymGetDbl("n"), 0.1);
}

template <int32_t answer> int32_t answers()
{
    return answer;
}

TEST_F(SymbolTable, LoggingOffForgetsTheFunctionButNoVariableAndNoTest)
{
    VxSymLogInt("f", 5);
    VxSymLogTestFcn("f", answers<1>);
    VxSymLogFcn("f", answers<1>);
    VxSymLogFcn("f", answers<2>);
    EXPECT_EQ(VxSymGetFcn("f"), answers<2>);
    VxSymLogOff("f");
    EXPECT_TRUE(!VxSymGetFcnNoErr("f") && VxErrCnt() == 0);
    EXPECT_TRUE(!VxSymGetFcn("f") && reported(66));
    EXPECT_EQ(VxSymGetInt("f"), 5);
    EXPECT_EQ(VxSymGetTestFcn("f"), answers<1>);
}

TEST_F(SymbolTable, GetTellsAvailabilityApartFromTheAddress)
{
    int32_t variable = 0;
    auto expectGet = [](uint32_t result, void *address) {
        void *out = &result;
        EXPECT_EQ(VxSymGet("v", &out), result);
        EXPECT_EQ(out, address);
    };
    VxSymLog("v", &variable);
    expectGet(2, &variable);
    VxSymLog2("v", 0xFEDCBA9876543210u);
    VxSymLog2("v", 1);
    EXPECT_EQ(*session::symbols().availability.find("v"), 0xFEDCBA9876543210u) << "the first one counts";
    expectGet(0, &variable);
    VxSymLogOff("v");
    expectGet(2, nullptr);
}

int32_t logsMoreTests()
{
    for (int i = 0; i < 100; ++i)
        VxSymLogTestFcn(("more " + std::to_string(i)).c_str(), answers<1>);
    return 1;
}

TEST_F(SymbolTable, EveryTestRunsOnceAndItsOutcomeGoesToTheEventLog)
{
    VxSymLogTestFcn("bad", answers<0>);
    VxSymLogTestFcn("more", logsMoreTests);
    VxSymLogTestFcn("none", nullptr);
    VxSymLogTestFcn("100%s", answers<-1>);
    test::RecordedEvents recorded;
    VxSymExecAllTestFcns();
    using Events = std::vector<test::RecordedEvents::Event>;
    EXPECT_EQ(recorded.events, (Events{{5, "Tools", "[Fail] bad"}, {1, "Tools", "[Pass] more"},
                                       {5, "Tools", "[Fail] none"}, {1, "Tools", "[Pass] 100%s"}}));
    EXPECT_EQ(session::symbols().tests.size(), 104u);
}

TEST_F(SymbolTable, TheUserIsWarnedBelowEachLimitOfMemory)
{
    constexpr uint64_t mebi = 1 << 20;
    auto shownWith = [](uint64_t total, uint64_t available) {
        os::MemoryStatus status{total, available, 1000 * mebi + mebi / 2, 0};
        os::setTestMemoryStatus(&status);
        test::CapturedOutput output;
        VxCheckMemory();
        return output.text();
    };
    EXPECT_EQ(shownWith(768 * mebi, 128 * mebi), "");
    EXPECT_THAT(shownWith(768 * mebi - 1, 128 * mebi), HasSubstr("1001 MB.\n"));
    EXPECT_THAT(shownWith(768 * mebi, 128 * mebi - 1), HasSubstr("Less than 128 MB"));
}

TEST_F(SymbolTable, EveryEleventhAvailableSymbolChecksTheMemory)
{
    static const os::MemoryStatus little{768 << 20, 0, 0, 0};
    os::setTestMemoryStatus(&little);
    VxSymLog2("command", 1);
    void *out;
    std::string pattern;
    for (int i = 0; i < 24; ++i) {
        test::CapturedOutput output;
        VxSymGet("missing", &out); // does not count
        VxSymGet("command", &out);
        pattern += output.text().empty() ? '.' : '*';
    }
    EXPECT_EQ(pattern, "*..........*..........*.");
}

}
