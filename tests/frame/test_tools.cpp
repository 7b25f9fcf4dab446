#include "vx/tools.h"

#include "frame/modules.h"
#include "session/journal.h"
#include "tests/frame/running_toolkit.h"
#include "vx/err.h"
#include "vx/mem.h"
#include "vx/msg.h"
#include "vx/openfile.h"
#include "vx/sym.h"

using namespace vx;

namespace {

std::vector<int32_t> textIds()
{
    return {VxToolsMsgID(), VxPelmorMsgID(), VxPelmorFailureMsgID(), MathMsgID(),  VxDmgrMsgID(),
            VxToolsErrID(), VxPelmorErrID(), VxMathErrID(),          VxDmgrErrID()};
}

TEST(Start, AHostMayStartAgainAfterItStopped)
{
    test::BeforeStart host;
    std::vector<int32_t> first;
    EXPECT_EQ(textIds(), std::vector<int32_t>(9, -1));
    for (int32_t error : {57, 83}) {
        ASSERT_TRUE(host.prepare());
        ASSERT_FALSE(VxToolsInit() || VxMathInit() || VxDmgrInit() || VxMemInit());
        EXPECT_EQ(VxSymGetFcnNoErr("f_report"), f_report);
        EXPECT_STREQ(VxMsg(VxToolsMsgID(), 185), "All rights reserved.");
        EXPECT_EQ(std::ranges::count(textIds(), -1), 0);
        if (first.empty())
            first = textIds();
        EXPECT_EQ(textIds(), first) << "the first start left texts behind";
        EXPECT_EQ(VxErrLogNum(VxToolsErrID(), error, "here", 0), 0U);
        VgActiveErrOccurred = 0;
        EXPECT_FALSE(VxMemExit() || VxDmgrExit() || VxMathExit() || VxToolsExit());
        EXPECT_EQ(VgActiveErrOccurred, 1) << "pending errors are displayed at the end";
        EXPECT_TRUE(VxErrCnt() == 0 && VxToolsMsgID() == -1);
        EXPECT_STREQ(VxMsg(first[0], 185), " ");
    }
}

/** A root of its own, relative to which texts are found when VxPathInit was not called. */
void makeTexts(const test::TempFolder &folder)
{
    for (std::string name : {"Tools", "Pelmor", "PelmorFailure", "Math", "Dmgr"}) {
        folder.write("text/" + name + ".ALERT", "# no errors\n");
        folder.write("text/" + name + ".MSG", "0,text\n");
    }
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
        test::CapturedOutput output;
        EXPECT_EQ(init(nullptr, nullptr), 1U);
        EXPECT_THAT(output.text(), HasSubstr(file));
        EXPECT_EQ(VgLblMethod, 3);
    }
}

TEST(Start, WhatIsRefusedOnTheWayMakesItFailAndNothingWorse)
{
    for (fault::Kind kind : {fault::Kind::allocation, fault::Kind::verb}) {
        test::BeforeStart host;
        ASSERT_TRUE(host.prepare());
        test::CapturedOutput output;
        uint32_t result = 1;
        auto start = [&] { result = VxToolsInit() | VxMathInit() | VxDmgrInit(); };
        test::eachRefusal(kind, nullptr, start, [&](bool refused) {
            EXPECT_LE(result, refused ? 1U : 0U);
            VxErrClear();
            VxDmgrExit();
            VxMsgFree();
        });
    }
}

TEST(Start, TheOptionsOfTheStartAreReadWithTheirLimits)
{
    test::BeforeStart host;
    const std::string file = host.folder.text("session.jnl"), path = "Vx.SessionJournal = " + file + "\n";
    const std::tuple<std::string, int32_t, int32_t, int32_t, std::string> cases[] = {
        // What no line sets keeps the value it had: 77.
        {path, 77, 77, 77, ""},
        {"Vx.EscapeCount = -5\nVx.EmergencyBackup = Yes\nVx.LatestRev = no\n", 1, 1, 0, ""},
        {"Vx.EscapeCount = 1001\nvx.latestrev = yes\n", 1000, 77, 77, ""},
        {path + "Vx.SessionJournalOpt = yes\nVx.LatestRev = perhaps\n", 77, 77, 77, file},
    };
    for (const auto &[lines, escape, backup, latest, journal] : cases) {
        host.setOptions(lines);
        VgEscapeCnt = VgEmergencyBackup = VgGetLatestRev = 77;
        EXPECT_EQ(VxToolsCfgInit(), 0U);
        EXPECT_EQ(std::tuple(VgEscapeCnt, VgEmergencyBackup, VgGetLatestRev, session::journal.path),
                  std::tuple(escape, backup, latest, journal))
            << lines;
    }
    VgEscapeCnt = 500;
    VgEmergencyBackup = VgGetLatestRev = 0;
}

}
