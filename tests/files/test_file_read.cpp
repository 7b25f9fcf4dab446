#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

struct FileRead : test::ToolkitFixture {
    ~FileRead() override { VxFileClose(&stream, 0); }

    /** Open a file of these bytes. */
    void open(std::string_view bytes)
    {
        VxFileClose(&stream, 0);
        folder.write("f", bytes);
        ASSERT_EQ(VxFileOpen(&stream, "f", "rb"), 0u);
    }

    /** All lines that a reader gives, joined by "|". */
    template <typename Reader> std::string lines(Reader reader, int32_t size)
    {
        std::string all;
        std::string line(static_cast<size_t>(size), '?');
        while (reader(stream, line.data(), size) == 0)
            all += line.c_str() + std::string("|");
        EXPECT_EQ(line[0], '\0');
        return all;
    }

    FILE *stream = nullptr;
};

TEST_F(FileRead, LinesEndWithLfOrCrLfAndLongOnesAreCutBehindACharacter)
{
    test::CodePageScope utf8(65001);
    open("one\r\n\ntwo\rx\n \nlast");
    EXPECT_EQ(lines(VxFileGetLine, 64), "one||two\rx| |last|");
    open("123\n1234\n12345\r\nx\n1234\r\n12\xC3\xA4\n123\xC3\xA4\n");
    EXPECT_EQ(lines(VxFileGetLine, 5), "123|1234|1234|x|1234|12\xC3\xA4|123|");
    open(std::string_view("1\0002\nend", 8));
    EXPECT_EQ(lines(VxFileGetLine, 5), "1|end|") << "a zero byte ends the text of its line only";
}

TEST_F(FileRead, GoingToATextLeavesItsLineToBeReadWithoutCommentsAndBlankLines)
{
    open("x [a]\n[ab]\n\n  \t\n  # no\nb # yes\n#");
    EXPECT_EQ(VxFileGoTo(stream, "[a"), 0u);
    EXPECT_EQ(lines(VxFileNextLine, 64), "[ab]|b # yes|");
    EXPECT_EQ(VxFileGoTo(stream, "[ab]"), 1u) << "forward only";
}

TEST_F(FileRead, FilesComeWholeWithAZeroByteBehind)
{
    for (size_t size : {0u, 1u, 65535u, 65536u, 300000u}) {
        SCOPED_TRACE(size);
        std::string bytes(size, 'x');
        std::ranges::generate(bytes, [i = 0]() mutable { return static_cast<char>(i++ * 7 % 251); });
        open(bytes);
        void *whole = nullptr, *rest = nullptr;
        int32_t count = -1, restCount = -1;
        ASSERT_EQ(VxFileToMem("f", &whole, &count), 0u);
        VxFileSeek(stream, 1, 0);
        ASSERT_EQ(VxFileToMem2(stream, &rest, &restCount), 0u);
        ASSERT_EQ(static_cast<size_t>(count), size);
        EXPECT_EQ(std::memcmp(whole, bytes.c_str(), size + 1), 0);
        EXPECT_EQ(std::string(static_cast<char *>(rest), static_cast<size_t>(restCount)),
                  bytes.substr(std::min<size_t>(1, size)));
        VxMemFree(&whole);
        VxMemFree(&rest);
    }
    void *data = nullptr;
    int32_t size = 1;
    EXPECT_EQ(VxFileToMem(".", &data, &size) + VxFileToMem("\\dev\\zero", &data, &size), 2u);
    fs::resize_file("f", 0x7FFFFFFF);
    EXPECT_EQ(VxFileToMem("f", &data, &size), 1u) << "no room for the zero byte in a 31-bit size";
    char *text = nullptr;
    ASSERT_EQ(VxFileRead("\\proc\\self\\limits", &text), 0u) << "has bytes, but no size";
    EXPECT_NE(std::strstr(text, "Max open files"), nullptr);
    VxMemFree(reinterpret_cast<void **>(&text));
}

TEST_F(FileRead, ReadingMeetsEachRefusalWithoutABlock)
{
    folder.write("f", std::string(200000, 'x'));
    folder.write("g", std::string(200000, 'x'));
    void *data = nullptr;
    int32_t size = 0, same = 0;
    auto read = [&] { VxFileToMem("f", &data, &size); };
    test::eachRefusal(read, [&](bool refused) {
        EXPECT_EQ(data == nullptr, refused);
        EXPECT_EQ(size, refused ? 0 : 200000);
        VxMemFree(&data);
    });
    test::eachRefusal(
        fault::Kind::verb, nullptr, [&] { same = VxFileDiff("f", "g"); },
        [&](bool refused) { EXPECT_EQ(same, refused ? -1 : 0); });
}

TEST_F(FileRead, FilesDifferInOneByteOrInLength)
{
    std::string bytes(65536 * 2, 'x');
    folder.write("a", bytes);
    for (size_t at : {size_t{65535}, size_t{65536}, bytes.size()}) {
        folder.write("b", std::string(bytes).replace(at, 1, "y"));
        EXPECT_EQ(VxFileDiff("a", "b") + VxFileDiff("b", "a"), 2) << at;
    }
    EXPECT_EQ(VxFileDiff("a", "none") + VxFileDiff(".", "a"), -2);
}

}
