#include "tests/files/search_fixture.h"

using namespace vx;

namespace {

using SearchPaths = test::SearchFixture;

TEST_F(SearchPaths, EntriesAreCanonicalWithAndWithoutSubdirectories)
{
    char path[] = "D:\\data\\...";
    EXPECT_EQ(DmPathSet(path, 0, nullptr), 0u);
    EXPECT_STREQ(path, "D:\\data");
    EXPECT_EQ(active(), "D:\\data");
    add("E:\\other");
    EXPECT_EQ(add("d:/DATA/..."), 0);
    EXPECT_EQ(active(), "d:\\DATA") << "known directories become active too";
    EXPECT_EQ(add("D:\\data") + add("D:\\...") + add("rel/..", 1), 3);
    test::CodePageScope japanese(932);
    add("D:\\\x83\x5C...");
    EXPECT_EQ(active(), "D:\\\x83\x5C...") << "a second byte begins no mark";
    EXPECT_THAT(entries(), ElementsAre(folder.text(), "D:\\data\\...", "E:\\other", "D:\\data", "D:\\...",
                                       "D:\\\x83\x5C..."));
    char known[64] = "d:/DATA/x/..";
    EXPECT_EQ(DmPathIsLogged(known, sizeof known), 1);
}

TEST_F(SearchPaths, DirectoriesThatCannotBeResolvedAreShownToTheUser)
{
    std::string longest = "D:\\" + std::string(252, 'x'), deep = "D:\\" + std::string(248, 'y');
    EXPECT_EQ(add(longest) + add(deep + "\\..."), 2);
    EXPECT_EQ(add(longest + "x") + add(deep + "y\\..."), 0) << "four characters are the mark";
    EXPECT_EQ(add("$VX_NO_SUCH_VARIABLE\\x"), 0);
    EXPECT_EQ(active(), deep + "y") << "it was canonical";
    ASSERT_EQ(shown.size(), 3u);
    EXPECT_EQ(shown[2], "The search path $VX_NO_SUCH_VARIABLE\\x is not valid and was not added.");
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(SearchPaths, AWalkGoesOnWhateverIsRemovedAndWhereAnEntryDidNotFit)
{
    for (const char *path : {"D:\\a", "D:\\b", "D:\\c", "D:\\d"})
        add(path);
    std::string seen;
    char text[256];
    int32_t first = 1;
    EXPECT_EQ(DmPathGet(&first, text, 4), 1u);
    while (DmPathGet(&first, text, 5) == 0) {
        seen += text[3];
        if (text[3] != 'c')
            DmPathDel(text);
        DmPathDel("d:\\B");
    }
    EXPECT_EQ(seen, "acd");
    add("D:\\e");
    EXPECT_EQ(DmPathGet(&first, text, 5), 0u) << "what was appended behind the last one";
    EXPECT_THAT(entries(), ElementsAre("D:\\c", "D:\\e"));
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

    // By hand: comments, blanks, and a line that goes on beyond what one may have.
    files::freeSearchPaths();
    folder.write("paths.txt", "# mine\n \t\n  D:\\a \r\n" + longest + "more\nD:\\c");
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_THAT(entries(), ElementsAre("D:\\a", longest, "D:\\c"));
    EXPECT_EQ(DmPathAdd("d:\\A"), 0u);
    EXPECT_EQ(folder.read("paths.txt")[0], '#') << "a known path saves nothing";
}

TEST_F(SearchPaths, SavingIsLeftWhenTheUserOrTheHostSaysSo)
{
    static int32_t hostAnswer = 1;
    test::Options options;
    options.values["AutoSavePaths"] = "no";
    EXPECT_EQ(DmPathSave(0), 0u);
    host(28, [] { return hostAnswer; });
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
    DmPathSave(1);
    const std::string old = folder.read("paths.txt");
    uint32_t result = 0;
    auto append = [&] { result = DmPathAdd(longer.c_str()); };
    test::eachRefusal(append, [&](bool refused) {
        bool entered = entries().size() == 2;
        EXPECT_EQ(active(), entered ? longer : "D:\\a");
        EXPECT_EQ(folder.read("paths.txt"),
                  !entered || !shown.empty() ? old : "\n" + longer + "\n\nD:\\a\n\n");
        EXPECT_TRUE(refused || (result == 0 && entered && shown.empty()));
        DmPathDel(longer.c_str());
        DmPathActive("D:\\a");
        DmPathSave(1);
        shown.clear();
    });
    folders.folders[14] = folder.text("none/paths.txt");
    EXPECT_EQ(DmPathSave(1), 1u);
    EXPECT_EQ(shown.size(), 1u);
    folders.folders[14] = "\\proc\\self\\mem";
    EXPECT_EQ(DmPathInit(), 0u);
    EXPECT_EQ(shown.back(), "Unable to access the search path file \\proc\\self\\mem.");
}

}
