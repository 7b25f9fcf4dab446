#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/code_page.h"
#include "vx/path.h"

using namespace vx;
using testing::ElementsAre;

namespace {

struct PathText : test::ToolkitFixture {
    static std::string dir(const std::string &path, int32_t size = 300)
    {
        char out[300] = "?";
        return VxPathDir(path.c_str(), out, size) == 0 ? out : std::string("failed:") + out;
    }

    static std::string name(const std::string &path, int32_t size = 300)
    {
        char out[300] = "?";
        return VxPathName(path.c_str(), size, out) == 0 ? out : "failed";
    }
};

struct Alphabet {
    int32_t codePage;
    std::vector<std::string> characters; ///< some with 0x5C or 0x2F-like second bytes
};

const Alphabet alphabets[] = {
    {1252, {"a", "Z", "7", "\xE9", "\x83"}},
    {932, {"a", "\x83\x5C", "\x95\x5C", "\xB1", "\x88\xC0"}},
    {936, {"a", "\x81\x5C", "\xB0\xA1", "\x9F\x5C"}},
    {949, {"a", "\xB0\xA1", "\x81\x41"}},
    {950, {"a", "\xA5\x5C", "\xB3\x5C", "\xA4\x40"}},
    {65001, {"a", "\xC3\xA9", "\xE5\x9B\xB3", "\xF0\x9F\x9B\xA0"}},
};

std::string word(std::mt19937 &random, const Alphabet &alphabet)
{
    std::string text;
    for (size_t n = 1 + random() % 4; n > 0; --n)
        text += alphabet.characters[random() % alphabet.characters.size()];
    return text;
}

TEST_F(PathText, PathsComeApartAtSeparatorsNeverInsideCharacters)
{
    std::mt19937 random(20261121);
    for (int round = 0; round < 3000; ++round) {
        const Alphabet &alphabet = alphabets[random() % std::size(alphabets)];
        test::CodePageScope page(alphabet.codePage);
        std::string drive = random() % 2 ? "D:" : "";
        std::string parents;
        std::string given;
        for (size_t n = random() % 4; n > 0; --n) {
            std::string parent = word(random, alphabet);
            parents += "\\" + parent;
            given += (random() % 2 ? "/" : "\\") + parent;
        }
        std::string base = word(random, alphabet);
        std::string extension = random() % 2 ? "." + word(random, alphabet) : "";
        given = drive + given + "/" + base + extension;
        SCOPED_TRACE(testing::Message() << alphabet.codePage << ' ' << given);

        ASSERT_EQ(VxPathCheck(given.data()), 0u);
        ASSERT_EQ(given, drive + parents + "\\" + base + extension);
        EXPECT_EQ(dir(given), drive + parents);
        EXPECT_EQ(name(given), base + extension);

        char parts[4][256];
        ASSERT_EQ(VxPathSplit(given.c_str(), parts[0], parts[1], parts[2], parts[3]), 0u);
        EXPECT_THAT(parts, ElementsAre(testing::StrEq(drive), testing::StrEq(parents + "\\"),
                                       testing::StrEq(base), testing::StrEq(extension)));

        char composed[300];
        std::string whole = drive + "\\" + base;
        snprintf(composed, sizeof composed, "%s", whole.c_str());
        ASSERT_EQ(VxPathCompose(composed, sizeof composed, "x", 1), 0u);
        EXPECT_EQ(composed, whole + "\\x");
    }
}

TEST_F(PathText, PathsEndInOneDelimiterAFolderAndAName)
{
    char path[16] = "";
    VxPathAddDelim(path);
    EXPECT_STREQ(path, "");
    for (const char *text : {"a", "a\\"}) {
        snprintf(path, sizeof path, "%s", text);
        VxPathAddDelim(path);
        EXPECT_STREQ(path, "a\\");
    }
    EXPECT_EQ(dir("file.txt", 3), ".\\") << "without a folder it lies in the current one";
    EXPECT_EQ(dir("file.txt", 2), "failed:");
    EXPECT_EQ(dir("\\file.txt"), "");
    EXPECT_EQ(dir("ab\\c", 3), "ab");
    EXPECT_EQ(dir("abc\\d", 3), "failed:");
    for (const char *none : {"D:\\dir\\", "", ".", "..", "a\\.", "a\\.."})
        EXPECT_EQ(name(none), "failed") << none;
    EXPECT_THAT(errors(), ElementsAre());
    EXPECT_EQ(name("a\\bcd", 4), "bcd");
    EXPECT_EQ(name("a\\bcde", 4), "failed");
    EXPECT_THAT(errors(), ElementsAre("The file name in a\\bcde is too long."));
}

TEST_F(PathText, PartsThatDoNotFitAreCutBehindACharacter)
{
    test::CodePageScope japanese(932);
    std::string name(254, 'n');
    char part[256];
    EXPECT_EQ(VxPathSplit((name + "n").c_str(), nullptr, nullptr, part, nullptr), 0u);
    EXPECT_EQ(part, name + "n");
    EXPECT_EQ(VxPathSplit((name + "\x83\x5C").c_str(), nullptr, nullptr, part, nullptr), 1u);
    EXPECT_EQ(part, name);
}

TEST_F(PathText, ComposingStopsAtTheCallersSizeAndAtItsOwn)
{
    std::string path(1100, '\0');
    auto compose = [&](size_t length, int32_t size, int32_t report) {
        path.assign("a").resize(1100);
        std::string added(length - 2, 'b');
        uint32_t result = VxPathCompose(path.data(), size, added.c_str(), report);
        EXPECT_EQ(std::string(path.c_str()), result ? "a" : "a\\" + added);
        return result;
    };
    EXPECT_EQ(compose(9, 10, 1), 0u);
    EXPECT_EQ(compose(10, 10, 0), 1u);
    EXPECT_EQ(compose(1023, 1100, 0), 0u);
    EXPECT_EQ(compose(1024, 1100, 0), 1u);
    EXPECT_THAT(errors(), ElementsAre());
    EXPECT_EQ(compose(40, 40, 1), 1u);
    EXPECT_THAT(errors(), ElementsAre("The path a\\bbbbbbbbbbbbbbbbbbbbbbbbbbb ... is too long. "
                                      "At most 39 characters are allowed."));
    EXPECT_EQ(VxPathErr("abc", 4, 1), 0u);
    EXPECT_EQ(VxPathErr("abcd", 4, 0), 1u);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(PathText, BuildFoldersAreToldByTheirBeginning)
{
    for (const char *name : {"Debug64", "Release", "RelNoOpt_x", "debug", "Rel", "MyDebug", ""})
        EXPECT_EQ(VxPathIsDebug(name), name[0] == 'D' || name[3] == 'e' || name[3] == 'N') << name;
}

TEST_F(PathText, NullsFail)
{
    char text[8] = "a";
    EXPECT_EQ(VxPathCheck(nullptr) + VxPathAddDelim(nullptr) + VxPathErr(nullptr, 8, 1) +
                  VxPathCompose(nullptr, 8, "b", 1) + VxPathCompose(text, 8, nullptr, 1) +
                  VxPathDir(nullptr, text, 8) + VxPathDir("a", nullptr, 8) + VxPathName(nullptr, 8, text) +
                  VxPathName("a", 8, nullptr) + VxPathSplit(nullptr, text, text, text, text),
              10u);
    EXPECT_EQ(VxPathIsDebug(nullptr), 0);
    EXPECT_STREQ(text, "a");
}

}
