#include <fcntl.h>
#include <sys/stat.h>
#include <functional>

#include "tests/files/search_fixture.h"

using namespace vx;

namespace {

std::map<int32_t, std::string> answers; ///< of the host's functions; "" is no

template <int32_t number> int32_t says()
{
    return answers[number].empty() ? 0 : 1;
}

template <int32_t number> void maps(const char *, char *out, int32_t size)
{
    snprintf(out, static_cast<size_t>(size), "%s", answers[number].c_str());
}

struct SearchFind : test::SearchFixture {
    SearchFind() { answers.clear(); }

    static std::string find(const std::string &name, int32_t size = 512)
    {
        return test::found(DmPathFind, name, size);
    }
    static std::string findIn(const std::string &entry, const std::string &name)
    {
        auto search = [&](char *to, int32_t room) { return DmPathFindSubDir(entry.c_str(), to, room); };
        return test::found(search, name);
    }

    /** Whether a file that is made now wins over those made before. */
    bool wins(const char *place) const
    {
        folder.make({place});
        return find("f") == folder.text(place);
    }

    static std::string general(const char *name, int32_t size = 512)
    {
        auto search = [&](char *to, int32_t room) { return DmFileFind(name, room, to); };
        std::string path = test::out(search, size, "?");
        EXPECT_NE(path, "") << "a hit without a path";
        return path == "!" ? "" : path;
    }

    /** Let time go by; what changed on the disk since the last call changed before that. */
    void pass(int64_t seconds)
    {
        const timespec times[] = {{now, 0}, {now, 0}};
        struct stat status;
        for (const auto &entry : fs::recursive_directory_iterator(folder.native()))
            if (stat(entry.path().c_str(), &status) == 0 && status.st_mtime < longAhead)
                utimensat(AT_FDCWD, entry.path().c_str(), times, 0);
        now += seconds;
        os::setTestClock(now * 1'000'000);
    }

    static constexpr int64_t longAhead = 4'000'000'000; ///< of the disk's own times
    int64_t now = longAhead;

    static int64_t foldersRead(const char *name)
    {
        fault::onlyVerb("openFolder");
        fault::refuse(fault::Kind::verb, 0);
        find(name);
        fault::onlyVerb(nullptr);
        return fault::calls(fault::Kind::verb);
    }
};

TEST_F(SearchFind, PlacesAreTriedInTheirOrder)
{
    add(folder.text("first") + "\\...");
    add(folder.text("second"));
    DmPathActive((folder.text("active") + "\\...").c_str());
    DmCompPathActive(folder.text("component/other").c_str());
    host(28, says<28>), host(29, maps<29>), host(30, maps<30>), host(49, maps<49>);
    host(50, says<50>), host(52, says<52>);
    for (int32_t number : {29, 30, 49})
        answers[number] = folder.text("host" + std::to_string(number) + "/f");
    answers[28] = answers[50] = answers[52] = "yes";

    EXPECT_EQ(find("f"), "none") << "what a host maps to must exist";
    for (const char *place : {"host29/f", "second/f", "first/b/f", "first/a/f", "first/f", "active/sub/f"})
        EXPECT_TRUE(wins(place)) << place;
    folder.make({"f"});
    EXPECT_EQ(find("f"), "f");
    EXPECT_TRUE(wins("component/other")) << "whatever its name";
    DmPathActive(folder.text("active").c_str());
    EXPECT_TRUE(wins("active/f"));
    answers[52] = "";
    EXPECT_TRUE(wins("host49/f"));
    answers[52] = "yes";
    EXPECT_TRUE(wins("host30/f"));
    answers[50] = answers[52] = "";
    EXPECT_EQ(find("f"), folder.text("active/f")) << "a host that says no is not asked";
}

TEST_F(SearchFind, TheSearchEndsWhereFlagsOptionsAndBuffersSaySo)
{
    std::string base = folder.text("entry/" + std::string(230, 'd')) + "\\";
    std::string longest(334 - base.size(), 'n');
    for (const char *more : {"", "n"})
        folder.write("entry/" + std::string(230, 'd') + "/" + longest + more, "");
    add(folder.text("entry") + "\\...");
    DmPathActive(folder.text("active").c_str());
    EXPECT_EQ(find(longest, 335), base + longest);
    EXPECT_EQ(find(longest, 334) + find(longest + "n"), "nonenone");
    EXPECT_EQ(general(longest.c_str()), "") << "a canonical path has at most 255 bytes";

    folder.write("entry/f", "");
    DmPathCheckActiveOnlySet(1);
    EXPECT_EQ(find("f") + general("f"), "none");
    DmPathActive("");
    EXPECT_EQ(find("f"), folder.text("entry/f")) << "no active path confines nothing";
    DmPathSearchSet(0);
    EXPECT_EQ(find("f"), "none");
    DmPathSearchSet(1), DmPathCheckActiveOnlySet(0);
    test::Options options;
    options.values["AutoSearchInSearchPaths"] = "no";
    EXPECT_EQ(find("f"), "none");
}

/** What the search is to find, looked for by other means. */
std::string expected(const Texts &entries, const std::string &name)
{
    for (std::string entry : entries) {
        std::ranges::replace(entry, '\\', '/');
        bool deep = entry.ends_with("/...");
        fs::path directory = deep ? entry.substr(0, entry.size() - 4) : entry;
        std::set<fs::path> places{directory};
        std::error_code none;
        for (const auto &sub : fs::directory_iterator(directory, none))
            if (deep && sub.is_directory(none))
                places.insert(sub.path());
        for (const fs::path &place : places)
            if (fs::exists(place / name, none)) {
                std::string text = (place / name).string();
                std::ranges::replace(text, '/', '\\');
                return text;
            }
    }
    return "none";
}

TEST_F(SearchFind, TheCacheNeverChangesAnAnswer)
{
    test::Random random(20261121);
    std::string directory, entry;
    fs::path sub;
    std::error_code none;
    auto one = [&](std::initializer_list<const char *> of) { return std::string(random.one(of)); };
    const auto makeFile = [&] {
        if (fs::create_directories(sub, none) || fs::is_directory(sub, none))
            std::ofstream(sub / one({"f", "g"})).put('x');
    };
    const std::function<void()> changes[] = {
        [&] { add(entry, random() % 2); },
        [&] { DmPathDel(entry.c_str()); },
        [&] { fs::remove_all(sub); },
        [&] { fs::remove_all(folder.native() / directory); },
        [&] { fs::rename(sub, folder.native() / one({"A", "B", "C"}) / "v", none); },
        [&] { fs::create_directory_symlink(one({".", "s", "../A", "nowhere"}), sub, none); },
        [&] { fs::remove(sub / one({"f", "g"}), none); },
        [&] { folder.write(directory + one({"/f", "/g"}), ""); },
        makeFile,
        makeFile,
    };
    ASSERT_EQ(DmFilePathCacheEnable(), 0u);
    int found = 0;
    for (int step = 0; step < 1500; ++step) {
        directory = one({"A", "B", "C"});
        entry = folder.text(directory) + one({"", "\\..."});
        sub = folder.native() / directory / one({"s", "t", "u"});
        fs::create_directory(folder.native() / directory);
        random.one(changes)();
        pass(static_cast<int64_t>(random() % 5));
        DmPathActive("");
        for (const char *name : {"f", "g"}) {
            std::string right = expected(entries(), name);
            ASSERT_EQ(find(name), right) << "step " << step;
            char home[300];
            bool known = DmFilePathCacheGet(name, home, sizeof home) != 0;
            ASSERT_EQ(known ? std::string(home) + "\\" + name : "none", right) << "step " << step;
            found += known;
        }
    }
    EXPECT_GT(found, 500);
}

TEST_F(SearchFind, WhatIsRememberedIsNotReadAgainUntilItChanges)
{
    folder.write("entry/s4/f4", "");
    add(folder.text("entry") + "\\...");
    DmPathActive("");
    pass(2);
    EXPECT_EQ(DmFilePathCacheEnable() + DmFilePathCacheEnable(), 0u);
    EXPECT_EQ(foldersRead("f4"), 1) << "it has just changed and may change again unseen";
    pass(10);
    EXPECT_EQ(foldersRead("f4"), 1);
    EXPECT_EQ(foldersRead("f4"), 0);
    folder.write("entry/s9/g", "");
    EXPECT_EQ(foldersRead("g"), 1);
    EXPECT_EQ(DmFilePathCacheDisable(), 0u);
    pass(10);
    foldersRead("f4");
    EXPECT_EQ(foldersRead("f4"), 0) << "enabled twice";
    EXPECT_EQ(DmFilePathCacheDisable(), 0u);
    EXPECT_EQ(foldersRead("f4"), 1);
    EXPECT_EQ(DmFilePathCacheDisable(), 1u);
}

TEST_F(SearchFind, NamesOfSubdirectoriesFollowTheCodePage)
{
    folder.write("entry/\xE3\x82\xBD/f", ""); // a letter that ends in a backslash's byte in 932
    std::string entry = folder.text("entry") + "\\...";
    DmFilePathCacheEnable();
    pass(10);
    for (auto [number, letter] :
         {std::pair{932, "\x83\x5C"}, {936, "\xA5\xBD"}, {65001, "\xE3\x82\xBD"}, {932, "\x83\x5C"}}) {
        test::CodePageScope page(number);
        EXPECT_EQ(findIn(entry, "f"), folder.text("entry") + "\\" + letter + "\\f");
    }
}

TEST_F(SearchFind, UnreadableFoldersAndEveryRefusalAreAMissOrAHit)
{
    folder.make({"closed/f", "closed/s/g"});
    fs::permissions(folder.native(), fs::perms::all);
    fs::permissions("closed", fs::perms::group_exec | fs::perms::others_exec);
    std::string closed = folder.text("closed") + "\\...";
    EXPECT_TRUE(test::inChild([&] {
        test::dropRights();
        return findIn(closed, "f") == folder.text("closed/f") && findIn(closed, "g") == "none";
    }));
    folder.make({"entry/s/f"});
    fs::create_directory_symlink(".", "entry/loop");
    add(folder.text("entry") + "\\...");
    DmPathActive("");
    char name[300];
    auto search = [&] {
        snprintf(name, sizeof name, "f");
        DmPathFind(name, sizeof name);
    };
    auto missOrHit = [&](bool refused) {
        EXPECT_TRUE(name == folder.text("entry/s/f") || (refused && name[1] == '\0')) << name;
    };
    test::eachRefusal(search, missOrHit);
    test::eachRefusal(fault::Kind::allocation, nullptr, DmFilePathCacheEnable,
                      [](bool refused) { EXPECT_EQ(files::searchPaths.cache.has_value(), !refused); });
    test::eachRefusal(search, missOrHit);
}

TEST_F(SearchFind, TheGeneralLookUpAsksTheHostTheListTheRegistryAndProductData)
{
    static int32_t on = 1;
    EXPECT_EQ(general("f"), "");
    host(69, [](const char *, const char *, char *path, char *, int32_t, int32_t) -> int32_t {
        snprintf(path, 256, "P:/a/../f");
        return 0;
    });
    EXPECT_EQ(general("f"), "") << "product data is not on";
    host.variable(5, &on);
    VgPathFindPDMSkip = 1;
    EXPECT_EQ(general("f"), "") << "skipped once";
    EXPECT_EQ(general("f"), "P:\\f") << "canonical";
    VxPathSet(folder.text("registered").c_str());
    folder.write("registered/f", "");
    EXPECT_EQ(general("f"), folder.text("registered/f"));
    add(folder.text("entry"));
    folder.write("entry/f", "");
    std::string entry = folder.text("entry/f");
    EXPECT_EQ(general("f", static_cast<int32_t>(entry.size()) + 1), entry);
    EXPECT_EQ(general("f", static_cast<int32_t>(entry.size())), "");
    for (int32_t *flag : {&VgPathFindTPL, &VgPathFindBDL}) {
        *flag = 1;
        EXPECT_EQ(general("f"), folder.text("registered/f"));
        *flag = 0;
    }
    host(63, [](const char *locator) -> int32_t { return locator == std::string("://f"); });
    EXPECT_EQ(general("f"), "://f");
}

TEST_F(SearchFind, WhetherADirectoryIsThereIsKeptForFiveSeconds)
{
    constexpr int64_t start = 1'000'000'000'000;
    auto there = [&](int64_t later, const char *name = "d") {
        os::setTestClock(start + later);
        return DmPathIsOkay(folder.text(name).c_str());
    };
    EXPECT_EQ(there(0), 0);
    fs::create_directory("d");
    EXPECT_EQ(there(4'999'999, "d\\..."), 0);
    EXPECT_EQ(there(5'000'000), 1);
    fs::remove("d");
    EXPECT_EQ(there(0), 0) << "a clock that is set back keeps nothing";
}

TEST_F(SearchFind, FilesAreReadAndRenamedWhereTheyAreFoundAndWrittenWhereTheyAreNamed)
{
    add(folder.text("entry"));
    folder.write("entry/f", "found");
    folder.write("entry/taken", "theirs");
    for (auto [from, to] : {std::pair{"f", "taken"}, {"none", "g"}, {"f", "none/g"}, {"f", ""}})
        EXPECT_EQ(DmFileRename(from, to), 1u) << from << ' ' << to;
    EXPECT_EQ(DmFileRename("f", "g"), 0u);
    EXPECT_EQ(folder.read("entry/g") + folder.read("entry/taken"), "foundtheirs");
    for (auto [open, character] : {std::pair{&DmFileRead, int{'f'}}, {&DmFileWrite, EOF}}) {
        FILE *stream = nullptr;
        EXPECT_EQ(open("none\\g", &stream), 1u);
        ASSERT_EQ(open("g", &stream), 0u);
        EXPECT_EQ(fgetc(stream), character);
        VxFileClose(&stream, 0);
    }
    EXPECT_EQ(folder.read("g") + folder.read("entry/g"), "found");
}

}
