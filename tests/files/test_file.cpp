#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

using File = test::ToolkitFixture;

TEST_F(File, DeletingWhatIsNotThereIsReportedAndRemovingItIsNot)
{
    folder.make({"a/f", "f"});
    EXPECT_EQ(VxFileDel("a/f"), 0u);
    EXPECT_EQ(VxFileDel("a/f"), 1u);
    EXPECT_EQ(VxFileRem("f") + VxFileRem("f"), 0u);
    EXPECT_FALSE(fs::exists("a/f") || fs::exists("f"));
    EXPECT_THAT(errors(), ElementsAre("Unable to delete the file a\\f."));
}

TEST_F(File, ThereIsWhatHasANameAndWritableWhatNobodyHolds)
{
    folder.make({"f"});
    EXPECT_EQ(VxFileExists("f") + VxFileExists("."), 2);
    EXPECT_EQ(VxFileExists("g") + VxFileExists(""), 0);
    for (auto [name, writable] : {std::pair{"f", 1}, {"none", -1}, {".", 0}})
        EXPECT_EQ(VxFileWrite(name), writable) << name;
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
    const std::tuple<uint32_t, uint32_t, bool> cases[] = {
        {read | shareRead, read | shareRead, true},
        {read | shareRead, write | shareRead | shareWrite, true},
        {read, read | shareRead, false},
        {write | shareRead, read | shareRead, false},
        {write | shareRead, read | shareRead | shareWrite, true},
        {write | shareRead | shareWrite, write | shareRead, false},
    };
    void *one = nullptr, *two = nullptr;
    EXPECT_EQ(VxFileOpenEx(&one, "f", read | write | existing), 1u);
    ASSERT_EQ(VxFileOpenEx(&one, "f", read | write | create), 0u);
    EXPECT_EQ(VxFileOpenEx(&two, "f", read | create), 1u);
    VxFileCloseEx(&one);
    for (auto [first, second, both] : cases) {
        ASSERT_EQ(VxFileOpenEx(&one, "f", first | existing), 0u);
        EXPECT_EQ(VxFileOpenEx(&two, "f", second | existing) == 0, both) << std::hex << second;
        EXPECT_FALSE(VxFileCloseEx(&one) || VxFileCloseEx(&two) || VxFileCloseEx(&one));
    }
}

TEST_F(File, StreamsStandWhereTheyAreSentTo)
{
    FILE *stream = nullptr;
    ASSERT_FALSE(VxFileOpen(&stream, "f", "w+b") || VxFileSeek(stream, 5'000'000'000, 0));
    fputc('x', stream);
    EXPECT_FALSE(VxFileSeek(stream, -2, 1) || VxFileSeek(stream, 0, 2));
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
    folder.make({"f"});
    EXPECT_EQ(VxFileGetAttribute("none"), 0xFFFFFFFFu);
    EXPECT_FALSE(VxFileSetAttribute("f", 0x21) || VxFileHide("f"));
    EXPECT_EQ(VxFileGetAttribute("f"), 0x23u);
    EXPECT_EQ(fs::status("f").permissions() & fs::perms(0222), fs::perms::none);
    for (auto [clear, attributes] : {std::pair{&VxFileFixAtt, 0x22u}, {&VxFileShow, 0x80u}}) {
        EXPECT_EQ(clear("f"), 0u);
        EXPECT_EQ(VxFileGetAttribute("f"), attributes);
    }
    // Files of the kernel's own have no place for it: the process remembers.
    EXPECT_EQ(VxFileHide("\\proc\\self\\comm"), 0u);
    EXPECT_EQ(VxFileIsHide("\\proc\\self\\comm"), 1);
}

TEST_F(File, TheStatusTellsTypeIdentityAndSizesOf31Or64Bits)
{
    folder.make({"f"});
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
