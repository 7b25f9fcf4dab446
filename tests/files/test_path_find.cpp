#include <cstring>
#include <string>

#include "files/path_state.h"
#include "tests/files/toolkit_fixture.h"
#include "tests/support/code_page.h"
#include "vx/lang.h"
#include "vx/path.h"
#include "vx/tools.h"

using namespace vx;

namespace {

struct PathFind : test::ToolkitFixture {
    PathFind()
    {
        snprintf(files::pathState.root, sizeof files::pathState.root, "%s\\", folder.text("root").c_str());
        VxLangGetLocale(locale_, sizeof locale_);
        VxPathSet(folder.text("first").c_str());
        VxPathSet(folder.text("second").c_str());
    }

    std::string languages(const std::string &rest)
    {
        return std::string("root/languages/") + locale_ + "/" + rest;
    }

    static std::string find(const std::string &name, int32_t size = 512)
    {
        char buffer[512];
        snprintf(buffer, sizeof buffer, "%s", name.c_str());
        int32_t found = VxPathFind(buffer, size);
        if (!found) {
            EXPECT_EQ(buffer, name) << "a miss changes nothing";
        }
        return found ? buffer : "none";
    }

    static std::string findIn(const char *name, const char *subdir, int32_t mode, int32_t size = 512)
    {
        char buffer[512];
        snprintf(buffer, sizeof buffer, "%s", name);
        int32_t found = VxPathFindIn(buffer, size, subdir, mode);
        if (!found) {
            EXPECT_STREQ(buffer, name) << "a miss changes nothing";
        }
        return found ? buffer : "none";
    }

    char locale_[8] = "";
};

TEST_F(PathFind, PlacesAreTriedInTheirOrder)
{
    // Each place made now is to win over those made before.
    EXPECT_EQ(find("f"), "none");
    folder.write("second/f", "");
    EXPECT_EQ(find("f"), folder.text("second/f"));
    folder.write("first/f", "");
    EXPECT_EQ(find("f"), folder.text("first/f"));
    folder.write(languages("f"), "");
    EXPECT_EQ(find("f"), folder.text(languages("f")));
    folder.write("f", "");
    EXPECT_EQ(find("f"), "f");
}

TEST_F(PathFind, NamesWithAFolderAreNotSearched)
{
    folder.write("first/sub/f", "");
    folder.write("here/f", "");
    EXPECT_EQ(find("sub\\f"), "none");
    EXPECT_EQ(find("here\\f"), "here\\f");
    EXPECT_EQ(findIn("sub\\f", nullptr, 1), "none");
    // A slash is no separator here.
    EXPECT_EQ(find("sub/f"), folder.text("first") + "\\sub/f");
}

TEST_F(PathFind, ASecondByteIsNoFolder)
{
    test::CodePageScope japanese(932);
    std::string name = "\x83\x5C.txt";
    folder.write("first/\xE3\x82\xBD.txt", "");
    EXPECT_EQ(find(name), folder.text("first") + "\\" + name);
}

TEST_F(PathFind, TheEmptyNameIsTheRoot)
{
    std::string root = folder.text("root") + "\\";
    EXPECT_EQ(find(""), root);
    EXPECT_EQ(findIn("", "sub", 1), root);
    EXPECT_EQ(find("", static_cast<int32_t>(root.size()) + 1), root);
    EXPECT_EQ(find("", static_cast<int32_t>(root.size())), "none");
}

TEST_F(PathFind, WhatTheBufferCannotHoldIsPassedOver)
{
    folder.write("first/f", "");
    std::string there = folder.text("first/f");
    EXPECT_EQ(find("f", static_cast<int32_t>(there.size()) + 1), there);
    EXPECT_EQ(find("f", static_cast<int32_t>(there.size())), "none");
    EXPECT_EQ(findIn("f", nullptr, 1, static_cast<int32_t>(there.size())), "none");
    char name[4] = "f";
    EXPECT_EQ(VxPathFind(name, 0) + VxPathFind(nullptr, 4) + VxPathFindIn(name, 0, nullptr, 0), 0);
}

TEST_F(PathFind, FindInComposesUpTo255Characters)
{
    std::string base = folder.text("first") + "\\";
    std::string longest(255 - base.size(), 'n');
    folder.write("first/" + longest, "");
    folder.write("first/" + longest + "n", "");
    EXPECT_EQ(findIn(longest.c_str(), nullptr, 1), base + longest);
    EXPECT_EQ(findIn((longest + "n").c_str(), nullptr, 1), "none");
    EXPECT_EQ(find(longest + "n"), base + longest + "n");
}

TEST_F(PathFind, TheHostIsAskedLast)
{
    host(
        68, +[](const char *name, char *out, int32_t size) -> int32_t {
            snprintf(out, static_cast<size_t>(size), "%s", std::strcmp(name, "f") == 0 ? "P:\\vault\\f" : "");
            return 7;
        });
    EXPECT_EQ(find("f"), "P:\\vault\\f");
    folder.write("second/f", "");
    EXPECT_EQ(find("f"), folder.text("second/f"));
}

TEST_F(PathFind, SubdirectoriesAreTriedInTheirOrder)
{
    EXPECT_EQ(findIn("f", "sub", 1), "none");
    struct {
        std::string file;
        std::string expected;
    } places[] = {
        {"second/sub/f", folder.text("second/sub/f")},
        {"second/f", folder.text("second/f")},
        {"first/sub/f", folder.text("first/sub/f")},
        {"first/f", folder.text("first/f")},
        {"root/sub/f", folder.text("root/sub/f")},
        {languages("sub/f"), folder.text(languages("sub/f"))},
        {"sub/f", ".\\sub\\f"},
        {"local/f", ".\\local\\f"},
        {"f", "f"},
    };
    for (auto &place : places) {
        folder.write(place.file, "");
        EXPECT_EQ(findIn("f", "sub", 1), place.expected);
    }
}

TEST_F(PathFind, TheModeSaysHowFarTheSearchGoes)
{
    folder.write("first/f", "");
    EXPECT_EQ(findIn("f", "sub", 2), "none");
    EXPECT_EQ(findIn("f", "sub", 1), folder.text("first/f"));
    // Mode 0 gives the place for a file that is still to be made.
    EXPECT_EQ(findIn("f", "sub", 0), folder.text("root/sub/f"));
    EXPECT_EQ(findIn("f", nullptr, 0), folder.text("first/f"));
    folder.write("sub/f", "");
    EXPECT_EQ(findIn("f", "sub", 2), ".\\sub\\f");
}

TEST_F(PathFind, LanguagesAreThereWhenTheirTextsAre)
{
    EXPECT_EQ(VxPathLangExist("xx"), 0);
    folder.write("root/languages/xx/text/a", "");
    folder.write("root/languages/yy/text", "a file, not a folder");
    EXPECT_EQ(VxPathLangExist("xx"), 1);
    EXPECT_EQ(VxPathLangExist("yy"), 0);
    EXPECT_EQ(VxPathLangExist(nullptr), 0);
}

std::string pdmAnswer;

int32_t resolvePdm(const char *name, const char *aux, char *path, char *auxOut, int32_t a, int32_t b)
{
    snprintf(path, 256, "%s", pdmAnswer.c_str());
    snprintf(auxOut, 256, "%s+%s %d %d", name, aux ? aux : "null", a, b);
    return pdmAnswer.empty() ? 1 : 0;
}

TEST_F(PathFind, ProductDataIsAskedOnlyWhereItIsOn)
{
    char name[10] = "f";
    char aux[32] = "rev";
    int32_t on = 1;
    pdmAnswer = "V:\\f;3456"; // nine characters: just fits
    EXPECT_EQ(VxPathFindPDM(name, 10, aux, 32, 4, 5), 0);
    host(69, resolvePdm);
    EXPECT_EQ(VxPathFindPDM(name, 10, aux, 32, 4, 5), 0);
    hostVariable(5, &on);
    VgPathFindPDMSkip = 1;
    EXPECT_EQ(VxPathFindPDM(name, 10, aux, 32, 4, 5), 0);
    EXPECT_EQ(VxPathFindPDM(name, 9, aux, 32, 4, 5), 0);
    EXPECT_STREQ(name, "f");
    EXPECT_EQ(VxPathFindPDM(name, 10, aux, 32, 4, 5), 1);
    EXPECT_STREQ(name, "V:\\f;3456");
    EXPECT_STREQ(aux, "f+rev 4 5");
    EXPECT_EQ(VxPathFindPDM(name, 10, nullptr, 0, 4, 5), 1);
    pdmAnswer.clear();
    EXPECT_EQ(VxPathFindPDM(name, 10, aux, 32, 4, 5), 0);
    pdmAnswer = "x";
    on = 2;
    EXPECT_EQ(VxPathFindPDM(name, 10, aux, 32, 4, 5), 0);
}

}
