#include "vx/msg.h"

#include <string>

#include <gtest/gtest.h>

#include "frame/modules.h"
#include "talm/base.hpp"
#include "tests/support/captured_output.h"
#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "vx/tools.h"

using namespace vx;
using HESKET::Talm::Ap::Base;

namespace {

struct Window {
    int calls;
    int32_t kind, style, result, answer;
    char text[100];
} window;

int32_t show(int32_t kind, int32_t style, const char *text, int32_t *answer)
{
    ++window.calls;
    window.kind = kind;
    window.style = style;
    std::snprintf(window.text, sizeof window.text, "%s", text);
    *answer = window.answer;
    return window.result;
}

class Messages : public testing::Test {
protected:
    Messages() : catalogue_(frame::modules().tools.messages)
    {
        VxMsgFree();
        window = {};
        VgMsgGuiIsUp = 1;
        Base::Instance().SetFunction(106, reinterpret_cast<void *>(show));
    }

    ~Messages() override
    {
        VgMsgGuiIsUp = 0;
        Base::Instance().SetFunction(106, nullptr);
        frame::modules().tools.messages = catalogue_;
        VxMsgFree();
    }

    /** A toolkit catalogue whose messages from 219 on are these lines. */
    void questions(const std::string &lines)
    {
        std::string file;
        for (int i = 0; i < 219; ++i)
            file += "x,filler\n";
        folder_.write("Tools.MSG", file + lines);
        VxMsgLoadFile(folder_.text("Tools.MSG").c_str(), &frame::modules().tools.messages);
    }

    test::TempFolder folder_;

private:
    int32_t catalogue_;
};

TEST_F(Messages, AMessageGoesToTheWindow)
{
    EXPECT_EQ(VxMessage("100%d"), 0u);
    EXPECT_EQ(window.kind, 1);
    EXPECT_EQ(window.style, 1);
    EXPECT_STREQ(window.text, "100%d");
    window.result = -3;
    EXPECT_EQ(VxMessage("again"), 1u);
    EXPECT_EQ(VxMessage(nullptr), 1u);
    EXPECT_EQ(window.calls, 2);
}

TEST_F(Messages, WithoutAWindowAMessageIsPrintedAndAQuestionAnsweredYes)
{
    test::CapturedOutput output;
    VgMsgGuiIsUp = 0;
    EXPECT_EQ(VxMessage("100%d"), 0u);
    VgMsgGuiIsUp = 1;
    Base::Instance().SetFunction(106, nullptr);
    EXPECT_EQ(VxMessage("absent"), 0u);
    EXPECT_EQ(VxMessage2(1), 0u);
    EXPECT_EQ(output.text(), "100%d\nabsent\n");
}

TEST_F(Messages, AQuestionIsAskedWithRealLineBreaksAndOnlyAPositiveAnswerIsYes)
{
    questions("219,zero\n220,Replace it?\\nThen it is gone.\n");
    for (auto [answer, failed, result] : {std::tuple{1, 0, 0u}, {0, 0, 1u}, {-1, 0, 1u}, {1, 1, 1u}}) {
        window.answer = answer;
        window.result = failed;
        EXPECT_EQ(VxMessage2(1), result) << answer << ", " << failed;
        EXPECT_EQ(window.kind, 2);
        EXPECT_STREQ(window.text, "Replace it?\nThen it is gone.");
    }
    for (int32_t number : {2, INT32_MAX, INT32_MIN}) {
        VxMessage2(number);
        EXPECT_STREQ(window.text, " ") << number;
    }
}

TEST_F(Messages, WithoutMemoryNothingIsAsked)
{
    questions("219,zero\n220,A question that is longer than any short text would be.\n");
    window.answer = 1;
    test::refusingEachAllocation([] {
        int before = window.calls;
        uint32_t result = VxMessage2(1);
        EXPECT_EQ(result, window.calls == before ? 1u : 0u);
    });
}

}
