#include "tests/files/toolkit_fixture.h"
#include "vx/sys.h"

using namespace vx;

namespace {

struct PathDisk : test::ToolkitFixture {
    bool isFolder(const char *name) const { return fs::is_directory(folder.native() / name); }

    test::Environment store{"VX_REGISTRY_FILE", (folder.native() / "registry.ini").c_str()};
};

TEST_F(PathDisk, AWholeChainIsMade)
{
    EXPECT_EQ(VxPathMk("a/b\\c"), 0u);
    EXPECT_TRUE(isFolder("a/b/c"));
    EXPECT_EQ(VxPathMk((folder.text("d/e") + "\\\n").c_str()), 0u);
    EXPECT_TRUE(isFolder("d/e"));
    folder.write("file", "");
    for (const char *path : {"Q:\\a", "", "file\\a"})
        EXPECT_EQ(VxPathMk(path), 1u) << path;
    EXPECT_EQ(VxPathIsDir("file") + VxPathIsDir("none"), 0);

    // Natively a share is a path from the root, so the folder behind that stands for the server here.
    std::string here = folder.text();
    size_t end = here.find('\\', 1);
    std::string share = "\\\\" + here.substr(1, end - 1) + here.substr(end) + "\\s\\t";
    EXPECT_EQ(VxPathMk(share.c_str()), 0u);
    EXPECT_TRUE(isFolder("s/t")) << "a server's name is no folder";

    uint32_t result = 0;
    auto make = [&] { result = VxPathMk("x\\y\\z"); };
    test::eachRefusal(fault::Kind::verb, "makeDirectory", make,
                      [&](bool refused) { EXPECT_EQ(result == 0, !refused && isFolder("x/y/z")); });
}

TEST_F(PathDisk, WritabilityIsTriedOutAndLeavesNothingBehind)
{
    folder.write("temp001.txt", "mine");
    EXPECT_EQ(VxPathAccess(folder.text().c_str()), 0);
    EXPECT_EQ(VxPathAccess("none"), -1);
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return VxPathAccess("\\proc") == 1 || VxPathAccess("\\") == 1;
    }));
    int32_t result = 0;
    auto look = [&] { result = VxPathAccess("."); };
    for (const char *verb : {"access", "openFile"})
        test::eachRefusal(fault::Kind::verb, verb, look,
                          [&](bool refused) { EXPECT_TRUE(refused || result == 0); });
    EXPECT_EQ(folder.read("temp001.txt"), "mine");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.native()), {}), 1);
}

TEST_F(PathDisk, DocumentsLieUnderThePersonalFolderElseWhereTheHostSays)
{
    constexpr const char *key = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    auto userFiles = [](int32_t size) { return test::out(VxPathUserFiles, size); };
    folders.folders[18] = "H:\\docs";
    EXPECT_EQ(userFiles(64) + userFiles(7)[0], "H:\\docs!");
    ASSERT_EQ(VxRegistrySet(0, key, "Personal", "D:\\me"), 0u);
    EXPECT_EQ(userFiles(64) + userFiles(8)[0], std::string("D:\\me\\") + VgCompanyProduct + "!");
}

}
