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
    test::CodePageScope japanese(932);
    EXPECT_EQ(VxPathSet("D:\\\x83\x5C"), 0u) << "a second byte is no delimiter";
    EXPECT_THAT(registered(), ElementsAre("D:\\a\\b\\", "E:\\", "D:\\\x83\x5C\\"));
    EXPECT_THAT(notified, ElementsAre("D:/a/b", "E:/", "D:\\\x83\x5C"));
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
    for (const char *path : {"a", "D:\\b", "c"})
        VxPathSet(path);
    char without[] = "d:/B";
    char with[] = "D:/b/";
    EXPECT_EQ(VxPathLogged(without) + VxPathLogged(with), 2);
    EXPECT_STREQ(without, "d:\\B");
    EXPECT_EQ(VxPathDel("D:\\b"), 0u);
    EXPECT_EQ(registered().size(), 3u);
    EXPECT_EQ(VxPathDel("d:/B/"), 0u);
    EXPECT_EQ(VxPathLogged(with), 0);
    EXPECT_EQ(VxPathDel(std::string(5000, 'x').c_str()), 0u);
    EXPECT_THAT(registered(), ElementsAre("a\\", "c\\"));
    VxPathNode *list = nullptr;
    EXPECT_EQ(VxPathDelUtil(&list, "c\\"), 0u);
    EXPECT_EQ(VxPathDelUtil(&files::pathState.first, "a\\"), 0u);
    EXPECT_THAT(registered(), ElementsAre("c\\"));
    EXPECT_EQ(VxPathFree(), 0u);
    EXPECT_THAT(registered(), ElementsAre());
    EXPECT_EQ(VxPathSet(nullptr) + VxPathDel(nullptr) + VxPathDelUtil(nullptr, "a"), 3u);
    EXPECT_EQ(VxPathLogged(nullptr), 0);
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
    for (const char *sub :
         {"", "doc\\", "resource\\", "!", "text\\", "icons\\", "cam_config\\", "supp\\", "output_def\\"})
        expected.push_back(*sub == '!' ? "R:\\languages\\en_US\\resource\\" : own + sub);
    for (const char *sub : {"output_def\\", "supp\\", "templates\\", "stamp\\icons\\"})
        for (const char *base : {".\\", "R:\\"})
            expected.push_back(std::string(base) + sub);
    for (auto path = expected.begin(); path != expected.end();) // the user's language may be English
        path = std::find(expected.begin(), path, *path) == path ? path + 1 : expected.erase(path);
    EXPECT_EQ(registered(), expected);
}

}
