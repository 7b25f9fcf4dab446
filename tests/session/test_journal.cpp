#include <array>
#include <cstring>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "frame/error_log.h"
#include "frame/modules.h"
#include "platform/os/os.h"
#include "platform/os/test_values.h"
#include "session/journal.h"
#include "talm/base.hpp"
#include "talm/config.hpp"
#include "tests/support/captured_output.h"
#include "tests/support/child.h"
#include "tests/support/each_refusal.h"
#include "tests/support/temp_folder.h"
#include "vx/err.h"
#include "vx/journal.h"
#include "vx/tools.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

/** Answers the size limit, when a test sets one. */
struct SizeOption final : IConfigMgr {
    std::string limit;

    uint32_t GetValue(const char *key, char **text, bool) override
    {
        *text = limit.empty() || !strstr(key, "SessionJournalSize") ? nullptr : strdup(limit.c_str());
        return *text ? 0 : 1;
    }
    uint32_t SetValue(const char *, const char *) override { return 1; }
    bool Load(int32_t) override { return false; }
};

struct Journal : testing::Test {
    Journal()
    {
        static int64_t seconds = 1'500'000'000;
        os::setTestClock(1'000'000 * (seconds += 100));
        now = seconds;
        if (VxToolsErrID() < 0 || VxToolsMsgID() < 0) {
            EXPECT_TRUE(frame::loadTexts(frame::modules().tools, "Tools.ALERT", "Tools.MSG"));
        }
        VxErrClear();
        TalmSetConfigMgr(&options);
    }
    ~Journal() override
    {
        VxJnlExit();
        VxErrClear();
        HESKET::Talm::Ap::Base::Instance().SetFunction(41, nullptr);
        TalmSetConfigMgr(nullptr);
        os::setTestClock(-1);
    }

    uint32_t setPath(const std::string &name) { return VxJnlPathSet(folder.text(name).c_str()); }

    /** The line that a journal made now starts with. */
    std::string stamp() const
    {
        os::CalendarTime t;
        EXPECT_EQ(os::localTime(now, t), os::Error::none);
        char line[64];
        snprintf(line, sizeof line, "[%04d-%02d-%02d %02d:%02d:%02d] log start!\r\n", t.year, t.month, t.day,
                 t.hour, t.minute, t.second);
        return line;
    }

    std::string lastError() const
    {
        return frame::errorState().pending.empty() ? "" : frame::errorState().pending.back().text;
    }

    SizeOption options;
    test::TempFolder folder;
    int64_t now;
};

TEST_F(Journal, LinesFollowTheStampOfANewFile)
{
    EXPECT_EQ(VxJnlPrint("nowhere yet"), 0u);
    ASSERT_EQ(setPath("a.log"), 0u);
    EXPECT_EQ(VxJnlPrint("first"), 0u);
    EXPECT_EQ(VxJnlPrint(""), 0u);
    EXPECT_EQ(VxJnlPrint(nullptr), 0u);
    EXPECT_EQ(VxJnlPrint("50% \xE9\n"), 0u);
    EXPECT_EQ(folder.read("a.log"), stamp() + "first\r\n\r\n50% \xE9\n\r\n");
}

TEST_F(Journal, AFileThatIsThereGrowsWithoutAStamp)
{
    folder.write("a.log", "old\r\n");
    setPath("a.log");
    VxJnlPrint("new");
    EXPECT_EQ(folder.read("a.log"), "old\r\nnew\r\n");
}

TEST_F(Journal, AnOversizedFileStartsAnewWithoutAStamp)
{
    setPath("a.log");
    folder.write("a.log", "x");
    fs::resize_file(folder.native() / "a.log", 100 * 1048576);
    VxJnlPrint("y");
    EXPECT_EQ(fs::file_size(folder.native() / "a.log"), 100u * 1048576 + 3) << "the limit itself is allowed";
    VxJnlPrint("z");
    EXPECT_EQ(folder.read("a.log"), "z\r\n");

    options.limit = "0.000004";
    folder.write("a.log", "1234");
    VxJnlPrint("5");
    EXPECT_EQ(folder.read("a.log"), "12345\r\n");
    VxJnlPrint("6");
    EXPECT_EQ(folder.read("a.log"), "6\r\n");
}

TEST_F(Journal, ABlankPathTurnsItOffUnlessTheHostKeepsIt)
{
    setPath("a.log");
    HESKET::Talm::Ap::Base::Instance().SetFunction(41,
                                                   reinterpret_cast<void *>(+[]() -> int32_t { return 1; }));
    EXPECT_EQ(VxJnlPathSet(" "), 0u);
    VxJnlPrint("kept");
    HESKET::Talm::Ap::Base::Instance().SetFunction(41, nullptr);
    EXPECT_EQ(VxJnlPathSet(""), 0u);
    VxJnlPrint("off");
    EXPECT_EQ(folder.read("a.log"), stamp() + "kept\r\n");
    EXPECT_EQ(VxJnlPathSet(nullptr), 1u);
}

TEST_F(Journal, PathsThatAreNoneAreRefusedAndTheJournalStays)
{
    setPath("a.log");
    std::string before = session::journal.path;
    EXPECT_EQ(setPath("none\\a.log"), 1u);
    EXPECT_EQ(lastError(), "The directory " + folder.text("none") + " does not exist.");
    folder.write("file", "");
    EXPECT_EQ(setPath("file\\a.log"), 1u);
    EXPECT_EQ(VxJnlPathSet(std::string(256, 'x').c_str()), 1u);
    EXPECT_NE(lastError().find("At most 255 characters"), std::string::npos);
    EXPECT_EQ(VxJnlPathSet("$VX_NO_SUCH_VARIABLE\\a"), 1u);
    EXPECT_EQ(session::journal.path, before);
}

TEST_F(Journal, TheLongestPathIsTaken)
{
    std::string name(255 - folder.text().size() - 1, 'n');
    EXPECT_EQ(setPath(name), 0u);
    EXPECT_EQ(VxJnlPrint("x"), 0u);
    EXPECT_EQ(setPath(name + "n"), 1u);
}

TEST_F(Journal, AFileInTheRootIsInAFolderThatExists)
{
    EXPECT_EQ(VxJnlPathSet("\\journal-of-a-test"), 0u);
    test::Environment map("VX_DRIVE_MAP", ("J=" + folder.native().string()).c_str());
    EXPECT_EQ(VxJnlPathSet("J:\\a.log"), 0u);
    EXPECT_EQ(VxJnlPrint("x"), 0u);
    EXPECT_EQ(folder.read("a.log"), stamp() + "x\r\n");
}

TEST_F(Journal, TheSessionKnowsTheFilesItWrote)
{
    setPath("a.log");
    EXPECT_EQ(session::journal.firstWrite, 1);
    VxJnlPrint("1");
    EXPECT_EQ(session::journal.firstWrite, 0);
    setPath("A.LOG");
    EXPECT_EQ(session::journal.firstWrite, 0) << "the same path in other case is the same journal";
    EXPECT_EQ(session::journal.path, folder.text("a.log"));
    setPath("b.log");
    EXPECT_EQ(session::journal.firstWrite, 1);
    VxJnlPrint("2");
    setPath("a.log");
    EXPECT_EQ(session::journal.firstWrite, 0);
    EXPECT_EQ(session::journal.fileCount, 2);
    EXPECT_EQ(session::journal.files->text, folder.text("b.log"));
    EXPECT_EQ(VxJnlExit(), 0u);
    EXPECT_EQ(session::journal.files, nullptr);
    EXPECT_STREQ(session::journal.path, "");
    EXPECT_EQ(session::journal.firstWrite, 1);
}

TEST_F(Journal, BeyondAThousandFilesTheSessionSaysSoAndStillWrites)
{
    setPath("a.log");
    for (int32_t count : {1000, 1001}) {
        session::journal.fileCount = count;
        session::journal.firstWrite = 1;
        test::CapturedOutput output(stderr);
        EXPECT_EQ(VxJnlPrint("x"), 0u);
        EXPECT_EQ(output.text(), count == 1000 ? "" : "Too many journal files in this session.\n");
        EXPECT_EQ(session::journal.fileCount, 1001);
        EXPECT_EQ(session::journal.firstWrite, 0);
    }
    EXPECT_EQ(folder.read("a.log"), stamp() + "x\r\nx\r\n");
}

TEST_F(Journal, AFileHeldByAnotherProcessIsLeftAlone)
{
    folder.write("a.log", "theirs");
    setPath("a.log");
    FILE *held = nullptr;
    ASSERT_EQ(os::openFile(folder.text("a.log").c_str(), "a", held), os::Error::none);
    EXPECT_EQ(VxJnlPrint("x"), 1u);
    fclose(held);
    EXPECT_EQ(VxJnlPrint("x"), 0u);
    EXPECT_EQ(folder.read("a.log"), "theirsx\r\n");
}

TEST_F(Journal, AWriteThatTheDiskDoesNotTakeIsTold)
{
    ASSERT_EQ(VxJnlPathSet("\\dev\\full"), 0u);
    EXPECT_EQ(VxJnlPrint("x"), 1u);
    EXPECT_STREQ(session::journal.path, "\\dev\\full");
}

TEST_F(Journal, EveryRefusalLeavesWholeLinesOnly)
{
    setPath("a.log");
    std::string path = session::journal.path;
    const char line[] = "a line that is too long for the string itself";
    for (auto [kind, verb] : {std::pair{fault::Kind::allocation, (const char *)nullptr},
                              {fault::Kind::verb, "openFile"},
                              {fault::Kind::verb, "localTime"}}) {
        fs::remove(folder.native() / "a.log");
        session::journal.firstWrite = 1;
        uint32_t result = 0;
        test::eachRefusal(
            kind, verb, [&] { result = VxJnlPrint(line); },
            [&](bool refused) {
                std::string whole = stamp() + line + "\r\n";
                bool there = fs::exists(folder.native() / "a.log");
                EXPECT_EQ(there ? folder.read("a.log") : "", result == 0 ? whole : "");
                EXPECT_TRUE(refused || result == 0);
                EXPECT_EQ(session::journal.path, path);
                if (there)
                    fs::remove(folder.native() / "a.log");
            });
    }
    EXPECT_EQ(session::journal.firstWrite, 0);
}

TEST_F(Journal, LinesOfTwoProcessesNeverMix)
{
    setPath("a.log");
    VxJnlPrint("start");
    auto writeMany = [](const char *line) {
        for (int written = 0; written < 200;)
            written += VxJnlPrint(line) == 0;
        return true;
    };
    {
        test::Child other([&] { return writeMany(std::string(9000, 'b').c_str()); });
        writeMany(std::string(9000, 'a').c_str());
        EXPECT_TRUE(other.succeeded());
    }
    std::string text = folder.read("a.log").substr(stamp().size() + 7);
    ASSERT_EQ(text.size(), 400u * 9002);
    for (size_t i = 0; i < text.size(); i += 9002)
        ASSERT_EQ(text.substr(i, 9002), std::string(9000, text[i]) + "\r\n");
}

}
