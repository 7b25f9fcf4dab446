#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "files/dmpath.h"
#include "talm/config.hpp"
#include "tests/files/toolkit_fixture.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "vx/dmpath.h"

using namespace vx;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

std::vector<std::string> shown;
int32_t hostAnswer;

struct SearchPaths : test::ToolkitFixture {
    SearchPaths()
    {
        shown.clear();
        host(
            71, +[](const char *text) { shown.emplace_back(text); });
        folders.folders[14] = folder.text("paths.txt");
    }

    static int32_t add(std::string path, int32_t atFront = 0)
    {
        int32_t added = 7;
        EXPECT_EQ(DmPathSet(path.data(), atFront, &added), 0u);
        return added;
    }

    static std::vector<std::string> entries()
    {
        std::vector<std::string> texts;
        char text[256];
        for (int32_t first = 1; DmPathGet(&first, text, sizeof text) == 0;)
            texts.emplace_back(text);
        return texts;
    }

    static std::string active()
    {
        char text[256];
        EXPECT_EQ(DmPathActiveGet(text, sizeof text), 0u);
        return text;
    }
};

TEST_F(SearchPaths, AnEntryMayReachIntoSubdirectories)
{
    char path[] = "D:\\data\\...";
    int32_t added = 0;
    EXPECT_EQ(DmPathSet(path, 0, &added), 0u);
    EXPECT_EQ(added, 1);
    EXPECT_STREQ(path, "D:\\data");
    EXPECT_THAT(entries(), ElementsAre("D:\\data\\..."));
    EXPECT_EQ(active(), "D:\\data");
    add("E:\\other");
    EXPECT_EQ(add("d:/DATA/..."), 0);
    EXPECT_EQ(active(), "d:\\DATA") << "known directories become active too";
    EXPECT_EQ(add("D:\\data"), 1) << "with and without subdirectories are two entries";
    EXPECT_EQ(add("D:\\..."), 1);
    EXPECT_EQ(active(), "D:\\");
    EXPECT_THAT(entries(), ElementsAre("D:\\data\\...", "E:\\other", "D:\\data", "D:\\..."));
}

TEST_F(SearchPaths, TheMarkIsNoPartOfACharacter)
{
    test::CodePageScope japanese(932);
    add("D:\\\x83\x5C...");
    EXPECT_THAT(entries(), ElementsAre("D:\\\x83\x5C..."));
    EXPECT_EQ(active(), "D:\\\x83\x5C...");
}

TEST_F(SearchPaths, EntriesGoToTheEndOrToTheFront)
{
    add("D:\\a");
    add("D:\\b");
    add("D:\\c", 1);
    add("rel/..");
    EXPECT_THAT(entries(), ElementsAre("D:\\c", "D:\\a", "D:\\b", folder.text()));
}

TEST_F(SearchPaths, DirectoriesThatCannotBeResolvedAreShownToTheUser)
{
    add("D:\\a");
    std::string longest = "D:\\" + std::string(252, 'x');
    EXPECT_EQ(add(longest), 1);
    EXPECT_EQ(add(longest + "x"), 0);
    EXPECT_EQ(add("$VX_NO_SUCH_VARIABLE\\x"), 0);
    EXPECT_EQ(active(), longest);
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1], "The search path $VX_NO_SUCH_VARIABLE\\x is not valid and was not added.");
    EXPECT_THAT(errors(), ElementsAre());

    // Four characters of the entry are its mark.
    std::string deep = "D:\\" + std::string(248, 'y');
    EXPECT_EQ(add(deep + "\\..."), 1);
    EXPECT_EQ(add(deep + "y\\..."), 0);
    EXPECT_EQ(shown.size(), 3u);
}

TEST_F(SearchPaths, WithoutMemoryNothingChanges)
{
    add("D:\\a");
    uint32_t result = 0;
    int32_t added = 0;
    char path[] = "D:\\b";
    test::eachRefusal(
        fault::Kind::allocation, nullptr, [&] { result = DmPathSet(path, 1, &added); },
        [&](bool refused) {
            bool failed = result != 0 || !added;
            EXPECT_EQ(failed, refused);
            EXPECT_EQ(active(), failed ? "D:\\a" : "D:\\b");
            EXPECT_EQ(entries().size(), failed ? 1u : 2u);
        });
}

TEST_F(SearchPaths, RemovingAnEntryDoesNotDisturbAWalk)
{
    for (const char *path : {"D:\\a", "D:\\b", "D:\\c", "D:\\d"})
        add(path);
    std::vector<std::string> seen;
    char text[256];
    for (int32_t first = 1; DmPathGet(&first, text, sizeof text) == 0;) {
        seen.emplace_back(text);
        if (text[3] != 'c') {
            EXPECT_EQ(DmPathDel(text), 0u);
        }
        if (text[3] == 'a')
            DmPathDel("d:\\B");
    }
    EXPECT_THAT(seen, ElementsAre("D:\\a", "D:\\c", "D:\\d"));
    EXPECT_THAT(entries(), ElementsAre("D:\\c"));
    EXPECT_EQ(DmPathDel("D:\\none"), 0u);
    EXPECT_EQ(DmPathDel(nullptr), 1u);
}

TEST_F(SearchPaths, EntriesAreKnownByTheirCanonicalText)
{
    add("D:\\a\\b");
    char path[64] = "d:/A/x/../B";
    EXPECT_EQ(DmPathIsLogged(path, sizeof path), 1);
    EXPECT_STREQ(path, "d:\\A\\B");
    char other[64] = "D:\\a";
    EXPECT_EQ(DmPathIsLogged(other, sizeof other), 0);
    EXPECT_EQ(DmPathIsLogged(nullptr, 64), 0);
}

TEST_F(SearchPaths, TheSavedListComesBack)
{
    add("D:\\b\\...");
    EXPECT_EQ(DmPathAdd("D:\\a"), 0u);
    EXPECT_EQ(folder.read("paths.txt"), "\nD:\\a\n\nD:\\b\\...\n\n");
    files::freeSearchPaths();
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_THAT(entries(), ElementsAre("D:\\a", "D:\\b\\..."));
}

TEST_F(SearchPaths, HandWrittenListsAreReadToo)
{
    std::string longest = "D:\\" + std::string(252, 'x');
    folder.write("paths.txt", "# mine\n \t\n  D:\\a \r\nD:\\b\n" + longest + "\n" + longest + "more\nD:\\c");
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_THAT(entries(), ElementsAre("D:\\a", "D:\\b", longest, "D:\\c"));
}

TEST_F(SearchPaths, AListThatCannotBeReadIsShownAndNoFailure)
{
    EXPECT_EQ(DmPathInit(), 0u) << "none yet";
    EXPECT_THAT(shown, ElementsAre());
    fs::create_directory("paths.txt");
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_THAT(shown,
                ElementsAre("Unable to access the search path file " + folder.text("paths.txt") + "."));
}

TEST_F(SearchPaths, KnownPathsDoNotRewriteTheFile)
{
    DmPathAdd("D:\\a");
    folder.write("paths.txt", "untouched");
    EXPECT_EQ(DmPathAdd("d:\\A"), 0u);
    EXPECT_EQ(folder.read("paths.txt"), "untouched");
    EXPECT_EQ(DmPathAdd(nullptr), 1u);
}

/** Answers one option. */
struct NoAutoSave final : IConfigMgr {
    uint32_t GetValue(const char *key, char **text, bool) override
    {
        *text = strstr(key, "AutoSavePaths") ? strdup("no") : nullptr;
        return *text ? 0 : 1;
    }
    uint32_t SetValue(const char *, const char *) override { return 1; }
    bool Load(int32_t) override { return false; }
};

TEST_F(SearchPaths, SavingIsLeftWhenTheUserOrTheHostSaysSo)
{
    NoAutoSave options;
    TalmSetConfigMgr(&options);
    EXPECT_EQ(DmPathSave(0), 0u);
    EXPECT_FALSE(fs::exists("paths.txt"));
    hostAnswer = 1;
    host(
        28, +[]() -> int32_t { return hostAnswer; });
    EXPECT_EQ(DmPathSave(1), 0u);
    EXPECT_FALSE(fs::exists("paths.txt"));
    hostAnswer = 0;
    EXPECT_EQ(DmPathSave(1), 0u);
    TalmSetConfigMgr(nullptr);
    EXPECT_EQ(folder.read("paths.txt"), "\n");
}

TEST_F(SearchPaths, AListThatCannotBeWrittenStaysAsItWas)
{
    folder.write("paths.txt", "old");
    add("D:\\a\\longer\\than\\a\\short\\text");
    uint32_t result = 0;
    for (fault::Kind kind : {fault::Kind::allocation, fault::Kind::verb}) {
        folder.write("paths.txt", "old");
        test::eachRefusal(
            kind, kind == fault::Kind::verb ? "replaceFile" : nullptr, [&] { result = DmPathSave(1); },
            [&](bool refused) {
                EXPECT_EQ(folder.read("paths.txt"),
                          result ? "old" : "\nD:\\a\\longer\\than\\a\\short\\text\n\n");
                EXPECT_TRUE(refused || result == 0);
                if (result) {
                    EXPECT_FALSE(shown.empty());
                }
                shown.clear();
            });
    }
    folders.folders[14] = folder.text("none/paths.txt");
    EXPECT_EQ(DmPathSave(1), 1u);
    EXPECT_EQ(shown.size(), 1u);
}

TEST_F(SearchPaths, PathsAndFlagsOfTheSearchAreKept)
{
    std::string longest(255, 'x');
    EXPECT_EQ(DmPathActive(longest.c_str()) + DmCompPathActive(longest.c_str()), 0u);
    EXPECT_EQ(DmPathActive((longest + "x").c_str()) + DmCompPathActive((longest + "x").c_str()), 2u);
    EXPECT_EQ(DmPathActive(nullptr) + DmCompPathActive(nullptr), 2u);
    EXPECT_EQ(active(), longest);
    EXPECT_EQ(files::searchPaths.component, longest);
    EXPECT_EQ(DmCompPathRestore(), 0u);
    EXPECT_STREQ(files::searchPaths.component, "");

    EXPECT_EQ(DmPathSearchGet(), 1);
    EXPECT_EQ(DmPathCheckActiveOnlyGet(), 0);
    EXPECT_EQ(DmPathSearchSet(0), 0);
    EXPECT_EQ(DmPathCheckActiveOnlySet(5), 5);
    EXPECT_EQ(DmPathCheckActiveOnlyGet(), 5);
    files::resetSearchPaths();
    EXPECT_EQ(DmPathSearchGet(), 1);
    EXPECT_EQ(DmPathCheckActiveOnlyGet(), 0);
    EXPECT_EQ(active(), "");
}

TEST_F(SearchPaths, AnEntryThatDoesNotFitEndsTheWalk)
{
    add("D:\\abc");
    char text[7] = "";
    int32_t first = 1;
    EXPECT_EQ(DmPathGet(&first, text, 6), 1u);
    EXPECT_EQ(DmPathGet(&first, text, 7), 0u) << "and is still the next one";
    EXPECT_STREQ(text, "D:\\abc");
    EXPECT_EQ(DmPathGet(&first, text, 7), 1u);
    add("D:\\d");
    EXPECT_EQ(DmPathGet(&first, text, 7), 0u) << "what was appended behind the last one";
    EXPECT_EQ(DmPathGet(nullptr, text, 7) + DmPathGet(&first, nullptr, 7) + DmPathGet(&first, text, 0), 3u);
}

}
