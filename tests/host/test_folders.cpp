#include "talm/config.hpp"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"

using namespace vx;

namespace {

std::string folderOf(int32_t number)
{
    char text[260] = "unchanged";
    return GetIUserFolderMgr()->GetFolder(number, text, sizeof text) == 0 ? text : "none";
}

TEST(UserFolders, LieInTheUsersFolderInTheToolkitsSpelling)
{
    test::Environment user("VX_USER_DIR", "/srv/ann");
    EXPECT_EQ(folderOf(4), "\\srv\\ann\\work");
    EXPECT_EQ(folderOf(5), "\\srv\\ann\\work");
    EXPECT_EQ(folderOf(9), "\\srv\\ann\\user");
    EXPECT_EQ(folderOf(10), "\\srv\\ann\\templates");
    EXPECT_EQ(folderOf(14), "\\srv\\ann\\search_paths.txt");
    EXPECT_EQ(folderOf(18), "\\srv\\ann\\documents");
    for (int32_t number : {-1, 0, 6, 99})
        EXPECT_EQ(folderOf(number), "none") << number;
}

TEST(UserFolders, TheEnvironmentDecidesVariableByVariable)
{
    test::Environment user("VX_USER_DIR", nullptr), home("HOME", "/home/ann");
    EXPECT_EQ(folderOf(9), "\\home\\ann\\.local\\share\\vx\\user");
    test::Environment templates("VX_FOLDER_10", "/opt/templates"), own("VX_FOLDER_77", "D:\\own");
    EXPECT_EQ(folderOf(10), "\\opt\\templates");
    EXPECT_EQ(folderOf(77), "D:\\own");
    test::Environment noHome("HOME", nullptr), noProfile("USERPROFILE", nullptr);
    EXPECT_EQ(folderOf(9), "none");
    EXPECT_EQ(folderOf(10), "\\opt\\templates");
}

TEST(UserFolders, ATextThatDoesNotFitIsNotCut)
{
    test::Environment folder("VX_FOLDER_9", "/abc");
    char text[6] = "xxxxx";
    EXPECT_EQ(GetIUserFolderMgr()->GetFolder(9, text, 5), 0U);
    EXPECT_STREQ(text, "\\abc");
    EXPECT_EQ(GetIUserFolderMgr()->GetFolder(9, text, 4), 1U);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(GetIUserFolderMgr()->GetFolder(9, text, 0), 1U);
    EXPECT_EQ(GetIUserFolderMgr()->GetFolder(9, nullptr, 5), 1U);
}

TEST(UserFolders, WithoutMemoryThereIsNoFolder)
{
    test::Environment user("VX_USER_DIR", "/a/folder/whose/name/is/too/long/to/stand/in/a/string/itself");
    char text[260];
    uint32_t result = 1;
    test::refusingEachAllocation([&] {
        result = GetIUserFolderMgr()->GetFolder(9, text, sizeof text);
        bool refused = fault::refusals(fault::Kind::allocation) > 0;
        EXPECT_EQ(result, refused ? 1U : 0U);
        EXPECT_EQ(text[0] == 0, refused);
    });
    EXPECT_EQ(result, 0U);
}

TEST(UserFolders, AnApplicationsManagerAnswersUntilItIsTakenBack)
{
    struct Manager final : IUserFolderMgr {
        uint32_t GetFolder(int32_t, char *, int32_t) override { return 5; }
    } manager;
    IUserFolderMgr *own = GetIUserFolderMgr();
    TalmSetUserFolderMgr(&manager);
    EXPECT_EQ(GetIUserFolderMgr()->GetFolder(4, nullptr, 0), 5U);
    TalmSetUserFolderMgr(nullptr);
    EXPECT_EQ(GetIUserFolderMgr(), own);
}

}
