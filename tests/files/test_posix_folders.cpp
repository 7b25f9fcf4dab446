#include "tests/files/toolkit_fixture.h"

using namespace vx;

namespace {

using PosixFolders = test::ToolkitFixture;

/** What vxreaddir gives until its end. */
Texts rest(VxDir *dir)
{
    Texts names;
    while (const VxDirEnt *entry = vxreaddir(dir))
        names.emplace_back(entry->name);
    return names;
}

void release(VxDirEnt **&list, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        VxMemFree(reinterpret_cast<void **>(&list[i]));
    VxMemFree(reinterpret_cast<void **>(&list));
}

TEST_F(PosixFolders, AFolderNamedAsTheCurrentOneIsTakenForIt)
{
    folder.make({"d/outer", "d/d/inner"});
    fs::current_path("d");
    for (auto [name, content] :
         {std::pair{"d", Texts{".", "..", "d", "outer"}}, {"d\\", {".", "..", "inner"}}}) {
        VxDir *dir = vxopendir(name);
        EXPECT_EQ(rest(dir), content);
        vxclosedir(dir);
    }
}

TEST_F(PosixFolders, TwoHundredFiftyFiveAreOpenAtOnce)
{
    for (int i = 0; i < 255; ++i) {
        fs::create_directory("n");
        ASSERT_NE(vxopendir("."), nullptr) << i;
        EXPECT_STREQ(vxreaddir(nullptr)->name, ".");
        fs::current_path("n");
    }
    EXPECT_EQ(vxopendir("."), nullptr);
    for (int i = 0; i < 255; ++i) {
        EXPECT_THAT(rest(nullptr), ElementsAre("..", "n"));
        EXPECT_EQ(vxclosedir(nullptr), 0);
    }
    EXPECT_EQ(vxreaddir(nullptr), nullptr);
    fs::current_path(folder.native());
    EXPECT_EQ(vxopendir("none"), nullptr);
}

TEST_F(PosixFolders, ScanningFiltersAndSorts)
{
    folder.make({"b", "A", "c", "B"});
    VxDirEnt **list = nullptr;
    EXPECT_EQ(vxscandir("none", &list, nullptr, nullptr), -1);
    auto keep = [](const VxDirEnt *entry) -> int32_t { return entry->name[0] != '.'; };
    ASSERT_EQ(vxscandir(".\\", &list, keep, VX::alphasort), 4);
    EXPECT_EQ(std::string(list[0]->name) + list[1]->name + list[2]->name + list[3]->name, "ABbc");
    release(list, 4);
    int32_t count = 0;
    auto scan = [&] { count = vxscandir(".", &list, nullptr, VX::alphasort); };
    test::eachRefusal(scan, [&](bool refused) {
        EXPECT_EQ(count, refused ? -1 : 6);
        EXPECT_EQ(list == nullptr, refused);
        release(list, std::max(count, 0));
    });
}

TEST_F(PosixFolders, AHundredThousandEntriesAreScanned)
{
    constexpr int32_t files = 100'000;
    // Names of two files: an entry is made sooner than a file.
    for (int32_t i = 0; i < files; ++i) {
        if (i % (files / 2) == 0)
            folder.write(std::to_string(i), "");
        else
            fs::create_hard_link(std::to_string(i - i % (files / 2)), std::to_string(i));
    }
    VxDirEnt **list = nullptr;
    int32_t count = vxscandir(".", &list, nullptr, VX::alphasort);
    ASSERT_EQ(count, files + 2);
    EXPECT_TRUE(std::is_sorted(list, list + count,
                               [](auto *a, auto *b) { return std::string_view(a->name) < b->name; }));
    EXPECT_STREQ(list[count - 1]->name, "99999");
    release(list, count);
}

TEST_F(PosixFolders, NamesAreTakenOffPaths)
{
    const char *cases[][3] = {{"a\\b\\", "b", "a"}, {"b", "b", "b"}, {"\\", "", ""},
                              {"\\b", "b", ""},     {"", "", ""},    {"a\\\\", "", "a"},
                              {"a/b", "a/b", "a/b"}};
    for (auto [path, base, dir] : cases) {
        std::string first = path, second = path;
        EXPECT_STREQ(VX::basename(first.data()), base) << path;
        EXPECT_STREQ(VX::dirname(second.data()), dir) << path;
    }
    test::CodePageScope japanese(932);
    char path[] = "a\\\x95\x5C";
    EXPECT_STREQ(VX::basename(path), "\x95\x5C");
}

TEST_F(PosixFolders, TheTimeHasWholeMilliseconds)
{
    os::setTestClock(1'234'567'891);
    VxTimeVal time{};
    for (int32_t command : {1, 2})
        EXPECT_EQ(VX::gettimeofday(&time, &command) + VX::gettimeofday(&time, nullptr), 0);
    EXPECT_TRUE(time.sec == 1234 && time.usec == 567000);
    EXPECT_EQ(VX::gettimeofday(nullptr, nullptr), -1);
}

TEST_F(PosixFolders, TheSystemTellsItsNames)
{
    VxUtsName names;
    EXPECT_EQ(VX::uname(&names), 1);
    EXPECT_STREQ(names.sysname, "Linux");
    EXPECT_NE(names.release[0] * names.machine[0], 0);
    EXPECT_EQ(VX::uname(nullptr), -1);
    int32_t result = 0;
    auto ask = [&] { result = VX::uname(&names); };
    test::eachRefusal(fault::Kind::verb, nullptr, ask,
                      [&](bool refused) { EXPECT_EQ(result, refused ? -1 : 1); });
}

}
