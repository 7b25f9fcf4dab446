#include "vx/sym.h"

#include <new>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "session/symbols.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/error_log.h"
#include "tests/support/faults.h"

using namespace vx;
using testing::HasSubstr;

namespace {

/** Gives the process's symbols a fresh start, and again to whoever comes after. */
class SymbolTable : public test::StartedToolkit {
protected:
    void SetUp() override
    {
        StartedToolkit::SetUp();
        session::symbols() = {};
    }
    void TearDown() override
    {
        os::setTestMemoryStatus(nullptr);
        session::symbols() = {};
        StartedToolkit::TearDown();
    }
};

int32_t errorsCounted()
{
    int32_t errors = 0, warnings = 0, others = 0;
    VxErrStatus(&errors, &warnings, &others);
    return errors;
}

/** The functions for one type of variables under one name, with three values of it. */
struct Integers {
    using Type = int32_t;
    static constexpr auto log = VxSymLogInt;
    static constexpr auto get = VxSymGetInt;
    static constexpr auto tryGet = VxSymTryGetInt;
    static constexpr auto set = VxSymSetInt;
    static constexpr auto setGetter = VxSymSetIntGetter;
    static constexpr auto setSetter = VxSymSetIntSetter;
    static constexpr auto variables = &session::Symbols::ints;
    static constexpr Type a = 3, b = 7, c = -2147483647 - 1;
};

struct Reals {
    using Type = double;
    static constexpr auto log = VxSymLogDbl;
    static constexpr auto get = VxSymGetDbl;
    static constexpr auto tryGet = VxSymTryGetDbl;
    static constexpr auto set = VxSymSetDbl;
    static constexpr auto setGetter = VxSymSetDblGetter;
    static constexpr auto setSetter = VxSymSetDblSetter;
    static constexpr auto variables = &session::Symbols::reals;
    static constexpr Type a = 0.1, b = -1e300, c = 2.5;
};

template <typename F> class Variables : public SymbolTable {
};
using BothTypes = testing::Types<Integers, Reals>;
TYPED_TEST_SUITE(Variables, BothTypes);

TYPED_TEST(Variables, ResetBringsBackTheLastRegistrationWhereTheVariableStands)
{
    using F = TypeParam;
    typename F::Type place = F::c;
    F::log("n", F::b);
    F::log("n", F::a);
    F::log("bound", F::a);
    (session::symbols().*F::variables).table.find("bound")->bound = &place;
    EXPECT_EQ(F::get("bound"), F::c);
    EXPECT_EQ(F::set("n", F::b) + F::set("bound", F::b), 2);
    EXPECT_EQ(F::get("n"), F::b);
    EXPECT_EQ(place, F::b);
    EXPECT_EQ(VxSymGlobalReset(), 0u);
    EXPECT_EQ(F::get("n"), F::a);
    EXPECT_EQ(place, F::a);
}

TYPED_TEST(Variables, APlainVariablePublishedByAddressIsTheLastResort)
{
    using F = TypeParam;
    typename F::Type global = F::a;
    VxSymLog("g", &global);
    EXPECT_EQ(F::get("g"), F::a);
    EXPECT_EQ(F::set("g", F::b), 1);
    VxSymGlobalReset();
    EXPECT_EQ(global, F::b) << "a reset is for variables only";
    F::log("g", F::c);
    F::set("g", F::a);
    EXPECT_EQ(global, F::b) << "the variable hides the address";
}

TYPED_TEST(Variables, AnUnknownNameIsReportedByAllExceptTheTryingReader)
{
    using F = TypeParam;
    typename F::Type value = F::b;
    F::log("Abc", F::a);
    VxSymLog("nowhere", nullptr);
    for (const char *name : {"abc", "Ab", "Abcd", "", "nowhere"}) {
        SCOPED_TRACE(name);
        int32_t before = errorsCounted();
        EXPECT_EQ(F::tryGet(name, &value), 0);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(errorsCounted(), before);
        EXPECT_EQ(F::get(name), 0);
        EXPECT_EQ(F::set(name, F::a), 0);
        EXPECT_EQ(errorsCounted(), before + 2);
    }
    EXPECT_TRUE(VxErrIsLogged(VxToolsErrID(), 66));
}

TYPED_TEST(Variables, AHookThatAnswersHidesTheTableAndOneThatDoesNotFallsThrough)
{
    using F = TypeParam;
    using T = typename F::Type;
    static T taken;
    static int32_t answer;
    F::log("n", F::a);
    F::setGetter([](const char *name, T *value) {
        *value = std::string(name) == "n" ? F::c : F::b;
        return answer;
    });
    F::setSetter([](const char *, T value) {
        taken = value;
        return answer;
    });
    for (int32_t answering : {1, 0}) {
        SCOPED_TRACE(answering);
        answer = answering;
        T value = 0;
        EXPECT_EQ(F::get("n"), answer ? F::c : F::a);
        EXPECT_EQ(F::tryGet("unknown", &value), answer);
        EXPECT_EQ(value, answer ? F::b : T{}) << "what a refusing hook wrote is dropped";
        EXPECT_EQ(F::set("n", F::b), 1);
        EXPECT_EQ(taken, F::b);
    }
    F::setGetter(nullptr);
    F::setSetter(nullptr);
    EXPECT_EQ(F::get("n"), F::b) << "the refusing hook let the last set through";
}

int32_t one()
{
    return 1;
}

int32_t two()
{
    return 2;
}

TEST_F(SymbolTable, LoggingOffForgetsTheFunctionButNoVariableAndNoTest)
{
    VxSymLogInt("f", 5);
    VxSymLogTestFcn("f", one);
    VxSymLogFcn("f", one);
    VxSymLogFcn("f", two);
    EXPECT_EQ(VxSymGetFcn("f"), two);
    VxSymLogOff("f");
    VxSymLogOff("f");
    EXPECT_EQ(VxSymGetFcnNoErr("f"), nullptr);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VxSymGetFcn("f"), nullptr);
    EXPECT_TRUE(reported(66));
    EXPECT_EQ(VxSymGetInt("f"), 5);
    EXPECT_EQ(VxSymGetTestFcn("f"), one);
}

TEST_F(SymbolTable, GetTellsAvailabilityApartFromTheAddress)
{
    int32_t variable = 0;
    auto expectGet = [](uint32_t result, void *address) {
        void *out = &result;
        EXPECT_EQ(VxSymGet("v", &out), result);
        EXPECT_EQ(out, address);
    };
    expectGet(2, nullptr);
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
        VxSymLogTestFcn(("more " + std::to_string(i)).c_str(), one);
    return 1;
}

TEST_F(SymbolTable, EveryTestRunsOnceAndItsOutcomeGoesToTheEventLog)
{
    VxSymLogTestFcn("bad", [] { return 0; });
    VxSymLogTestFcn("more", logsMoreTests);
    VxSymLogTestFcn("none", nullptr);
    VxSymLogTestFcn("100%s", [] { return -1; });
    test::RecordedEvents recorded;
    VxSymExecAllTestFcns();
    std::string told;
    for (const auto &event : recorded.events)
        told += std::to_string(event.level) + ' ' + event.text + '\n';
    EXPECT_EQ(told, "5 [Fail] bad\n1 [Pass] more\n5 [Fail] none\n1 [Pass] 100%s\n");
    EXPECT_EQ(session::symbols().tests.size(), 104u);
}

TEST_F(SymbolTable, TheUserIsWarnedBelowEachLimitOfMemory)
{
    constexpr uint64_t mebi = 1 << 20;
    const os::MemoryStatus enough{768 * mebi, 128 * mebi, 0, 0};
    auto shownByCheck = [](const os::MemoryStatus &status) {
        os::setTestMemoryStatus(&status);
        test::CapturedOutput output;
        EXPECT_EQ(VxCheckMemory(), 0u);
        return output.text();
    };
    EXPECT_EQ(shownByCheck(enough), "");
    os::MemoryStatus small = enough, little = enough;
    small.totalVirtual -= 1;
    small.totalPageFile = 1000 * mebi + mebi / 2;
    EXPECT_THAT(shownByCheck(small), HasSubstr("1001 MB.\n"));
    little.availableVirtual -= 1;
    EXPECT_THAT(shownByCheck(little), HasSubstr("Less than 128 MB"));
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
        EXPECT_EQ(VxSymGet("missing", &out), 2u);
        pattern += output.text().empty() ? "" : "early ";
        EXPECT_EQ(VxSymGet("command", &out), 0u);
        pattern += output.text().empty() ? '.' : '*';
    }
    EXPECT_EQ(pattern, "*..........*..........*.");
}

TEST_F(SymbolTable, ARefusedAllocationLeavesRegistrationsAsTheyWere)
{
    VxSymLogInt("n", 1);
    int done = 0;
    test::refusingEachAllocation([&done] {
        done = 0;
        try {
            VxSymLogInt("a new integer variable", 2), ++done;
            VxSymLogDbl("a new real variable here", 2.5), ++done;
            VxSymLogFcn("a new function in the table", one), ++done;
            VxSymLog2("a new availability record", 4), ++done;
            VxSymLogTestFcn("a new test in the table", one), ++done;
        } catch (const std::bad_alloc &) {
        }
        auto &all = session::symbols();
        EXPECT_EQ(all.ints.table.size(), 1u + (done > 0));
        EXPECT_EQ(all.reals.table.size(), 0u + (done > 1));
        EXPECT_EQ(all.addresses.size(), 0u + (done > 2));
        EXPECT_EQ(all.availability.size(), 0u + (done > 3));
        EXPECT_EQ(all.tests.size(), 0u + (done > 4));
        EXPECT_EQ(VxSymGetInt("n"), 1);
    });
    EXPECT_EQ(done, 5);
}

}
