#include <sys/resource.h>
#include <csignal>

#include "frame/error_log.h"
#include "session/journal.h"
#include "tests/session/started_toolkit.h"
#include "vx/journal.h"

using namespace vx;

namespace {

struct Journal : test::StartedToolkit {
    uint32_t setPath(const std::string &name) { return VxJnlPathSet(folder.text(name).c_str()); }

    std::string content(const char *name = "a.log") const
    {
        return fs::exists(folder.native() / name) ? folder.read(name) : "missing";
    }

    /** The line that a journal made now starts with. */
    static std::string stamp()
    {
        os::CalendarTime t;
        os::localTime(os::wallSeconds(), t);
        char line[64];
        snprintf(line, sizeof line, "[%04d-%02d-%02d %02d:%02d:%02d] log start!\r\n", t.year, t.month, t.day,
                 t.hour, t.minute, t.second);
        return line;
    }

    test::Options options;
    test::TempFolder folder;
};

TEST_F(Journal, LinesFollowTheStampThatOnlyANewFileHasUpToTheSizeLimit)
{
    ASSERT_EQ(setPath("a.log"), 0u);
    for (const char *line : {"first", "", static_cast<const char *>(nullptr), "50% \xE9\n"})
        EXPECT_EQ(VxJnlPrint(line), 0u);
    EXPECT_EQ(content(), stamp() + "first\r\n\r\n50% \xE9\n\r\n");
    options.values["SessionJournalSize"] = "0.000003814697265625"; // 4 bytes
    folder.write("a.log", "1234");
    VxJnlPrint("5");
    EXPECT_EQ(content(), "12345\r\n") << "the limit itself is allowed";
    VxJnlPrint("6");
    EXPECT_EQ(content(), "6\r\n");
}

TEST_F(Journal, ABlankPathTurnsItOffUnlessTheHostKeepsIt)
{
    for (int32_t (*answer)() : {+[] { return 1; }, +[] { return 0; }, static_cast<int32_t (*)()>(nullptr)}) {
        test::Host host;
        host(41, answer);
        setPath("a.log");
        EXPECT_EQ(VxJnlPathSet(" "), 0u);
        EXPECT_EQ(VxJnlPrint("kept"), 0u);
        EXPECT_EQ(content(), stamp() + "kept\r\n");
    }
}

TEST_F(Journal, PathsThatAreNoneAreRefusedAndTheJournalStays)
{
    std::string longest(255 - folder.text().size() - 1, 'n');
    ASSERT_EQ(setPath(longest), 0u);
    EXPECT_EQ(setPath(longest + "n"), 1u);
    EXPECT_EQ(setPath("none\\a"), 1u);
    EXPECT_EQ(frame::errorState().pending.back().text,
              "The directory " + folder.text("none") + " does not exist.");
    EXPECT_EQ(VxJnlPathSet("$VX_NO_SUCH_VARIABLE\\a"), 1u);
    VxJnlPrint("x");
    EXPECT_EQ(content(longest.c_str()), stamp() + "x\r\n");
    test::Environment map("VX_DRIVE_MAP", ("J=" + folder.native().string()).c_str());
    EXPECT_EQ(VxJnlPathSet("J:\\a.log") + VxJnlPathSet("\\journal-of-a-test"), 0u) << "roots are folders";
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
    EXPECT_EQ(isNew("a.log") + isNew("d\\b.log"), 0);
    EXPECT_EQ(session::journal.files->text, folder.text("d\\b.log")) << "the newest first";
    EXPECT_EQ(content(), stamp() + "a.log\r\nA.LOG\r\na.log\r\n");

    fs::rename(folder.native() / "d", folder.native() / "e");
    EXPECT_EQ(VxJnlPrint("lost"), 1u);
    fs::rename(folder.native() / "e", folder.native() / "d");
    session::journal.firstWrite = 1;
    session::journal.fileCount = 1001;
    test::CapturedOutput output(stderr);
    EXPECT_EQ(VxJnlPrint("back"), 0u);
    EXPECT_EQ(output.text(), "Too many journal files in this session.\n");
    EXPECT_EQ(content("d/b.log"), "d\\b.log\r\nd\\b.log\r\nback\r\n") << "and still written";
}

/** A journal that is missing, one that grows, and one that is too large. */
struct JournalContent : Journal, testing::WithParamInterface<std::string> {
    void SetUp() override
    {
        Journal::SetUp();
        options.values["SessionJournalSize"] = old == "large" ? "0" : "1";
        setPath("a.log");
        putBack();
    }

    void putBack()
    {
        fs::remove(folder.native() / "a.log");
        if (old != "missing")
            folder.write("a.log", old);
        session::journal.firstWrite = 1;
    }

    /** Whether there is the old content after a failure, else the new. */
    bool oldOrNew(uint32_t result) const
    {
        std::string before = old == "missing" ? stamp() : old == "old" ? old : "";
        return content() == (result ? old : before + line + "\r\n");
    }

    const std::string old = GetParam();
    const std::string line = "a line that is too long for the string itself";
};

INSTANTIATE_TEST_SUITE_P(Each, JournalContent, testing::Values("missing", "old", "large"));

TEST_P(JournalContent, IsTheOldOrTheNewWhateverIsRefused)
{
    uint32_t result = 0;
    auto print = [&] { result = VxJnlPrint(line.c_str()); };
    test::eachRefusal(print, [&](bool refused) {
        EXPECT_TRUE(oldOrNew(result) && (refused || result == 0)) << content();
        EXPECT_EQ(session::journal.path, folder.text("a.log"));
        putBack();
    });
}

TEST_P(JournalContent, IsTheOldOrTheNewOnADiskThatIsFullAtAnyByte)
{
    EXPECT_TRUE(test::inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{0, RLIM_INFINITY};
        uint32_t result = 1;
        for (; result != 0 && limit.rlim_cur < 200; ++limit.rlim_cur) {
            setrlimit(RLIMIT_FSIZE, &limit);
            result = VxJnlPrint(line.c_str());
            if (!oldOrNew(result))
                return false;
        }
        return result == 0 && limit.rlim_cur > line.size();
    }));
}

TEST_F(Journal, LinesOfTwoProcessesNeverMix)
{
    setPath("a.log");
    VxJnlPrint("start");
    EXPECT_TRUE(test::inChildren(2, [](int process) {
        std::string line(9000, "ab"[process]);
        for (int written = 0; written < 100;)
            written += VxJnlPrint(line.c_str()) == 0;
        return true;
    }));
    std::string text = content().substr(stamp().size() + 7);
    ASSERT_EQ(text.size(), 200u * 9002);
    for (size_t i = 0; i < text.size(); i += 9002)
        ASSERT_EQ(text.substr(i, 9002), std::string(9000, text[i]) + "\r\n");
}

}
