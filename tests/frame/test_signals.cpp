#include "vx/tools.h"

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/frame/running_toolkit.h"
#include "vx/escape.h"

using namespace vx;

namespace {

void say(const char *text)
{
    [[maybe_unused]] ssize_t n = write(STDERR_FILENO, text, std::char_traits<char>::length(text));
}

/** In a child: watch, and meet a signal that takes its usual course. */
void watchAndRaise(int number)
{
    rlimit none = {};
    setrlimit(RLIMIT_CORE, &none);
    // Where the tests run in the background, an interrupt is ignored from the start.
    if (number == SIGINT)
        signal(SIGINT, SIG_DFL);
    VxSigInit();
    raise(number);
}

/** The end by a signal, or by what a sanitizer makes of it. */
struct EndedBy {
    int number;

    bool operator()(int status) const
    {
        return WIFSIGNALED(status) ? WTERMSIG(status) == number : WEXITSTATUS(status) != 0;
    }
};

int32_t overflow(int32_t depth)
{
    volatile char used[4096];
    used[0] = static_cast<char>(depth);
    return depth == -1 ? 0 : overflow(depth + 1) + used[0];
}

/** The toolkit is started, but without its watch: each child decides for itself. */
struct FatalSignals : testing::Test {
    FatalSignals() : disabled_("VX_SIG_DISABLE", nullptr)
    {
        EXPECT_TRUE(host_.prepare());
        test::Environment disabled("VX_SIG_DISABLE", "1");
        test::CapturedOutput output;
        EXPECT_EQ(VxToolsInit(), 0U);
        EXPECT_EQ(output.text(), "Signal handlers are not installed because VX_SIG_DISABLE is set.\n");
    }
    ~FatalSignals() override { VxSigDelAllCalls(); }

    test::BeforeStart host_;
    test::Environment disabled_;
};

using FatalSignalsDeathTest = FatalSignals;

TEST_F(FatalSignalsDeathTest, EachIsAnnouncedRunsTheCallBacksInOrderAndThenTakesItsCourse)
{
    VxSigAddCall([] { say("<one>"); });
    VxSigAddCall([] { say("<two>"); });
    for (int number : {SIGINT, SIGILL, SIGABRT, SIGFPE, SIGSEGV, SIGTERM})
        EXPECT_EXIT(watchAndRaise(number), EndedBy{number}, "\nA fatal signal was received.\n<one><two>");
    EXPECT_EXIT(
        {
            VxSigInit();
            _exit(overflow(0) & 1);
        },
        EndedBy{SIGSEGV}, "\nA fatal signal was received.\n<one><two>")
        << "an overflow of the stack leaves none for the handler";
}

TEST_F(FatalSignalsDeathTest, AHostsHandlerFromBeforeTakesOver)
{
    EXPECT_EXIT(
        {
            signal(SIGTERM, [](int) {
                say("<host>");
                _exit(42);
            });
            VxSigInit(); // a second watch is not taken for the handler from before
            watchAndRaise(SIGTERM);
        },
        testing::ExitedWithCode(42), "^\nA fatal signal was received.\n<host>$");
}

TEST_F(FatalSignalsDeathTest, ACallBackThatCrashesEndsTheProcessAndRunsOnce)
{
    static int next;
    static bool again = false;
    VxSigAddCall([] {
        if (again)
            _exit(0);
        again = true;
        raise(next);
    });
    for (int number : {SIGSEGV, SIGABRT}) {
        next = number;
        EXPECT_EXIT(watchAndRaise(SIGTERM), EndedBy{number}, "\nA fatal signal was received.\n");
    }
}

}
