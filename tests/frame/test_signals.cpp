#include "vx/tools.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/frame/running_toolkit.h"
#include "tests/support/captured_output.h"
#include "vx/escape.h"

using namespace vx;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Outcome {
    int status;
    std::string output; ///< what the child wrote to standard error
};

/** Run `body` in a child that ends with 0 when `body` comes back. */
Outcome inChild(const std::function<void()> &body)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {-1, "no pipe"};
    pid_t child = fork();
    if (child == 0) {
        rlimit none = {};
        setrlimit(RLIMIT_CORE, &none);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        body();
        _exit(0);
    }
    close(ends[1]);
    Outcome out = {-1, ""};
    char piece[512];
    for (ssize_t n; (n = read(ends[0], piece, sizeof piece)) > 0;)
        out.output.append(piece, static_cast<size_t>(n));
    close(ends[0]);
    waitpid(child, &out.status, 0);
    return out;
}

size_t count(const std::string &text, const std::string &piece)
{
    size_t n = 0;
    for (size_t at = 0; (at = text.find(piece, at)) != text.npos; at += piece.size())
        ++n;
    return n;
}

void say(const char *text)
{
    [[maybe_unused]] ssize_t n = write(STDERR_FILENO, text, std::char_traits<char>::length(text));
}

constexpr const char *announced = "\nA fatal signal was received.\n";

/** The toolkit is started, but without its watch: each child decides for itself. */
class FatalSignals : public testing::Test {
protected:
    FatalSignals() : disabled_("VX_SIG_DISABLE", nullptr)
    {
        EXPECT_TRUE(host_.prepare());
        {
            test::Environment disabled("VX_SIG_DISABLE", "1");
            test::CapturedOutput output;
            EXPECT_EQ(VxToolsInit(), 0U);
            EXPECT_EQ(output.text(), "Signal handlers are not installed because VX_SIG_DISABLE is set.\n");
        }
    }
    ~FatalSignals() override { VxSigDelAllCalls(); }

private:
    test::BeforeStart host_;
    test::Environment disabled_;
};

TEST_F(FatalSignals, EachIsAnnouncedRunsTheCallBacksInOrderAndThenTakesItsCourse)
{
    VxSigAddCall([] { say("<one>"); });
    VxSigAddCall([] { say("<two>"); });
    for (int number : {SIGINT, SIGILL, SIGABRT, SIGFPE, SIGSEGV, SIGTERM}) {
        Outcome plain = inChild([number] { raise(number); });
        Outcome watched = inChild([number] {
            if (VxSigInit() == 0)
                raise(number);
        });
        EXPECT_THAT(watched.output, HasSubstr(std::string(announced) + "<one><two>")) << number;
        EXPECT_EQ(watched.status, plain.status) << number;
        EXPECT_NE(watched.status, 0) << number;
    }
}

TEST_F(FatalSignals, AHostsHandlerFromBeforeTakesOver)
{
    Outcome outcome = inChild([] {
        signal(SIGTERM, [](int) {
            say("<host>");
            _exit(42);
        });
        VxSigInit();
        raise(SIGTERM);
    });
    EXPECT_EQ(outcome.output, std::string(announced) + "<host>");
    EXPECT_TRUE(WIFEXITED(outcome.status));
    EXPECT_EQ(WEXITSTATUS(outcome.status), 42);
}

TEST_F(FatalSignals, ASecondWatchIsNotTakenForTheHandlerFromBefore)
{
    VxSigAddCall([] { say("<call>"); });
    Outcome outcome = inChild([] {
        VxSigInit();
        VxSigInit();
        raise(SIGTERM);
    });
    EXPECT_EQ(outcome.output, std::string(announced) + "<call>");
    EXPECT_TRUE(WIFSIGNALED(outcome.status));
}

TEST_F(FatalSignals, ACallBackThatCrashesEndsTheProcessAndRunsOnce)
{
    for (int number : {SIGSEGV, SIGABRT}) {
        static int next;
        next = number;
        VxSigDelAllCalls();
        VxSigAddCall([] {
            say("<call>");
            raise(next);
        });
        Outcome outcome = inChild([] {
            VxSigInit();
            raise(SIGTERM);
        });
        EXPECT_EQ(count(outcome.output, "<call>"), 1U) << outcome.output;
        EXPECT_EQ(count(outcome.output, announced), 1U);
        EXPECT_NE(outcome.status, 0);
    }
}

int32_t overflow(int32_t depth)
{
    volatile char used[4096];
    used[0] = static_cast<char>(depth);
    return depth == -1 ? 0 : overflow(depth + 1) + used[0];
}

TEST_F(FatalSignals, AStackOverflowIsSurvivedLongEnoughToSaySo)
{
    VxSigAddCall([] { say("<call>"); });
    Outcome outcome = inChild([] {
        VxSigInit();
        _exit(overflow(0) & 1);
    });
    EXPECT_THAT(outcome.output, HasSubstr(std::string(announced) + "<call>"));
    EXPECT_NE(outcome.status, 0);
}

TEST_F(FatalSignals, NothingIsWatchedWhenTheEnvironmentSaysSo)
{
    test::Environment disabled("VX_SIG_DISABLE", "");
    test::CapturedOutput output;
    EXPECT_EQ(VxSigInit(), 0U);
    Outcome outcome = inChild([] { raise(SIGTERM); });
    EXPECT_THAT(outcome.output, Not(HasSubstr(announced)));
    EXPECT_TRUE(WIFSIGNALED(outcome.status));
}

}
