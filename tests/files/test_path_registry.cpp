#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "files/path_state.h"
#include "tests/files/toolkit_fixture.h"
#include "tests/support/captured_output.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "vx/err.h"
#include "vx/lang.h"
#include "vx/path.h"
#include "vx/tools.h"

using namespace vx;
using testing::ElementsAre;

namespace {

using PathRegistry = test::ToolkitFixture;

std::vector<std::string> notified;

TEST_F(PathRegistry, DirectoriesAreKeptOnceInOrderOfRegistration)
{
    notified.clear();
    host(
        67, +[](const char *path) { notified.emplace_back(path); });
    EXPECT_EQ(VxPathSet("D:/a/b"), 0u);
    EXPECT_EQ(VxPathSet("d:\\A\\B\\"), 0u);
    EXPECT_EQ(VxPathSet(""), 0u);
    EXPECT_EQ(VxPathSet("E:/"), 0u);
    EXPECT_THAT(registered(), ElementsAre("D:\\a\\b\\", "E:\\"));
    EXPECT_THAT(notified, ElementsAre("D:/a/b", "E:/"));
}

TEST_F(PathRegistry, ADirectoryThatEndsInASecondByteGetsItsDelimiter)
{
    test::CodePageScope japanese(932);
    EXPECT_EQ(VxPathSet("D:\\\x83\x5C"), 0u);
    EXPECT_THAT(registered(), ElementsAre("D:\\\x83\x5C\\"));
}

TEST_F(PathRegistry, TheLongestDirectoryHas255CharactersWithItsDelimiter)
{
    EXPECT_EQ(VxPathLen(), 255);
    std::string longest(254, 'x');
    EXPECT_EQ(VxPathSet(longest.c_str()), 0u);
    for (size_t length : {255u, 259u, 260u, 5000u}) {
        test::CapturedOutput output;
        EXPECT_EQ(VxPathSet(std::string(length, 'y').c_str()), 1u);
        EXPECT_EQ(output.text(), length < 260 ? "\nVxPathSet: Path exceeds 255 characters.\n" : "") << length;
    }
    EXPECT_THAT(registered(), ElementsAre(longest + "\\"));
}

TEST_F(PathRegistry, WithoutMemoryNothingIsRegistered)
{
    VxPathSet("a");
    auto before = registered();
    uint32_t result = 0;
    test::eachRefusal(
        fault::Kind::allocation, nullptr, [&] { result = VxPathSet("b"); },
        [&](bool refused) {
            EXPECT_EQ(result, refused ? 1u : 0u);
            EXPECT_EQ(VxErrIsLogged(VxToolsErrID(), 1), refused ? 1 : 0);
            EXPECT_EQ(registered().size(), before.size() + (refused ? 0 : 1));
            VxErrClear();
        });
}

TEST_F(PathRegistry, LookingUpForgivesTheFinalDelimiterAndRemovingDoesNot)
{
    VxPathSet("D:\\a");
    char without[] = "d:/A";
    char with[] = "D:/a/";
    EXPECT_EQ(VxPathLogged(without), 1);
    EXPECT_STREQ(without, "d:\\A");
    EXPECT_EQ(VxPathLogged(with), 1);
    EXPECT_EQ(VxPathDel("D:\\a"), 0u);
    EXPECT_EQ(registered().size(), 1u);
    EXPECT_EQ(VxPathDel("d:/A/"), 0u);
    EXPECT_EQ(VxPathLogged(with), 0);
    EXPECT_EQ(VxPathDel(std::string(5000, 'x').c_str()), 0u);
}

TEST_F(PathRegistry, RemovingKeepsTheOthersInOrder)
{
    for (const char *path : {"a", "b", "c"})
        VxPathSet(path);
    VxPathDel("b\\");
    EXPECT_THAT(registered(), ElementsAre("a\\", "c\\"));
    VxPathDel("a\\");
    EXPECT_THAT(registered(), ElementsAre("c\\"));
    VxPathNode *list = nullptr;
    EXPECT_EQ(VxPathDelUtil(&list, "c\\"), 0u);
    EXPECT_THAT(registered(), ElementsAre("c\\"));
    EXPECT_EQ(VxPathDelUtil(&files::pathState.first, "c\\"), 0u);
    EXPECT_EQ(VxPathFree(), 0u);
    EXPECT_THAT(registered(), ElementsAre());
}

TEST_F(PathRegistry, LanguageDirectoriesFollowInTheirOrder)
{
    VxLangFree();
    strcpy(files::pathState.root, "R:\\");
    char locale[8] = "";
    VxLangGetLocale(locale, sizeof locale);
    EXPECT_EQ(VxPathLogLang(), 0u);
    std::string own = std::string("R:\\languages\\") + locale + "\\";
    std::vector<std::string> expected;
    for (const std::string &path :
         {own, own + "doc\\", own + "resource\\", std::string("R:\\languages\\en_US\\resource\\"),
          own + "text\\", own + "icons\\", own + "cam_config\\", own + "supp\\", own + "output_def\\",
          std::string(".\\output_def\\"), std::string("R:\\output_def\\"), std::string(".\\supp\\"),
          std::string("R:\\supp\\"), std::string(".\\templates\\"), std::string("R:\\templates\\"),
          std::string(".\\stamp\\icons\\"), std::string("R:\\stamp\\icons\\")})
        if (std::find(expected.begin(), expected.end(), path) == expected.end())
            expected.push_back(path);
    EXPECT_EQ(registered(), expected);
}

TEST_F(PathRegistry, NullsFail)
{
    EXPECT_EQ(VxPathSet(nullptr) + VxPathDel(nullptr) + VxPathDelUtil(nullptr, "a"), 3u);
    EXPECT_EQ(VxPathLogged(nullptr), 0);
}

}
