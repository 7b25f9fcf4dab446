#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "tests/support/child.h"
#include "tests/support/each_refusal.h"
#include "tests/support/temp_folder.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

struct OsFiles : testing::Test {
    /** Closes at the end. */
    struct Stream {
        FILE *file = nullptr;
        os::Error error;

        Stream(const std::string &path, const char *mode) { error = os::openFile(path.c_str(), mode, file); }
        ~Stream()
        {
            if (file)
                fclose(file);
        }
        Stream(const Stream &) = delete;
        Stream &operator=(const Stream &) = delete;
    };

    bool left(const char *name) const { return fs::exists(folder.native() / name); }

    test::TempFolder folder;
    std::string path = folder.text("f");
};

TEST_F(OsFiles, ReadersShareAndAWriterIsAlone)
{
    folder.write("f", "text");
    const char *reading[] = {"r", "rb"};
    const char *writing[] = {"r+", "w", "w+b", "a", "a+"};
    for (const char *first : {"r", "r+"}) {
        Stream held(path, first);
        ASSERT_EQ(held.error, os::Error::none);
        bool writer = first[1] == '+';
        for (const char *mode : reading)
            EXPECT_EQ(Stream(path, mode).error, writer ? os::Error::accessDenied : os::Error::none);
        for (const char *mode : writing) {
            errno = 0;
            EXPECT_EQ(Stream(path, mode).error, os::Error::accessDenied) << mode;
            EXPECT_EQ(errno, EACCES);
        }
    }
    EXPECT_EQ(folder.read("f"), "text") << "a refused opening truncates nothing";
    EXPECT_EQ(Stream(path, "r+").error, os::Error::none) << "closing lets go";
}

TEST_F(OsFiles, AProcessThatEndsLetsGo)
{
    int ready[2];
    int done[2];
    ASSERT_EQ(pipe(ready) + pipe(done), 0);
    test::Child holder([&] {
        Stream held(path, "w");
        char byte = '!';
        return held.file && write(ready[1], &byte, 1) == 1 && read(done[0], &byte, 1) == 1;
    });
    char byte;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    EXPECT_EQ(Stream(path, "r").error, os::Error::accessDenied);
    EXPECT_EQ(write(done[1], &byte, 1), 1);
    EXPECT_TRUE(holder.succeeded());
    EXPECT_EQ(Stream(path, "r").error, os::Error::none);
    for (int end : {ready[0], ready[1], done[0], done[1]})
        close(end);
}

TEST_F(OsFiles, ModesDoWhatTheyDoInTheStandardLibrary)
{
    struct {
        const char *mode;
        const char *content; ///< of "12" after writing "x", "!" when that fails
        const char *fresh;   ///< of a missing file after writing "x", "!" when it is not made
    } cases[] = {{"r", "!", "!"},   {"r+b", "x2", "!"},  {"w", "x", "x"},        {"w+t", "x", "x"},
                 {"a", "12x", "x"}, {"ab+", "12x", "x"}, {"wcnStNRT", "x", "x"}, {"wx", "!", "x"}};
    for (auto &c : cases) {
        SCOPED_TRACE(c.mode);
        auto writeX = [&] {
            Stream stream(path, c.mode);
            return stream.file && fputc('x', stream.file) == 'x' && fflush(stream.file) == 0;
        };
        folder.write("f", "12");
        EXPECT_EQ(writeX() ? folder.read("f") : "!", c.content);
        fs::remove(folder.native() / "f");
        EXPECT_EQ(writeX() ? folder.read("f") : "!", c.fresh);
        fs::remove(folder.native() / "f");
    }
    for (const char *mode : {"", "b", "q", "+r"})
        EXPECT_EQ(Stream(path, mode).error, os::Error::invalid) << mode;
    EXPECT_EQ(Stream(folder.text(), "r").error, os::Error::isDirectory);
}

TEST_F(OsFiles, DRemovesTheNameAtOnceAndAnEncodingIsNoLetter)
{
    {
        Stream stream(path, "w+bD");
        ASSERT_EQ(stream.error, os::Error::none);
        EXPECT_FALSE(left("f"));
        EXPECT_EQ(fputs("text", stream.file) < 0, false);
    }
    EXPECT_FALSE(left("f"));
    Stream stream(path, "w,ccs=UNICODE");
    EXPECT_TRUE(left("f"));
}

TEST_F(OsFiles, LinksLeadToTheirFileEvenBeforeItIsThere)
{
    fs::create_symlink("target", folder.native() / "f");
    EXPECT_EQ(Stream(path, "r").error, os::Error::notFound);
    EXPECT_EQ(Stream(path, "w").error, os::Error::none);
    EXPECT_TRUE(left("target"));
    fs::create_symlink("loop", folder.native() / "loop");
    EXPECT_NE(Stream(folder.text("loop"), "w").error, os::Error::none);
}

TEST_F(OsFiles, ManyMakersOfOneFileNeverTakeItFromItsHolder)
{
    constexpr int makers = 4;
    constexpr int rounds = 200;
    for (int round = 0; round < rounds; ++round) {
        FILE *streams[makers] = {};
        {
            std::vector<std::jthread> threads;
            for (FILE *&stream : streams)
                threads.emplace_back([&] { os::openFile(path.c_str(), "w", stream); });
        }
        int holders = 0;
        for (FILE *stream : streams)
            if (stream) {
                ++holders;
                fclose(stream);
            }
        ASSERT_EQ(holders, 1);
        ASSERT_TRUE(left("f"));
        fs::remove(folder.native() / "f");
    }
}

TEST_F(OsFiles, RightsAreThoseInForce)
{
    folder.write("f", "text");
    fs::permissions(folder.native() / "f", fs::perms(0444));
    fs::permissions(folder.native(), fs::perms(0755));
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return os::access(path.c_str(), os::Access::exists) == os::Error::none &&
               os::access(path.c_str(), os::Access::write) == os::Error::accessDenied &&
               Stream(path, "w").error == os::Error::accessDenied &&
               os::replaceFile(path.c_str(), "x", 1) == os::Error::accessDenied &&
               (getuid() != 0 || os::removeFile(path.c_str()) == os::Error::accessDenied) &&
               (getuid() != 0 || os::makeDirectory(folder.text("d").c_str()) == os::Error::accessDenied);
    }));
    EXPECT_EQ(folder.read("f"), "text");
}

TEST_F(OsFiles, ReplacingKeepsPermissionsLinksAndHolders)
{
    folder.write("f", "old");
    fs::permissions(folder.native() / "f", fs::perms(0640));
    fs::create_symlink("f", folder.native() / "link");
    ASSERT_EQ(os::replaceFile(folder.text("link").c_str(), "new\0x", 5), os::Error::none);
    EXPECT_EQ(folder.read("f"), std::string("new\0x", 5));
    EXPECT_TRUE(fs::is_symlink(folder.native() / "link"));
    EXPECT_EQ(fs::status(folder.native() / "f").permissions(), fs::perms(0640));

    {
        Stream reader(path, "r");
        EXPECT_EQ(os::replaceFile(path.c_str(), "x", 1), os::Error::accessDenied);
    }
    EXPECT_EQ(os::replaceFile(folder.text("fresh").c_str(), "", 0), os::Error::none);
    EXPECT_EQ(folder.read("fresh"), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.native()), {}), 3);
}

TEST_F(OsFiles, OnlyFilesAreReplacedAlsoUnderTheLongestName)
{
    std::string longest(255, 'n');
    EXPECT_EQ(os::replaceFile(folder.text(longest).c_str(), "new", 3), os::Error::none);
    EXPECT_EQ(folder.read(longest), "new");
    ASSERT_EQ(mkfifo((folder.native() / "f").c_str(), 0666), 0);
    EXPECT_EQ(os::replaceFile(path.c_str(), "x", 1), os::Error::invalid);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.native()), {}), 2);
}

TEST_F(OsFiles, AReplacementHoldsTheOldFileUntilItIsThroughOrDropped)
{
    folder.write("f", "old");
    for (bool through : {false, true}) {
        os::Replacement replacement;
        ASSERT_EQ(os::beginReplacement(path.c_str(), replacement), os::Error::none);
        EXPECT_EQ(Stream(path, "r").error, os::Error::accessDenied);
        size_t copied = 0;
        EXPECT_EQ(os::copyBytes(replacement.old, 1, replacement.file, 0, 100, copied), os::Error::none);
        EXPECT_EQ(copied, 2u);
        if (through) {
            EXPECT_EQ(os::commitReplacement(replacement, true), os::Error::none);
        }
        os::dropReplacement(replacement);
        EXPECT_EQ(folder.read("f"), through ? "ld" : "old");
        EXPECT_EQ(Stream(path, "r").error, os::Error::none);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.native()), {}), 1);
    }
}

TEST_F(OsFiles, AttributesAreReadAsFileServersWriteThem)
{
    folder.write("f", "");
    fs::path native = folder.native() / "f";
    const char *name = "user.DOSATTRIB";
    const struct {
        const char *text;
        uint32_t attributes;
    } cases[] = {{"0x22", 0x22}, {"0x2", 0x2}, {"0x17", 0x2}, {"22", 0}, {"0x", 0}, {"0x20 and more", 0x20}};
    uint32_t attributes = 0;
    for (const auto &c : cases) {
        if (setxattr(native.c_str(), name, c.text, strlen(c.text), 0) != 0) {
            // A file system without extended attributes says so.
            EXPECT_EQ(os::setFileAttributes(path.c_str(), 0x22), os::Error::unsupported);
            return;
        }
        EXPECT_EQ(os::fileAttributes(path.c_str(), attributes), os::Error::none);
        EXPECT_EQ(attributes, c.attributes) << c.text;
    }
    char text[16] = "";
    EXPECT_EQ(os::setFileAttributes(path.c_str(), 0x22), os::Error::none);
    EXPECT_EQ(std::string(text, static_cast<size_t>(getxattr(native.c_str(), name, text, sizeof text))),
              "0x22");

    // Who owns a file may hide it though it is read-only.
    fs::permissions(native, fs::perms(0444));
    EXPECT_EQ(chown(native.c_str(), test::nobody, test::nobody), geteuid() == 0 ? 0 : -1);
    fs::permissions(folder.native(), fs::perms(0755));
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return os::setFileAttributes(path.c_str(), 0x3) == os::Error::none;
    }));
    EXPECT_EQ(os::fileAttributes(path.c_str(), attributes), os::Error::none);
    EXPECT_EQ(attributes, 0x3u);
    EXPECT_EQ(fs::status(native).permissions(), fs::perms(0444));
}

TEST_F(OsFiles, ARefusedVerbTouchesNothing)
{
    folder.write("f", "text");
    os::FileStatus status{};
    FILE *stream = nullptr;
    char out[300] = "";
    os::Error results[20];
    os::Handle handle;
    os::Replacement replacement{};
    uint32_t attributes = 0;
    int64_t bytes = 0;
    int64_t refusals = 0;
    fault::refuseFrom(fault::Kind::verb, 1);
    int n = 0;
    results[n++] = os::fileStatus(path.c_str(), status);
    results[n++] = os::access(path.c_str(), os::Access::exists);
    results[n++] = os::openFile(path.c_str(), "w", stream);
    results[n++] = os::removeFile(path.c_str());
    results[n++] = os::replaceFile(path.c_str(), "x", 1);
    results[n++] = os::makeDirectory(folder.text("d").c_str());
    results[n++] = os::currentDirectory(out, sizeof out);
    results[n++] = os::setCurrentDirectory("\\");
    results[n++] = os::executablePath(out, sizeof out);
    results[n++] = os::longPath("a", out, sizeof out);
    results[n++] = os::renameFile(path.c_str(), (path + "2").c_str());
    results[n++] = os::linkFile(path.c_str(), (path + "2").c_str());
    results[n++] = os::removeDirectory(folder.text().c_str());
    results[n++] = os::diskSpace(path.c_str(), bytes, bytes);
    results[n++] = os::fileAttributes(path.c_str(), attributes);
    results[n++] = os::setFileAttributes(path.c_str(), os::readOnlyAttribute);
    results[n++] = os::openHandle(path.c_str(), os::writeAccess, handle);
    results[n++] = os::beginReplacement(path.c_str(), replacement);
    results[n++] = os::commitReplacement(replacement, true);
    results[n++] = os::syncStream(stdout);
    refusals = fault::refusals(fault::Kind::verb);
    fault::refuse(fault::Kind::verb, 0);
    EXPECT_EQ(refusals, n);
    for (os::Error result : results)
        EXPECT_EQ(result, os::Error::other);
    EXPECT_EQ(folder.read("f"), "text");
    EXPECT_FALSE(left("d") || left("f2") || handle.isOpen() || replacement.file.isOpen());
    EXPECT_STREQ(out, "");
    EXPECT_EQ(stream, nullptr);
}

}
