#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

struct FileNames : test::ToolkitFixture {
    static std::string unique(const char *extension = "x", int32_t size = 64)
    {
        auto name = [&](char *to, int32_t room) { return VxFileUniqueName(".", "t", extension, to, room); };
        return test::out(name, size);
    }
    static std::string numbered(const char *pattern, int32_t size = 64, const char *dir = ".")
    {
        auto name = [&](char *to, int32_t room) { return VxFileUniqueName2(dir, pattern, to, room); };
        return test::out(name, size);
    }
};

TEST_F(FileNames, TheFirstFreeNumberNamesTheFile)
{
    for (int n = 1; n < 999; ++n)
        if (n != 3)
            folder.write("t" + std::to_string(1000 + n).substr(1) + ".x", "");
    EXPECT_EQ(unique("x", 7), "t003.x");
    EXPECT_EQ(unique("x", 6) + unique(nullptr), "!!");
    folder.make({"t003.x"});
    EXPECT_EQ(unique(), "t999.x");
    folder.make({"t999.x"});
    EXPECT_THAT(unique(), StartsWith("!"));
}

TEST_F(FileNames, PatternsHoldOneNumberAndNothingElse)
{
    for (const char *expected : {"a01-b", "a02-b"}) {
        EXPECT_EQ(numbered("a%02d-b"), expected);
        EXPECT_TRUE(fs::exists(expected));
    }
    EXPECT_EQ(numbered("%d", 2), "1");
    for (const char *pattern : {"", "a", "%", "%%", "%s", "%d%d", "%d%n", "%100d", "%-3d", "%ld", "%i"})
        EXPECT_EQ(numbered(pattern), "!") << pattern;
    EXPECT_THAT((Texts{numbered("%d", 64, "none"), numbered("%d", 1)}), testing::Each(StartsWith("!")));
}

// Processes take names from the same start at the same time.
TEST_F(FileNames, NobodyGetsANameTwice)
{
    constexpr int processes = 4, names = 200;
    EXPECT_TRUE(test::inChildren(processes, [](int) {
        char name[64];
        for (int i = 0; i < names; ++i)
            if (VxFileTemp(".\\x", sizeof name, name) || VxFileUniqueName2(".", "u%d", name, sizeof name))
                return false;
        return true;
    }));
    EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 2 * processes * names);
}

TEST_F(FileNames, TemporaryFilesLieBesideAPathAndNeedRoomForTheirName)
{
    fs::create_directory("d");
    char name[300];
    ASSERT_EQ(VxFileTemp("d/x.prt", sizeof name, name), 0u);
    EXPECT_THAT(name, StartsWith("d\\hk"));
    EXPECT_EQ(VxFileSize(name), 0);
    EXPECT_EQ(VxFileTemp("x.prt", 9, name) + VxFileTemp("none\\x", sizeof name, name), 2u);
    FILE *stream = VxFileTmp();
    ASSERT_NE(stream, nullptr);
    EXPECT_GE(fputs("text", stream), 0);
    fclose(stream);
}

TEST_F(FileNames, TheExtensionStandsBehindTheLastPointOfTheName)
{
    for (auto [name, extension] : {std::pair{"a.b.c", "c"}, {"d.x\\a", ""}, {"d.x/a", ""},
                                   {"a.0123456789abcdefgh", "0123456789abcde"}})
        EXPECT_STREQ(VxFileExt(name), extension) << name;
    test::CodePageScope japanese(932);
    EXPECT_STREQ(VxFileExt("a.0123456789abcd\x95\x5C"), "0123456789abcd") << "cut behind a character";
    EXPECT_EQ(VxFileValidExt("d\\a.TLPrt") + VxFileValidExt("a.Tl") + VxFileValidExt_Viewer("a.TLD"), 3);
    EXPECT_EQ(VxFileValidExt("a.txt") + VxFileValidExt("a.tlprt\\b") + VxFileValidExt_Viewer("a.tlprt"), 0);
    EXPECT_STREQ(VxZip(0), "zip.exe");
    EXPECT_STREQ(VxZip(1), "unzip.exe"); // in the same buffer
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
    folder.make({"d/both", "root/d/both", "root/d/one"});
    VxStrCpy(files::pathState.root, folder.text("root\\").c_str(), sizeof files::pathState.root);
    auto find = [](const char *dir, const char *name, size_t size = 300) {
        return test::out([&](char *to, int32_t room) { return VxFileFind(dir, name, to, room); },
                         static_cast<int32_t>(size));
    };
    std::string one = folder.text("root\\d\\one");
    EXPECT_EQ(find("d", "both"), folder.text("d\\both"));
    EXPECT_EQ(find("d\\", "one"), one);
    EXPECT_EQ(find("d", "one", one.size()) + find("d", "none"), "!!");
}

}
