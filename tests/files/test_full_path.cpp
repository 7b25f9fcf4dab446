#include <algorithm>
#include <cstring>
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

TEST_F(FullPath, DrivesRootsAndSharesStayAndAreNeverFoldedAway)
{
    EXPECT_EQ(full("D:\\a\\.\\b\\..\\c"), "D:\\a\\c");
    EXPECT_EQ(full("d:/a//b/"), "d:\\a\\b\\");
    EXPECT_EQ(full("D:\\..\\..\\a"), "D:\\a");
    EXPECT_EQ(full("\\..\\a\\..\\..\\"), "\\");
    EXPECT_EQ(full("\\\\server\\share\\a\\..\\..\\b"), "\\\\server\\share\\b");
    EXPECT_EQ(full("X:a\\b"), "X:\\a\\b");
}

TEST_F(FullPath, RelativePathsStartInTheCurrentFolder)
{
    std::string here = folder.text();
    EXPECT_EQ(full("."), here);
    EXPECT_EQ(full("a\\b"), here + "\\a\\b");
    EXPECT_EQ(full("a\\."), here + "\\a");
    EXPECT_EQ(full("a\\.\\"), here + "\\a\\");
    EXPECT_EQ(full("a/../.."), here.substr(0, here.rfind('\\')));
    EXPECT_EQ(full("..."), here + "\\...");

    test::Environment map("VX_DRIVE_MAP", ("D=" + folder.native().string()).c_str());
    EXPECT_EQ(full("a"), "D:\\a");
    EXPECT_EQ(full("d:a"), "D:\\a");
    EXPECT_EQ(full("E:a"), "E:\\a");
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
        // Two slashes in front are the share of a server, not a root.
        if (path.starts_with("//"))
            continue;
        ASSERT_EQ(full(path), expected) << path;
    }
}

TEST_F(FullPath, SecondBytesAreNoSeparators)
{
    test::CodePageScope japanese(932);
    EXPECT_EQ(full("\\\x83\x5C\\..\\b"), "\\b");
    EXPECT_EQ(full("\\\x83\x5C\x83\x5C\\b\\.."), "\\\x83\x5C\x83\x5C");
}

TEST_F(FullPath, TheLongestPathHas255Bytes)
{
    std::string longest = "D:\\" + std::string(252, 'x');
    EXPECT_EQ(full(longest), longest);
    // What cannot be resolved comes back as it was given.
    std::string tooLong = "D:/" + std::string(253, 'x');
    EXPECT_EQ(full(tooLong), tooLong);
    EXPECT_EQ(full("D:\\" + std::string(300, 'x') + "\\..\\a"), "D:\\a");

    char out[6] = "";
    EXPECT_STREQ(VX::realpath("D:\\ab", out, sizeof out), "D:\\ab");
    EXPECT_STREQ(VX::realpath("D:/abc", out, sizeof out), "D:/ab");
}

TEST_F(FullPath, TheResultMayStandInThePlaceOfThePath)
{
    char path[300] = "D:/a/../b";
    EXPECT_STREQ(VX::realpath(path, path, sizeof path), "D:\\b");
}

TEST_F(FullPath, WithoutACurrentFolderRelativePathsStayAsTheyAre)
{
    char out[300];
    test::eachRefusal(
        fault::Kind::verb, "currentDirectory", [&] { VX::realpath("./a", out, sizeof out); },
        [&](bool refused) { EXPECT_EQ(out, refused ? "./a" : folder.text("a")); });
}

}
