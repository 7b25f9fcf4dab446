#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "files/path_state.h"
#include "talm/base.h"
#include "tests/files/toolkit_fixture.h"
#include "tests/support/captured_output.h"
#include "tests/support/each_refusal.h"
#include "vx/path.h"
#include "vx/tools.h"

using namespace vx;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

struct PathInit : test::ToolkitFixture {
    PathInit()
    {
        folders.folders[4] = folder.text("home/work");
        folders.folders[5] = folder.text("home/mine");
        folders.folders[9] = folder.text("home/nine");
        folders.folders[10] = folder.text("home/ten");
        std::string program = fs::read_symlink("/proc/self/exe").parent_path().string();
        for (char c : program)
            install += c == '/' ? '\\' : c;
    }
    ~PathInit() override
    {
        VgInstance = 0;
        VgTplCompile = 0;
        EsSinkCallback(nullptr, nullptr);
    }

    void goTo(const char *name)
    {
        fs::create_directories(folder.native() / name);
        fs::current_path(folder.native() / name);
    }

    std::vector<std::string> log;
    void watchLog()
    {
        EsSinkCallback(
            [](void *lines, const EsRecord *record) {
                static_cast<std::vector<std::string> *>(lines)->push_back(std::to_string(record->level) +
                                                                          " " + record->text);
            },
            &log);
    }

    std::string install;
};

TEST_F(PathInit, AnInstalledProductSearchesItsOwnFolderAndTheUsers)
{
    goTo("anywhere");
    EXPECT_EQ(VxPathInit(), 0u);
    EXPECT_THAT(registered(),
                ElementsAre(install + "\\", folders.folders[9] + "\\", folders.folders[10] + "\\"));
    EXPECT_EQ(files::pathState.root, install + "\\");
    char buffer[300];
    EXPECT_EQ(VxPathInstallGet(buffer, sizeof buffer), 0u);
    EXPECT_EQ(buffer, install);
    EXPECT_EQ(fs::current_path(), folder.native() / "home/work");
    EXPECT_EQ(VgPathUserFolder, folders.folders[5]);

    // A second start changes nothing while directories are registered.
    goTo("elsewhere");
    EXPECT_EQ(VxPathInit(), 0u);
    EXPECT_EQ(fs::current_path(), folder.native() / "elsewhere");
}

TEST_F(PathInit, SecondInstancesAndTemplateCompilersStayWhereTheyWereStarted)
{
    goTo("anywhere");
    for (int32_t *flag : {&VgInstance, &VgTplCompile}) {
        *flag = 1;
        EXPECT_EQ(VxPathInit(), 0u);
        EXPECT_EQ(fs::current_path(), folder.native() / "anywhere");
        EXPECT_FALSE(fs::exists(folder.native() / "home"));
        EXPECT_EQ(VgPathUserFolder, flag == &VgInstance ? folders.folders[5] : folder.text("anywhere"));
        *flag = 0;
        VxPathFree();
    }
}

TEST_F(PathInit, ABuildFolderSelectsTheDevelopmentTree)
{
    goTo("bin/src/msvc/Debug64");
    int32_t version = 2799;
    hostVariable(2, &version);
    watchLog();
    EXPECT_EQ(VxPathInit(), 0u);
    std::string source = folder.text("bin/src");
    std::string build = folder.text("bin");
    EXPECT_THAT(registered(),
                ElementsAre(source + "\\driver\\", install + "\\", source + "\\qa\\", build + "\\HK_QA\\27\\",
                            folders.folders[9] + "\\", folders.folders[10] + "\\"));
    EXPECT_EQ(files::pathState.root, source + "\\driver\\");
    EXPECT_EQ(fs::current_path(), folder.native() / "bin/src/msvc/Debug64");
    EXPECT_THAT(log, ElementsAre("8 Debug/Release build ...", "8 development environment ...",
                                 testing::StartsWith("8 SrcPath=" + source)));
}

TEST_F(PathInit, TheApplicationsOwnFolderCountsNotTheCurrentOne)
{
    goTo("Debug");
    std::string program = fs::read_symlink("/proc/self/exe").stem().string();
    hostVariable(1, program.c_str());
    EXPECT_EQ(VxPathInit(), 0u);
    EXPECT_EQ(files::pathState.root, install + "\\") << "the tests do not lie in a build folder by name";
}

TEST_F(PathInit, TheLastUserFolderDecidesTheResult)
{
    test::CapturedOutput complaints;
    folders.folders[9] = std::string(256, 'x');
    EXPECT_EQ(VxPathInit(), 0u);
    VxPathFree();
    folders.folders[9] = "nine";
    folders.folders[10] = std::string(256, 'x');
    EXPECT_EQ(VxPathInit(), 1u);
    EXPECT_THAT(registered(), ElementsAre(install + "\\", "nine\\"));
}

TEST_F(PathInit, WhatTheSystemRefusesIsLoggedAndTheStartGoesOn)
{
    struct {
        const char *verb;
        const char *text;
    } steps[] = {{"executablePath", "9 GetModuleFileNameEx failed (5)"},
                 {"currentDirectory", "9 GetCurrentDirectory failed (5)"},
                 {"setCurrentDirectory", "9 SetCurrentDirectory failed (5)"}};
    for (auto &step : steps) {
        VxPathFree();
        log.clear();
        watchLog();
        fault::onlyVerb(step.verb);
        fault::refuse(fault::Kind::verb, 1);
        EXPECT_EQ(VxPathInit(), 0u) << step.verb;
        fault::refuse(fault::Kind::verb, 0);
        fault::onlyVerb(nullptr);
        EXPECT_THAT(log, testing::Contains(step.text));
        bool unknown = std::strcmp(step.verb, "executablePath") == 0;
        EXPECT_EQ(files::pathState.root, unknown ? ".\\" : install + "\\");
    }
}

TEST_F(PathInit, AFailedStartLeavesEverythingAsItWas)
{
    folders.folders[9].clear();
    folders.folders[10].clear();
    fs::path place;
    auto reset = [&] {
        VxPathFree();
        strcpy(files::pathState.root, "old root");
        strcpy(files::pathState.install, "old install");
        strcpy(VgPathUserFolder, "old user");
        fs::current_path(place);
        fs::remove_all(folder.native() / "home");
    };
    int failures = 0;
    for (const char *name : {"anywhere", "x/Release"})
        for (fault::Kind kind : {fault::Kind::allocation, fault::Kind::verb}) {
            goTo(name);
            place = fs::current_path();
            reset();
            uint32_t result = 0;
            test::eachRefusal(
                kind, nullptr, [&] { result = VxPathInit(); },
                [&](bool refused) {
                    EXPECT_TRUE(refused || result == 0);
                    if (result != 0) {
                        ++failures;
                        EXPECT_THAT(registered(), ElementsAre());
                        EXPECT_STREQ(files::pathState.root, "old root");
                        EXPECT_STREQ(files::pathState.install, "old install");
                        EXPECT_STREQ(VgPathUserFolder, "old user");
                        EXPECT_EQ(fs::current_path(), place);
                    }
                    reset();
                });
        }
    EXPECT_GE(failures, 4) << "four directories and a folder need memory and the system";
}

}
