#include <cstdlib>

#include "tests/host/caught_log.h"

using namespace vx;

namespace {

/** The library's own manager over four files in a folder of the test. */
struct Options : testing::Test {
    Options()
    {
        for (int32_t file = 0; file < 4; ++file)
            TalmSetOptionFile(file, path(file).c_str());
    }
    ~Options() override
    {
        for (int32_t file = 0; file < 4; ++file)
            TalmSetOptionFile(file, nullptr);
    }

    static bool load(int32_t file) { return GetIConfigMgr()->Load(file); }
    static uint32_t set(const std::string &key, const char *text)
    {
        return GetIConfigMgr()->SetValue(key.c_str(), text);
    }

    std::string name(int32_t file) const { return std::to_string(file) + ".opt"; }
    std::string path(int32_t file) const { return folder.native() / name(file); }

    static bool loadAll() { return load(0) + load(1) + load(2) + load(3) == 4; }

    /** "none" when there is none. */
    static std::string value(const std::string &key, bool defaults = false)
    {
        char *text = nullptr;
        bool found = GetIConfigMgr()->GetValue(key.c_str(), &text, defaults) == 0;
        EXPECT_EQ(found, text != nullptr);
        std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
        return found ? text : "none";
    }

    test::TempFolder folder;
};

TEST_F(Options, TheLowestFileWinsAndDefaultsComeFromTheLastAlone)
{
    folder.write(name(0), "K3 = of 0\nK0 = of 0\n");
    folder.write(name(2), "K3 = of 2\nK2 = of 2\n");
    folder.write(name(3), "K3 = of 3\n");
    EXPECT_EQ(value("K0"), "none") << "known before it was loaded";
    ASSERT_TRUE(loadAll());
    EXPECT_EQ(value("K3"), "of 0");
    EXPECT_EQ(value("K3", true), "of 3");
    EXPECT_EQ(value("k3"), "none") << "keys are compared exactly";
    folder.write(name(0), "");
    ASSERT_TRUE(loadAll());
    EXPECT_EQ(value("K3"), "of 2");
    EXPECT_EQ(value("K0"), "none") << "a value of the last loading is still there";
}

TEST_F(Options, MissingFilesAndFaultyLinesAreToldAndTheOtherLinesCount)
{
    folder.write(name(0), "A = 1\nnonsense\nB = 2\n= 3\n");
    test::CaughtLog log;
    EXPECT_TRUE(load(0) && load(1));
    EXPECT_FALSE(load(3)) << "the defaults may not be missing";
    EXPECT_EQ(value("A") + value("B"), "12");
    EXPECT_THAT(log.texts(), ElementsAre(HasSubstr(path(0) + ", line 2: "), HasSubstr(path(0) + ", line 4: "),
                                         HasSubstr(path(1)), HasSubstr(path(3))));
    EXPECT_EQ(log.records()[0].level, EsLevelWarning);
    EXPECT_EQ(log.records()[3].level, EsLevelError);
}

TEST_F(Options, AUsersValueCountsAtOnceAndIsInTheFileForTheNextSession)
{
    folder.write(name(0), "# mine\nA = 1\n");
    folder.write(name(3), "A = 0\nB = 0\n");
    ASSERT_TRUE(loadAll());
    EXPECT_EQ(set("A", " 2 ") + set("B", "x = \"y\""), 0U);
    EXPECT_EQ(value("A"), "2");
    EXPECT_EQ(value("B", true), "0");
    EXPECT_EQ(folder.read(name(0)), "# mine\nA = 2\nB = x = \"y\"\n");
    ASSERT_TRUE(loadAll());
    EXPECT_EQ(value("A"), "2");
    EXPECT_EQ(value("B"), "x = \"y\"");
}

TEST_F(Options, AValueThatCannotBeWrittenChangesNothing)
{
    folder.write(name(0), "A = 1\n");
    ASSERT_TRUE(load(0));
    // A folder stands where the new file would be made.
    folder.write(name(0) + ".new/inside", "");
    test::CaughtLog log;
    EXPECT_EQ(set("A", "2"), 1U);
    EXPECT_EQ(value("A"), "1");
    EXPECT_EQ(folder.read(name(0)), "A = 1\n");
    EXPECT_THAT(log.texts(), ElementsAre(HasSubstr(path(0))));
    EXPECT_FALSE(fs::exists(path(0) + ".lock"));
}

TEST_F(Options, TheUsersFileStaysALinkAndKeepsItsPermissions)
{
    folder.write("real.opt", "A = 1\n");
    fs::permissions(folder.native() / "real.opt", fs::perms(0600));
    fs::create_symlink("real.opt", path(0));
    EXPECT_EQ(set("A", "2"), 0U);
    EXPECT_TRUE(fs::is_symlink(path(0)));
    EXPECT_EQ(folder.read("real.opt"), "A = 2\n");
    EXPECT_EQ(fs::status(path(0)).permissions(), fs::perms(0600));
}

TEST_F(Options, ALockLeftBehindByACrashDoesNotStopTheUser)
{
    folder.write(name(0) + ".lock", "");
    fs::last_write_time(path(0) + ".lock", fs::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(set("A", "1"), 0U);
    EXPECT_FALSE(fs::exists(path(0) + ".lock"));
}

TEST_F(Options, ProcessesThatStoreAtOnceKeepEachOthersOptions)
{
    constexpr int processes = 4, each = 20;
    auto key = [](int process, int option) { return std::to_string(process) + "." + std::to_string(option); };
    EXPECT_TRUE(test::inChildren(processes, [&](int p) {
        uint32_t failures = 0;
        for (int i = 0; i < each; ++i)
            failures += set(key(p, i), "1");
        return failures == 0;
    }));
    ASSERT_TRUE(load(0));
    for (int p = 0; p < processes; ++p)
        for (int i = 0; i < each; ++i)
            EXPECT_EQ(value(key(p, i)), "1") << key(p, i);
}

TEST_F(Options, OneThreadReadsWhileAnotherWritesAndLoads)
{
    folder.write(name(0), "A = 0\n");
    ASSERT_TRUE(load(0));
    std::jthread reader([](std::stop_token done) {
        while (!done.stop_requested())
            EXPECT_NE(value("A"), "none");
    });
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(set("A", "1"), 0U);
        EXPECT_TRUE(load(0));
    }
}

TEST_F(Options, WithoutMemoryTheAnswerIsAFailureAndNothingElse)
{
    const std::string before = "A = a value that is too long to stand in a string itself\n";
    const char *fresh = "another value that is too long to stand in a string itself";
    folder.write(name(0), before);
    test::refusingEachAllocation([&] {
        const bool loaded = load(0);
        const uint32_t stored = set("B", fresh);
        EXPECT_TRUE(fault::refusals(fault::Kind::allocation) > 0 || (loaded && stored == 0));
        char *text = nullptr;
        if (stored == 0) {
            EXPECT_TRUE(GetIConfigMgr()->GetValue("B", &text, false) == 0 && text == std::string_view(fresh));
        }
        std::free(text);
    });
    EXPECT_EQ(folder.read(name(0)), before + "B = " + fresh + "\n");
}

std::string folderOf(int32_t number)
{
    char text[260] = "unchanged";
    return GetIUserFolderMgr()->GetFolder(number, text, sizeof text) == 0 ? text : "none";
}

TEST(UserFolders, TheEnvironmentDecidesVariableByVariable)
{
    test::Environment user("VX_USER_DIR", nullptr), home("HOME", "/home/ann");
    EXPECT_EQ(folderOf(9), "\\home\\ann\\.local\\share\\vx\\user");
    test::Environment templates("VX_FOLDER_10", "/opt/templates");
    EXPECT_EQ(folderOf(10), "\\opt\\templates");
    test::Environment noHome("HOME", nullptr), noProfile("USERPROFILE", nullptr);
    EXPECT_EQ(folderOf(9), "none");
}

TEST(UserFolders, WithoutMemoryThereIsNoFolder)
{
    test::Environment user("VX_USER_DIR", "/a/folder/whose/name/is/too/long/to/stand/in/a/string/itself");
    char text[260];
    test::refusingEachAllocation([&] {
        const uint32_t failed = GetIUserFolderMgr()->GetFolder(9, text, sizeof text);
        EXPECT_EQ(failed, fault::refusals(fault::Kind::allocation) > 0);
        EXPECT_EQ(text[0] == 0, failed);
    });
}

}
