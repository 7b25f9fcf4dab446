#include "tests/support/test.h"

using namespace vx;

namespace {

std::string folderOf(int32_t number)
{
    char text[260] = "unchanged";
    return GetIUserFolderMgr()->GetFolder(number, text, sizeof text) == 0 ? text : "none";
}

TEST(UserFolders, TheEnvironmentDecidesVariableByVariable)
{
    test::Environment user("VX_USER_DIR", nullptr), home("HOME", "/home/ann");
    EXPECT_EQ(folderOf(9), "\\home\\ann\\.local\\share\\vx\\user");
    test::Environment templates("VX_FOLDER_10", "/opt/templates");
    EXPECT_EQ(folderOf(10), "\\opt\\templates");
    test::Environment noHome("HOME", nullptr), noProfile("USERPROFILE", nullptr);
    EXPECT_EQ(folderOf(9), "none");
}

TEST(UserFolders, WithoutMemoryThereIsNoFolder)
{
    test::Environment user("VX_USER_DIR", "/a/folder/whose/name/is/too/long/to/stand/in/a/string/itself");
    char text[260];
    test::refusingEachAllocation([&] {
        const uint32_t failed = GetIUserFolderMgr()->GetFolder(9, text, sizeof text);
        EXPECT_EQ(failed, fault::refusals(fault::Kind::allocation) > 0);
        EXPECT_EQ(text[0] == 0, failed);
    });
}

}
