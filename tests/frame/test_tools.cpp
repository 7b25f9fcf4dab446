#include "vx/tools.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/dmpath.h"
#include "frame/modules.h"
#include "heap/pool.h"
#include "platform/os/os.h"
#include "session/journal.h"
#include "talm/base.hpp"
#include "tests/frame/running_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/faults.h"
#include "vx/compress.h"
#include "vx/config.h"
#include "vx/debug.h"
#include "vx/dmpath.h"
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

std::vector<int32_t> messageIds()
{
    return {VxToolsMsgID(), VxPelmorMsgID(), VxPelmorFailureMsgID(), MathMsgID(), VxDmgrMsgID()};
}

std::vector<int32_t> alertIds()
{
    return {VxToolsErrID(), VxPelmorErrID(), VxMathErrID(), VxDmgrErrID()};
}

TEST(Start, AHostMayStartAgainAfterItStopped)
{
    test::BeforeStart host;
    EXPECT_EQ(messageIds(), std::vector<int32_t>(5, -1));
    EXPECT_EQ(alertIds(), std::vector<int32_t>(4, -1));
    std::vector<int32_t> firstAlerts, firstMessages;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(host.prepare());
        ASSERT_TRUE(startAll());
        EXPECT_STREQ(VxMsg(VxToolsMsgID(), 185), "All rights reserved.");
        EXPECT_STREQ(VxMsg(VxPelmorFailureMsgID(), 0), "The application could not be started.");
        EXPECT_EQ(std::count(VgCompanyCopyRight, std::strchr(VgCompanyCopyRight, 0), '\n'), 5);
        EXPECT_NE(std::strstr(VgCompanyCopyRight, "\nAll rights reserved."), nullptr);
        std::vector<int32_t> ids = messageIds(), alerts = alertIds();
        EXPECT_EQ(*std::min_element(ids.begin(), ids.end()), 0);
        EXPECT_GE(*std::min_element(alerts.begin(), alerts.end()), 0);
        if (round == 0) {
            firstMessages = ids;
            firstAlerts = alerts;
        }
        EXPECT_EQ(ids, firstMessages) << "the first start left catalogues behind";
        EXPECT_EQ(alerts, firstAlerts);
        // Not the same number twice, which within a second is a repetition.
        EXPECT_EQ(VxErrLogNum(VxToolsErrID(), round == 0 ? 57 : 83, "here", 0), 0U);
        EXPECT_EQ(VxErrCnt(), 1);
        VgActiveErrOccurred = 0;
        stopAll();
        EXPECT_EQ(VgActiveErrOccurred, 1) << "pending errors are displayed at the end";
        EXPECT_EQ(VxErrCnt(), 0);
        EXPECT_EQ(messageIds(), std::vector<int32_t>(5, -1));
        EXPECT_STREQ(VxMsg(firstMessages[0], 185), " ");
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
    struct Case {
        const char *file;
        uint32_t (*init)(void *, void *);
    };
    const Case cases[] = {
        {"Tools.ALERT", VxToolsInit},        {"Tools.MSG", VxToolsInit},  {"Pelmor.ALERT", VxToolsInit},
        {"Pelmor.MSG", VxToolsInit},         {"Math.ALERT", VxMathInit},  {"Math.MSG", VxMathInit},
        {"PelmorFailure.MSG", VxToolsInit},  {"Dmgr.ALERT", VxDmgrInit},  {"Dmgr.MSG", VxDmgrInit},
    };
    for (const Case &missing : cases) {
        SCOPED_TRACE(missing.file);
        test::BeforeStart host;
        makeTexts(host.folder);
        ASSERT_EQ(missing.init(nullptr, nullptr), 0U);
        VxToolsExit();
        frame::modules() = {};
        fs::remove(host.folder.native() / "text" / missing.file);
        VgLblMethod = 3;
        VgIdentMat3.kind = 99;
        files::searchPaths.searchList = 0;
        test::CapturedOutput output;
        EXPECT_EQ(missing.init(nullptr, nullptr), 1U);
        EXPECT_NE(output.text().find(missing.file), std::string::npos);
        EXPECT_EQ(VgLblMethod, 3);
        EXPECT_EQ(VgIdentMat3.kind, 99);
        EXPECT_EQ(files::searchPaths.searchList, 0);
        EXPECT_EQ(VxToolsErrID() >= 0, missing.init == VxToolsInit && missing.file != cases[0].file);
    }
    VxToolsGlobalRepeat();
    VxMathGlobal();
}

TEST(Start, ACatalogueThatSaysNothingIsNoFailure)
{
    test::BeforeStart host;
    makeTexts(host.folder);
    host.folder.write("text/Pelmor.MSG", "# nothing\n");
    EXPECT_EQ(VxToolsInit(), 0U);
    EXPECT_EQ(VxPelmorMsgID(), -1);
    EXPECT_EQ(VxPelmorFailureMsgID(), 1);
}

TEST(Start, PublishesItsFunctions)
{
    test::BeforeStart host;
    ASSERT_TRUE(host.prepare());
    ASSERT_EQ(VxToolsInit(), 0U);
    EXPECT_EQ(VxSymGetFcnNoErr("f_report"), f_report);
    EXPECT_EQ(VxSymGetFcnNoErr("VerNum"), VerNum);
    VxSymFcn on = VxSymGetFcn("VxFunctionProfilerOn"), off = VxSymGetFcn("VxFunctionProfilerOff");
    ASSERT_TRUE(on && off);
    EXPECT_EQ(on(), 0);
    EXPECT_TRUE(frame::modules().profilerOn);
    EXPECT_EQ(off(), 0);
    EXPECT_FALSE(frame::modules().profilerOn);
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
    struct Case {
        const char *lines;
        int32_t escape, backup, latest;
    };
    // What no line sets keeps the value it had: 77.
    const Case cases[] = {
        {"", 77, 77, 77},
        {"Vx.EscapeCount = -5\nVx.EmergencyBackup = Yes\nVx.LatestRev = no\n", 1, 1, 0},
        {"Vx.EscapeCount = 0\nVx.EmergencyBackup = n\nVx.LatestRev = Y\n", 1, 0, 1},
        {"Vx.EscapeCount = 1\nVx.EmergencyBackup = perhaps\n", 1, 77, 77},
        {"Vx.EscapeCount = 1000\n", 1000, 77, 77},
        {"Vx.EscapeCount = 1001\n", 1000, 77, 77},
        {"Vx.EscapeCount = 5000\nvx.latestrev = yes\n", 1000, 77, 77},
    };
    for (const Case &each : cases) {
        host.setOptions(each.lines);
        VgEscapeCnt = VgEmergencyBackup = VgGetLatestRev = 77;
        EXPECT_EQ(VxToolsCfgInit(), 0U);
        EXPECT_EQ(VgEscapeCnt, each.escape) << each.lines;
        EXPECT_EQ(VgEmergencyBackup, each.backup) << each.lines;
        EXPECT_EQ(VgGetLatestRev, each.latest) << each.lines;
    }
    VgEscapeCnt = 500;
    VgEmergencyBackup = VgGetLatestRev = 0;
}

TEST(Start, TheJournalIsOnOnlyWhenTheOptionSaysYes)
{
    test::BeforeStart host;
    std::string path = "Vx.SessionJournal = " + host.folder.text("session.jnl") + "\n";
    host.setOptions(path + "Vx.SessionJournalOpt = yes\n");
    VxToolsCfgInit();
    EXPECT_STREQ(session::journal.path, host.folder.text("session.jnl").c_str());
    for (const char *off : {"", "Vx.SessionJournalOpt = no\n"}) {
        host.setOptions(path + off);
        VxToolsCfgInit();
        EXPECT_STREQ(session::journal.path, "") << off;
    }
    host.setOptions("Vx.SessionJournalOpt = yes\n");
    VxToolsCfgInit();
    EXPECT_STREQ(session::journal.path, "");
}

TEST(Start, TheGlobalStateIsSetWhateverItWas)
{
    test::BeforeStart host;
    int area = 0;
    VgMsgGuiIsUp = 1;
    VgLblMethod = VgDefaultLblMethod = 1;
    VgDbgDisplayLoc = 0;
    VgToolsDbgFileDesc = nullptr;
    VgToolsDbgGroup = VgToolsDbgLevel = VgDbgDisplayLevel = 5;
    std::strcpy(VgDbgFopenMode, "a");
    VxEscStart = nullptr;
    VxEscCheck = nullptr;
    VxEscEnd = nullptr;
    VgCurrentPool = &area;
    VgPageSize = 0;
    EXPECT_EQ(VxToolsGlobal(), 0U);
    EXPECT_EQ(VgMsgGuiIsUp, 0);
    EXPECT_EQ(VgLblMethod, 10);
    EXPECT_EQ(VgDefaultLblMethod, 10);
    EXPECT_EQ(VgDbgDisplayLoc, 1);
    EXPECT_EQ(VgToolsDbgFileDesc, stderr);
    EXPECT_EQ(VgToolsDbgGroup + VgToolsDbgLevel + VgDbgDisplayLevel, 0);
    EXPECT_STREQ(VgDbgFopenMode, "w");
    EXPECT_EQ(VxEscStart, VxEscFnStart);
    EXPECT_EQ(VxEscCheck, VxEscFnCheck);
    EXPECT_EQ(VxEscEnd, VxEscFnEnd);
    EXPECT_EQ(VgCurrentPool, nullptr);
    EXPECT_EQ(VgAreas, VgInitialAreas);
    EXPECT_EQ(VgNAreas, 2);
    EXPECT_EQ(VgPageSize % 4096, 4092);
}

TEST(Start, TheBuildStampHasItsFormAndItsPlace)
{
    EXPECT_TRUE(std::regex_match(GetVerNum(),
                                 std::regex("VERNUM:\\d\\d/\\d\\d/\\d{4}\\(\\d+:[0-9a-f]{12}\\)")))
        << GetVerNum();
    EXPECT_EQ(GetVerNum(), VgVerNum);
}

TEST(MathStart, FillsTheTablesAndTheConstantsOfThePredicates)
{
    VgOptimMarchReactor[7] = &VgScale;
    ASSERT_EQ(VxMathGlobal(), 0U);
    EXPECT_EQ(VgOptimMarchReactor[7], nullptr);
    const frame::DegreeTables &tables = frame::degreeTables();
    for (int32_t degree : {0, 30, 90, 180, 270, 360}) {
        EXPECT_EQ(tables.sine[degree], std::sin(degree * 0.017453292519943295));
        EXPECT_EQ(tables.cosine[degree], std::cos(degree * 0.017453292519943295));
    }
    EXPECT_NE(tables.sine[180], 0.0);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(VgIdentMat3.m[row][column], row == column);
    EXPECT_EQ(VgIdentMat3.kind, 1);

    EXPECT_EQ(1.0 + Vgepsilon, 1.0);
    EXPECT_GT(1.0 + 2 * Vgepsilon, 1.0);
    // The splitter cuts a double into halves that hold 26 bits each.
    double value = 1.0 / 3.0, big = Vgsplitter * value, high = big - (big - value), low = value - high;
    EXPECT_EQ(high + low, value);
    EXPECT_EQ(std::fmod(std::ldexp(high, 27), 1.0), 0.0);
    EXPECT_GT(VgccwerrboundA, VgccwerrboundB);
    EXPECT_GT(VgccwerrboundB, VgccwerrboundC);
    EXPECT_NEAR(VgccwerrboundD / Vgepsilon, 3, 1e-12);
    EXPECT_NEAR(VgiccerrboundA / Vgepsilon, 10, 1e-12);
    EXPECT_NEAR(VgiccerrboundB / Vgepsilon, 4, 1e-12);
    EXPECT_NEAR(VgiccerrboundC / Vgepsilon / Vgepsilon, 44, 1e-12);
}

TEST(DmgrStart, ReadsTheSavedSearchPathsAndFreesThem)
{
    test::BeforeStart host;
    ASSERT_TRUE(host.prepare());
    ASSERT_EQ(VxToolsInit(), 0U);
    host.folder.write("search_paths.txt", "\n" + host.folder.text("parts") + "\n\n");
    DmPathCheckActiveOnlySet(1);
    DmPathSearchSet(0);
    ASSERT_EQ(VxDmgrInit(), 0U);
    EXPECT_EQ(DmPathCheckActiveOnlyGet(), 0);
    EXPECT_EQ(DmPathSearchGet(), 1);
    char entry[256] = "";
    int32_t first = 1;
    ASSERT_EQ(DmPathGet(&first, entry, sizeof entry), 0U);
    EXPECT_STREQ(entry, host.folder.text("parts").c_str());
    EXPECT_EQ(VxDmgrExit(), 0U);
    first = 1;
    EXPECT_NE(DmPathGet(&first, entry, sizeof entry), 0U);
}

TEST(StopError, HandsItsWordsToTheHostUnlessTheFirstIsZero)
{
    static intptr_t words[4];
    auto &base = HESKET::Talm::Ap::Base::Instance();
    VxStopError(1, 2, 3, 4);
    auto stop = [](intptr_t a, intptr_t b, intptr_t c, intptr_t d) {
        const intptr_t given[] = {a, b, c, d};
        std::copy(std::begin(given), std::end(given), words);
    };
    base.SetFunction(72, reinterpret_cast<void *>(+stop));
    VxStopError(0, 9, 9, 9);
    EXPECT_EQ(words[1], 0);
    VxStopError(1, -2, 3, 4);
    base.SetFunction(72, nullptr);
    EXPECT_EQ(words[0], 1);
    EXPECT_EQ(words[1], -2);
    EXPECT_EQ(words[3], 4);
    VxStopError(5);
    EXPECT_EQ(words[0], 1);
}

}
