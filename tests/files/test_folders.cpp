#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/child.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "vx/file.h"

using namespace vx;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

using Folders = test::ToolkitFixture;

std::vector<std::string> taken(VxList *&list)
{
    std::vector<std::string> names;
    for (int32_t i = 0; list && i < list->count; ++i) {
        void *name = nullptr;
        VxListGetPtr(list, i, &name);
        names.emplace_back(static_cast<const char *>(name));
    }
    VxListDel(&list);
    return names;
}

/** The list that a function gives; one text "(none)" when it fails. */
template <typename Function, typename... Arguments>
std::vector<std::string> listed(Function function, Arguments... arguments)
{
    VxList *list = nullptr;
    if (function(arguments..., &list))
        return {list ? "a failure with a list" : "(none)"};
    EXPECT_EQ(list->elemSize, 256);
    return taken(list);
}

TEST_F(Folders, OneIsMadeOrAllOfAChain)
{
    EXPECT_EQ(VxDirMk("a") + VxDirMk("a") + VxDirMk("a/b\\"), 0u);
    EXPECT_TRUE(fs::is_directory("a/b"));
    EXPECT_EQ(VxDirMk("x\\y"), 1u);
    EXPECT_EQ(VxDirMk(("./" + std::string(255, 'd') + "//").c_str()), 0u);
    EXPECT_EQ(VxDirMk(("./" + std::string(255, 'd') + "///").c_str()), 1u);
    EXPECT_EQ(VxDirsMk("x\\y/z"), 0u);
    EXPECT_TRUE(fs::is_directory("x/y/z"));
}

TEST_F(Folders, ListsAreInOrderIgnoringCaseAndToldApart)
{
    for (const char *name : {"b.txt", "A.TXT", "c.prt", "a.txt", "D.d/x", "e/x", "with\\backslash"})
        folder.write(name, "");
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
    const struct {
        int32_t page;
        const char *name, *native;
    } cases[] = {{65001, "\xE5\x9B\xB3\xF0\x9F\x98\x80", "\xE5\x9B\xB3\xF0\x9F\x98\x80"},
                 {932, "\x95\x5C\x83\x5C.x", "\xE8\xA1\xA8\xE3\x82\xBD.x"},
                 {936, "\x81\x5C.x", "\xE4\xB9\x97.x"},
                 {950, "\xB3\x5C.x", "\xE8\xA8\xB1.x"}};
    folder.write("source", "");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.page);
        test::CodePageScope page(c.page);
        std::string inside = "d\\" + std::string(c.name);
        ASSERT_EQ(VxDirsMk(inside.c_str()), 0u);
        EXPECT_THAT(listed(VxDirList, "d"), ElementsAre(c.name));
        std::string file = inside + "\\" + c.name;
        EXPECT_EQ(VxFileConcat("source", file.c_str()), 0u);
        EXPECT_THAT(listed(VxFileList, inside.c_str(), "*"), ElementsAre(c.name));
        EXPECT_EQ(VxFileMv(file.c_str(), (inside + "\\y").c_str()), 0u);
        EXPECT_EQ(VxFileClean((inside + "\\y").c_str()), 0u);
        EXPECT_EQ(VxDirCpy("d", "copy"), 0u);
        EXPECT_TRUE(fs::exists(fs::path("copy") / c.native / "y.bak"));
        char out[300];
        EXPECT_EQ(VxDirFind("copy", c.name, out, sizeof out), 1);
        EXPECT_EQ(out, "copy\\" + std::string(c.name));
        EXPECT_EQ(VxDirDel("copy") + VxDirDel("d"), 0u);
    }
}

TEST_F(Folders, AllBelowAreListedAndFoundDepthFirst)
{
    for (const char *name : {"d/a/x/1", "d/a/y/x/2", "d/B/3", "d/c/X/4"})
        folder.write(name, "");
    fs::create_directory_symlink("..", "d/a/up");
    fs::create_directory_symlink("none", "d/dangling");
    std::string d = folder.text("d\\");
    EXPECT_THAT(listed(VxDirSub, "./d/../d"), ElementsAre(d + "a", d + "a\\up", d + "a\\x", d + "a\\y",
                                                          d + "a\\y\\x", d + "B", d + "c", d + "c\\X"));
    char out[16];
    EXPECT_EQ(VxDirFind("d", "x", out, 6), 1);
    EXPECT_STREQ(out, "d\\a\\x");
    EXPECT_EQ(VxDirFind("d", "x", out, 5), 0) << "a byte too little";
}

TEST_F(Folders, TreesAreCopiedWithWhatLinksLeadToButNotInCircles)
{
    folder.write("from/f", "new");
    folder.write("from/a/b/f", "deep");
    folder.write("else/f", "linked");
    folder.write("to/f", "old");
    fs::create_directory_symlink("../../else", "from/a/link");
    fs::create_directory_symlink("..", "from/a/up");
    fs::create_directory_symlink(".", "from/here");
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
    folder.write("d/a/b/f", "");
    folder.write("keep/f", "");
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
    folder.write("d/a/f", "");
    folder.write("d/m/closed/f", "");
    folder.write("d/z/f", "");
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
    std::atomic<bool> done{false};
    auto makeAndRemove = [&] {
        while (!done) {
            fs::create_directories(folder.native() / "d/x/y");
            std::ofstream(folder.native() / "d/x/f").put('x');
            std::error_code ignored;
            fs::remove_all(folder.native() / "d/x", ignored);
        }
    };
    fs::create_directories("d/stays");
    {
        std::jthread worker(makeAndRemove);
        for (int i = 0; i < 200; ++i) {
            auto names = listed(VxDirSub, "d");
            EXPECT_THAT(names, testing::Contains(folder.text("d\\stays")));
            VxDirCpy("d", "copy");
            VxDirDel("copy");
        }
        done = true;
    }
    EXPECT_TRUE(fs::exists("d/stays"));
}

TEST_F(Folders, EachRefusalEndsInAWholeListOrNone)
{
    for (const char *name : {"d/a/b/f", "d/c/f"})
        folder.write(name, "");
    for (auto kind : {fault::Kind::allocation, fault::Kind::verb}) {
        VxList *list = nullptr;
        uint32_t result = 0;
        test::eachRefusal(
            kind, nullptr, [&] { result = VxDirList("d", &list); },
            [&](bool refused) {
                EXPECT_EQ(result, refused ? 1u : 0u);
                EXPECT_EQ(taken(list).size(), refused ? 0u : 2u);
            });
        test::eachRefusal(
            kind, nullptr, [&] { result = VxDirCpy("d", "copy"); },
            [&](bool refused) {
                EXPECT_TRUE(refused || result == 0);
                EXPECT_TRUE(result == 1 || (fs::exists("copy/a/b/f") && fs::exists("copy/c/f")));
                fs::remove_all("copy");
            });
    }
}

}
