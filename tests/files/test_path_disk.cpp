#include <cstring>
#include <string>

#include <sys/stat.h>

#include "tests/files/toolkit_fixture.h"
#include "tests/support/child.h"
#include "tests/support/each_refusal.h"
#include "vx/path.h"
#include "vx/sys.h"
#include "vx/tools.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

struct PathDisk : test::ToolkitFixture {
    test::Environment store{"VX_REGISTRY_FILE", (folder.native() / "registry.ini").c_str()};
};

TEST_F(PathDisk, AWholeChainIsMade)
{
    EXPECT_EQ(VxPathMk("a/b\\c"), 0u);
    EXPECT_TRUE(fs::is_directory(folder.native() / "a/b/c"));
    EXPECT_EQ(VxPathMk((folder.text("d/e") + "\\\n").c_str()), 0u);
    EXPECT_TRUE(fs::is_directory(folder.native() / "d/e"));
    EXPECT_EQ(VxPathMk("a\\b\\c"), 0u) << "what is there is no failure";
    EXPECT_EQ(VxPathMk("Q:\\a"), 1u) << "a drive that is not mapped";
    EXPECT_EQ(VxPathMk("") + VxPathMk(nullptr), 2u);
    folder.write("file", "");
    EXPECT_EQ(VxPathMk("file\\a"), 1u);
}

TEST_F(PathDisk, AServersNameIsNoFolder)
{
    // Natively the share is a path from the root, so the server's folder stands for it here.
    std::string here = folder.text();
    std::string server = here.substr(1, here.find('\\', 1) - 1);
    std::string share = "\\\\" + server + here.substr(here.find('\\', 1)) + "\\s\\t";
    EXPECT_EQ(VxPathMk(share.c_str()), 0u);
    EXPECT_TRUE(fs::is_directory(folder.native() / "s/t"));
}

TEST_F(PathDisk, PathsOf511BytesAreTheLongestWhoseFoldersAreMade)
{
    std::string there = "./";
    for (int i = 0; i < 4; ++i)
        there += std::string(126, 'n') + "/";
    fs::create_directories(folder.native() / there);
    ASSERT_EQ(there.size(), 510u);
    EXPECT_EQ(VxPathMk((there + "/").c_str()), 0u);
    EXPECT_EQ(VxPathMk((there + "//").c_str()), 1u);
}

TEST_F(PathDisk, FailureOfAnyStepIsTold)
{
    uint32_t result = 0;
    test::eachRefusal(
        fault::Kind::verb, "makeDirectory", [&] { result = VxPathMk("x\\y\\z"); },
        [&](bool refused) { EXPECT_EQ(result == 0, !refused && fs::exists(folder.native() / "x/y/z")); });
}

TEST_F(PathDisk, DirectoriesAreToldFromFiles)
{
    folder.write("file", "");
    EXPECT_EQ(VxPathIsDir(folder.text().c_str()), 1);
    EXPECT_EQ(VxPathIsDir("."), 1);
    EXPECT_EQ(VxPathIsDir("file"), 0);
    EXPECT_EQ(VxPathIsDir("none") + VxPathIsDir("") + VxPathIsDir(nullptr), 0);
}

TEST_F(PathDisk, WritabilityIsTriedOutAndLeavesNothingBehind)
{
    folder.write("temp001.txt", "mine");
    EXPECT_EQ(VxPathAccess(folder.text().c_str()), 0);
    EXPECT_EQ(VxPathAccess("."), 0);
    EXPECT_EQ(VxPathAccess("none"), -1);
    EXPECT_EQ(VxPathAccess(nullptr), -1);
    EXPECT_EQ(folder.read("temp001.txt"), "mine");
    EXPECT_FALSE(fs::exists(folder.native() / "temp002.txt"));
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return VxPathAccess("\\proc") == 1 || VxPathAccess("\\") == 1;
    }));
    for (int n = 2; n < 1000; ++n) {
        char name[32];
        snprintf(name, sizeof name, "temp%03d.txt", n);
        folder.write(name, "");
    }
    EXPECT_EQ(VxPathAccess("."), -1) << "no name is left";
}

TEST_F(PathDisk, ARefusedProbeIsNoWritableFolderAndHarmsNothing)
{
    folder.write("temp001.txt", "mine");
    int32_t result = 0;
    for (const char *verb : {"access", "openFile"})
        test::eachRefusal(
            fault::Kind::verb, verb, [&] { result = VxPathAccess("."); },
            [&](bool refused) {
                EXPECT_EQ(folder.read("temp001.txt"), "mine");
                EXPECT_TRUE(refused || result == 0);
            });
}

TEST_F(PathDisk, DocumentsLieUnderThePersonalFolderElseWhereTheHostSays)
{
    constexpr const char *shellFolders =
        "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    char buffer[64] = "x";
    EXPECT_EQ(VxPathUserFiles(buffer, sizeof buffer), 1u);
    EXPECT_STREQ(buffer, "");
    folders.folders[18] = "H:\\docs";
    EXPECT_EQ(VxPathUserFiles(buffer, sizeof buffer), 0u);
    EXPECT_STREQ(buffer, "H:\\docs");
    EXPECT_EQ(VxPathUserFiles(buffer, 7), 1u);

    ASSERT_EQ(VxRegistrySet(0, shellFolders, "Personal", "D:\\me"), 0u);
    EXPECT_EQ(VxPathUserFiles(buffer, sizeof buffer), 0u);
    EXPECT_EQ(buffer, std::string("D:\\me\\") + VgCompanyProduct);
    EXPECT_EQ(VxPathUserFiles(buffer, 8), 1u);
    ASSERT_EQ(VxRegistrySet(0, shellFolders, "Personal", " "), 0u);
    EXPECT_EQ(VxPathUserFiles(buffer, sizeof buffer), 0u);
    EXPECT_STREQ(buffer, "H:\\docs");
    EXPECT_EQ(VxPathUserFiles(nullptr, 8) + VxPathUserFiles(buffer, 0), 2u);
}

}
