#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "frame/error_log.h"
#include "platform/os/os.h"
#include "session/journal.h"
#include "talm/base.hpp"
#include "tests/session/started_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/child.h"
#include "tests/support/each_refusal.h"
#include "tests/support/options.h"
#include "vx/journal.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

struct Journal : test::StartedToolkit {
    static void hostKeepsIt(int32_t (*answer)())
    {
        HESKET::Talm::Ap::Base::Instance().SetFunction(41, reinterpret_cast<void *>(answer));
    }

    uint32_t setPath(const std::string &name) { return VxJnlPathSet(folder.text(name).c_str()); }

    std::string content(const char *name = "a.log") const
    {
        return fs::exists(folder.native() / name) ? folder.read(name) : "missing";
    }

    /** The line that a journal made now starts with. */
    static std::string stamp()
    {
        os::CalendarTime t;
        EXPECT_EQ(os::localTime(os::wallSeconds(), t), os::Error::none);
        char line[64];
        snprintf(line, sizeof line, "[%04d-%02d-%02d %02d:%02d:%02d] log start!\r\n", t.year, t.month, t.day,
                 t.hour, t.minute, t.second);
        return line;
    }

    test::Options options;
    test::TempFolder folder;
};

TEST_F(Journal, LinesFollowTheStampThatOnlyANewFileHas)
{
    EXPECT_EQ(VxJnlPrint("nowhere yet"), 0u);
    ASSERT_EQ(setPath("a.log"), 0u);
    for (const char *line : {"first", "", static_cast<const char *>(nullptr), "50% \xE9\n"})
        EXPECT_EQ(VxJnlPrint(line), 0u);
    EXPECT_EQ(content(), stamp() + "first\r\n\r\n50% \xE9\n\r\n");
    folder.write("b.log", "old");
    setPath("b.log");
    VxJnlPrint("new");
    EXPECT_EQ(content("b.log"), "oldnew\r\n");
}

TEST_F(Journal, AnOversizedFileStartsAnewWithoutAStamp)
{
    setPath("a.log");
    folder.write("a.log", "x");
    fs::resize_file(folder.native() / "a.log", 100 * 1048576);
    VxJnlPrint("y");
    EXPECT_EQ(fs::file_size(folder.native() / "a.log"), 100u * 1048576 + 3) << "the limit itself is allowed";
    VxJnlPrint("z");
    EXPECT_EQ(content(), "z\r\n");
    options.values["SessionJournalSize"] = "0.000004";
    folder.write("a.log", "1234");
    VxJnlPrint("5");
    EXPECT_EQ(content(), "12345\r\n");
    VxJnlPrint("6");
    EXPECT_EQ(content(), "6\r\n");
}

TEST_F(Journal, ABlankPathTurnsItOffUnlessTheHostKeepsIt)
{
    setPath("a.log");
    hostKeepsIt([] { return 1; });
    EXPECT_EQ(VxJnlPathSet(" "), 0u);
    VxJnlPrint("kept");
    hostKeepsIt([] { return 0; });
    EXPECT_EQ(VxJnlPathSet(" "), 0u);
    VxJnlPrint("off");
    hostKeepsIt(nullptr);
    setPath("a.log");
    EXPECT_EQ(VxJnlPathSet(""), 0u);
    VxJnlPrint("off");
    EXPECT_EQ(content(), stamp() + "kept\r\n");
    EXPECT_EQ(VxJnlPathSet(nullptr), 1u);
}

TEST_F(Journal, PathsThatAreNoneAreRefusedAndTheJournalStays)
{
    std::string longest(255 - folder.text().size() - 1, 'n');
    ASSERT_EQ(setPath(longest), 0u);
    folder.write("file", "");
    struct {
        std::string path;
        std::string error;
    } refused[] = {{folder.text("none\\a.log"), "The directory " + folder.text("none") + " does not exist."},
                   {folder.text("file\\a.log"), ""}, // the same error, which is filed once
                   {folder.text(longest + "n"), "At most 255 characters"},
                   {"$VX_NO_SUCH_VARIABLE\\a", "Unable to resolve"}};
    for (const auto &each : refused) {
        EXPECT_EQ(VxJnlPathSet(each.path.c_str()), 1u);
        EXPECT_NE(std::string(frame::errorState().pending.back().text).find(each.error), std::string::npos);
    }
    EXPECT_EQ(VxJnlPrint("x"), 0u);
    EXPECT_EQ(content(longest.c_str()), stamp() + "x\r\n");
    EXPECT_EQ(VxJnlPathSet("\\journal-of-a-test"), 0u) << "a root is a folder";
    test::Environment map("VX_DRIVE_MAP", ("J=" + folder.native().string()).c_str());
    EXPECT_EQ(VxJnlPathSet("J:\\a.log"), 0u);
}

TEST_F(Journal, FilesInTurnAreKnownAndAFolderMayGoAndComeBack)
{
    folder.write("d/b.log", "");
    auto isNew = [&](const char *path) {
        EXPECT_EQ(setPath(path), 0u);
        int32_t first = session::journal.firstWrite;
        EXPECT_EQ(VxJnlPrint(path), 0u);
        return first;
    };
    EXPECT_EQ(isNew("a.log"), 1);
    EXPECT_EQ(isNew("A.LOG"), 0) << "in other case it is the same journal";
    EXPECT_EQ(isNew("d\\b.log"), 1);
    EXPECT_EQ(isNew("a.log"), 0);
    EXPECT_EQ(isNew("d\\b.log"), 0);
    EXPECT_EQ(session::journal.fileCount, 2);
    EXPECT_EQ(session::journal.files->text, folder.text("d\\b.log")) << "the newest first";
    EXPECT_EQ(content(), stamp() + "a.log\r\nA.LOG\r\na.log\r\n");

    fs::rename(folder.native() / "d", folder.native() / "e");
    EXPECT_EQ(VxJnlPrint("lost"), 1u);
    fs::rename(folder.native() / "e", folder.native() / "d");
    EXPECT_EQ(VxJnlPrint("back"), 0u);
    EXPECT_EQ(content("d/b.log"), "d\\b.log\r\nd\\b.log\r\nback\r\n");

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
    EXPECT_EQ(content(), stamp() + "x\r\nx\r\n");
}

TEST_F(Journal, EveryRefusalLeavesTheOldContentOrTheNew)
{
    setPath("a.log");
    std::string path = session::journal.path;
    const std::string line = "a line that is too long for the string itself";
    // Of a missing file, one that grows and one that is too large.
    for (std::string old : {"missing", "old\r\n", "too large\r\n"})
        for (fault::Kind kind : {fault::Kind::allocation, fault::Kind::verb}) {
            options.values["SessionJournalSize"] = old[0] == 't' ? "0" : "1";
            std::string whole = (old[0] == 'm' ? stamp() : old[0] == 'o' ? old : "") + line + "\r\n";
            auto reset = [&] {
                fs::remove(folder.native() / "a.log");
                if (old[0] != 'm')
                    folder.write("a.log", old);
                session::journal.firstWrite = 1;
            };
            reset();
            uint32_t result = 0;
            test::eachRefusal(
                kind, nullptr, [&] { result = VxJnlPrint(line.c_str()); },
                [&](bool refused) {
                    EXPECT_EQ(content(), result == 0 ? whole : old);
                    EXPECT_TRUE(refused || result == 0);
                    EXPECT_EQ(session::journal.path, path);
                    reset();
                });
        }
}

TEST_F(Journal, ADiskThatIsFullAtAnyByteLeavesTheOldContent)
{
    for (std::string old : {"missing", "old\r\n", "too large\r\n"}) {
        options.values["SessionJournalSize"] = old[0] == 't' ? "0" : "1";
        std::string whole = (old[0] == 'm' ? stamp() : old[0] == 'o' ? old : "") + "a line\r\n";
        EXPECT_TRUE(test::inChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            bool right = true;
            for (size_t room = 0; room <= whole.size(); ++room) {
                fs::remove(folder.native() / "a.log");
                if (old[0] != 'm')
                    folder.write("a.log", old);
                setPath("a.log");
                rlimit limit{room, RLIM_INFINITY};
                setrlimit(RLIMIT_FSIZE, &limit);
                uint32_t result = VxJnlPrint("a line");
                limit.rlim_cur = RLIM_INFINITY;
                setrlimit(RLIMIT_FSIZE, &limit);
                right =
                    right && content() == (result ? old : whole) && (result == 0) == (room == whole.size());
            }
            return right;
        })) << old;
    }
    ASSERT_EQ(VxJnlPathSet("\\dev\\full"), 0u);
    EXPECT_EQ(VxJnlPrint("x"), 1u);
    EXPECT_STREQ(session::journal.path, "\\dev\\full");
}

TEST_F(Journal, LinesOfTwoProcessesNeverMix)
{
    setPath("a.log");
    VxJnlPrint("start");
    FILE *held = nullptr;
    ASSERT_EQ(os::openFile(folder.text("a.log").c_str(), "a", held), os::Error::none);
    EXPECT_EQ(VxJnlPrint("x"), 1u) << "another process is writing";
    fclose(held);
    auto writeMany = [](char letter) {
        std::string line(9000, letter);
        for (int written = 0; written < 100;)
            written += VxJnlPrint(line.c_str()) == 0;
        return true;
    };
    {
        test::Child other([&] { return writeMany('b'); });
        writeMany('a');
        EXPECT_TRUE(other.succeeded());
    }
    std::string text = content().substr(stamp().size() + 7);
    ASSERT_EQ(text.size(), 200u * 9002);
    for (size_t i = 0; i < text.size(); i += 9002)
        ASSERT_EQ(text.substr(i, 9002), std::string(9000, text[i]) + "\r\n");
}

}
