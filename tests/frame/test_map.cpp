#include "vx/msg.h"

#include "frame/map_state.h"
#include "tests/support/test.h"

using namespace vx;

namespace {

struct Maps : testing::Test {
    Maps() { folder_.write("file", "contents"); }
    ~Maps() override
    {
        while (!frame::maps().open.empty())
            VxUnMap(frame::maps().open.back().view);
    }

    test::TempFolder folder_;
    std::string file_ = folder_.text("file");
};

TEST_F(Maps, AFileIsSeenThroughItsViewAndWhatIsWrittenReachesIt)
{
    for (int32_t mode : {0, 1, 2}) {
        SCOPED_TRACE(mode);
        folder_.write("file", "contents");
        int64_t size = 0;
        auto view = static_cast<char *>(VxMap(file_.c_str(), mode, &size));
        ASSERT_TRUE(view && size == 8);
        EXPECT_EQ(mode == 1 ? "contents" : std::string(view, 8), "contents");
        if (mode != 0)
            view[0] = 'C';
        EXPECT_EQ(VxUnMap(view), 0u);
        EXPECT_EQ(VxUnMap(view), 1u);
        EXPECT_EQ(folder_.read("file"), mode == 0 ? "contents" : "Contents");
    }
}

TEST_F(Maps, WhatCannotBeMappedGivesNull)
{
    folder_.write("empty", "");
    int64_t size = -7;
    for (int32_t mode : {0, 1, 2})
        EXPECT_EQ(VxMap(folder_.text("empty").c_str(), mode, &size), nullptr);
    EXPECT_EQ(VxMap(folder_.text("missing").c_str(), 0, &size), nullptr);
    EXPECT_FALSE(fs::exists(folder_.native() / "missing"));
    EXPECT_EQ(VxMap(nullptr, 0, &size), nullptr);
    EXPECT_EQ(VxMap(file_.c_str(), 0, nullptr), nullptr);
    EXPECT_EQ(size, -7);
    EXPECT_EQ(VxUnMap(&size), 1u);
}

TEST_F(Maps, ThereIsRoomFor1023)
{
    int64_t size = 0;
    for (int i = 0; i < 1023; ++i)
        ASSERT_NE(VxMap(file_.c_str(), 0, &size), nullptr);
    EXPECT_EQ(VxMap(file_.c_str(), 0, &size), nullptr);
    EXPECT_EQ(VxUnMap(frame::maps().open[500].view), 0u);
    EXPECT_NE(VxMap(file_.c_str(), 0, &size), nullptr);
}

TEST_F(Maps, ARefusalLeavesTheTableAsItWas)
{
    auto body = [&] {
        int64_t size = -7;
        void *view = VxMap(file_.c_str(), 0, &size);
        EXPECT_EQ(size, view ? 8 : -7);
        EXPECT_EQ(frame::maps().open.size(), view ? 1u : 0u);
        VxUnMap(view);
        EXPECT_TRUE(frame::maps().open.empty());
        frame::maps().open.shrink_to_fit();
    };
    frame::maps().open.shrink_to_fit();
    test::refusingEachAllocation(body);
    test::refusingEachVerb(body, "mapFile");
}

}
