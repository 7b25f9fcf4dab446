#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "files/path_state.h"
#include "tests/files/toolkit_fixture.h"
#include "tests/support/child.h"
#include "tests/support/code_page.h"
#include "vx/file.h"
#include "vx/str.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

using FileNames = test::ToolkitFixture;

TEST_F(FileNames, TheFirstFreeNumberNamesTheFile)
{
    char name[64];
    for (int n = 1; n < 999; ++n)
        if (n != 3)
            folder.write("t" + std::to_string(1000 + n).substr(1) + ".x", "");
    EXPECT_EQ(VxFileUniqueName(folder.text().c_str(), "t", "x", name, 7), 0u);
    EXPECT_STREQ(name, "t003.x");
    EXPECT_EQ(VxFileUniqueName(".", "t", "x", name, 6) + VxFileUniqueName(".", "t", nullptr, name, 64), 2u);
    folder.write("t003.x", "");
    EXPECT_EQ(VxFileUniqueName(".", "t", "x", name, sizeof name), 0u);
    EXPECT_STREQ(name, "t999.x");
    folder.write(name, "");
    EXPECT_EQ(VxFileUniqueName(".", "t", "x", name, sizeof name), 1u);
}

TEST_F(FileNames, PatternsHoldOneNumberAndNothingElse)
{
    char name[64];
    for (const char *expected : {"a01-b", "a02-b"}) {
        EXPECT_EQ(VxFileUniqueName2(".", "a%02d-b", name, sizeof name), 0u);
        EXPECT_STREQ(name, expected);
        EXPECT_TRUE(fs::exists(expected));
    }
    EXPECT_EQ(VxFileUniqueName2(".", "%d", name, 2), 0u);
    for (const char *pattern : {"", "a", "%", "%%", "%s", "%d%d", "%d%n", "%100d", "%-3d", "%ld", "%i"})
        EXPECT_EQ(VxFileUniqueName2(".", pattern, name, sizeof name), 1u) << pattern;
    EXPECT_EQ(VxFileUniqueName2("none", "%d", name, sizeof name) + VxFileUniqueName2(".", "%d", name, 1), 2u);
}

// Two processes take names from the same start at the same time.
TEST_F(FileNames, NobodyGetsANameTwice)
{
    constexpr int processes = 4;
    constexpr int names = 200;
    auto take = [&] {
        char name[64];
        for (int i = 0; i < names; ++i)
            if (VxFileTemp(".\\x", sizeof name, name) || VxFileUniqueName2(".", "u%d", name, sizeof name))
                return false;
        return true;
    };
    {
        std::vector<std::unique_ptr<test::Child>> children;
        for (int i = 0; i < processes; ++i)
            children.push_back(std::make_unique<test::Child>(take));
        for (auto &child : children)
            EXPECT_TRUE(child->succeeded());
    }
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2 * processes * names);
}

TEST_F(FileNames, TemporaryFilesLieBesideAPathAndNeedRoomForTheirName)
{
    fs::create_directory("d");
    char name[300];
    ASSERT_EQ(VxFileTemp("d/x.prt", sizeof name, name), 0u);
    EXPECT_EQ(std::string(name).substr(0, 4), "d\\hk");
    EXPECT_EQ(VxFileSize(name), 0);
    EXPECT_EQ(VxFileTemp("x.prt", 9, name) + VxFileTemp("none\\x", sizeof name, name), 2u);
    FILE *stream = VxFileTmp();
    ASSERT_NE(stream, nullptr);
    EXPECT_GE(fputs("text", stream), 0);
    fclose(stream);
}

TEST_F(FileNames, TheExtensionStandsBehindTheLastPointOfTheName)
{
    for (auto [name, extension] : {std::pair{"a.b.c", "c"},
                                   {"d.x\\a", ""},
                                   {"d.x/a", ""},
                                   {"a.0123456789abcdefgh", "0123456789abcde"}})
        EXPECT_STREQ(VxFileExt(name), extension) << name;
    test::CodePageScope japanese(932);
    EXPECT_STREQ(VxFileExt("a.0123456789abcd\x95\x5C"), "0123456789abcd") << "cut behind a character";
    EXPECT_EQ(VxFileValidExt("d\\a.TLPrt") + VxFileValidExt("a.Tl") + VxFileValidExt_Viewer("a.TLD"), 3);
    EXPECT_EQ(VxFileValidExt("a.txt") + VxFileValidExt("a.tlprt\\b") + VxFileValidExt_Viewer("a.tlprt"), 0);
}

TEST_F(FileNames, ExtensionsAreSetWithinTheSizeAndCut)
{
    char name[16];
    auto set = [&](auto function, const char *from, int32_t size, const char *ext) {
        VxStrCpy(name, from, sizeof name);
        return std::to_string(function(name, size, ext)) + name;
    };
    EXPECT_EQ(set(VxFileSetExt, "a.TLPRT", 16, "TlPRT"), "1a.TLPRT");
    EXPECT_EQ(set(VxFileSetExt, "d.x\\a.b", 16, "e"), "0d.x\\a.e");
    EXPECT_EQ(set(VxFileSetExt, "a", 4, "xy") + set(VxFileSetExt, "a", 5, "xy"), "1a0a.xy");
    EXPECT_EQ(set(VxFileSetExt2, "a.txt", 16, "vx"), "0a.txt.vx");
    for (auto [from, cut] : {std::pair{"x.12", "x.12"}, {"x.-1", "x"}, {"x.txt", "x"}}) {
        VxStrCpy(name, from, sizeof name);
        VxFileRmExt2(name);
        EXPECT_STREQ(name, cut);
    }
}

TEST_F(FileNames, FilesAreFoundBelowTheCurrentFolderAndThenTheRoot)
{
    folder.write("d/both", "");
    folder.write("root/d/both", "");
    folder.write("root/d/one", "");
    VxStrCpy(files::pathState.root, folder.text("root\\").c_str(), sizeof files::pathState.root);
    char out[300];
    EXPECT_EQ(VxFileFind("d", "both", out, sizeof out), 1);
    EXPECT_EQ(out, folder.text("d\\both"));
    std::string one = folder.text("root\\d\\one");
    EXPECT_EQ(VxFileFind("d\\", "one", out, sizeof out), 1);
    EXPECT_EQ(out, one);
    EXPECT_EQ(
        VxFileFind("d", "one", out, static_cast<int32_t>(one.size())) + VxFileFind("d", "none", out, 300), 0);
}

}
