#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>
#include <functional>

#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

struct FileCopy : test::ToolkitFixture {
    ~FileCopy() override { fs::remove(away); }

    static int64_t entries(const char *path) { return std::distance(fs::directory_iterator(path), {}); }

    /** A name on another device than the temporary folder's, as far as there is one. */
    const fs::path away = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                          ("vx-away-" + std::to_string(getpid()));
};

TEST_F(FileCopy, CopiesKeepTimesAndPermissions)
{
    test::CodePageScope utf8(65001);
    folder.write("x/a", "text");
    fs::permissions("x/a", fs::perms(0640));
    fs::last_write_time("x/a", fs::file_time_type::clock::now() - std::chrono::hours(1000));
    folder.write("a", "old");
    EXPECT_EQ(VxFileCpy2("a", "x", ".\\") + VxFileCpy("a", "with\xC3\xA4.x"), 0u);
    for (const char *to : {"a", "with\xC3\xA4.x"}) {
        EXPECT_EQ(folder.read(to), "text");
        EXPECT_EQ(fs::status(to).permissions(), fs::perms(0640));
        EXPECT_EQ(VxFileLastWrite(to), VxFileLastWrite("x/a"));
    }
    // More than one step, with a hole, which the kernel may copy as it likes.
    fs::resize_file("a", 20'000'000);
    ASSERT_EQ(VxFileCpy("a", "b"), 0u);
    EXPECT_EQ(VxFileDiff("a", "b"), 0);
    ASSERT_EQ(VxFileCpy("\\proc\\self\\limits", "a"), 0u) << "has bytes, but no size";
    EXPECT_THAT(folder.read("a"), HasSubstr("Max open files"));
}

TEST_F(FileCopy, WhatCannotBeCopiedLeavesEverythingAsItWas)
{
    folder.write("a", "text");
    folder.write("b", "old");
    fs::create_directory("d");
    ASSERT_EQ(mkfifo("pipe", 0666), 0);
    for (auto [from, to] : {std::pair{"none", "b"}, {"a", "none\\b"}, {"d", "b"}, {"a", "d"}, {"a", "a"},
                            {"pipe", "b"}, {"a", "pipe"}, {"\\dev\\zero", "b"}})
        EXPECT_EQ(VxFileCpy(from, to), 1u) << from << ' ' << to;
    EXPECT_EQ(VxFileConcat("a", "a"), 1u);
    EXPECT_EQ(folder.read("a") + folder.read("b"), "textold");
    EXPECT_EQ(entries("."), 4);
}

TEST_F(FileCopy, MovingTellsWhatIsInTheWay)
{
    folder.write("b", "old");
    folder.write("c", "text");
    EXPECT_EQ(VxFileMv("x\\none", "c") + VxFileMv("c", "none/c"), 2u);
    EXPECT_THAT(errors(),
                ElementsAre("There is no write access to x\\none.", "Unable to create the file none\\c."));
    FILE *held = nullptr;
    ASSERT_EQ(VxFileOpen(&held, "b", "r"), 0u);
    EXPECT_EQ(VxFileMv("c", "b") + VxFileMv("b", "c") + VxFileCpy("c", "b"), 3u);
    VxFileClose(&held, 0);
    EXPECT_EQ(folder.read("b") + folder.read("c"), "oldtext");
}

TEST_F(FileCopy, CleaningWritesTheFileAnewAndKeepsTheOldOne)
{
    auto inode = [](const char *name) {
        VxStat status{};
        vxstat(name, &status);
        return status.inode;
    };
    folder.write("a", "text");
    auto before = inode("a");
    ASSERT_EQ(VxFileClean("a"), 0u);
    EXPECT_NE(inode("a"), before);
    EXPECT_EQ(inode("a.bak"), before);

    std::string longest(252, 'n');
    folder.write(longest, "text");
    EXPECT_EQ(VxFileClean(longest.c_str()), 1u);
    EXPECT_THAT(errors(), ElementsAre("Unable to replace the file " + longest + " by its cleaned copy."));

    // Between two devices there are no second names, and the old content is copied.
    std::ofstream(away) << "text";
    fs::create_symlink(away, "link");
    EXPECT_EQ(VxFileClean("link"), 0u);
    EXPECT_EQ(folder.read("link.bak") + folder.read("link"), "texttext");
}

// Whatever is refused: no content is lost, none is mixed, and no new file stays beside it.
TEST_F(FileCopy, ARefusalAnywhereLeavesTheOldOrTheNewContent)
{
    const std::string source(100'000, 's');
    std::string awayText = away.string();
    VxPathCheck(awayText.data());
    const struct {
        const char *name;
        std::function<uint32_t()> act;
        fs::path target;
        std::string before, after;
        bool takesSource;
    } cases[] = {
        {"copy", [] { return VxFileCpy("a", "b"); }, "b", "old", source, false},
        {"append", [] { return VxFileConcat("a", "b"); }, "b", "old", "old" + source, false},
        {"move", [] { return VxFileMv("a", "b"); }, "b", "old", source, true},
        {"move away", [&] { return VxFileMv("a", awayText.c_str()); }, away, "", source, true},
        {"clean", [] { return VxFileClean("a"); }, "a", source, source, false},
    };
    auto prepare = [&] {
        for (const auto &entry : fs::directory_iterator("."))
            fs::remove(entry);
        fs::remove(away);
        folder.write("a", source);
        folder.write("b", "old");
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        uint32_t result = 0;
        prepare();
        auto oldOrNew = [&](bool refused) {
            std::string content = fs::exists(c.target) ? folder.read(c.target.string()) : "";
            EXPECT_TRUE(content == c.after || (result != 0 && content == c.before)) << content.size();
            EXPECT_EQ(fs::exists("a"), !c.takesSource || result != 0) << "the source";
            EXPECT_TRUE(refused || result == 0);
            for (const auto &entry : fs::directory_iterator("."))
                EXPECT_EQ(entry.path().string().find(".vx-"), std::string::npos) << entry.path();
            prepare();
        };
        test::eachRefusal(
            fault::Kind::verb, nullptr, [&] { result = c.act(); }, oldOrNew);
    }
}

TEST_F(FileCopy, AFullDiskLeavesTheOldContent)
{
    folder.write("a", std::string(5000, 's'));
    folder.write("b", "old");
    EXPECT_TRUE(test::inChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit{4000, 4000};
        setrlimit(RLIMIT_FSIZE, &limit);
        return VxFileCpy("a", "b") == 1 && VxFileConcat("a", "b") == 1 && VxFileClean("a") == 1 &&
               VxFileConcat("a", "c") == 1;
    }));
    EXPECT_EQ(folder.read("b"), "old");
    EXPECT_EQ(folder.read("a").size(), 5000u);
    EXPECT_EQ(entries("."), 2);
}

TEST_F(FileCopy, WithoutRightsNothingIsTouched)
{
    folder.write("d/a", "text");
    folder.write("d/secret", "text");
    fs::permissions("d/a", fs::perms(0444));
    fs::permissions("d/secret", fs::perms(0));
    fs::permissions(folder.native(), fs::perms(0755));
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return VxFileCpy("d/a", "d/b") == 1 && VxFileClean("d/a") == 1 && VxFileMv("d/a", "d/b") == 1 &&
               VxFileConcat("d/a", "d/b") == 1 && VxFileWrite("d/a") == 0 &&
               VxFileCpy("d/secret", "d/a") == 1 && VxFileDiff("d/a", "d/secret") == -1;
    }));
    EXPECT_EQ(folder.read("d/a"), "text");
    EXPECT_EQ(entries("d"), 2);
}

}
