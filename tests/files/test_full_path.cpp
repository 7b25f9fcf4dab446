#include <algorithm>
#include <random>
#include <string>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "vx/posix.hpp"

using namespace vx;

namespace {

struct FullPath : test::ToolkitFixture {
    static std::string full(const std::string &path)
    {
        char out[300];
        EXPECT_EQ(VX::realpath(path.c_str(), out, sizeof out), out);
        return out;
    }
};

TEST_F(FullPath, RootsAreNeverFoldedAwayAndRelativePathsStartInTheCurrentFolder)
{
    std::string here = folder.text();
    std::string longest = "D:\\" + std::string(252, 'x');
    struct {
        std::string path, full;
    } paths[] = {
        {"d:/a//.\\b/..\\c/", "d:\\a\\c\\"},
        {"D:\\..\\..\\a", "D:\\a"},
        {"\\..\\a\\..\\..\\", "\\"},
        {"\\\\server\\share\\a\\..\\..\\b", "\\\\server\\share\\b"},
        {".", here},
        {"a\\.", here + "\\a"},
        {"a\\.\\", here + "\\a\\"},
        {"a/../..", here.substr(0, here.rfind('\\'))},
        {"...", here + "\\..."},
        {"X:a\\b", "X:\\a\\b"},
        {longest, longest},
        {longest + "/../a", "D:\\a"},
        {"D:/" + std::string(253, 'x'), "D:/" + std::string(253, 'x')}, // too long: as it was given
    };
    for (const auto &each : paths)
        EXPECT_EQ(full(each.path), each.full) << each.path;
    test::Environment map("VX_DRIVE_MAP", ("D=" + folder.native().string()).c_str());
    EXPECT_EQ(full("a") + full("d:a") + full("E:a"), "D:\\aD:\\aE:\\a");
    test::CodePageScope japanese(932);
    EXPECT_EQ(full("\\\x83\x5C\\..\\b"), "\\b");
    EXPECT_EQ(full("\\\x83\x5C\x83\x5C\\b\\.."), "\\\x83\x5C\x83\x5C");

    char out[6] = "";
    EXPECT_STREQ(VX::realpath("D:\\ab", out, sizeof out), "D:\\ab");
    EXPECT_STREQ(VX::realpath("D:/abc", out, sizeof out), "D:/ab");
    char path[300] = "D:/a/../b";
    EXPECT_STREQ(VX::realpath(path, path, sizeof path), "D:\\b");
}

TEST_F(FullPath, FoldingAgreesWithTheStandardLibrary)
{
    std::mt19937 random(7);
    const char *pieces[] = {"a", "bc", ".", "..", "...", "d.e"};
    for (int round = 0; round < 5000; ++round) {
        std::string path = random() % 2 ? "/" : "";
        for (size_t n = random() % 8; n > 0; --n)
            path.append(pieces[random() % std::size(pieces)]).append(random() % 4 ? "/" : "//");
        path += "end";
        std::string expected = (folder.native() / path).lexically_normal().string();
        std::replace(expected.begin(), expected.end(), '/', '\\');
        ASSERT_EQ(full(path), expected) << path;
    }
}

TEST_F(FullPath, WithoutACurrentFolderRelativePathsStayAsTheyAre)
{
    char out[300];
    test::eachRefusal(
        fault::Kind::verb, "currentDirectory", [&] { VX::realpath("./a", out, sizeof out); },
        [&](bool refused) { EXPECT_EQ(out, refused ? "./a" : folder.text("a")); });
}

}
