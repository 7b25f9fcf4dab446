#include "vx/err.h"

#include <thread>

#include "frame/message_table.h"
#include "talm/base.hpp"
#include "tests/support/captured_output.h"
#include "tests/support/error_log.h"
#include "tests/support/faults.h"
#include "vx/msg.h"
#include "vx/tools.h"

using namespace vx;
using namespace vx::frame;
using HESKET::Talm::Ap::Base;

namespace {

int32_t yes()
{
    return 1;
}

int32_t no()
{
    return 0;
}

int actions = 0;

void act()
{
    ++actions;
}

class Display : public test::ErrorLog {
protected:
    Display() { VgActiveErrOccurred = 0; }
    ~Display() override
    {
        for (int32_t number : {28, 32, 33, 35})
            Base::Instance().SetFunction(number, nullptr);
        VgActiveErrOccurred = 0;
    }

    template <typename Function> static void host(int32_t number, Function *function)
    {
        Base::Instance().SetFunction(number, reinterpret_cast<void *>(function));
    }

    int64_t second_ = 3000;
};

TEST_F(Display, ErrorsWithTextAreNoted)
{
    VxErrLogMsg(1, 1, "", 0, "a warning");
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_EQ(VgActiveErrOccurred, 0);
    VxErrLogMsg(2, 0, "", 0, "an error");
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_EQ(VgActiveErrOccurred, 1);
    EXPECT_EQ(VxErrCnt(), 0);
    VgActiveErrOccurred = 0;
    VxErrLogMsg(3, -1, "", 0, "lower still");
    VxErrDisplay();
    EXPECT_EQ(VgActiveErrOccurred, 1);
}

TEST_F(Display, MissingTextsAreLookedUp)
{
    int32_t a = alertFile("1,0,one\n2,0,two", "A.ALERT");
    int32_t b = alertFile("1,0,", "B.ALERT");
    VxErrLogVa(a, 1, 0, "", 0, nullptr);
    VxErrLogVa(a, 2, 0, "", 0, nullptr);
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_EQ(VgActiveErrOccurred, 1);

    // An empty text is no error to show.
    VgActiveErrOccurred = 0;
    VxErrLogVa(b, 1, 0, "", 0, nullptr);
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_EQ(VgActiveErrOccurred, 0);
}

TEST_F(Display, ANumberNotFoundIsPrintedAndTheOthersGoOn)
{
    int32_t a = alertFile("1,0,one");
    VxErrLogVa(a, 7, 0, "", 0, "stale");
    VxErrLogVa(a, 8, 0, "", 0, nullptr);
    test::CapturedOutput output;
    EXPECT_EQ(VxErrDisplay(), 1u);
    EXPECT_EQ(output.text(), "Unable to get error 7.\nUnable to get error 8.\n");
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VgActiveErrOccurred, 0);
}

TEST_F(Display, AFileThatHasGoneKeepsTheList)
{
    int32_t a = alertFile("1,0,one", "A.ALERT"), b = alertFile("1,0,one", "B.ALERT");
    std::filesystem::remove(folder_.native() / "B.ALERT");
    VxErrLogMsg(5, 0, "", 0, "given");
    VxErrLogVa(a, 1, 0, "", 0, nullptr);
    VxErrLogVa(b, 1, 0, "", 0, nullptr);
    VxErrLogVa(12, 9, 0, "", 0, nullptr);
    {
        test::CapturedOutput output;
        EXPECT_EQ(VxErrDisplay(), 1u);
        EXPECT_EQ(output.text(), "Unable to access error file " + folder_.text("B.ALERT") + ".\n");
    }
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{5, 1, 1, 9}));
    EXPECT_EQ(VgActiveErrOccurred, 0);
    // What was looked up before is not looked up again.
    folder_.write("B.ALERT", "1,0,one");
    std::filesystem::remove(folder_.native() / "A.ALERT");
    test::CapturedOutput output;
    EXPECT_EQ(VxErrDisplay(), 1u);
    EXPECT_EQ(output.text(), "Unable to access error file .\n");
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{5, 1, 1, 9}));
}

TEST_F(Display, TheHostMayTakeTheNoteBackOrAct)
{
    const struct {
        int32_t (*active)(), (*refused)(), (*kept)();
        void (*action)();
        int32_t note, actions;
    } cases[] = {
        {yes, no, yes, act, 0, 0},     {yes, no, nullptr, act, 0, 0},     {yes, no, no, act, 1, 1},
        {yes, no, no, nullptr, 1, 0},  {no, no, yes, act, 1, 0},          {yes, yes, yes, act, 1, 0},
        {nullptr, no, yes, act, 1, 0}, {yes, nullptr, yes, act, 1, 0},
    };
    for (const auto &c : cases) {
        host(28, c.active);
        host(32, c.refused);
        host(33, c.kept);
        host(35, c.action);
        VgActiveErrOccurred = 1;
        actions = 0;
        EXPECT_EQ(VxErrDisplay(), 0u);
        EXPECT_EQ(VgActiveErrOccurred, c.note) << &c - cases;
        EXPECT_EQ(actions, c.actions) << &c - cases;
    }
    // Unless the event log does not check errors.
    EsSetLevel(6, 4, 0);
    VgActiveErrOccurred = 1;
    host(32, no);
    host(33, yes);
    host(28, yes);
    VxErrDisplay();
    EXPECT_EQ(VgActiveErrOccurred, 1);
    EXPECT_EQ(VxErrCheck(4), 0);
    EsSetLevel(6, 4, 1);
    EXPECT_EQ(VxErrCheck(4), 1);
}

TEST_F(Display, TheHostsFunctionsMayLog)
{
    host(28, +[]() -> int32_t {
        std::thread([] { VxErrLogMsg(1, 0, "", 0, "from the host"); }).join();
        return 1;
    });
    host(32, no);
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VgActiveErrOccurred, 1);
}

TEST_F(Display, LoggingGoesOnWhileErrorsAreShown)
{
    int32_t id = alertFile("1,0,one");
    std::thread logger([] {
        for (int32_t i = 0; i < 2000; ++i)
            VxErrLogMsg(100 + i, 0, "", 0, "number %d", i);
    });
    for (int32_t i = 0; i < 200; ++i) {
        VxErrLogVa(id, 1, 0, "", 0, nullptr);
        EXPECT_EQ(VxErrDisplay(), 0u);
        setSecond(2000 + i);
    }
    logger.join();
    VxErrDisplay();
    EXPECT_EQ(VxErrCnt(), 0);
}

TEST_F(Display, RefusedFilesAreReported)
{
    int32_t id = alertFile("1,0,one");
    test::CapturedOutput output;
    test::refusingEachVerb([&] {
        VxErrClear();
        setSecond(++second_);
        VxErrLogVa(id, 1, 0, "", 0, nullptr);
        uint32_t result = VxErrDisplay();
        EXPECT_EQ(result, static_cast<uint32_t>(VxErrCnt()));
    }, "openFile");
    EXPECT_EQ(output.text(), "Unable to access error file " + folder_.text("Test.ALERT") + ".\n");
}

TEST_F(Display, TheDefaultHookPrintsThroughTheCatalogue)
{
    VxMsgFree();
    int32_t id = -1;
    ASSERT_EQ(VxMsgLoadFile("Tools.MSG", &id), 0u);
    EXPECT_EQ(VxErrDefDspFun(), 0u);
    test::CapturedOutput output;
    for (int32_t severity : {-1, 0, 1, 2, 3})
        errorState().displayHook(0, severity, "100%d");
    EXPECT_EQ(output.text(), "Error: 100%d\nWarning: 100%d\nInformation: 100%d\n");
    VxMsgFree();
    EXPECT_EQ(VxErrSetDspFun(nullptr), 0u);
    EXPECT_EQ(errorState().displayHook, nullptr);
}

}
