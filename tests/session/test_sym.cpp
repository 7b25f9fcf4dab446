#include "vx/sym.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "session/symbols.h"
#include "talm/base.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/faults.h"

using namespace vx;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

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

/** What the event log received, as "level text". */
class Events {
public:
    Events() { EsSinkCallback(&Events::note, this); }
    ~Events() { EsSinkCallback(nullptr, nullptr); }
    std::vector<std::string> lines;

private:
    static void note(void *self, const EsRecord *record)
    {
        auto &lines = static_cast<Events *>(self)->lines;
        lines.push_back(std::to_string(record->level) + " " + record->text);
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

TYPED_TEST(Variables, ResetBringsBackTheValueOfTheLastRegistration)
{
    using F = TypeParam;
    F::log("n", F::b);
    F::log("n", F::a);
    F::log("other", F::c);
    EXPECT_EQ(F::set("n", F::b), 1);
    EXPECT_EQ(F::get("n"), F::b);
    EXPECT_EQ(VxSymGlobalReset(), 0u);
    EXPECT_EQ(F::get("n"), F::a);
    EXPECT_EQ(F::get("other"), F::c);
}

TYPED_TEST(Variables, ABoundVariableIsReadWrittenAndResetWhereItStands)
{
    using F = TypeParam;
    typename F::Type place = F::a;
    F::log("n", F::c);
    (session::symbols().*F::variables).table.find("n")->bound = &place;
    EXPECT_EQ(F::get("n"), F::a);
    F::set("n", F::b);
    EXPECT_EQ(place, F::b);
    VxSymGlobalReset();
    EXPECT_EQ(place, F::c);
}

TYPED_TEST(Variables, APlainVariablePublishedByAddressIsTheLastResort)
{
    using F = TypeParam;
    typename F::Type global = F::a;
    VxSymLog("g", &global);
    EXPECT_EQ(F::get("g"), F::a);
    EXPECT_EQ(F::set("g", F::b), 1);
    EXPECT_EQ(global, F::b);
    VxSymGlobalReset();
    EXPECT_EQ(global, F::b) << "a reset is for variables only";
    F::log("g", F::c);
    F::set("g", F::a);
    EXPECT_EQ(global, F::b) << "the variable hides the address";
    EXPECT_EQ(F::get("g"), F::a);
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
    EXPECT_EQ(F::tryGet("Abc", &value), 1);
    EXPECT_EQ(value, F::a);
}

TYPED_TEST(Variables, AHookThatAnswersHidesTheTableAndOneThatDoesNotFallsThrough)
{
    using F = TypeParam;
    using T = typename F::Type;
    static T taken;
    static int32_t answer;
    auto getter = [](const char *name, T *value) -> int32_t {
        *value = std::string(name) == "n" ? F::c : F::b;
        return answer;
    };
    auto setter = [](const char *, T value) -> int32_t {
        taken = value;
        return answer;
    };
    F::log("n", F::a);
    EXPECT_EQ(F::setGetter(getter), +getter);
    EXPECT_EQ(F::setSetter(setter), +setter);
    T value = 0;
    for (int32_t answering : {1, 0}) {
        SCOPED_TRACE(answering);
        answer = answering;
        EXPECT_EQ(F::get("n"), answer ? F::c : F::a);
        EXPECT_EQ(F::tryGet("unknown", &value), answer);
        EXPECT_EQ(value, answer ? F::b : T{}) << "what a refusing hook wrote is dropped";
        EXPECT_EQ(F::set("n", F::b), 1);
        EXPECT_EQ(taken, F::b);
    }
    EXPECT_EQ(F::setGetter(nullptr), nullptr);
    EXPECT_EQ(F::setSetter(nullptr), nullptr);
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

TEST_F(SymbolTable, AFunctionIsFoundUnderItsNameUntilItIsLoggedOff)
{
    VxSymLogFcn("f", one);
    VxSymLogFcn("f", two);
    EXPECT_EQ(VxSymGetFcn("f"), two);
    EXPECT_EQ(VxSymGetFcnNoErr("f"), two);
    EXPECT_EQ(VxSymGetTestFcn("f"), nullptr);
    EXPECT_EQ(VxErrCnt(), 0);
    VxSymLogOff("f");
    VxSymLogOff("f");
    EXPECT_EQ(VxSymGetFcnNoErr("f"), nullptr);
    EXPECT_EQ(VxErrCnt(), 0);
    Events events;
    EXPECT_EQ(VxSymGetFcn("f"), nullptr);
    EXPECT_TRUE(reported(66));
    EXPECT_THAT(events.lines, Contains(HasSubstr("symbol f is")));
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

TEST_F(SymbolTable, LoggingOffLeavesVariablesAndTests)
{
    VxSymLogInt("n", 5);
    VxSymLogTestFcn("n", one);
    VxSymLogFcn("n", two);
    VxSymLogOff("n");
    EXPECT_EQ(VxSymGetInt("n"), 5);
    EXPECT_EQ(VxSymGetTestFcn("n"), one);
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
    Events events;
    VxSymExecAllTestFcns();
    EXPECT_THAT(events.lines,
                ElementsAre("5 [Fail] bad", "1 [Pass] more", "5 [Fail] none", "1 [Pass] 100%s"));
    EXPECT_EQ(session::symbols().tests.size(), 104u);
}

constexpr uint64_t mebi = 1 << 20;

std::string shownByCheck(const os::MemoryStatus &status)
{
    os::setTestMemoryStatus(&status);
    test::CapturedOutput output;
    EXPECT_EQ(VxCheckMemory(), 0u);
    std::string shown = output.text();
    os::setTestMemoryStatus(nullptr);
    return shown;
}

TEST_F(SymbolTable, TheUserIsWarnedBelowEachLimitOfMemory)
{
    os::MemoryStatus enough{768 * mebi, 128 * mebi, 0, 0};
    EXPECT_EQ(shownByCheck(enough), "");

    os::MemoryStatus small = enough;
    small.totalVirtual -= 1;
    small.totalPageFile = 1000 * mebi + mebi / 2;
    small.totalPhysical = 512 * mebi - mebi / 4;
    EXPECT_THAT(shownByCheck(small), testing::AllOf(HasSubstr("1001 MB.\n"), HasSubstr("at least 256 MB")));

    os::MemoryStatus little = enough;
    little.availableVirtual -= 1;
    EXPECT_THAT(shownByCheck(little), testing::AllOf(HasSubstr("Less than 128 MB"), Not(HasSubstr("\\n"))));
}

TEST_F(SymbolTable, WithoutAMemoryStatusNothingIsSaid)
{
    fault::onlyVerb("memoryStatus");
    fault::refuse(fault::Kind::verb, 1);
    EXPECT_EQ(shownByCheck({}), "");
    EXPECT_EQ(fault::refusals(fault::Kind::verb), 1);
    fault::refuse(fault::Kind::verb, 0);
    fault::onlyVerb(nullptr);
    EXPECT_NE(shownByCheck({}), "");
}

TEST_F(SymbolTable, EveryEleventhAvailableSymbolChecksTheMemory)
{
    static os::MemoryStatus little{768 * mebi, 0, 0, 0};
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
    VxSymLogDbl("n", 1.5);
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
        EXPECT_EQ(all.reals.table.size(), 1u + (done > 1));
        EXPECT_EQ(all.addresses.size(), 0u + (done > 2));
        EXPECT_EQ(all.availability.size(), 0u + (done > 3));
        EXPECT_EQ(all.tests.size(), 0u + (done > 4));
        EXPECT_EQ(VxSymGetInt("n"), 1);
        EXPECT_EQ(VxSymGetDbl("n"), 1.5);
    });
    EXPECT_EQ(done, 5);
}

}
