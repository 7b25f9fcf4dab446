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
    for (auto [number, folder] : {std::pair{4, "work"}, {5, "work"}, {9, "user"}, {10, "templates"},
                                  {14, "search_paths.txt"}, {18, "documents"}})
        EXPECT_EQ(folderOf(number), std::string("\\srv\\ann\\") + folder);
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
    test::refusingEachAllocation([&] {
        const uint32_t failed = GetIUserFolderMgr()->GetFolder(9, text, sizeof text);
        EXPECT_EQ(failed, fault::refusals(fault::Kind::allocation) > 0);
        EXPECT_EQ(text[0] == 0, failed);
    });
}

}
