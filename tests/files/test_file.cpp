#include <cerrno>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/child.h"
#include "vx/file.h"

using namespace vx;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

using File = test::ToolkitFixture;

TEST_F(File, DeletingWhatIsNotThereIsReportedAndRemovingItIsNot)
{
    folder.write("a/f", "");
    folder.write("f", "");
    EXPECT_EQ(VxFileDel("a/f"), 0u);
    EXPECT_EQ(VxFileDel("a/f"), 1u);
    EXPECT_EQ(VxFileRem("f") + VxFileRem("f"), 0u);
    EXPECT_FALSE(fs::exists("a/f") || fs::exists("f"));
    EXPECT_THAT(errors(), ElementsAre("Unable to delete the file a\\f."));
}

TEST_F(File, ThereIsWhatHasANameAndWritableWhatNobodyHolds)
{
    folder.write("f", "text");
    EXPECT_EQ(VxFileExists("f") + VxFileExists("."), 2);
    EXPECT_EQ(VxFileExists("g") + VxFileExists(""), 0);
    EXPECT_EQ(VxFileWrite("f"), 1);
    EXPECT_EQ(VxFileWrite("none"), -1);
    EXPECT_EQ(VxFileWrite("."), 0);
    FILE *held = nullptr;
    VxFileOpen(&held, "f", "r");
    EXPECT_EQ(VxFileWrite("f"), 0);
    EXPECT_TRUE(test::inChild([] { return VxFileWrite("f") == 0; }));
    VxFileClose(&held, 0);
}

// In the table, one opening after another: may the second be had while the first is held?
TEST_F(File, HandlesShareAsTheyAreAsked)
{
    constexpr uint32_t read = 0x1, write = 0x2, shareRead = 0x10000, shareWrite = 0x20000, create = 0x40000,
                       existing = 0x80000;
    const struct {
        uint32_t first, second;
        bool both;
    } cases[] = {
        {read | shareRead, read | shareRead, true},
        {read | shareRead, write | shareRead | shareWrite, true},
        {read, read | shareRead, false},
        {write | shareRead, read | shareRead, false},
        {write | shareRead, read | shareRead | shareWrite, true},
        {write | shareRead | shareWrite, write | shareRead, false},
    };
    void *first = nullptr;
    void *second = nullptr;
    EXPECT_EQ(VxFileOpenEx(&first, "f", read | write | existing), 1u);
    ASSERT_EQ(VxFileOpenEx(&first, "f", read | write | create), 0u);
    EXPECT_EQ(VxFileOpenEx(&second, "f", read | create), 1u);
    VxFileCloseEx(&first);
    for (const auto &c : cases) {
        ASSERT_EQ(VxFileOpenEx(&first, "f", c.first | existing), 0u);
        EXPECT_EQ(VxFileOpenEx(&second, "f", c.second | existing) == 0, c.both) << std::hex << c.second;
        EXPECT_EQ(VxFileCloseEx(&first) + VxFileCloseEx(&second) + VxFileCloseEx(&first), 0u);
    }
}

TEST_F(File, StreamsStandWhereTheyAreSentTo)
{
    FILE *stream = nullptr;
    ASSERT_EQ(VxFileOpen(&stream, "f", "w+b"), 0u);
    EXPECT_EQ(VxFileSeek(stream, 5'000'000'000, 0), 0u);
    fputc('x', stream);
    EXPECT_EQ(VxFileSeek(stream, -2, 1) + VxFileSeek(stream, 0, 2), 0u);
    EXPECT_EQ(VxFileTell(stream), 5'000'000'001);
    VxFileClose(&stream, 0);
    EXPECT_EQ(VxFileSize("f"), 5'000'000'001);
}

TEST_F(File, AFailedWriteIsReportedAndALostOneShowsInTheCloseResult)
{
    FILE *stream = stderr;
    EXPECT_EQ(VxFileOpen(&stream, "none", "r"), 1u);
    EXPECT_EQ(stream, nullptr);
    ASSERT_EQ(VxFileOpen(&stream, "\\dev\\full", "w"), 0u);
    EXPECT_EQ(VxFileWriteError(stream, "a/f"), 0u);
    fputs("text", stream);
    fflush(stream);
    EXPECT_EQ(VxFileWriteError(stream, nullptr) + VxFileWriteError(stream, "a/f"), 2u);
    EXPECT_THAT(errors(), ElementsAre("There is no write access to a\\f."));
    fputs("text", stream);
    EXPECT_NE(VxFileClose(&stream, 1), 0);
    EXPECT_EQ(stream, nullptr);
}

TEST_F(File, TheDeviceTellsItsRoomAlsoForWhatIsStillToBeMade)
{
    double room = -1, total = -1;
    EXPECT_EQ(VxDiskInfo("none\\deeper\\f", &room, &total), 0u);
    EXPECT_GT(room, 0);
    EXPECT_EQ(total, static_cast<double>(fs::space(".").capacity) / (1024 * 1024));
    EXPECT_EQ(VxDiskInfo("Q:\\x", &room, &total), 1u) << "a drive that is not mapped";
    EXPECT_EQ(room + total, 0);
}

TEST_F(File, AttributesAreSetOneByOneAndClearedTogether)
{
    folder.write("f", "");
    EXPECT_EQ(VxFileGetAttribute("none"), 0xFFFFFFFFu);
    EXPECT_EQ(VxFileSetAttribute("f", 0x21) + VxFileHide("f"), 0u);
    EXPECT_EQ(VxFileGetAttribute("f"), 0x23u);
    EXPECT_EQ(fs::status("f").permissions() & fs::perms(0222), fs::perms::none);
    EXPECT_EQ(VxFileFixAtt("f"), 0u);
    EXPECT_EQ(VxFileGetAttribute("f"), 0x22u);
    EXPECT_EQ(VxFileShow("f"), 0u);
    EXPECT_EQ(VxFileGetAttribute("f"), 0x80u);
    // Files of the kernel's own have no place for it: the process remembers.
    EXPECT_EQ(VxFileHide("\\proc\\self\\comm"), 0u);
    EXPECT_EQ(VxFileIsHide("\\proc\\self\\comm"), 1);
}

TEST_F(File, TheStatusTellsTypeIdentityAndSizesOf31Or64Bits)
{
    folder.write("f", "");
    fs::create_hard_link("f", "g");
    fs::resize_file("f", 0x7FFFFFFF);
    VxStat f;
    VxStat64 g, d;
    ASSERT_EQ(vxstat("f", &f) + vxstat64(".\\g", &g) + vxstat64(folder.text().c_str(), &d), 0);
    EXPECT_EQ(f.inode, g.inode);
    EXPECT_EQ(f.links, 2u);
    EXPECT_EQ(f.mode & 0xF000, 0x8000u);
    EXPECT_EQ(d.mode & 0xF000, 0x4000u);
    fs::resize_file("f", 0x80000000);
    errno = 0;
    EXPECT_EQ(vxstat("f", &f), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    EXPECT_EQ(f.size, 0x7FFFFFFF) << "a failure writes nothing";
    EXPECT_EQ(vxstat64("f", &g), 0);
    EXPECT_EQ(g.size, 0x80000000);
}

}
