#include "vx/msg.h"

#include "frame/modules.h"
#include "tests/support/test.h"
#include "vx/tools.h"

using namespace vx;

namespace {

struct Window {
    int calls;
    int32_t kind, result, answer;
    char text[100];
} window;

struct Messages : testing::Test {
    Messages() : catalogue_(frame::modules().tools.messages)
    {
        VxMsgFree();
        VxMsgLoadFile("Tools.MSG", &frame::modules().tools.messages);
        window = {};
        VgMsgGuiIsUp = 1;
        host_(106, [](int32_t kind, int32_t, const char *text, int32_t *answer) {
            window = {window.calls + 1, kind, window.result, window.answer, {}};
            std::strncpy(window.text, text, sizeof window.text - 1);
            *answer = window.answer;
            return window.result;
        });
    }

    ~Messages() override
    {
        VgMsgGuiIsUp = 0;
        frame::modules().tools.messages = catalogue_;
        VxMsgFree();
    }

    test::Host host_;

    int32_t catalogue_;
};

TEST_F(Messages, AMessageGoesToTheWindowElseItIsPrintedAndAQuestionAnsweredYes)
{
    test::CapturedOutput output;
    EXPECT_EQ(VxMessage("100%d"), 0u);
    EXPECT_EQ(window.kind, 1);
    EXPECT_STREQ(window.text, "100%d");
    window.result = -3;
    EXPECT_EQ(VxMessage("again"), 1u);
    VgMsgGuiIsUp = 0;
    EXPECT_EQ(VxMessage("no window"), 0u);
    VgMsgGuiIsUp = 1;
    host_(106, nullptr);
    EXPECT_EQ(VxMessage("no function"), 0u);
    EXPECT_EQ(VxMessage2(1), 0u);
    EXPECT_EQ(output.text(), "no window\nno function\n");
}

TEST_F(Messages, AQuestionIsAskedWithRealLineBreaksAndOnlyAPositiveAnswerIsYes)
{
    for (auto [answer, failed, result] : {std::tuple{1, 0, 0u}, {0, 0, 1u}, {-1, 0, 1u}, {1, 1, 1u}}) {
        window.answer = answer;
        window.result = failed;
        EXPECT_EQ(VxMessage2(1), result) << answer << ", " << failed;
        EXPECT_EQ(window.kind, 2);
        EXPECT_STREQ(window.text, "The file already exists.\nDo you want to replace it?");
    }
    for (int32_t number : {11, INT32_MAX, INT32_MIN}) {
        VxMessage2(number);
        EXPECT_STREQ(window.text, " ") << number;
    }
}

TEST_F(Messages, WithoutMemoryNothingIsAsked)
{
    window.answer = 1;
    test::refusingEachAllocation([] {
        int before = window.calls;
        uint32_t result = VxMessage2(1);
        EXPECT_EQ(result, window.calls == before ? 1u : 0u);
    });
}

}
