
#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

struct PathInit : test::ToolkitFixture {
    PathInit()
    {
        for (auto [number, name] : {std::pair{4u, "work"}, {5u, "mine"}, {9u, "nine"}, {10u, "ten"}})
            folders.folders[number] = folder.text(std::string("home/") + name);
        install = fs::read_symlink("/proc/self/exe").parent_path().string();
        std::ranges::replace(install, '/', '\\');
    }
    ~PathInit() override { VgInstance = VgTplCompile = 0; }

    void goTo(const char *name)
    {
        fs::create_directories(folder.native() / name);
        fs::current_path(folder.native() / name);
    }

    std::string install;
};

TEST_F(PathInit, WhereTheProgramRunsDecidesWhatIsSearched)
{
    std::string program = fs::read_symlink("/proc/self/exe").stem().string();
    int32_t version = 2799;
    host.variable(2, &version);
    std::string source = folder.text("bin/src");
    std::vector<std::string> installed{install + "\\"};
    std::vector<std::string> built{source + "\\driver\\", install + "\\", source + "\\qa\\",
                                   folder.text("bin/HK_QA/27") + "\\"};
    const char *tree = "bin/src/msvc/Debug64";
    struct {
        const char *place;
        int32_t *flag;
        const char *host; ///< the application's name
        std::vector<std::string> directories;
        const char *current;
        std::string user;
    } starts[] = {
        {"any", nullptr, "x", installed, "home/work", folders.folders[5]},
        {"any", &VgInstance, "x", installed, "any", folders.folders[5]},
        {"any", &VgTplCompile, "x", installed, "any", folder.text("any")},
        {tree, nullptr, "x", built, tree, folder.text(tree)},
        {tree, &VgInstance, "", built, tree, folder.text(tree)},
        // The application's own folder counts, and that of these tests has no build folder's name.
        {tree, nullptr, program.c_str(), installed, "home/work", folders.folders[5]},
    };
    for (auto &start : starts) {
        SCOPED_TRACE(testing::Message() << &start - starts);
        goTo(start.place);
        host.variable(1, start.host);
        if (start.flag)
            *start.flag = 1;
        EXPECT_EQ(VxPathInit(), 0u);
        VgInstance = VgTplCompile = 0;
        std::string root = start.directories[0];
        for (int32_t number : {9, 10})
            start.directories.push_back(folders.folders[static_cast<size_t>(number)] + "\\");
        EXPECT_EQ(registered(), start.directories);
        EXPECT_EQ((Texts{files::pathState.root, files::pathState.install, VgPathUserFolder}),
                  (Texts{root, install, start.user}));
        EXPECT_EQ(fs::current_path(), folder.native() / start.current);
        VxPathFree();
        fs::remove_all(folder.native() / "home");
    }
}

TEST_F(PathInit, AFailedStartLeavesEverythingAsItWas)
{
    folders.folders[9] = folders.folders[10] = "";
    fs::path place;
    auto reset = [&] {
        VxPathFree();
        strcpy(files::pathState.root, "root");
        strcpy(files::pathState.install, "install");
        strcpy(VgPathUserFolder, "user");
        fs::current_path(place);
        fs::remove_all(folder.native() / "home");
    };
    uint32_t result = 0;
    bool failed = false;
    auto allOrNothing = [&](bool refused) {
        EXPECT_TRUE(refused || result == 0);
        if (result != 0) {
            failed = true;
            EXPECT_THAT(registered(), ElementsAre());
            EXPECT_EQ(std::string(files::pathState.root) + files::pathState.install, "rootinstall");
            EXPECT_STREQ(VgPathUserFolder, "user");
            EXPECT_EQ(fs::current_path(), place);
        }
        reset();
    };
    for (const char *name : {"anywhere", "x/Release"}) {
        goTo(name);
        place = fs::current_path();
        reset();
        test::eachRefusal([&] { result = VxPathInit(); }, allOrNothing);
    }
    EXPECT_TRUE(failed);
}

}
