#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "files/dmpath.h"
#include "tests/files/search_fixture.h"
#include "tests/support/child.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "tests/support/options.h"

using namespace vx;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

using SearchPaths = test::SearchFixture;

TEST_F(SearchPaths, EntriesAreCanonicalWithAndWithoutSubdirectories)
{
    char path[] = "D:\\data\\...";
    int32_t added = 0;
    EXPECT_EQ(DmPathSet(path, 0, &added), 0u);
    EXPECT_EQ(added, 1);
    EXPECT_STREQ(path, "D:\\data");
    EXPECT_EQ(active(), "D:\\data");
    add("E:\\other");
    EXPECT_EQ(add("d:/DATA/..."), 0);
    EXPECT_EQ(active(), "d:\\DATA") << "known directories become active too";
    EXPECT_EQ(add("D:\\data"), 1) << "with and without subdirectories are two entries";
    EXPECT_EQ(add("D:\\..."), 1);
    EXPECT_EQ(active(), "D:\\");
    EXPECT_EQ(add("rel/..", 1), 1);
    test::CodePageScope japanese(932);
    EXPECT_EQ(add("D:\\\x83\x5C..."), 1);
    EXPECT_EQ(active(), "D:\\\x83\x5C...") << "a second byte begins no mark";
    EXPECT_THAT(entries(), ElementsAre(folder.text(), "D:\\data\\...", "E:\\other", "D:\\data", "D:\\...",
                                       "D:\\\x83\x5C..."));
    char known[64] = "d:/DATA/x/..";
    EXPECT_EQ(DmPathIsLogged(known, sizeof known), 1);
    EXPECT_STREQ(known, "d:\\DATA");
}

TEST_F(SearchPaths, DirectoriesThatCannotBeResolvedAreShownToTheUser)
{
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

TEST_F(SearchPaths, AWalkGoesOnWhateverIsRemovedAndWhereAnEntryDidNotFit)
{
    for (const char *path : {"D:\\a", "D:\\b", "D:\\c", "D:\\d"})
        add(path);
    std::vector<std::string> seen;
    char text[256];
    int32_t first = 1;
    EXPECT_EQ(DmPathGet(&first, text, 4), 1u);
    while (DmPathGet(&first, text, 5) == 0) {
        seen.emplace_back(text);
        if (text[3] != 'c') {
            EXPECT_EQ(DmPathDel(text), 0u);
        }
        if (text[3] == 'a')
            DmPathDel("d:\\B");
    }
    EXPECT_THAT(seen, ElementsAre("D:\\a", "D:\\c", "D:\\d"));
    add("D:\\e");
    EXPECT_EQ(DmPathGet(&first, text, 5), 0u) << "what was appended behind the last one";
    EXPECT_THAT(entries(), ElementsAre("D:\\c", "D:\\e"));
    EXPECT_EQ(DmPathDel("D:\\none"), 0u);
}

TEST_F(SearchPaths, TheNextStartReadsTheSavedList)
{
    EXPECT_EQ(DmPathInit(), 0u) << "none yet";
    std::string longest = "D:\\" + std::string(252, 'x');
    EXPECT_TRUE(test::inChild([&] {
        add("D:\\b\\...");
        add(longest);
        return DmPathAdd("D:\\a") == 0;
    }));
    EXPECT_EQ(folder.read("paths.txt"), "\nD:\\a\n\nD:\\b\\...\n\n" + longest + "\n\n");
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_THAT(entries(), ElementsAre("D:\\a", "D:\\b\\...", longest));
    folder.write("paths.txt", "untouched");
    EXPECT_EQ(DmPathAdd("d:\\A"), 0u);
    EXPECT_EQ(folder.read("paths.txt"), "untouched") << "a known path saves nothing";

    // By hand: comments, blanks, and a line that goes on beyond what one may have.
    files::freeSearchPaths();
    folder.write("paths.txt", "# mine\n \t\n  D:\\a \r\n" + longest + "more\nD:\\c");
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_THAT(entries(), ElementsAre("D:\\a", longest, "D:\\c"));
}

int32_t hostAnswer;

TEST_F(SearchPaths, SavingIsLeftWhenTheUserOrTheHostSaysSo)
{
    test::Options options;
    options.values["AutoSavePaths"] = "no";
    EXPECT_EQ(DmPathSave(0), 0u);
    hostAnswer = 1;
    host(
        28, +[]() -> int32_t { return hostAnswer; });
    EXPECT_EQ(DmPathSave(1), 0u);
    EXPECT_FALSE(fs::exists("paths.txt"));
    hostAnswer = 0;
    EXPECT_EQ(DmPathSave(1), 0u);
    EXPECT_EQ(folder.read("paths.txt"), "\n");
}

TEST_F(SearchPaths, EveryRefusalLeavesTheOldListAndTheOldFileOrTheNewOnes)
{
    add("D:\\a");
    const std::string longer = "D:\\some\\path\\longer\\than\\a\\short\\text";
    for (fault::Kind kind : {fault::Kind::allocation, fault::Kind::verb}) {
        DmPathSave(1);
        std::string old = folder.read("paths.txt");
        uint32_t result = 0;
        test::eachRefusal(
            kind, nullptr, [&] { result = DmPathAdd(longer.c_str()); },
            [&](bool refused) {
                bool entered = entries().size() == 2;
                EXPECT_EQ(active(), entered ? longer : "D:\\a");
                std::string saved = folder.read("paths.txt");
                EXPECT_EQ(saved, !entered || !shown.empty() ? old : "\n" + longer + "\n\nD:\\a\n\n");
                EXPECT_TRUE(refused || (result == 0 && entered && shown.empty()));
                DmPathDel(longer.c_str());
                DmPathActive("D:\\a");
                DmPathSave(1);
                shown.clear();
            });
    }
    folders.folders[14] = folder.text("none/paths.txt");
    EXPECT_EQ(DmPathSave(1), 1u);
    EXPECT_EQ(shown.size(), 1u);
    fs::create_directory("folder");
    for (const std::string &unreadable : {folder.text("folder"), std::string("\\proc\\self\\mem")}) {
        folders.folders[14] = unreadable;
        EXPECT_EQ(DmPathInit(), 0u);
        EXPECT_EQ(shown.back(), "Unable to access the search path file " + unreadable + ".");
    }
}

TEST_F(SearchPaths, PathsOfTheSearchHaveUpTo255BytesAndGoWithAReset)
{
    std::string longest(255, 'x');
    EXPECT_EQ(DmPathActive(longest.c_str()) + DmCompPathActive(longest.c_str()), 0u);
    EXPECT_EQ(DmPathActive((longest + "x").c_str()) + DmCompPathActive((longest + "x").c_str()), 2u);
    EXPECT_EQ(active() + files::searchPaths.component, longest + longest);
    EXPECT_EQ(DmPathSearchSet(0) + DmPathCheckActiveOnlySet(5), 5);
    files::resetSearchPaths();
    EXPECT_EQ(DmPathSearchGet() * 10 + DmPathCheckActiveOnlyGet(), 10);
    EXPECT_EQ(active(), "");
}

} // namespace
