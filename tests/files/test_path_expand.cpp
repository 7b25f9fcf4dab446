#include <string>

#include <gmock/gmock.h>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "vx/path.h"

using namespace vx;
using testing::ElementsAre;

namespace {

struct PathExpand : test::ToolkitFixture {
    /** The expanded text, with "!" in front when something stayed unresolved. */
    static std::string expand(const char *path, int32_t size = 300)
    {
        char out[300] = "";
        bool resolved = VxPathExpand(path, out, size) != 0;
        return (resolved ? "" : "!") + std::string(out);
    }

    test::Environment home{"HOME", "/h"}, profile{"USERPROFILE", "U:\\p"}, variable{"VX_T", "v/w"},
        blank{"VX_BLANK", ""}, none{"VX_NONE", nullptr};
};

TEST_F(PathExpand, TildeAloneIsHomeAndAnythingElseTheProfile)
{
    EXPECT_EQ(expand("~"), "/h");
    EXPECT_EQ(expand("~\\x"), "/h\\x");
    EXPECT_EQ(expand("~/x"), "/h\\x");
    EXPECT_EQ(expand("~bob\\x"), "U:\\p\\x");
    EXPECT_EQ(expand("~x"), expand("~y"));
    EXPECT_EQ(expand("a\\~"), "a\\~");
    test::Environment homeless("HOME", nullptr);
    EXPECT_EQ(expand("~\\x"), "!~\\x");
}

TEST_F(PathExpand, VariablesRunToTheNextSeparator)
{
    EXPECT_EQ(expand("a/$VX_T/b"), "a\\v/w\\b");
    EXPECT_EQ(expand("a$VX_T"), "av/w");
    EXPECT_EQ(expand("$VX_BLANK\\b"), "\\b");
    EXPECT_EQ(expand("$VX_NONE\\$VX_T"), "!$VX_NONE\\v/w");
    EXPECT_EQ(expand("$"), "!$");
    EXPECT_EQ(expand("a\\$\\b"), "!a\\$\\b");
    EXPECT_EQ(expand(""), ".");
}

TEST_F(PathExpand, SecondBytesDoNotEndAName)
{
    test::CodePageScope japanese(932);
    test::Environment value("V\x83\x5C", "x");
    EXPECT_EQ(expand("$V\x83\x5C\\b"), "x\\b");
}

TEST_F(PathExpand, ATextThatDoesNotFitIsNoSuccess)
{
    EXPECT_EQ(expand("a\\$VX_T", 6), "a\\v/w");
    EXPECT_EQ(expand("a\\$VX_T", 5), "!a\\v/");
    char out[4] = "x";
    EXPECT_EQ(VxPathExpand(nullptr, out, 4) + VxPathExpand("a", nullptr, 4) + VxPathExpand("a", out, 0), 0);
    EXPECT_STREQ(out, "x");
}

TEST_F(PathExpand, WithoutMemoryNothingIsWritten)
{
    char out[300];
    int32_t resolved = 0;
    test::eachRefusal(
        fault::Kind::allocation, nullptr,
        [&] {
            out[0] = '\0';
            resolved =
                VxPathExpand("~profile-of-some-user\\$VX_NAME_THAT_NEEDS_MEMORY\\$VX_T", out, sizeof out);
        },
        [&](bool refused) {
            EXPECT_EQ(resolved, 0);
            EXPECT_STREQ(out, refused ? "" : "U:\\p\\$VX_NAME_THAT_NEEDS_MEMORY\\v/w");
        });
}

TEST_F(PathExpand, RealPathsAreExpandedAndFull)
{
    char out[300];
    EXPECT_EQ(VxPathReal(1, "$VX_T/../x/", out, sizeof out), 0u);
    EXPECT_EQ(out, folder.text("v\\x") + "\\");
    char path[300] = "~\\a\\..\\b";
    EXPECT_EQ(VxPathReal2(path, sizeof path), 0u);
    EXPECT_STREQ(path, "\\h\\b");
    EXPECT_EQ(VxPathReal(1, path, path, sizeof path), 0u);
    EXPECT_THAT(errors(), ElementsAre());
}

TEST_F(PathExpand, WhatCannotBeResolvedIsReportedAndStaysExpanded)
{
    char out[300];
    EXPECT_EQ(VxPathReal(0, "$VX_NONE/a", out, sizeof out), 1u);
    EXPECT_STREQ(out, "$VX_NONE\\a");
    EXPECT_THAT(errors(), ElementsAre());
    EXPECT_EQ(VxPathReal(1, "$VX_NONE/a", out, sizeof out), 1u);
    EXPECT_THAT(errors(), ElementsAre("Unable to resolve the path $VX_NONE/a."));
}

TEST_F(PathExpand, RealPathsEndAt255BytesAndAtTheBuffer)
{
    char out[600];
    std::string longest = "D:\\" + std::string(252, 'x');
    EXPECT_EQ(VxPathReal(1, longest.c_str(), out, sizeof out), 0u);
    EXPECT_EQ(VxPathReal(0, (longest + "x").c_str(), out, sizeof out), 1u);
    EXPECT_EQ(out, longest + "x");
    EXPECT_EQ(VxPathReal(0, longest.c_str(), out, 256), 0u);
    EXPECT_EQ(VxPathReal(0, longest.c_str(), out, 255), 1u);

    char path[600];
    snprintf(path, sizeof path, "%s", (longest + "x").c_str());
    EXPECT_EQ(VxPathReal2(path, sizeof path), 1u);
    EXPECT_EQ(path, longest + "x");
    EXPECT_EQ(errors().size(), 1u);
    EXPECT_EQ(VxPathReal2(nullptr, 5) + VxPathReal2(path, 0) + VxPathReal(0, nullptr, out, 5), 3u);
}

}
