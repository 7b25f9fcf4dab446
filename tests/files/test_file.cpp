#include <cerrno>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/each_refusal.h"
#include "vx/file.h"

using namespace vx;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

using File = test::ToolkitFixture;

TEST_F(File, AnOpenedFileIsWrittenAndClosedOnce)
{
    FILE *stream = nullptr;
    ASSERT_EQ(VxFileOpen(&stream, folder.text("f").c_str(), "wbc"), 0u);
    fputs("text", stream);
    EXPECT_EQ(VxFileClose(&stream, 1), 0);
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(VxFileClose(&stream, 1) + VxFileClose(nullptr, 0), 0);
    EXPECT_EQ(folder.read("f"), "text");
}

TEST_F(File, AFailedOpeningLeavesANullStreamAndNoMessage)
{
    FILE *stream = stderr;
    EXPECT_EQ(VxFileOpen(&stream, "none", "r"), 1u);
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(VxFileOpen(&stream, folder.text().c_str(), "r"), 1u) << "a folder is no file";
    EXPECT_EQ(VxFileOpen(&stream, nullptr, "r") + VxFileOpen(&stream, "f", nullptr) +
                  VxFileOpen(nullptr, "f", "w") + VxFileOpen(&stream, "f", ""),
              4u);
    EXPECT_THAT(errors(), ElementsAre());
    EXPECT_FALSE(fs::exists("f"));
}

TEST_F(File, ALostWriteShowsInTheCloseResult)
{
    FILE *stream = nullptr;
    ASSERT_EQ(VxFileOpen(&stream, "\\dev\\full", "w"), 0u);
    fputs("text", stream);
    EXPECT_NE(VxFileClose(&stream, 1), 0);
    EXPECT_EQ(stream, nullptr);
}

TEST_F(File, BlankNamesDoNotExist)
{
    folder.write("f", "");
    folder.write(" ", "a file of this name");
    EXPECT_EQ(VxFileExists("f"), 1);
    EXPECT_EQ(VxFileExists("."), 1);
    EXPECT_EQ(VxFileExists("g") + VxFileExists("") + VxFileExists(" ") + VxFileExists(nullptr), 0);
}

TEST_F(File, DeletingWhatIsNotThereIsReported)
{
    folder.write("a/f", "");
    EXPECT_EQ(VxFileDel("a/f"), 0u);
    EXPECT_FALSE(fs::exists("a/f"));
    EXPECT_EQ(VxFileDel("a/f"), 1u);
    EXPECT_THAT(errors(), ElementsAre("Unable to delete the file a\\f."));
    EXPECT_EQ(VxFileDel(nullptr), 1u);
}

TEST_F(File, TheFirstFreeNumberNamesTheFile)
{
    char name[64];
    EXPECT_EQ(VxFileUniqueName(".", "temp", "txt", name, sizeof name), 0u);
    EXPECT_STREQ(name, "temp001.txt");
    folder.write("temp001.txt", "");
    folder.write("temp002.txt", "");
    folder.write("temp004.txt", "");
    EXPECT_EQ(VxFileUniqueName(folder.text().c_str(), "temp", "txt", name, 12), 0u);
    EXPECT_STREQ(name, "temp003.txt");
    EXPECT_EQ(VxFileUniqueName(".", "temp", "txt", name, 11), 1u);
    EXPECT_EQ(VxFileUniqueName(nullptr, "t", "x", name, 64) + VxFileUniqueName(".", nullptr, "x", name, 64) +
                  VxFileUniqueName(".", "t", nullptr, name, 64) + VxFileUniqueName(".", "t", "x", name, 0),
              4u);
}

TEST_F(File, NamesThatDoNotFitTheirFolderFail)
{
    char name[64];
    // 511 characters with the separator and "t001.x".
    EXPECT_EQ(VxFileUniqueName(std::string(504, 'd').c_str(), "t", "x", name, sizeof name), 0u);
    EXPECT_EQ(VxFileUniqueName(std::string(505, 'd').c_str(), "t", "x", name, sizeof name), 1u);
}

TEST_F(File, NumbersEndAt999)
{
    char name[32];
    for (int n = 1; n < 1000; ++n) {
        snprintf(name, sizeof name, "t%03d.x", n);
        folder.write(name, "");
    }
    EXPECT_EQ(VxFileUniqueName(".", "t", "x", name, sizeof name), 1u);
    fs::remove("t999.x");
    EXPECT_EQ(VxFileUniqueName(".", "t", "x", name, sizeof name), 0u);
    EXPECT_STREQ(name, "t999.x");
}

TEST_F(File, OneFolderIsMade)
{
    EXPECT_EQ(VxDirMk("a"), 0u);
    EXPECT_EQ(VxDirMk("a"), 0u);
    EXPECT_TRUE(fs::is_directory("a"));
    EXPECT_EQ(VxDirMk("a/b\\"), 0u);
    EXPECT_EQ(VxDirMk("x\\y"), 1u);
    EXPECT_EQ(VxDirMk("") + VxDirMk(nullptr), 2u);
    EXPECT_EQ(VxDirMk(("./" + std::string(255, 'd') + "//").c_str()), 0u);
    EXPECT_EQ(VxDirMk(("./" + std::string(255, 'd') + "///").c_str()), 1u);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(File, ARefusedFolderIsNotMade)
{
    uint32_t result = 0;
    test::eachRefusal(
        fault::Kind::verb, "makeDirectory", [&] { result = VxDirMk("n"); },
        [&](bool refused) {
            EXPECT_EQ(result, refused ? 1u : 0u);
            EXPECT_EQ(fs::exists("n"), !refused);
        });
}

TEST_F(File, TheStatusTellsTypeSizeAndIdentity)
{
    folder.write("f", "12345");
    fs::create_hard_link("f", "g");
    VxStat f;
    VxStat64 g, d;
    ASSERT_EQ(vxstat("f", &f), 0);
    ASSERT_EQ(vxstat64(".\\g", &g), 0);
    ASSERT_EQ(vxstat64(folder.text().c_str(), &d), 0);
    EXPECT_EQ(f.size, 5);
    EXPECT_EQ(g.size, 5);
    EXPECT_EQ(f.inode, g.inode);
    EXPECT_EQ(f.device, g.device);
    EXPECT_EQ(f.links, 2u);
    EXPECT_EQ(f.mode & 0xF000, 0x8000u);
    EXPECT_EQ(d.mode & 0xF000, 0x4000u);
    EXPECT_EQ(f.mtime_s, g.mtime_s);
    EXPECT_EQ(vxstat("none", &f) + vxstat64("none", &g) + vxstat(nullptr, &f) + vxstat64("f", nullptr), -4);
    EXPECT_EQ(f.size, 5) << "a failure writes nothing";
}

TEST_F(File, SizesBeyond31BitsNeedTheWideStatus)
{
    folder.write("f", "");
    VxStat narrow;
    VxStat64 wide;
    fs::resize_file("f", 0x7FFFFFFF);
    EXPECT_EQ(vxstat("f", &narrow), 0);
    fs::resize_file("f", 0x80000000);
    errno = 0;
    EXPECT_EQ(vxstat("f", &narrow), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    EXPECT_EQ(vxstat64("f", &wide), 0);
    EXPECT_EQ(wide.size, 0x80000000);
}

}
