#include "tests/files/toolkit_fixture.h"
#include "vx/lang.h"

using namespace vx;

namespace {

using PathRegistry = test::ToolkitFixture;

Texts notified;

TEST_F(PathRegistry, DirectoriesAreKeptOnceInOrderOfRegistrationUpTo255Bytes)
{
    notified.clear();
    host(67, [](const char *path) { notified.emplace_back(path); });
    test::CodePageScope japanese(932);
    std::string longest(254, 'x');
    for (const char *path : {"D:/a/b", "d:\\A\\B\\", "", "D:\\\x83\x5C", longest.c_str()})
        EXPECT_EQ(VxPathSet(path), 0u);
    test::CapturedOutput output;
    EXPECT_EQ(VxPathSet(std::string(255, 'y').c_str()), 1u);
    EXPECT_EQ(output.text(), "\nVxPathSet: Path exceeds 255 characters.\n");
    EXPECT_THAT(registered(), ElementsAre("D:\\a\\b\\", "D:\\\x83\x5C\\", longest + "\\"));
    EXPECT_THAT(notified, ElementsAre("D:/a/b", "D:\\\x83\x5C", longest));
    host(67, nullptr);
    uint32_t result = 0;
    auto add = [&] { result = VxPathSet("b"); };
    test::eachRefusal(fault::Kind::allocation, nullptr, add, [&](bool refused) {
        EXPECT_EQ(result, refused ? 1u : 0u);
        EXPECT_EQ(VxErrIsLogged(VxToolsErrID(), 1), refused ? 1 : 0);
        EXPECT_EQ(registered().size(), refused ? 3u : 4u);
        VxErrClear();
    });
    char known[] = "d:/A/b";
    EXPECT_EQ(VxPathLogged(known), 1) << "looking up forgives the final delimiter, and removing does not";
    VxPathDel("D:\\A\\b");
    EXPECT_EQ(registered().size(), 4u);
    VxPathDel("D:/A/b/");
    EXPECT_EQ(registered().size(), 3u);
}

struct PathFind : test::ToolkitFixture {
    PathFind()
    {
        VxStrCpy(files::pathState.root, folder.text("root\\").c_str(), sizeof files::pathState.root);
        char locale[8] = "";
        VxLangGetLocale(locale, sizeof locale);
        languages = std::string("root/languages/") + locale + "/";
        VxPathSet(folder.text("first").c_str());
        VxPathSet(folder.text("second").c_str());
    }

    static std::string find(const std::string &name, size_t size = 512)
    {
        return test::found(VxPathFind, name, static_cast<int32_t>(size));
    }
    static std::string findIn(const std::string &name, const char *subdir, int32_t mode)
    {
        return test::found([&](char *to, int32_t size) { return VxPathFindIn(to, size, subdir, mode); },
                           name);
    }

    std::string languages;
};

TEST_F(PathFind, PlacesAreTriedInTheirOrder)
{
    EXPECT_EQ(find("f"), "none");
    host(68, [](const char *name, char *out, int32_t size) -> int32_t {
        snprintf(out, static_cast<size_t>(size), "%s", std::strcmp(name, "f") == 0 ? "P:\\vault\\f" : "");
        return 7;
    });
    EXPECT_EQ(find("f"), "P:\\vault\\f");
    // Each place made now is to win over those made before.
    for (const std::string &place : {std::string("second/f"), std::string("first/f"), languages + "f"}) {
        folder.write(place, "");
        EXPECT_EQ(find("f"), folder.text(place));
    }
    folder.make({"f"});
    EXPECT_EQ(find("f"), "f");
}

TEST_F(PathFind, SubdirectoriesAreTriedInTheirOrderAsFarAsTheModeGoes)
{
    EXPECT_EQ(findIn("f", "sub", 1), "none");
    for (const std::string &place :
         Texts{"second/sub/f", "second/f", "first/sub/f", "first/f", "root/sub/f", languages + "sub/f"}) {
        folder.write(place, "");
        EXPECT_EQ(findIn("f", "sub", 1), folder.text(place));
        EXPECT_EQ(findIn("f", "sub", 2), "none");
        // Mode 0 gives the place for a file that is still to be made.
        EXPECT_EQ(findIn("f", "sub", 0),
                  folder.text(place.starts_with("root/languages") ? place : "root/sub/f"));
    }
    EXPECT_EQ(findIn("f", nullptr, 0), folder.text("first/f"));
    for (auto [place, expected] : {std::pair{"sub/f", ".\\sub\\f"}, {"local/f", ".\\local\\f"}, {"f", "f"}}) {
        folder.write(place, "");
        for (int32_t mode : {0, 1, 2})
            EXPECT_EQ(findIn("f", "sub", mode), expected);
    }
}

TEST_F(PathFind, NamesWithAFolderAreNotSearchedAndTheEmptyOneIsTheRoot)
{
    folder.make({"first/sub/f", "root/languages/xx/text/a", "root/languages/yy/text"});
    EXPECT_EQ(find("sub\\f"), "none");
    EXPECT_EQ(find("sub/f"), folder.text("first") + "\\sub/f") << "a slash is no separator here";
    std::string root = folder.text("root") + "\\";
    EXPECT_EQ(findIn("", "sub", 1), root);
    EXPECT_EQ(find("", root.size() + 1) + find("", root.size()), root + "none");
    EXPECT_EQ(VxPathLangExist("xx") * 10 + VxPathLangExist("yy"), 10) << "text is a file of yy, not a folder";
    test::CodePageScope japanese(932);
    folder.make({"first/\xE3\x82\xBD.txt"});
    EXPECT_EQ(find("\x83\x5C.txt"), folder.text("first") + "\\\x83\x5C.txt") << "nor is a second byte";
}

}
