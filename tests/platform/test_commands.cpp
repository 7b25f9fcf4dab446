#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/os/fault.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/captured_output.h"
#include "tests/support/each_refusal.h"
#include "tests/support/error_log.h"
#include "vx/sys.h"

using namespace vx;
using Events = std::vector<test::RecordedEvents::Event>;

namespace {

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

class Command : public test::StartedToolkit {
protected:
    void TearDown() override
    {
        EXPECT_EQ(standardError(), before_);
        StartedToolkit::TearDown();
    }

    test::TempFolder folder;
    test::RecordedEvents log;

private:
    std::pair<dev_t, ino_t> before_ = standardError();
};

TEST_F(Command, GivesItsResultAndLogsItsErrorsWhenItFailed)
{
    EXPECT_EQ(VxSysCmd("true", 0), 0);
    EXPECT_EQ(VxSysCmd("echo said >&2", 0), 0);
    EXPECT_EQ(VxSysCmd("exit 7", 0), 7);
    EXPECT_EQ(log.events, Events{});
    EXPECT_EQ(VxSysCmd("printf 'one\\ntwo %%s' >&2; exit 3", 0), 3);
    EXPECT_EQ(log.events, (Events{{3, "Tools", "one\ntwo %s"}}));
    EXPECT_EQ(VxSysCmd("kill -9 $$", 0), 128 + 9);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VxSysCmd("/no/such/program", 0), 127);
    EXPECT_NE(log.events.back().text.find("/no/such/program"), std::string::npos);
}

TEST_F(Command, Upto511BytesOfItsErrorsAreLogged)
{
    EXPECT_EQ(VxSysCmd(writing(0, 2).c_str(), 0), 2);
    EXPECT_EQ(log.events, Events{});
    EXPECT_EQ(VxSysCmd(writing(511, 2).c_str(), 0), 2);
    EXPECT_EQ(log.events, (Events{{3, "Tools", std::string(511, 'x')}}));
    EXPECT_EQ(VxSysCmd(writing(512, 0).c_str(), 0), 0);
    EXPECT_EQ(VxSysCmd(writing(100000, 0).c_str(), 0), 0) << "more than a pipe holds";
    EXPECT_EQ(log.events.size(), 1u);
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

TEST_F(Command, OutputGoesToAFileInTheTemporaryFolder)
{
    std::filesystem::create_directory(folder.native() / "a b'c");
    for (std::string name : {folder.text("a b'c"), (folder.native() / "a b'c").string()})
        for (int32_t redirect : {1, 2, 3, 5}) {
            test::Environment temp("TEMP", name.c_str());
            EXPECT_EQ(VxSysCmd(("echo " + std::to_string(redirect)).c_str(), redirect), 0);
            EXPECT_EQ(folder.read("a b'c/nulls"), std::to_string(redirect) + "\n");
        }
    test::CapturedOutput output;
    EXPECT_EQ(VxSysCmd("echo plain", 0), 0);
    EXPECT_EQ(output.text(), "plain\n");
}

TEST_F(Command, WithoutATemporaryFolderOutputGoesToTheCurrentOne)
{
    test::Environment temp("TEMP", nullptr);
    std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder.native());
    int32_t result = VxSysCmd("echo here", 1);
    std::filesystem::current_path(here);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(folder.read("nulls"), "here\n");
}

TEST_F(Command, AStepThatFailsIsReportedAndStandardErrorIsBack)
{
    auto before = standardError();
    test::Environment temp("TEMP", folder.native().c_str());
    int64_t second = 2'000'000'000;
    for (fault::Kind kind : {fault::Kind::verb, fault::Kind::allocation}) {
        int32_t result = -1;
        test::eachRefusal(
            kind, nullptr, [&] { result = VxSysCmd("echo failed >&2; exit 5", 1); },
            [&](bool refused) {
                EXPECT_EQ(result, refused ? 1 : 5);
                EXPECT_EQ(reported(19), refused);
                EXPECT_EQ(standardError(), before);
                os::setTestClock(++second * 1'000'000); // else the next error repeats this one
            });
        EXPECT_EQ(result, 5);
    }
}

TEST_F(Command, InAHiddenShellShowsNothingAndReadsNothing)
{
    test::Environment shell("COMSPEC", nullptr);
    std::string file = (folder.native() / "out").string();
    int32_t code = -1;
    test::CapturedOutput output(stderr);
    EXPECT_EQ(
        VxSysCmdHddn(("read line; echo \"<$line> $0\" > " + file + "; echo seen >&2; exit 4").c_str(), &code),
        0u);
    EXPECT_EQ(code, 4);
    EXPECT_EQ(folder.read("out"), "<> /bin/sh\n");
    EXPECT_EQ(output.text(), "");
}

TEST_F(Command, InAHiddenShellRunsInTheOneThatIsNamed)
{
    folder.write("shell", "#!/bin/sh\necho \"$1 $2\" > " + (folder.native() / "out").string() + "\n");
    std::filesystem::permissions(folder.native() / "shell", std::filesystem::perms(0755));
    test::Environment shell("COMSPEC", folder.text("shell").c_str());
    EXPECT_EQ(VxSysCmdHddn("the command", nullptr), 0u);
    EXPECT_EQ(folder.read("out"), "-c the command\n");
    test::Environment missing("COMSPEC", "\\no\\such\\shell");
    int32_t code = 77;
    EXPECT_EQ(VxSysCmdHddn("true", &code), 1u);
    EXPECT_EQ(code, 77);
}

}
