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

TEST_F(PathExpand, TildesAndVariablesAreReplacedUpToASeparator)
{
    test::CodePageScope japanese(932);
    test::Environment value("V\x83\x5C", "x");
    const char *paths[][2] = {{"~", "/h"},
                              {"~\\x", "/h\\x"},
                              {"~/x", "/h\\x"},
                              {"~bob\\x", "U:\\p\\x"},
                              {"~x", "U:\\p"},
                              {"a\\~", "a\\~"},
                              {"a/$VX_T/b", "a\\v/w\\b"},
                              {"a$VX_T", "av/w"},
                              {"$VX_BLANK\\b", "\\b"},
                              {"$VX_NONE\\$VX_T", "!$VX_NONE\\v/w"},
                              {"$", "!$"},
                              {"a\\$\\b", "!a\\$\\b"},
                              {"$V\x83\x5C\\b", "x\\b"}, // the second byte is no separator
                              {"", "."}};
    for (auto &each : paths)
        EXPECT_EQ(expand(each[0]), each[1]) << each[0];
    test::Environment homeless("HOME", nullptr);
    EXPECT_EQ(expand("~\\x"), "!~\\x");
    EXPECT_EQ(expand("a\\$VX_T", 6), "a\\v/w");
    EXPECT_EQ(expand("a\\$VX_T", 5), "!a\\v/") << "a text that does not fit is no success";
    char out[4] = "x";
    EXPECT_EQ(VxPathExpand(nullptr, out, 4) + VxPathExpand("a", nullptr, 4) + VxPathExpand("a", out, 0), 0);
    EXPECT_STREQ(out, "x");
}

TEST_F(PathExpand, WithoutMemoryNothingIsWritten)
{
    char out[300];
    test::eachRefusal(
        fault::Kind::allocation, nullptr,
        [&] {
            out[0] = '\0';
            VxPathExpand("~profile-of-some-user\\$VX_NAME_THAT_NEEDS_MEMORY\\$VX_T", out, sizeof out);
        },
        [&](bool refused) { EXPECT_STREQ(out, refused ? "" : "U:\\p\\$VX_NAME_THAT_NEEDS_MEMORY\\v/w"); });
}

TEST_F(PathExpand, RealPathsAreExpandedAndFullUpTo255Bytes)
{
    char out[600];
    EXPECT_EQ(VxPathReal(1, "$VX_T/../x/", out, sizeof out), 0u);
    EXPECT_EQ(out, folder.text("v\\x") + "\\");
    char path[600] = "~\\a\\..\\b";
    EXPECT_EQ(VxPathReal2(path, sizeof path), 0u);
    EXPECT_STREQ(path, "\\h\\b");
    EXPECT_EQ(VxPathReal(1, path, path, sizeof path), 0u);

    std::string longest = "D:\\" + std::string(252, 'x');
    EXPECT_EQ(VxPathReal(1, longest.c_str(), out, 256), 0u);
    EXPECT_EQ(VxPathReal(0, longest.c_str(), out, 255), 1u);
    EXPECT_EQ(VxPathReal(0, (longest + "x").c_str(), out, sizeof out), 1u);
    EXPECT_EQ(out, longest + "x");
    EXPECT_EQ(VxPathReal(0, "$VX_NONE/a", out, sizeof out), 1u);
    EXPECT_STREQ(out, "$VX_NONE\\a") << "what cannot be resolved stays expanded";
    EXPECT_THAT(errors(), ElementsAre());
    EXPECT_EQ(VxPathReal(1, "$VX_NONE/a", out, sizeof out), 1u);
    EXPECT_THAT(errors(), ElementsAre("Unable to resolve the path $VX_NONE/a."));
    EXPECT_EQ(VxPathReal2(nullptr, 5) + VxPathReal2(path, 0) + VxPathReal(0, nullptr, out, 5), 3u);
}

}
