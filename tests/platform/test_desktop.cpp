#include <filesystem>
#include <regex>
#include <string>

#include "platform/os/recent_list.h"
#include "platform/os/test_values.h"
#include "tests/support/code_page.h"
#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "vx/sys.h"

using namespace vx;
using namespace vx::test;
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
    text = std::regex_replace(text, std::regex(R"(<\?xml[^>]*\?>)"), "");
    std::string rest = std::regex_replace(text, tag, "");
    std::vector<std::string> open = {""};
    for (std::sregex_iterator at(text.begin(), text.end(), tag), end; at != end; ++at) {
        const bool closes = (*at)[1].length() > 0, isEmpty = (*at)[4].length() > 0;
        if (closes && open.back() != (*at)[2])
            return false;
        if (closes)
            open.pop_back();
        else if (!isEmpty)
            open.push_back((*at)[2]);
    }
    return open.size() == 1 && rest.find_first_of("<>&") == rest.npos;
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

    TempFolder folder;
    Environment data{"XDG_DATA_HOME", (folder.native() / "data").c_str()};
};

TEST_F(Recent, DocumentsAreListedByAddressTimeAndApplication)
{
    CodePageScope utf8(65001);
    std::string list = add("a b&'\xC3\xBC.vxp");
    EXPECT_TRUE(isWellFormed(list)) << list;
    const std::string use = "href=\"file://" + folder.native().string() +
                            "/a%20b&amp;&apos;%C3%BC.vxp\" added=\"2026-11-15T07:26:00.250000Z\"";
    EXPECT_EQ(count(list, use) + count(list, "name=\"test_platform\""), 2u) << list;
}

TEST_F(Recent, ASecondUseIsCountedAndDatedAndWhatOthersNotedStays)
{
    std::string theirs = std::regex_replace(add("mine"), std::regex("test_platform"), "Other > App");
    theirs.insert(theirs.find("</xbel>"), "  <bookmark href='x' />\n<!-- kept -->");
    folder.write("data/recently-used.xbel", theirs);
    add("mine");
    os::setTestClock(1794727620'000'000);
    std::string list = add("mine");
    for (const char *once : {"name=\"Other > App\"", "name=\"test_platform\"", "count=\"1\"", "count=\"2\"",
                             "added=\"2026-11-15T07:26:00", "<!-- kept -->"})
        EXPECT_EQ(count(list, once), 1u) << once << " in " << list;
    EXPECT_EQ(count(list, "=\"2026-11-15T07:27:00.000000Z\""), 3u) << list;
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
        folder.write("data/recently-used.xbel", before);
        failsWhenRefused(kind, [&] { return VxAddToRecent(path.c_str()); }, [&](bool refused) {
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
        std::string link = folder.text("My part.lnk");
        EXPECT_EQ(VxShortcutCreate(target.c_str(), arguments, workDir, link.c_str(), text), 0u);
        return folder.read("My part.desktop");
    }

    TempFolder folder;
    const std::string here = folder.native().string();
};

TEST_F(Shortcuts, HaveAProgramsCommandLineOrADocumentsAddress)
{
    CodePageScope utf8(65001);
    folder.write("the program", "");
    fs::permissions(folder.native() / "the program", fs::perms(0755));
    EXPECT_EQ(
        make(folder.text("the program"), "-f \"a b\" 100% $x c\\d \\\"", folder.text().c_str(), " a\nb"),
        "[Desktop Entry]\nVersion=1.0\nType=Application\nName=My part\nComment=\\sa\\nb\nExec=\"" + here +
            "/the program\" \"-f\" \"a b\" \"100%%\" \"\\\\$x\" \"c\\\\\\\\d\" \"\\\\\"\"\nPath=" + here +
            "\nTerminal=false\n");
    EXPECT_NE(fs::status(folder.native() / "My part.desktop").permissions() & fs::perms::owner_exec,
              fs::perms::none);
    EXPECT_EQ(count(make("vxsh", nullptr, nullptr, nullptr), "Exec=\"vxsh\"\nTerminal"), 1u);
    folder.write("\xC3\xBC.txt", "");
    EXPECT_EQ(make(folder.text("\xC3\xBC.txt"), "", "", ""),
              "[Desktop Entry]\nVersion=1.0\nType=Link\nName=My part\nURL=file://" + here + "/%C3%BC.txt\n");
}

TEST_F(Shortcuts, ThatCannotBeMadeAreAFailure)
{
    std::string link = folder.text("link"), nowhere = folder.text("no\\folder\\link");
    for (auto [target, to] : {std::pair{"a", ""}, {"", link.c_str()}, {"Q:\\a", link.c_str()},
                              {"a", nowhere.c_str()}})
        EXPECT_EQ(VxShortcutCreate(target, "", "", to, ""), 1u) << target << " to " << to;
    for (fault::Kind kind : {fault::Kind::verb, fault::Kind::allocation}) {
        fs::remove(folder.native() / "link.desktop");
        failsWhenRefused(
            kind, [&] { return VxShortcutCreate("program", "a b", "", link.c_str(), "text"); },
            [&](bool refused) { EXPECT_EQ(fs::exists(folder.native() / "link.desktop"), !refused); });
    }
}

}
