#include <atomic>
#include <stdexcept>

#include "session/escape.h"
#include "tests/session/started_toolkit.h"
#include "vx/escape.h"
#include "vx/escape.hpp"

using namespace vx;

namespace {

std::string trace; // of the calls below

template <char name> void call()
{
    trace += name;
}

int32_t checksAsked = 0, checkAnswer = 0;

int32_t check()
{
    ++checksAsked;
    VxEscFnCheck();
    return checkAnswer;
}

/** Escape state as an operation finds it. */
struct Escape : test::StartedToolkit {
    void SetUp() override
    {
        StartedToolkit::SetUp();
        VxEscCheck = check;
        checksAsked = checkAnswer = 0;
        trace.clear();
    }
    ~Escape() override
    {
        VxEscDelAllCalls();
        VxSigDelAllCalls();
        VgEscapeFlag = VgEscapeDisable = VgEscNumChk = VgEscMaxChk = 0;
        VxEscCheck = check_;
        VxEscRecover = recover_;
    }

    decltype(VxEscCheck) check_ = VxEscCheck;
    decltype(VxEscRecover) recover_ = VxEscRecover;
};

TEST_F(Escape, TheHookIsAskedOnceEveryIntervalAndOneSteps)
{
    EXPECT_EQ(VxEscFnStart(3), 3);
    std::string asked;
    for (int step = 0; step < 12; ++step) {
        int32_t before = checksAsked;
        EXPECT_FALSE(session::interrupted());
        asked += checksAsked > before ? '?' : '.';
    }
    EXPECT_EQ(asked, "...?...?...?");
    VxEscFnEnd();
    VgEscNumChk = 0x7ffffffe;
    for (int step = 0; step < 4; ++step)
        EXPECT_FALSE(session::interrupted());
    EXPECT_EQ(checksAsked, 3) << "no operation, no question, though the count goes around";
}

TEST_F(Escape, WhatInterruptsDependsOnFlagDisableAndHook)
{
    for (int bits = 0; bits < 16; ++bits) {
        bool flag = bits & 1, disable = bits & 2, asked = bits & 4, answer = bits & 8;
        VxEscFnStart(asked ? 0 : 100);
        VgEscapeFlag = flag;
        VgEscapeDisable = disable;
        checkAnswer = answer;
        EXPECT_EQ(session::interrupted(), (asked && answer) || (flag && !disable)) << bits;
    }
}

/** A table takes so many calls, runs them in slot order, and fills the slot that comes free first. */
template <typename Add, typename Delete, typename Run>
void checkTable(size_t slots, int32_t error, Add add, Delete remove, Run run)
{
    EXPECT_EQ(add(call<'b'>), 0u);
    for (size_t i = 1; i < slots; ++i)
        EXPECT_EQ(add(call<'a'>), 0u) << i;
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(add(call<'c'>) + add(nullptr), 2u);
    EXPECT_TRUE(VxErrCnt() == 1 && VxErrIsLogged(VxToolsErrID(), error));
    remove(call<'c'>);
    remove(nullptr);
    remove(call<'b'>);
    EXPECT_EQ(add(call<'c'>), 0u);
    run();
    EXPECT_EQ(trace, "c" + std::string(slots - 1, 'a'));
}

TEST_F(Escape, FourEscapeCallsFitAndRunOnceUntilReset)
{
    auto twice = [] { VxEscHandler(), VxEscHandler(); };
    checkTable(4, 29, VxEscAddCall, VxEscDelCall, twice);
    EXPECT_EQ(VxEscFnCheck(), 1);
    VxEscReset();
    EXPECT_EQ(VxEscFnCheck(), 0);
    VxEscHandler();
    EXPECT_EQ(trace, "caaacaaa");
}

TEST_F(Escape, ThirtyTwoSignalCallsFitAndOneMoreIsAnError)
{
    checkTable(32, 30, VxSigAddCall, VxSigDelCall, session::runSignalCalls);
}

TEST_F(Escape, EndsWithTheOutermostCommand)
{
    VxEscRecover = [] {
        trace += std::to_string(VgEscapeFlag) + std::to_string(VgEscapeDisable);
        throw std::runtime_error("the hook failed");
    };
    {
        VX::CommandRecover outer;
        {
            VX::CommandRecover inner, copy(inner);
            inner = copy;
            EXPECT_EQ(VX::CommandRecover::gsInCmdStack, 3);
            VxEscHandler();
            VgEscapeDisable = 1;
        }
        EXPECT_EQ(VgEscapeFlag, 1);
        EXPECT_EQ(trace, "");
    }
    EXPECT_EQ(trace, "00") << "lowered before the hook";
    EXPECT_EQ(VX::CommandRecover::gsInCmdStack, 0);
}

TEST_F(Escape, AnotherThreadMayEscapeAComputationAndMaintainTheTables)
{
    std::atomic<bool> computing{false};
    VxEscFnStart(10);
    std::thread monitor([&computing] {
        while (!computing)
            std::this_thread::yield();
        for (int i = 0; i < 100; ++i) {
            VxSigAddCall(call<'a'>);
            VxSigDelCall(call<'a'>);
        }
        VxEscHandler();
    });
    while (!session::interrupted())
        computing = true;
    monitor.join();
    VxEscFnEnd();
    EXPECT_EQ(VgEscapeFlag, 0);
}

}
