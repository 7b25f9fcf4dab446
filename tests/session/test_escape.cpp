#include "vx/escape.h"
#include "vx/escape.hpp"

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>

#include <gtest/gtest.h>

#include "session/escape.h"
#include "tests/session/started_toolkit.h"

using namespace vx;

namespace {

std::string trace; // of the call-backs below

void a()
{
    trace += 'a';
}

void b()
{
    trace += 'b';
}

void c()
{
    trace += 'c';
}

int32_t checksAsked = 0;
int32_t checkAnswer = 0;

int32_t check()
{
    ++checksAsked;
    VxEscFnCheck();
    return checkAnswer;
}

/** Escape state as an operation finds it, put back afterwards. */
class Escape : public test::StartedToolkit {
protected:
    void SetUp() override
    {
        StartedToolkit::SetUp();
        VxEscInit();
        VxSigDelAllCalls();
        VxEscCheck = check;
        checksAsked = checkAnswer = 0;
        trace.clear();
    }
    void TearDown() override
    {
        VxEscInit();
        VxSigDelAllCalls();
        VgEscapeFlag = VgEscapeDisable = VgEscNumChk = VgEscMaxChk = 0;
        std::tie(VxEscStart, VxEscCheck, VxEscEnd, VxEscRecover, VgProgressCb) = hooks_;
        StartedToolkit::TearDown();
    }

private:
    std::tuple<decltype(VxEscStart), decltype(VxEscCheck), decltype(VxEscEnd), decltype(VxEscRecover),
               decltype(VgProgressCb)>
        hooks_{VxEscStart, VxEscCheck, VxEscEnd, VxEscRecover, VgProgressCb};
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
    EXPECT_EQ(VgEscMaxChk, 0x7fffffff);
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

TEST_F(Escape, AnEscapeRunsTheCallsInSlotOrderOnceUntilReset)
{
    VxEscAddCall(b);
    VxEscAddCall(a);
    VxEscAddCall(b);
    VxEscHandler();
    VxEscHandler();
    EXPECT_EQ(trace, "bab");
    EXPECT_EQ(VgEscapeFlag, 1);
    EXPECT_EQ(VxEscFnCheck(), 1);
    EXPECT_EQ(VxEscReset(), 0u);
    EXPECT_EQ(VxEscFnCheck(), 0);
    EXPECT_EQ(VxEscDelCall(b), 0u);
    EXPECT_EQ(VxEscDelCall(c), 0u);
    EXPECT_EQ(VxEscAddCall(c), 0u) << "into the slot that came free";
    VxEscHandler();
    EXPECT_EQ(trace, "babcab");
    VxEscReset();
    VxEscDelAllCalls();
    VxEscHandler();
    EXPECT_EQ(trace, "babcab");
}

template <typename Add, typename Delete, typename Run>
void checkTable(int slots, int32_t error, Add add, Delete remove, Run run)
{
    for (int i = 0; i < slots; ++i)
        EXPECT_EQ(add(a), 0u) << i;
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(add(b), 1u);
    EXPECT_EQ(VxErrCnt(), 1);
    EXPECT_TRUE(VxErrIsLogged(VxToolsErrID(), error));
    EXPECT_EQ(add(nullptr), 1u);
    EXPECT_EQ(VxErrCnt(), 1);
    remove(b);
    remove(nullptr);
    run();
    EXPECT_EQ(trace, std::string(static_cast<size_t>(slots), 'a'));
    trace.clear();
    remove(a);
    EXPECT_EQ(add(b), 0u);
    run();
    EXPECT_EQ(trace, "b" + std::string(static_cast<size_t>(slots - 1), 'a'));
}

TEST_F(Escape, FourEscapeCallsFitAndAFifthIsAnError)
{
    checkTable(4, 29, VxEscAddCall, VxEscDelCall, [] {
        VxEscReset();
        VxEscHandler();
        VxEscReset();
    });
}

TEST_F(Escape, ThirtyTwoSignalCallsFitAndOneMoreIsAnError)
{
    checkTable(32, 30, VxSigAddCall, VxSigDelCall, session::runSignalCalls);
}

TEST_F(Escape, AnEscapeEndsWithTheOutermostCommand)
{
    VxEscRecover = [] { trace += std::to_string(VgEscapeFlag) + std::to_string(VgEscapeDisable); };
    {
        VX::CommandRecover outer;
        {
            VX::CommandRecover inner, copy(inner);
            EXPECT_EQ(VX::CommandRecover::gsInCmdStack, 3);
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
    VxEscRecover = [] { throw std::runtime_error("the hook failed"); };
    {
        VX::CommandRecover again;
    }
    EXPECT_EQ(VX::CommandRecover::gsInCmdStack, 0);
}

TEST_F(Escape, ProgressPassesItsFourWordsAndTheAnswerOn)
{
    EXPECT_EQ(VxProgress(1, 2, 3, 4), 0);
    VgProgressCb = [](intptr_t w, intptr_t x, intptr_t y, intptr_t z) {
        return static_cast<int32_t>(w * 1000 + x * 100 + y * 10 + z);
    };
    EXPECT_EQ(VxProgress(1, 2, 3, 4), 1234);
    EXPECT_EQ(VxProgress(7), 7000);
}

TEST_F(Escape, AnotherThreadMayEscapeAComputationAndMaintainTheTables)
{
    std::atomic<bool> computing{false};
    VxEscFnStart(10);
    std::thread monitor([&computing] {
        while (!computing)
            std::this_thread::yield();
        for (int i = 0; i < 100; ++i) {
            VxSigAddCall(a);
            VxSigDelCall(a);
        }
        VxEscHandler();
    });
    uint64_t steps = 0;
    for (; !session::interrupted(); ++steps)
        computing = true;
    monitor.join();
    VxEscFnEnd();
    EXPECT_EQ(VgEscapeFlag, 0);
    EXPECT_GT(steps, 0u);
}

}
