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

TEST_F(File, DeletingWhatIsNotThereIsReported)
{
    folder.write("a/f", "");
    EXPECT_EQ(VxFileDel("a/f"), 0u);
    EXPECT_FALSE(fs::exists("a/f"));
    EXPECT_EQ(VxFileDel("a/f"), 1u);
    EXPECT_THAT(errors(), ElementsAre("Unable to delete the file a\\f."));
    EXPECT_EQ(VxFileDel(nullptr), 1u);

    folder.write("f", "");
    EXPECT_EQ(VxFileRem("f") + VxFileRem("f") + VxFileRem("f\\x") + VxFileRem(" ") + VxFileRem(nullptr), 0u);
    fs::create_directory("d");
    EXPECT_EQ(VxFileRem("d"), 1u);
}

TEST_F(File, ThereIsWhatHasANameAndWritableWhatNobodyHolds)
{
    folder.write("f", "text");
    folder.write(" ", "a file of this name");
    EXPECT_EQ(VxFileExists("f") + VxFileExists("."), 2);
    EXPECT_EQ(VxFileExists("g") + VxFileExists("") + VxFileExists(" ") + VxFileExists(nullptr), 0);
    EXPECT_EQ(VxFileWrite("f"), 1);
    EXPECT_EQ(VxFileWrite("none") + VxFileWrite("") + VxFileWrite(nullptr), -3);
    EXPECT_EQ(VxFileWrite("."), 0);
    FILE *held = nullptr;
    VxFileOpen(&held, "f", "r");
    EXPECT_EQ(VxFileWrite("f"), 0);
    EXPECT_TRUE(test::inChild([] { return VxFileWrite("f") == 0; }));
    VxFileClose(&held, 0);
    EXPECT_EQ(folder.read("f"), "text");
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
        {read | shareRead, write | shareRead, false},
        {read | shareRead, write | shareRead | shareWrite, true},
        {read, read | shareRead, false},
        {write | shareRead, read | shareRead, false},
        {write | shareRead, read | shareRead | shareWrite, true},
        {write | shareRead | shareWrite, read | write | shareRead | shareWrite, true},
        {write | shareRead | shareWrite, write | shareRead, false},
    };
    void *first = nullptr;
    void *second = nullptr;
    EXPECT_EQ(VxFileOpenEx(&first, "f", read | write | existing), 1u);
    EXPECT_EQ(VxFileOpenEx(&first, "f", read | write), 1u);
    EXPECT_EQ(VxFileOpenEx(&first, ".", read | existing), 1u);
    EXPECT_EQ(VxFileOpenEx(nullptr, "f", read | create) + VxFileOpenEx(&first, nullptr, read | create), 2u);
    EXPECT_EQ(first, nullptr);
    ASSERT_EQ(VxFileOpenEx(&first, "f", read | write | create), 0u);
    EXPECT_EQ(VxFileOpenEx(&second, "f", read | create), 1u);
    EXPECT_EQ(VxFileCloseEx(&first) + VxFileCloseEx(&first) + VxFileCloseEx(nullptr), 0u);
    EXPECT_EQ(first, nullptr);
    for (const auto &c : cases) {
        ASSERT_EQ(VxFileOpenEx(&first, "f", c.first | existing), 0u);
        EXPECT_EQ(VxFileOpenEx(&second, "f", c.second | existing | create) == 0, c.both)
            << std::hex << c.first << " " << c.second;
        VxFileCloseEx(&first);
        VxFileCloseEx(&second);
    }
}

TEST_F(File, StreamsStandWhereTheyAreSentTo)
{
    FILE *stream = nullptr;
    ASSERT_EQ(VxFileOpen(&stream, "f", "w+b"), 0u);
    EXPECT_EQ(VxFileSeek(stream, 5'000'000'000, 0), 0u);
    EXPECT_EQ(VxFileTell(stream), 5'000'000'000);
    fputc('x', stream);
    EXPECT_EQ(VxFileSeek(stream, -2, 1) + VxFileSeek(stream, 0, 2), 0u);
    EXPECT_EQ(VxFileTell(stream), 5'000'000'001);
    EXPECT_EQ(VxFileSeek(stream, -1, 0) + VxFileSeek(stream, 0, 3) + VxFileSeek(nullptr, 0, 0), 3u);
    EXPECT_EQ(VxFileTell(nullptr), -1);
    VxFileClose(&stream, 0);
    EXPECT_EQ(VxFileSize("f"), 5'000'000'001);
    EXPECT_EQ(VxFileSize("") + VxFileSize("none") + VxFileSize(".") + VxFileSize(nullptr), 0);
    EXPECT_NE(VxFileLastWrite("f"), 0);
    EXPECT_EQ(VxFileLastWrite("") + VxFileLastWrite("none") + VxFileLastWrite(nullptr), 0);
}

TEST_F(File, AFailedWriteIsReportedAndALostOneShowsInTheCloseResult)
{
    FILE *stream = nullptr;
    ASSERT_EQ(VxFileOpen(&stream, "\\dev\\full", "w"), 0u);
    EXPECT_EQ(VxFileWriteError(stream, "a/f"), 0u);
    fputs("text", stream);
    fflush(stream);
    EXPECT_EQ(VxFileWriteError(stream, nullptr) + VxFileWriteError(stream, "a/f"), 2u);
    EXPECT_THAT(errors(), ElementsAre("There is no write access to a\\f."));
    EXPECT_EQ(VxFileWriteError(nullptr, "f"), 1u);
    fputs("text", stream);
    EXPECT_NE(VxFileClose(&stream, 1), 0);
    EXPECT_EQ(stream, nullptr);
}

TEST_F(File, TheDeviceTellsItsRoomAlsoForWhatIsStillToBeMade)
{
    double room = -1, total = -1;
    EXPECT_EQ(VxDiskInfo("none\\deeper\\f", &room, &total), 0u);
    EXPECT_GT(room, 0);
    EXPECT_LE(room, total);
    auto space = fs::space(".");
    EXPECT_EQ(total, static_cast<double>(space.capacity) / (1024 * 1024));
    EXPECT_EQ(VxDiskInfo("Q:\\x", &room, &total), 1u) << "a drive that is not mapped";
    EXPECT_EQ(room + total, 0);
    EXPECT_EQ(VxDiskInfo("", &room, &total) + VxDiskInfo(nullptr, &room, &total) +
                  VxDiskInfo(".", nullptr, &total) + VxDiskInfo("\\", &room, &total),
              3u);
}

TEST_F(File, AttributesAreSetOneByOneAndClearedTogether)
{
    folder.write("f", "");
    fs::create_directory("d");
    EXPECT_EQ(VxFileGetAttribute("f"), 0x80u);
    EXPECT_EQ(VxFileGetAttribute("d"), 0x10u);
    EXPECT_EQ(VxFileGetAttribute("none"), 0xFFFFFFFFu);
    EXPECT_EQ(VxFileSetAttribute("f", 0x21), 0u);
    EXPECT_EQ(VxFileHide("f") + VxFileHide("d"), 0u);
    EXPECT_EQ(VxFileGetAttribute("f"), 0x23u);
    EXPECT_EQ(VxFileGetAttribute("d"), 0x12u);
    EXPECT_EQ(fs::status("f").permissions() & fs::perms(0222), fs::perms::none);
    EXPECT_EQ(VxFileIsHide("f"), 1);
    EXPECT_EQ(VxFileFixAtt("f"), 0u);
    EXPECT_EQ(VxFileGetAttribute("f"), 0x22u);
    EXPECT_EQ(VxFileShow("f"), 0u);
    EXPECT_EQ(VxFileGetAttribute("f"), 0x80u);
    EXPECT_EQ(VxFileIsHide("f") + VxFileIsHide("none") + VxFileIsHide(nullptr), 0);
    // Files of the kernel's own have no place for it: the process remembers.
    const char *kernels = "\\proc\\self\\comm";
    EXPECT_EQ(VxFileHide(kernels), 0u);
    EXPECT_EQ(VxFileIsHide(kernels), 1);
    EXPECT_EQ(VxFileShow(kernels), 0u);
    EXPECT_EQ(VxFileIsHide(kernels), 0);
    EXPECT_EQ(VxFileHide("none") + VxFileShow("none") + VxFileFixAtt("none") + VxFileHide(nullptr), 4u);
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

    fs::resize_file("f", 0x7FFFFFFF);
    EXPECT_EQ(vxstat("f", &f), 0);
    fs::resize_file("f", 0x80000000);
    errno = 0;
    EXPECT_EQ(vxstat("f", &f), -1);
    EXPECT_EQ(errno, EOVERFLOW);
    EXPECT_EQ(vxstat64("f", &g), 0);
    EXPECT_EQ(g.size, 0x80000000);
}

}
