#include "tests/support/test.h"
#include "vx/sys.h"

using namespace vx;
using os::SettingsRoot;

namespace {

struct Settings : testing::Test {
    static std::string get(const std::string &key, const std::string &name,
                           SettingsRoot root = SettingsRoot::user)
    {
        char out[600] = "?";
        os::Error error = os::readSetting(root, key.c_str(), name.c_str(), out, sizeof out);
        if (error == os::Error::none)
            return out;
        EXPECT_EQ(error, os::Error::notFound);
        EXPECT_STREQ(out, "");
        return "(none)";
    }

    static os::Error set(const std::string &key, const std::string &name, const std::string &text,
                         SettingsRoot root = SettingsRoot::user)
    {
        return os::writeSetting(root, key.c_str(), name.c_str(), text.c_str());
    }

    test::TempFolder folder;
    test::Environment file{"VX_REGISTRY_FILE", (folder.native() / "registry.ini").c_str()};
};

TEST_F(Settings, WhatIsWrittenIsRead)
{
    // A model of the store against the store, with texts full of what its file gives a meaning.
    const char *pieces[] = {"%", "0", "A", "D", "2",  "5", "\n", "\r",
                            "[", "]", "=", " ", "\\", "#", "x",  "\xE9"};
    const char *keys[] = {"Software\\Some\\Key", "a b", "k]", ""};
    const char *names[] = {"name", "with blank", "", "1"};
    test::Random random(4711);
    std::map<std::pair<std::string, std::string>, std::string> model;
    for (int round = 0; round < 400; ++round) {
        std::string text = random.text(pieces, 0, 7);
        std::pair<std::string, std::string> place{random.one(keys), random.one(names)};
        ASSERT_EQ(set(place.first, place.second, text), os::Error::none);
        model[place] = text;
        for (auto &[where, expected] : model)
            ASSERT_EQ(get(where.first, where.second), expected) << round;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.native()), {}), 2) << "the store and its lock";
}

TEST_F(Settings, KeysAndNamesIgnoreCaseAndRootsAreApart)
{
    set("Soft\\Key", "Name", "user");
    set("Soft\\Key", "Name", "machine", SettingsRoot::machine);
    set("soft\\KEY", "NAME", "other");
    EXPECT_EQ(get("SOFT\\kEY", "nAME"), "other");
    EXPECT_EQ(get("SOFT\\kEY", "nAME", SettingsRoot::machine), "machine");
}

TEST_F(Settings, FilesWrittenByHandAreReadAndKept)
{
    std::string text =
        "# mine\r\n\r\n[Soft\\Key]\r\nPath=D:\\new\\%TEMP%\r\n;Path=no\r\n\r\n\r\n[Other]\nlast=1";
    folder.write("registry.ini", text);
    EXPECT_EQ(get("Soft\\Key", "Path"), "D:\\new\\%TEMP%");
    EXPECT_EQ(get("Other", "last"), "1");
    set("Soft\\Key", "More", "2");
    set("Other", "next", "3");
    EXPECT_EQ(
        folder.read("registry.ini"),
        "# mine\r\n\r\n[Soft\\Key]\r\nPath=D:\\new\\%TEMP%\r\n;Path=no\r\nMore=2\n\r\n\r\n[Other]\nlast=1\n"
        "next=3\n");
}

TEST_F(Settings, WhatCouldNotBeReadBackIsNotWritten)
{
    for (const char *name : {"a=b", "a\nb", "a\r", "[a", "#a", ";a"})
        EXPECT_EQ(set("k", name, "x"), os::Error::invalid) << name;
    EXPECT_EQ(set("k\n", "n", "x"), os::Error::invalid);
    EXPECT_EQ(os::writeSetting(SettingsRoot::user, "k", "n", nullptr), os::Error::invalid);
    EXPECT_FALSE(fs::exists(folder.native() / "registry.ini"));
}

TEST_F(Settings, WithoutAFileOfItsOwnTheStoreLiesInTheUsersHome)
{
    test::Environment none("VX_REGISTRY_FILE", nullptr);
    test::Environment home("HOME", folder.native().c_str());
    EXPECT_EQ(get("k", "n"), "(none)");
    EXPECT_EQ(set("k", "n", "x"), os::Error::none);
    EXPECT_EQ(folder.read(".config/vx/registry.ini"), "[k]\nn=x\n");
    for (const char *noHome : {"", static_cast<const char *>(nullptr)}) {
        test::Environment homeless("HOME", noHome);
        EXPECT_EQ(set("k", "n", "x"), os::Error::notFound);
        EXPECT_EQ(get("k", "n"), "(none)");
    }
}

TEST_F(Settings, ProcessesThatWriteAtOnceKeepEachOthersValues)
{
    constexpr int writers = 4, values = 40;
    auto key = [](int writer) { return "key" + std::to_string(writer % 2); };
    auto name = [](int writer, int value) { return std::to_string(writer) + "." + std::to_string(value); };
    EXPECT_TRUE(test::inChildren(writers, [&](int w) {
        bool good = true;
        for (int v = 0; v < values; ++v)
            good = set(key(w), name(w, v), std::to_string(v)) == os::Error::none && good;
        return good;
    }));
    for (int w = 0; w < writers; ++w)
        for (int v = 0; v < values; ++v)
            ASSERT_EQ(get(key(w), name(w, v)), std::to_string(v));
}

TEST_F(Settings, AFailedWriteLeavesTheStoreAsItWas)
{
    const char *key = "key of some length", *name = "name of some length";
    set(key, name, "old");
    std::string before = folder.read("registry.ini");
    os::Error result = os::Error::none;
    auto write = [&] { result = os::writeSetting(SettingsRoot::user, key, name, "new"); };
    test::eachRefusal(fault::Kind::allocation, nullptr, write, [&](bool refused) {
        EXPECT_EQ(result, refused ? os::Error::noMemory : os::Error::none);
        EXPECT_EQ(folder.read("registry.ini") == before, refused);
    });
}

TEST_F(Settings, TheExportedFunctionsKnowTwoRoots)
{
    char out[8] = "x";
    EXPECT_EQ(VxRegistrySet(0, "k", "n", "user") + VxRegistrySet(1, "k", "n", "machine"), 0u);
    EXPECT_EQ(VxRegistrySet(2, "k", "n", "?") + VxRegistryGet(-1, "k", "n", out, 8), 2u);
    for (auto [root, size, text] : {std::tuple{0, 8, "user"}, {1, 8, "machine"}, {1, 7, ""}}) {
        EXPECT_EQ(VxRegistryGet(root, "k", "n", out, size), *text ? 0u : 1u);
        EXPECT_STREQ(out, text);
    }
    EXPECT_EQ(VxRegistryGet(0, nullptr, "n", out, 8) + VxRegistrySet(0, "k", "n", nullptr), 2u);
}

}
