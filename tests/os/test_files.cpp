#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/os/native_path.h"
#include "tests/support/test.h"

using namespace vx;

namespace {

struct OsFiles : testing::Test {
    /** Closes at the end. */
    struct Stream {
        Stream(const std::string &path, const char *mode) { error = os::openFile(path.c_str(), mode, file); }
        ~Stream() { file ? fclose(file) : 0; }
        Stream(const Stream &) = delete;
        Stream &operator=(const Stream &) = delete;

        FILE *file = nullptr;
        os::Error error;
    };

    bool left(const char *name) const { return fs::exists(folder.native() / name); }
    int64_t entries() const { return std::distance(fs::directory_iterator(folder.native()), {}); }
    os::Error replace(const char *name, std::string_view bytes) const
    {
        return os::replaceFile(folder.text(name).c_str(), bytes.data(), bytes.size());
    }

    test::TempFolder folder;
    std::string path = folder.text("f");
};

TEST_F(OsFiles, ReadersShareAndAWriterIsAlone)
{
    folder.write("f", "text");
    for (const char *first : {"r", "r+"}) {
        Stream held(path, first);
        ASSERT_EQ(held.error, os::Error::none);
        bool writer = first[1] == '+';
        for (const char *mode : {"r", "rb"})
            EXPECT_EQ(Stream(path, mode).error, writer ? os::Error::accessDenied : os::Error::none);
        for (const char *mode : {"r+", "w", "w+b", "a", "a+"}) {
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
    int ready[2], done[2];
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
    // Of "12" after writing "x", then of a missing file: the content, "!" for a failure.
    const char *cases[][3] = {{"r", "!", "!"},        {"r+b", "x2", "!"}, {"w", "x", "x"},
                              {"w+t", "x", "x"},      {"a", "12x", "x"},  {"ab+", "12x", "x"},
                              {"wcnStNRT", "x", "x"}, {"wx", "!", "x"}};
    auto writtenX = [&](const char *mode) {
        Stream stream(path, mode);
        bool done = stream.file && fputc('x', stream.file) == 'x' && fflush(stream.file) == 0;
        return done ? folder.read("f") : "!";
    };
    for (auto [mode, content, fresh] : cases) {
        folder.write("f", "12");
        EXPECT_EQ(writtenX(mode), content) << mode;
        fs::remove(folder.native() / "f");
        EXPECT_EQ(writtenX(mode), fresh) << mode;
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
        EXPECT_GE(fputs("text", stream.file), 0);
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
    for (int round = 0; round < 200; ++round) {
        FILE *streams[4] = {};
        {
            std::vector<std::jthread> threads;
            for (FILE *&stream : streams)
                threads.emplace_back([&] { os::openFile(path.c_str(), "w", stream); });
        }
        ASSERT_EQ(std::ranges::count(streams, nullptr), 3);
        fclose(*std::ranges::max_element(streams));
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
               replace("f", "x") == os::Error::accessDenied &&
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
    ASSERT_EQ(replace("link", {"new\0x", 5}), os::Error::none);
    EXPECT_EQ(folder.read("f"), std::string("new\0x", 5));
    EXPECT_TRUE(fs::is_symlink(folder.native() / "link"));
    EXPECT_EQ(fs::status(folder.native() / "f").permissions(), fs::perms(0640));

    {
        Stream reader(path, "r");
        EXPECT_EQ(replace("f", "x"), os::Error::accessDenied);
    }
    EXPECT_EQ(replace("fresh", ""), os::Error::none);
    EXPECT_EQ(folder.read("fresh"), "");
    EXPECT_EQ(entries(), 3);
}

TEST_F(OsFiles, OnlyFilesAreReplacedAlsoUnderTheLongestName)
{
    std::string longest(255, 'n');
    EXPECT_EQ(replace(longest.c_str(), "new"), os::Error::none);
    EXPECT_EQ(folder.read(longest), "new");
    ASSERT_EQ(mkfifo((folder.native() / "f").c_str(), 0666), 0);
    EXPECT_EQ(replace("f", "x"), os::Error::invalid);
    EXPECT_EQ(entries(), 2);
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
        EXPECT_TRUE(!through || os::commitReplacement(replacement, true) == os::Error::none);
        os::dropReplacement(replacement);
        EXPECT_EQ(folder.read("f"), through ? "ld" : "old");
        EXPECT_EQ(Stream(path, "r").error, os::Error::none);
        EXPECT_EQ(entries(), 1);
    }
}

TEST_F(OsFiles, AttributesAreReadAsFileServersWriteThem)
{
    folder.write("f", "");
    fs::path native = folder.native() / "f";
    const char *name = "user.DOSATTRIB";
    const std::pair<const char *, uint32_t> cases[] = {{"0x22", 0x22}, {"0x2", 0x2}, {"0x17", 0x2},
                                                       {"22", 0},      {"0x", 0},    {"0x20 and more", 0x20}};
    uint32_t attributes = 0;
    for (auto [text, expected] : cases) {
        if (setxattr(native.c_str(), name, text, strlen(text), 0) != 0) {
            // A file system without extended attributes says so.
            EXPECT_EQ(os::setFileAttributes(path.c_str(), 0x22), os::Error::unsupported);
            return;
        }
        EXPECT_EQ(os::fileAttributes(path.c_str(), attributes), os::Error::none);
        EXPECT_EQ(attributes, expected) << text;
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
    os::Handle handle;
    os::Replacement replacement{};
    uint32_t attributes = 0;
    int64_t bytes = 0;
    fault::refuseFrom(fault::Kind::verb, 1);
    const os::Error results[] = {
        os::fileStatus(path.c_str(), status),
        os::access(path.c_str(), os::Access::exists),
        os::openFile(path.c_str(), "w", stream),
        os::removeFile(path.c_str()),
        os::replaceFile(path.c_str(), "x", 1),
        os::makeDirectory(folder.text("d").c_str()),
        os::currentDirectory(out, sizeof out),
        os::setCurrentDirectory("\\"),
        os::executablePath(out, sizeof out),
        os::longPath("a", out, sizeof out),
        os::renameFile(path.c_str(), (path + "2").c_str()),
        os::linkFile(path.c_str(), (path + "2").c_str()),
        os::removeDirectory(folder.text().c_str()),
        os::diskSpace(path.c_str(), bytes, bytes),
        os::fileAttributes(path.c_str(), attributes),
        os::setFileAttributes(path.c_str(), os::readOnlyAttribute),
        os::openHandle(path.c_str(), os::writeAccess, handle),
        os::beginReplacement(path.c_str(), replacement),
        os::commitReplacement(replacement, true),
        os::syncStream(stdout),
    };
    int64_t refusals = fault::refusals(fault::Kind::verb);
    fault::refuse(fault::Kind::verb, 0);
    EXPECT_EQ(refusals, std::ssize(results));
    EXPECT_THAT(results, testing::Each(os::Error::other));
    EXPECT_EQ(folder.read("f"), "text");
    EXPECT_FALSE(left("d") || left("f2") || handle.isOpen() || replacement.file.isOpen() || stream);
    EXPECT_STREQ(out, "");
}

TEST_F(OsFiles, TheProgramKnowsItsOwnPath)
{
    char out[300];
    EXPECT_EQ(os::executablePath(out, sizeof out), os::Error::none);
    EXPECT_EQ(os::NativePath(out).c_str(), fs::read_symlink("/proc/self/exe"));
}

}
