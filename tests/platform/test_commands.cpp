#include <filesystem>
#include <string>

#include <sys/stat.h>

#include "tests/session/started_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/each_refusal.h"
#include "tests/support/error_log.h"
#include "vx/sys.h"

using namespace vx;
using namespace vx::test;
namespace fs = std::filesystem;

namespace {

using Events = std::vector<RecordedEvents::Event>;

/** A command that writes so many bytes to standard error and ends with a code. */
std::string writing(int bytes, int code)
{
    return "head -c " + std::to_string(bytes) + " /dev/zero | tr '\\0' x >&2; exit " + std::to_string(code);
}

/** What standard error is: the file's number in the system. */
std::pair<dev_t, ino_t> standardError()
{
    struct stat status {};
    fstat(STDERR_FILENO, &status);
    return {status.st_dev, status.st_ino};
}

class Command : public StartedToolkit {
protected:
    void TearDown() override
    {
        EXPECT_EQ(standardError(), before_);
        StartedToolkit::TearDown();
    }

    TempFolder folder;
    RecordedEvents log;

private:
    std::pair<dev_t, ino_t> before_ = standardError();
};

TEST_F(Command, GivesItsResultAndLogsUpTo511BytesOfItsErrorsWhenItFailed)
{
    const std::tuple<std::string, int32_t, std::string> cases[] = { // with the result and what is logged
        {"true", 0, ""},          {"echo said >&2", 0, ""},
        {"exit 7", 7, ""},        {"printf 'one\\ntwo %%s' >&2; exit 3", 3, "one\ntwo %s"},
        {"kill -9 $$", 137, ""},  {writing(511, 2), 2, std::string(511, 'x')},
        {writing(0, 2), 2, ""},   {writing(512, 0), 0, ""},
        {writing(100000, 0), 0, ""}, // more than a pipe holds
    };
    for (const auto &[command, result, logged] : cases) {
        log.events.clear();
        EXPECT_EQ(VxSysCmd(command.c_str(), 0), result) << command;
        EXPECT_EQ(log.events, logged.empty() ? Events{} : (Events{{3, "Tools", logged}})) << command;
    }
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VxSysCmd("/no/such/program", 0), 127);
    EXPECT_NE(log.events.back().text.find("/no/such/program"), std::string::npos);
}

TEST_F(Command, MoreOfItsErrorsEndTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int bytes : {512, 100000})
        EXPECT_EXIT(VxSysCmd(writing(bytes, 1).c_str(), 0), testing::KilledBySignal(SIGABRT),
                    "more error text than is taken");
}

TEST_F(Command, AProgramThatGoesOnIsNotWaitedFor)
{
    EXPECT_EQ(VxSysCmd("sleep 20 >/dev/null & echo $! > /dev/stderr; exit 1", 0), 1);
    ASSERT_EQ(log.events.size(), 1u);
    kill(std::atoi(log.events[0].text.c_str()), SIGTERM);
}

TEST_F(Command, OutputGoesToAFileInTheTemporaryFolderElseInTheCurrentOne)
{
    fs::create_directory(folder.native() / "a b'c");
    for (std::string name : {folder.text("a b'c"), (folder.native() / "a b'c").string()})
        for (int32_t redirect : {1, 2, 3, 5}) {
            Environment temp("TEMP", name.c_str());
            EXPECT_EQ(VxSysCmd(("echo " + std::to_string(redirect)).c_str(), redirect), 0);
            EXPECT_EQ(folder.read("a b'c/nulls"), std::to_string(redirect) + "\n");
        }
    Environment temp("TEMP", nullptr);
    const fs::path here = fs::current_path();
    fs::current_path(folder.native());
    EXPECT_EQ(VxSysCmd("echo here", 1), 0);
    fs::current_path(here);
    EXPECT_EQ(folder.read("nulls"), "here\n");
    CapturedOutput output;
    EXPECT_EQ(VxSysCmd("echo plain", 0), 0);
    EXPECT_EQ(output.text(), "plain\n");
}

TEST_F(Command, AStepThatFailsIsReportedAndStandardErrorIsBack)
{
    auto before = standardError();
    Environment temp("TEMP", folder.native().c_str());
    int64_t second = 2'000'000'000;
    int32_t result = -1;
    for (fault::Kind kind : {fault::Kind::verb, fault::Kind::allocation})
        eachRefusal(
            kind, nullptr, [&] { result = VxSysCmd("echo failed >&2; exit 5", 1); },
            [&](bool refused) {
                EXPECT_EQ(result, refused ? 1 : 5);
                EXPECT_EQ(reported(19), refused);
                EXPECT_EQ(standardError(), before);
                os::setTestClock(++second * 1'000'000); // else the next error repeats this one
            });
}

TEST_F(Command, InAHiddenShellShowsAndReadsNothingAndRunsInTheOneThatIsNamed)
{
    const std::string file = (folder.native() / "out").string();
    int32_t code = 77;
    {
        Environment missing("COMSPEC", "\\no\\such\\shell");
        EXPECT_EQ(VxSysCmdHddn("true", &code), 1u);
        EXPECT_EQ(code, 77);
    }
    Environment none("COMSPEC", nullptr);
    CapturedOutput output(stderr);
    const std::string command = "read line; echo \"<$line> $0\" > " + file + "; echo seen >&2; exit 4";
    EXPECT_EQ(VxSysCmdHddn(command.c_str(), &code), 0u);
    EXPECT_EQ(code, 4);
    EXPECT_EQ(folder.read("out") + output.text(), "<> /bin/sh\n");
    folder.write("shell", "#!/bin/sh\necho \"$1 $2\" > " + file + "\n");
    fs::permissions(folder.native() / "shell", fs::perms(0755));
    Environment named("COMSPEC", folder.text("shell").c_str());
    EXPECT_EQ(VxSysCmdHddn("the command", nullptr), 0u);
    EXPECT_EQ(folder.read("out"), "-c the command\n");
}

}
