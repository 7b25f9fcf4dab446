#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

using Folders = test::ToolkitFixture;

Texts taken(VxList *&list)
{
    Texts names;
    for (int32_t i = 0; list && i < list->count; ++i) {
        void *name = nullptr;
        VxListGetPtr(list, i, &name);
        names.emplace_back(static_cast<const char *>(name));
    }
    VxListDel(&list);
    return names;
}

/** The list that a function gives; one text "(none)" when it fails. */
template <typename Function, typename... Arguments> Texts listed(Function function, Arguments... arguments)
{
    VxList *list = nullptr;
    if (function(arguments..., &list))
        return {list ? "a failure with a list" : "(none)"};
    EXPECT_EQ(list->elemSize, 256);
    return taken(list);
}

std::string found(const char *dir, const char *name, int32_t size = 300)
{
    return test::out([&](char *to, int32_t room) { return VxDirFind(dir, name, to, room); }, size);
}

TEST_F(Folders, OneIsMadeOrAllOfAChain)
{
    EXPECT_FALSE(VxDirMk("a") || VxDirMk("a") || VxDirMk("a/b\\"));
    EXPECT_TRUE(fs::is_directory("a/b"));
    EXPECT_EQ(VxDirMk("x\\y"), 1u);
    EXPECT_EQ(VxDirMk(("./" + std::string(255, 'd') + "//").c_str()), 0u);
    EXPECT_EQ(VxDirMk(("./" + std::string(255, 'd') + "///").c_str()), 1u);
    EXPECT_EQ(VxDirsMk("x\\y/z"), 0u);
    EXPECT_TRUE(fs::is_directory("x/y/z"));
}

TEST_F(Folders, ListsAreInOrderIgnoringCaseAndToldApart)
{
    folder.make({"b.txt", "A.TXT", "c.prt", "a.txt", "D.d/x", "e/x", "with\\backslash"});
    fs::create_directory_symlink("e", "link");
    EXPECT_THAT(listed(VxDirList, "."), ElementsAre("D.d", "e", "link"));
    EXPECT_THAT(listed(VxFileList, ".", "*"), ElementsAre("A.TXT", "a.txt", "b.txt", "c.prt"));
    std::string seen;
    auto filter = [](const char *dir, const char *name, void *context) -> int32_t {
        *static_cast<std::string *>(context) += dir + std::string(name) + " ";
        return name[0] == 'D';
    };
    EXPECT_THAT(listed(VxFileGlob, "./", "*.*", filter, &seen), ElementsAre("D.d"));
    EXPECT_EQ(seen, "./A.TXT ./a.txt ./b.txt ./c.prt ./D.d ");
    char found[6] = "";
    EXPECT_EQ(VxFileFindFirst(".", "*.txt", found, sizeof found), 1);
    fs::remove("a.txt");
    EXPECT_EQ(VxFileNext(found, sizeof found), 1) << "as found at first";
    EXPECT_STREQ(found, "a.txt");
    EXPECT_THAT(listed(VxFileList, "none", "*"), ElementsAre("(none)"));
}

TEST_F(Folders, NamesOfEveryCodePageComeBackAsTheyWereGiven)
{
    const std::tuple<int32_t, const char *, const char *> cases[] = {
        {65001, "\xE5\x9B\xB3\xF0\x9F\x98\x80", "\xE5\x9B\xB3\xF0\x9F\x98\x80"},
        {932, "\x95\x5C\x83\x5C.x", "\xE8\xA1\xA8\xE3\x82\xBD.x"},
        {936, "\x81\x5C.x", "\xE4\xB9\x97.x"},
        {949, "\xB0\xA1", "\xEA\xB0\x80"},
        {950, "\xB3\x5C.x", "\xE8\xA8\xB1.x"}};
    folder.write("source", "");
    for (auto [number, name, native] : cases) {
        SCOPED_TRACE(number);
        test::CodePageScope page(number);
        std::string inside = "d\\" + std::string(name);
        ASSERT_EQ(VxDirsMk(inside.c_str()), 0u);
        EXPECT_THAT(listed(VxDirList, "d"), ElementsAre(name));
        std::string file = inside + "\\" + name;
        EXPECT_EQ(VxFileConcat("source", file.c_str()), 0u);
        EXPECT_THAT(listed(VxFileList, inside.c_str(), "*"), ElementsAre(name));
        EXPECT_EQ(VxFileMv(file.c_str(), (inside + "\\y").c_str()), 0u);
        EXPECT_EQ(VxFileClean((inside + "\\y").c_str()), 0u);
        EXPECT_EQ(VxDirCpy("d", "copy"), 0u);
        EXPECT_TRUE(fs::exists(fs::path("copy") / native / "y.bak"));
        EXPECT_EQ(found("copy", name), "copy\\" + std::string(name));
        EXPECT_EQ(VxDirDel("copy") + VxDirDel("d"), 0u);
    }
}

TEST_F(Folders, AllBelowAreListedAndFoundDepthFirst)
{
    folder.make({"d/a/x/1", "d/a/y/x/2", "d/B/3", "d/c/X/4"});
    fs::create_directory_symlink("..", "d/a/up");
    fs::create_directory_symlink("none", "d/dangling");
    std::string d = folder.text("d\\");
    EXPECT_THAT(listed(VxDirSub, "./d/../d"), ElementsAre(d + "a", d + "a\\up", d + "a\\x", d + "a\\y",
                                                          d + "a\\y\\x", d + "B", d + "c", d + "c\\X"));
    EXPECT_EQ(found("d", "x", 6), "d\\a\\x");
    EXPECT_EQ(found("d", "x", 5), "!") << "a byte too little";
}

TEST_F(Folders, TreesAreCopiedWithWhatLinksLeadToButNotInCircles)
{
    for (auto [name, text] :
         {std::pair{"from/f", "new"}, {"from/a/b/f", "deep"}, {"else/f", "linked"}, {"to/f", "old"}})
        folder.write(name, text);
    for (auto [to, link] : {std::pair{"../../else", "from/a/link"}, {"..", "from/a/up"}, {".", "from/here"}})
        fs::create_directory_symlink(to, link);
    fs::create_symlink("none", "from/dangling");
    EXPECT_EQ(VxDirCpy2("from", "to", 0), 0u);
    EXPECT_EQ(folder.read("to/f"), "old");
    EXPECT_EQ(VxDirCpy("from", "to"), 0u);
    EXPECT_EQ(folder.read("to/f") + folder.read("to/a/b/f") + folder.read("to/a/link/f"), "newdeeplinked");
    EXPECT_FALSE(fs::exists("to/a/up") || fs::exists("to/here") || fs::exists("to/dangling"));

    EXPECT_EQ(VxDirCpy("from", "from\\a\\into\\itself"), 0u);
    EXPECT_EQ(folder.read("from/a/into/itself/a/b/f"), "deep");
    EXPECT_FALSE(fs::exists("from/a/into/itself/a/into/itself"));
    EXPECT_EQ(VxDirCpy("from", ".\\from") + VxDirCpy("none", "x") + VxDirCpy("from", "to/f"), 3u);
    EXPECT_FALSE(fs::exists("x"));
}

TEST_F(Folders, RemovingTakesTheTreeAndOfLinksOnlyTheLink)
{
    folder.make({"d/a/b/f", "keep/f"});
    fs::create_directory_symlink("../keep", "d/link");
    fs::create_symlink("none", "d/dangling");
    EXPECT_EQ(VxDirDel("d"), 0u);
    EXPECT_FALSE(fs::exists("d"));
    EXPECT_TRUE(fs::exists("keep/f"));
    EXPECT_EQ(VxDirDel("d") + VxDirDel("keep/f"), 2u);
    folder.write("d/with\\backslash", "");
    EXPECT_EQ(VxDirDel("d"), 1u) << "what has no name here cannot be removed";
}

TEST_F(Folders, WalksGoOnPastWhatIsClosedToThem)
{
    folder.make({"d/a/f", "d/m/closed/f", "d/z/f"});
    fs::permissions("d/m/closed", fs::perms(0));
    for (const char *name : {".", "d", "d/a", "d/m", "d/z"})
        fs::permissions(name, fs::perms(0777));
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return listed(VxDirSub, "d").size() == 4 && VxDirCpy("d", "copy") == 1 && fs::exists("copy/z/f") &&
               listed(VxDirList, "d/m/closed")[0] == "(none)" && VxDirDel("d") == 1 && !fs::exists("d/z");
    }));
    fs::permissions("d/m/closed", fs::perms(0700));
    EXPECT_TRUE(fs::exists("d/m/closed/f"));
}

TEST_F(Folders, WalksSurviveNamesThatVanish)
{
    fs::create_directories("d/stays");
    std::jthread worker([&](std::stop_token done) {
        while (!done.stop_requested()) {
            fs::create_directories(folder.native() / "d/x/y");
            std::ofstream(folder.native() / "d/x/f").put('x');
            std::error_code ignored;
            fs::remove_all(folder.native() / "d/x", ignored);
        }
    });
    for (int i = 0; i < 200; ++i) {
        EXPECT_THAT(listed(VxDirSub, "d"), testing::Contains(folder.text("d\\stays")));
        VxDirCpy("d", "copy");
        VxDirDel("copy");
    }
}

TEST_F(Folders, EachRefusalEndsInAWholeListOrNone)
{
    folder.make({"d/a/b/f", "d/c/f"});
    VxList *list = nullptr;
    uint32_t result = 0;
    auto walk = [&] { result = VxDirList("d", &list); };
    test::eachRefusal(walk, [&](bool refused) {
        EXPECT_EQ(result, refused ? 1u : 0u);
        EXPECT_EQ(taken(list).size(), refused ? 0u : 2u);
    });
    auto copy = [&] { result = VxDirCpy("d", "copy"); };
    test::eachRefusal(copy, [&](bool refused) {
        EXPECT_TRUE(refused || result == 0);
        EXPECT_TRUE(result == 1 || (fs::exists("copy/a/b/f") && fs::exists("copy/c/f")));
        fs::remove_all("copy");
    });
}

}
