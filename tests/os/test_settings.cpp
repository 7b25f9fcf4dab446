#include <cerrno>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "tests/support/child.h"
#include "tests/support/each_refusal.h"
#include "tests/support/temp_folder.h"
#include "vx/sys.h"

using namespace vx;
namespace fs = std::filesystem;
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
    std::mt19937 random(4711);
    std::map<std::pair<std::string, std::string>, std::string> model;
    for (int round = 0; round < 400; ++round) {
        std::string text;
        for (size_t n = random() % 8; n > 0; --n)
            text += pieces[random() % std::size(pieces)];
        std::pair<std::string, std::string> place{keys[random() % std::size(keys)],
                                                  names[random() % std::size(names)]};
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
    EXPECT_EQ(get("SOFT\\kEY", "nAME"), "user");
    EXPECT_EQ(get("SOFT\\kEY", "nAME", SettingsRoot::machine), "machine");
    set("soft\\KEY", "NAME", "other");
    EXPECT_EQ(get("Soft\\Key", "Name"), "other");
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
    constexpr int writers = 4;
    constexpr int values = 40;
    {
        std::vector<std::unique_ptr<test::Child>> children;
        for (int w = 0; w < writers; ++w)
            children.push_back(std::make_unique<test::Child>([w] {
                bool good = true;
                for (int v = 0; v < values; ++v)
                    good = good &&
                           set("key" + std::to_string(w % 2), std::to_string(w) + "." + std::to_string(v),
                               std::to_string(v)) == os::Error::none;
                return good;
            }));
        for (auto &child : children)
            EXPECT_TRUE(child->succeeded());
    }
    for (int w = 0; w < writers; ++w)
        for (int v = 0; v < values; ++v)
            ASSERT_EQ(get("key" + std::to_string(w % 2), std::to_string(w) + "." + std::to_string(v)),
                      std::to_string(v));
}

TEST_F(Settings, AFailedWriteLeavesTheStoreAsItWas)
{
    set("key of some length", "name of some length", "old");
    std::string before = folder.read("registry.ini");
    os::Error result = os::Error::none;
    test::eachRefusal(
        fault::Kind::allocation, nullptr,
        [&] {
            result = os::writeSetting(SettingsRoot::user, "key of some length", "name of some length", "new");
        },
        [&](bool refused) {
            EXPECT_EQ(result, refused ? os::Error::noMemory : os::Error::none);
            EXPECT_EQ(folder.read("registry.ini") == before, refused);
        });
}

TEST_F(Settings, TheExportedFunctionsKnowTwoRoots)
{
    char out[8] = "x";
    EXPECT_EQ(VxRegistrySet(0, "k", "n", "user") + VxRegistrySet(1, "k", "n", "machine"), 0u);
    EXPECT_EQ(VxRegistrySet(2, "k", "n", "?") + VxRegistryGet(-1, "k", "n", out, 8), 2u);
    EXPECT_EQ(VxRegistryGet(0, "k", "n", out, 8), 0u);
    EXPECT_STREQ(out, "user");
    EXPECT_EQ(VxRegistryGet(1, "k", "n", out, 8), 0u);
    EXPECT_STREQ(out, "machine");
    EXPECT_EQ(VxRegistryGet(1, "k", "n", out, 7), 1u);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(VxRegistryGet(0, nullptr, "n", out, 8) + VxRegistrySet(0, "k", "n", nullptr), 2u);
}

}
