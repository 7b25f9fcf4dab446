#include "vx/tools.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/dmpath.h"
#include "frame/modules.h"
#include "session/journal.h"
#include "talm/base.hpp"
#include "tests/frame/running_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/faults.h"
#include "vx/debug.h"
#include "vx/err.h"
#include "vx/escape.h"
#include "vx/list.h"
#include "vx/mem.h"
#include "vx/msg.h"
#include "vx/openfile.h"
#include "vx/pool.h"
#include "vx/sym.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

bool startAll()
{
    return !VxToolsInit() && !VxMathInit() && !VxDmgrInit() && !VxMemInit();
}

void stopAll()
{
    EXPECT_EQ(VxMemExit() + VxDmgrExit() + VxMathExit() + VxToolsExit(), 0U);
}

std::vector<int32_t> textIds()
{
    return {VxToolsMsgID(), VxPelmorMsgID(), VxPelmorFailureMsgID(), MathMsgID(),   VxDmgrMsgID(),
            VxToolsErrID(), VxPelmorErrID(), VxMathErrID(),          VxDmgrErrID()};
}

TEST(Start, AHostMayStartAgainAfterItStopped)
{
    test::BeforeStart host;
    std::vector<int32_t> first;
    EXPECT_EQ(textIds(), std::vector<int32_t>(9, -1));
    for (int32_t error : {57, 83}) {
        ASSERT_TRUE(host.prepare());
        ASSERT_TRUE(startAll());
        EXPECT_EQ(VxSymGetFcnNoErr("f_report"), f_report);
        EXPECT_EQ(VxSymGetFcn("VxFunctionProfilerOn")(), 0);
        EXPECT_TRUE(frame::modules().profilerOn);
        EXPECT_EQ(VxSymGetFcn("VxFunctionProfilerOff")(), 0);
        EXPECT_FALSE(frame::modules().profilerOn);
        EXPECT_STREQ(VxMsg(VxToolsMsgID(), 185), "All rights reserved.");
        EXPECT_NE(std::strstr(VgCompanyCopyRight, "\nAll rights reserved."), nullptr);
        EXPECT_EQ(std::ranges::count(textIds(), -1), 0);
        if (first.empty())
            first = textIds();
        EXPECT_EQ(textIds(), first) << "the first start left texts behind";
        EXPECT_EQ(VxErrLogNum(VxToolsErrID(), error, "here", 0), 0U);
        VgActiveErrOccurred = 0;
        stopAll();
        EXPECT_EQ(VgActiveErrOccurred, 1) << "pending errors are displayed at the end";
        EXPECT_EQ(VxErrCnt(), 0);
        EXPECT_EQ(VxToolsMsgID(), -1);
        EXPECT_STREQ(VxMsg(first[0], 185), " ");
    }
}

TEST(Start, ASecondStartWithoutAStopKeepsAlertFilesAndLoadsCataloguesAnew)
{
    test::BeforeStart host;
    ASSERT_TRUE(host.prepare());
    ASSERT_EQ(VxToolsInit(), 0U);
    int32_t alerts = VxToolsErrID(), messages = VxToolsMsgID();
    VgLblMethod = 3;
    ASSERT_EQ(VxToolsInit(), 0U);
    EXPECT_EQ(VxToolsErrID(), alerts);
    EXPECT_GT(VxToolsMsgID(), messages);
    EXPECT_EQ(VgLblMethod, 10);
}

/** A root of its own, relative to which texts are found when VxPathInit was not called. */
void makeTexts(const test::TempFolder &folder)
{
    for (const char *name : {"Tools", "Pelmor", "Math", "Dmgr"}) {
        folder.write(std::string("text/") + name + ".ALERT", "# no errors\n");
        folder.write(std::string("text/") + name + ".MSG", "0,text\n");
    }
    folder.write("text/PelmorFailure.MSG", "0,text\n");
    fs::current_path(folder.native());
}

TEST(Start, EachMissingTextFileFailsItsModuleAndEndsTheStartThere)
{
    const std::pair<const char *, uint32_t (*)(void *, void *)> cases[] = {
        {"Tools.ALERT", VxToolsInit}, {"Tools.MSG", VxToolsInit},         {"Pelmor.ALERT", VxToolsInit},
        {"Pelmor.MSG", VxToolsInit},  {"PelmorFailure.MSG", VxToolsInit}, {"Math.ALERT", VxMathInit},
        {"Math.MSG", VxMathInit},     {"Dmgr.ALERT", VxDmgrInit},         {"Dmgr.MSG", VxDmgrInit},
    };
    for (const auto &[file, init] : cases) {
        SCOPED_TRACE(file);
        test::BeforeStart host;
        makeTexts(host.folder);
        ASSERT_EQ(init(nullptr, nullptr), 0U);
        VxToolsExit();
        frame::modules() = {};
        fs::remove(host.folder.native() / "text" / file);
        VgLblMethod = 3;
        VgIdentMat3.kind = 99;
        files::searchPaths.searchList = 0;
        test::CapturedOutput output;
        EXPECT_EQ(init(nullptr, nullptr), 1U);
        EXPECT_NE(output.text().find(file), std::string::npos);
        EXPECT_EQ(VgLblMethod, 3);
        EXPECT_EQ(VgIdentMat3.kind, 99);
        EXPECT_EQ(files::searchPaths.searchList, 0);
    }
    VxToolsGlobalRepeat();
    VxMathGlobal();
}

TEST(Start, WhatIsRefusedOnTheWayMakesItFailAndNothingWorse)
{
    for (bool verbs : {false, true}) {
        test::BeforeStart host;
        ASSERT_TRUE(host.prepare());
        test::CapturedOutput output;
        uint32_t result = 1;
        auto body = [&] {
            result = VxToolsInit() | VxMathInit() | VxDmgrInit();
            auto kind = verbs ? fault::Kind::verb : fault::Kind::allocation;
            EXPECT_TRUE(result <= 1 && (result == 0 || fault::refusals(kind) > 0));
            VxErrClear();
            VxDmgrExit();
            VxMsgFree();
        };
        if (verbs)
            test::refusingEachVerb(body);
        else
            test::refusingEachAllocation(body);
        EXPECT_EQ(result, 0U);
    }
}

TEST(Start, TheOptionsOfTheStartAreReadWithTheirLimits)
{
    test::BeforeStart host;
    const struct {
        const char *lines;
        int32_t escape, backup, latest;
    } cases[] = {
        // What no line sets keeps the value it had: 77.
        {"", 77, 77, 77},
        {"Vx.EscapeCount = -5\nVx.EmergencyBackup = Yes\nVx.LatestRev = no\n", 1, 1, 0},
        {"Vx.EscapeCount = 1\nVx.EmergencyBackup = perhaps\nVx.LatestRev = Y\n", 1, 77, 1},
        {"Vx.EscapeCount = 1000\n", 1000, 77, 77},
        {"Vx.EscapeCount = 1001\nvx.latestrev = yes\n", 1000, 77, 77},
    };
    for (const auto &[lines, escape, backup, latest] : cases) {
        host.setOptions(lines);
        VgEscapeCnt = VgEmergencyBackup = VgGetLatestRev = 77;
        EXPECT_EQ(VxToolsCfgInit(), 0U);
        EXPECT_EQ(VgEscapeCnt, escape) << lines;
        EXPECT_EQ(VgEmergencyBackup, backup) << lines;
        EXPECT_EQ(VgGetLatestRev, latest) << lines;
    }
    VgEscapeCnt = 500;
    VgEmergencyBackup = VgGetLatestRev = 0;
}

TEST(Start, TheJournalIsOnOnlyWhenTheOptionSaysYes)
{
    test::BeforeStart host;
    const std::string file = host.folder.text("session.jnl"), path = "Vx.SessionJournal = " + file + "\n";
    for (const auto &[options, journal] : {std::pair{path + "Vx.SessionJournalOpt = yes\n", file}, {path, ""},
                                           {path + "Vx.SessionJournalOpt = no\n", ""},
                                           {"Vx.SessionJournalOpt = yes\n", ""}}) {
        host.setOptions(options);
        VxToolsCfgInit();
        EXPECT_EQ(session::journal.path, journal) << options;
    }
}

TEST(Start, TheGlobalStateIsSetWhateverItWas)
{
    test::BeforeStart host;
    int area = 0;
    VgMsgGuiIsUp = VgLblMethod = 1;
    std::strcpy(VgDbgFopenMode, "a");
    VxEscStart = nullptr;
    VgCurrentPool = &area;
    EXPECT_EQ(VxToolsGlobal(), 0U);
    EXPECT_EQ(VgMsgGuiIsUp, 0);
    EXPECT_EQ(VgLblMethod, 10);
    EXPECT_STREQ(VgDbgFopenMode, "w");
    EXPECT_TRUE(VxEscStart == VxEscFnStart && VxEscCheck == VxEscFnCheck && VxEscEnd == VxEscFnEnd);
    EXPECT_EQ(VgCurrentPool, nullptr);
    EXPECT_EQ(VgPageSize % 4096, 4092);
}

TEST(MathStart, FillsTheTablesAndTheConstantsOfThePredicates)
{
    VgOptimMarchReactor[7] = &VgScale;
    ASSERT_EQ(VxMathGlobal(), 0U);
    EXPECT_EQ(VgOptimMarchReactor[7], nullptr);
    for (int32_t degree = 0; degree <= 360; ++degree) {
        EXPECT_EQ(frame::degreeTables().sine[degree], std::sin(degree * 0.017453292519943295));
        EXPECT_EQ(frame::degreeTables().cosine[degree], std::cos(degree * 0.017453292519943295));
    }
    EXPECT_EQ(1.0 + Vgepsilon, 1.0);
    EXPECT_GT(1.0 + 2 * Vgepsilon, 1.0);
    // The splitter cuts a double into halves that hold 26 bits each.
    double value = 1.0 / 3.0, big = Vgsplitter * value, high = big - (big - value), low = value - high;
    EXPECT_EQ(high + low, value);
    EXPECT_EQ(std::fmod(std::ldexp(high, 27), 1.0), 0.0);
}

TEST(StopError, HandsItsWordsToTheHostUnlessTheFirstIsZero)
{
    static std::vector<std::vector<intptr_t>> stops;
    auto &base = HESKET::Talm::Ap::Base::Instance();
    VxStopError(1, 2, 3, 4);
    auto stop = [](intptr_t a, intptr_t b, intptr_t c, intptr_t d) { stops.push_back({a, b, c, d}); };
    base.SetFunction(72, reinterpret_cast<void *>(+stop));
    VxStopError(0, 9, 9, 9);
    VxStopError(1, -2, 3, 4);
    base.SetFunction(72, nullptr);
    VxStopError(5);
    EXPECT_EQ(stops, (std::vector<std::vector<intptr_t>>{{1, -2, 3, 4}}));
}

}
