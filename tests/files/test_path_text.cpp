#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

struct PathText : test::ToolkitFixture {
    static std::string dir(const std::string &path, int32_t size = 300)
    {
        return test::out([&](char *to, int32_t room) { return VxPathDir(path.c_str(), to, room); }, size);
    }
    static std::string name(const std::string &path, int32_t size = 300)
    {
        return test::out([&](char *to, int32_t room) { return VxPathName(path.c_str(), room, to); }, size);
    }
    static std::string expand(const std::string &path, int32_t size = 300)
    {
        return test::out([&](char *to, int32_t room) { return VxPathExpand(path.c_str(), to, room); }, size);
    }
    static std::string real(const std::string &path, int32_t report = 0)
    {
        return test::out([&](char *to, int32_t room) { return VxPathReal(report, path.c_str(), to, room); });
    }
};

/** Code pages with characters, some with 0x5C or 0x2F-like second bytes. */
const std::pair<int32_t, Texts> alphabets[] = {
    {1252, {"a", "Z", "7", "\xE9", "\x83"}},
    {932, {"a", "\x83\x5C", "\x95\x5C", "\xB1", "\x88\xC0"}},
    {936, {"a", "\x81\x5C", "\xB0\xA1", "\x9F\x5C"}},
    {949, {"a", "\xB0\xA1", "\x81\x41"}},
    {950, {"a", "\xA5\x5C", "\xB3\x5C", "\xA4\x40"}},
    {65001, {"a", "\xC3\xA9", "\xE5\x9B\xB3", "\xF0\x9F\x9B\xA0"}},
};

TEST_F(PathText, PathsComeApartAtSeparatorsNeverInsideCharacters)
{
    test::Random random(20261121);
    for (int round = 0; round < 3000; ++round) {
        const auto &alphabet = random.one(alphabets);
        test::CodePageScope page(alphabet.first);
        auto word = [&] { return random.text(alphabet.second, 1, 4); };
        std::string drive = random() % 2 ? "D:" : "";
        std::string parents, given;
        for (size_t n = random() % 4; n > 0; --n) {
            std::string parent = word();
            parents += "\\" + parent;
            given += (random() % 2 ? "/" : "\\") + parent;
        }
        std::string base = word(), extension = random() % 2 ? "." + word() : "";
        given = drive + given + "/" + base + extension;
        SCOPED_TRACE(testing::Message() << alphabet.first << ' ' << given);

        ASSERT_EQ(VxPathCheck(given.data()), 0u);
        ASSERT_EQ(given, drive + parents + "\\" + base + extension);
        EXPECT_EQ(dir(given), drive + parents);
        EXPECT_EQ(name(given), base + extension);
        EXPECT_EQ(real("D:" + parents + "\\" + base + "\\..\\" + base), "D:" + parents + "\\" + base);
        char parts[4][256];
        ASSERT_EQ(VxPathSplit(given.c_str(), parts[0], parts[1], parts[2], parts[3]), 0u);
        EXPECT_THAT(parts, ElementsAre(testing::StrEq(drive), testing::StrEq(parents + "\\"),
                                       testing::StrEq(base), testing::StrEq(extension)));
        char composed[300];
        VxStrCpy(composed, base.c_str(), sizeof composed);
        ASSERT_FALSE(VxPathAddDelim(composed) || VxPathCompose(composed, sizeof composed, "x", 1));
        EXPECT_EQ(composed, base + "\\x");
    }
}

TEST_F(PathText, FoldersAndNamesThatAreNoneOrDoNotFitFail)
{
    EXPECT_EQ(dir("file.txt", 3), ".\\") << "without a folder it lies in the current one";
    EXPECT_EQ(dir("file.txt", 2) + dir("\\file.txt") + name("D:\\dir\\")[0] + name("a\\..")[0], "!!!");
    EXPECT_EQ(name("a\\bcd", 4) + name("a\\bcde", 4), "bcd!");
    EXPECT_THAT(errors(), ElementsAre("The file name in a\\bcde is too long."));
    test::CodePageScope japanese(932);
    std::string long254(254, 'n');
    char part[256];
    EXPECT_EQ(VxPathSplit((long254 + "\x83\x5C").c_str(), nullptr, nullptr, part, nullptr), 1u);
    EXPECT_EQ(part, long254) << "cut behind a character";
}

TEST_F(PathText, ComposingStopsAtTheCallersSizeAndAtItsOwn)
{
    for (auto [length, size] : {std::pair<size_t, int32_t>{9, 10}, {10, 10}, {1023, 1100}, {1024, 1100}}) {
        std::string path = "a" + std::string(1100, '\0'), added(length - 2, 'b');
        bool fits = length == 9 || length == 1023;
        EXPECT_EQ(VxPathCompose(path.data(), size, added.c_str(), length == 10), fits ? 0u : 1u);
        EXPECT_EQ(std::string(path.c_str()), fits ? "a\\" + added : "a");
    }
    EXPECT_THAT(errors(),
                ElementsAre("The path a\\bbbbbbbb ... is too long. At most 9 characters are allowed."));
}

TEST_F(PathText, TildesAndVariablesAreReplacedUpToASeparator)
{
    test::CodePageScope japanese(932);
    test::Environment home("HOME", "/h"), profile("USERPROFILE", "U:\\p"), variable("VX_T", "v/w"),
        blank("VX_BLANK", ""), none("VX_NONE", nullptr), second("V\x83\x5C", "x");
    // In the last one, a second byte is no separator.
    for (auto [path, expanded] :
         {std::pair{"~", "/h"}, {"~bob\\x", "U:\\p\\x"}, {"a/$VX_T/b", "a\\v/w\\b"}, {"$VX_BLANK\\b", "\\b"},
          {"$VX_NONE\\$VX_T", "!$VX_NONE\\v/w"}, {"a\\$\\b$", "!a\\$\\b$"}, {"", "."},
          {"$V\x83\x5C\\b", "x\\b"}})
        EXPECT_EQ(expand(path), expanded) << path;
    EXPECT_EQ(expand("a\\$VX_T", 6), "a\\v/w");
    EXPECT_EQ(expand("a\\$VX_T", 5), "!a\\v/") << "a text that does not fit is no success";
    EXPECT_EQ(real("~\\a\\..\\b"), "\\h\\b");
    EXPECT_EQ(real("$VX_NONE/a"), "!$VX_NONE\\a") << "what cannot be resolved stays expanded";
    EXPECT_THAT(errors(), ElementsAre());
    real("$VX_NONE/a", 1);
    EXPECT_THAT(errors(), ElementsAre("Unable to resolve the path $VX_NONE/a."));
    char text[32] = "";
    const char *needy = "$VX_NAME_THAT_NEEDS_MEMORY";
    auto expandIt = [&] { VxPathExpand(needy, text, sizeof text); };
    test::eachRefusal(fault::Kind::allocation, nullptr, expandIt,
                      [&](bool refused) { EXPECT_STREQ(text, refused ? "" : needy); });
}

TEST_F(PathText, FullPathsKeepTheirRootAndStartInTheCurrentFolder)
{
    std::string longest = "D:\\" + std::string(252, 'x');
    std::pair<std::string, std::string> paths[] = {
        {"d:/a//.\\b/..\\c/", "d:\\a\\c\\"},
        {"\\..\\a\\..\\..\\", "\\"},
        {"\\\\server\\share\\a\\..\\..\\b", "\\\\server\\share\\b"},
        {"X:a\\b", "X:\\a\\b"},
        {longest, longest},
        {longest + "x", "!" + longest + "x"},
    };
    for (const auto &[path, full] : paths)
        EXPECT_EQ(real(path), full) << path;
    test::Environment map("VX_DRIVE_MAP", ("D=" + folder.native().string()).c_str());
    EXPECT_EQ(real("a") + real("d:a") + real("E:a"), "D:\\aD:\\aE:\\a");
    char cut[6] = "D:/ab";
    EXPECT_EQ(VxPathReal2(cut, sizeof cut), 0u);
    EXPECT_STREQ(VX::realpath("D:/abc", cut, sizeof cut), "D:/ab") << "unresolved: as it was given";
}

TEST_F(PathText, FoldingAgreesWithTheStandardLibrary)
{
    test::Random random(7);
    const char *pieces[] = {"a/", "bc/", "./", "../", "...//", "d.e/", "a//", "..//", ".//"};
    for (int round = 0; round < 5000; ++round) {
        std::string path = (random() % 2 ? "/" : "") + random.text(pieces, 0, 7) + "end";
        std::string expected = (folder.native() / path).lexically_normal().string();
        std::ranges::replace(expected, '/', '\\');
        ASSERT_EQ(real(path), expected) << path;
    }
}

}
