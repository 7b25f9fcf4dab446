#include "vx/err.h"

#include "tests/support/error_log.h"
#include "vx/tools.h"

using namespace vx;
using namespace vx::frame;

namespace {

template <int32_t answer> int32_t says()
{
    return answer;
}

constexpr auto yes = says<1>, no = says<0>;
int actions = 0;

struct Display : test::ErrorLog {
    Display() { VgActiveErrOccurred = 0; }
    ~Display() override { VgActiveErrOccurred = 0; }

    test::Host host;
};

TEST_F(Display, ErrorsWithTextAreNotedAlsoWhenTheTextIsLookedUp)
{
    const int32_t full = alertFile("1,0,one", "A.ALERT"), empty = alertFile("1,0,", "B.ALERT");
    for (auto [id, severity, text, noted] :
         {std::tuple{0, 0, "text", 1}, {0, 1, "text", 0}, {empty, 0, nullptr, 0}, {full, 0, nullptr, 1}}) {
        VgActiveErrOccurred = 0;
        VxErrLogVa(id, 1, severity, "", 0, text);
        EXPECT_EQ(VxErrDisplay(), 0u);
        EXPECT_EQ(VgActiveErrOccurred, noted) << id << ", " << severity;
        EXPECT_EQ(VxErrCnt(), 0);
        setSecond(2000 + id + severity);
    }
}

TEST_F(Display, ANumberNotFoundIsPrintedAndTheOthersGoOn)
{
    int32_t a = alertFile("1,0,one");
    VxErrLogVa(a, 7, 0, "", 0, "stale");
    VxErrLogVa(a, 8, 0, "", 0, nullptr);
    test::CapturedOutput output;
    EXPECT_EQ(VxErrDisplay(), 1u);
    EXPECT_EQ(output.text(), "Unable to get error 7.\nUnable to get error 8.\n");
    EXPECT_TRUE(VxErrCnt() == 0 && VgActiveErrOccurred == 0);
}

TEST_F(Display, AFileThatHasGoneKeepsTheListAndWhatWasLookedUp)
{
    int32_t a = alertFile("1,0,one", "A.ALERT"), b = alertFile("1,0,one", "B.ALERT");
    VxErrLogVa(a, 1, 0, "", 0, nullptr);
    VxErrLogVa(b, 1, 0, "", 0, nullptr);
    test::CapturedOutput output;
    fs::remove(folder_.native() / "B.ALERT");
    EXPECT_EQ(VxErrDisplay(), 1u);
    folder_.write("B.ALERT", "1,0,one");
    fs::remove(folder_.native() / "A.ALERT");
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_EQ(output.text(), "Unable to access error file " + folder_.text("B.ALERT") + ".\n");
    EXPECT_EQ(VgActiveErrOccurred, 1);
}

TEST_F(Display, TheHostMayTakeTheNoteBackOrAct)
{
    using Answer = int32_t (*)();
    const std::tuple<Answer, Answer, Answer, int32_t, int32_t> cases[] = {
        {yes, no, yes, 0, 0},
        {yes, no, no, 1, 1},
        {nullptr, no, yes, 1, 0},
        {yes, nullptr, yes, 1, 0},
    };
    for (auto [active, refused, kept, note, acted] : cases) {
        host(28, active), host(32, refused), host(33, kept);
        host(35, [] { ++actions; });
        VgActiveErrOccurred = 1;
        actions = 0;
        EXPECT_EQ(VxErrDisplay(), 0u);
        EXPECT_TRUE(VgActiveErrOccurred == note && actions == acted) << note << acted;
    }
}

TEST_F(Display, TheHostsFunctionsMayLog)
{
    host(28, []() -> int32_t {
        std::thread([] { VxErrLogMsg(1, 0, "", 0, "from the host"); }).join();
        return 1;
    });
    host(32, no);
    EXPECT_EQ(VxErrDisplay(), 0u);
    EXPECT_TRUE(VxErrCnt() == 0 && VgActiveErrOccurred == 1);
}

}
