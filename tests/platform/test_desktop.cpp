#include <filesystem>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "platform/os/recent_list.h"
#include "platform/os/test_values.h"
#include "tests/support/code_page.h"
#include "tests/support/each_refusal.h"
#include "tests/support/temp_folder.h"
#include "vx/sys.h"

using namespace vx;
namespace fs = std::filesystem;

namespace {

size_t count(const std::string &text, const std::string &part)
{
    size_t n = 0;
    for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1))
        ++n;
    return n;
}

/** Whether tags open and close in pairs, and attributes are quoted. */
bool isWellFormed(std::string text)
{
    static const std::regex tag(R"(<(/?)([\w:-]+)((?:\s+[\w:]+="[^"<&]*(?:&\w+;[^"<&]*)*")*)\s*(/?)>)");
    std::vector<std::string> open;
    text = std::regex_replace(text, std::regex(R"(<\?xml[^>]*\?>)"), "");
    std::string rest = std::regex_replace(text, tag, "");
    for (std::sregex_iterator at(text.begin(), text.end(), tag), end; at != end; ++at) {
        if ((*at)[1].length() == 0 && (*at)[4].length() == 0)
            open.push_back((*at)[2]);
        if ((*at)[1].length() > 0) {
            if (open.empty() || open.back() != (*at)[2])
                return false;
            open.pop_back();
        }
    }
    return open.empty() && rest.find_first_of("<>&") == rest.npos;
}

struct Recent : testing::Test {
    Recent() { os::setTestClock(1794727560'250'000); }
    ~Recent() override { os::setTestClock(-1); }

    std::string add(const std::string &name)
    {
        folder.write(name, "document");
        EXPECT_EQ(VxAddToRecent(folder.text(name).c_str()), 0u) << name;
        return folder.read("data/recently-used.xbel");
    }

    test::TempFolder folder;
    test::Environment data{"XDG_DATA_HOME", (folder.native() / "data").c_str()};
};

TEST_F(Recent, DocumentsAreListedByAddressTimeAndApplication)
{
    test::CodePageScope utf8(65001);
    std::string list = add("a b&'\xC3\xBC.vxp");
    EXPECT_TRUE(isWellFormed(list)) << list;
    EXPECT_NE(list.find("href=\"file://" + folder.native().string() +
                        "/a%20b&amp;&apos;%C3%BC.vxp\" "
                        "added=\"2026-11-15T07:26:00.250000Z\""),
              std::string::npos)
        << list;
    EXPECT_NE(list.find("name=\"test_platform\""), std::string::npos);
}

TEST_F(Recent, ASecondUseIsCountedAndDatedAndWhatOthersNotedStays)
{
    std::string theirs = std::regex_replace(add("mine"), std::regex("test_platform"), "Other > App");
    theirs.insert(theirs.find("</xbel>"), "  <bookmark href='x' />\n<!-- kept -->");
    folder.write("data/recently-used.xbel", theirs);
    add("mine");
    os::setTestClock(1794727620'000'000);
    std::string list = add("mine");
    EXPECT_EQ(count(list, "name=\"Other > App\""), 1u);
    EXPECT_EQ(count(list, "name=\"test_platform\""), 1u);
    EXPECT_EQ(count(list, "count=\"1\"") * 10 + count(list, "count=\"2\""), 11u) << list;
    EXPECT_EQ(count(list, "added=\"2026-11-15T07:26:00"), 1u);
    EXPECT_EQ(count(list, "=\"2026-11-15T07:27:00.000000Z\""), 3u) << list;
    EXPECT_EQ(count(list, "<!-- kept -->"), 1u);
}

TEST_F(Recent, AListInOneLineStaysWellFormed)
{
    std::string list = "<xbel><bookmark href=\"a\"><bookmark:applications></bookmark:applications></bookmark>"
                       "<bookmark href=\"b\"/></xbel>";
    for (const char *uri : {"a", "b", "c", "b"})
        EXPECT_TRUE(os::noteRecentUse(list, {uri, "app", "cmd", "time"}));
    EXPECT_TRUE(isWellFormed(list)) << list;
    EXPECT_EQ(count(list, "<bookmark:application "), 3u);
}

TEST_F(Recent, AFailedStepLeavesTheListAsItWas)
{
    add("first document");
    folder.write("second document", "");
    std::string before = folder.read("data/recently-used.xbel"), path = folder.text("second document");
    for (fault::Kind kind : {fault::Kind::verb, fault::Kind::allocation}) {
        uint32_t failed = 0;
        folder.write("data/recently-used.xbel", before);
        test::eachRefusal(
            kind, nullptr, [&] { failed = VxAddToRecent(path.c_str()); },
            [&](bool refused) {
                EXPECT_EQ(failed, refused ? 1u : 0u);
                EXPECT_EQ(folder.read("data/recently-used.xbel") == before, refused);
            });
    }
    folder.write("data/recently-used.xbel", "<xbel></xbel> and more");
    EXPECT_EQ(VxAddToRecent(path.c_str()), 1u);
    EXPECT_EQ(folder.read("data/recently-used.xbel"), "<xbel></xbel> and more");
}

struct Shortcuts : testing::Test {
    std::string make(const std::string &target, const char *arguments, const char *workDir, const char *text)
    {
        EXPECT_EQ(
            VxShortcutCreate(target.c_str(), arguments, workDir, folder.text("My part.lnk").c_str(), text),
            0u);
        return folder.read("My part.desktop");
    }

    test::TempFolder folder;
};

TEST_F(Shortcuts, HaveAProgramsCommandLineOrADocumentsAddress)
{
    test::CodePageScope utf8(65001);
    folder.write("the program", "");
    fs::permissions(folder.native() / "the program", fs::perms(0755));
    std::string name = (folder.native() / "the program").string();
    EXPECT_EQ(
        make(folder.text("the program"), "-f \"a b\" 100% $x c\\d \\\"", folder.text().c_str(), " a\nb"),
        "[Desktop Entry]\nVersion=1.0\nType=Application\nName=My part\nComment=\\s"
        "a\\nb\n"
        "Exec=\"" +
            name +
            "\" \"-f\" \"a b\" \"100%%\" \"\\\\$x\" \"c\\\\\\\\d\" \"\\\\\"\"\n"
            "Path=" +
            folder.native().string() + "\nTerminal=false\n");
    EXPECT_NE(fs::status(folder.native() / "My part.desktop").permissions() & fs::perms::owner_exec,
              fs::perms::none);
    EXPECT_NE(make("vxsh", nullptr, nullptr, nullptr).find("Exec=\"vxsh\"\nTerminal"), std::string::npos);
    folder.write("\xC3\xBC.txt", "");
    EXPECT_EQ(make(folder.text("\xC3\xBC.txt"), "", "", ""),
              "[Desktop Entry]\nVersion=1.0\nType=Link\nName=My part\nURL=file://" +
                  folder.native().string() + "/%C3%BC.txt\n");
}

TEST_F(Shortcuts, ThatCannotBeMadeAreAFailure)
{
    std::string link = folder.text("link"), nowhere = folder.text("no\\folder\\link");
    EXPECT_EQ(VxShortcutCreate("a", "", "", "", "") + VxShortcutCreate("", "", "", link.c_str(), "") +
                  VxShortcutCreate("Q:\\a", "", "", link.c_str(), "") +
                  VxShortcutCreate("a", "", "", nowhere.c_str(), ""),
              4u);
    for (fault::Kind kind : {fault::Kind::verb, fault::Kind::allocation}) {
        uint32_t failed = 0;
        fs::remove(folder.native() / "link.desktop");
        test::eachRefusal(
            kind, nullptr, [&] { failed = VxShortcutCreate("program", "a b", "", link.c_str(), "text"); },
            [&](bool refused) {
                EXPECT_EQ(failed, refused ? 1u : 0u);
                EXPECT_EQ(fs::exists(folder.native() / "link.desktop"), !refused);
            });
    }
}

}
