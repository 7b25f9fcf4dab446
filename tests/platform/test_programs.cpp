#include <fstream>
#include <regex>

#include <fcntl.h>
#include <unistd.h>

#include "platform/os/os.h"
#include "tests/support/captured_output.h"
#include "tests/support/code_page.h"
#include "tests/support/faults.h"
#include "tests/support/temp_folder.h"
#include "vx/str.h"
#include "vx/sys.h"

using namespace vx;
using namespace vx::test;

namespace {

struct Programs : testing::Test {
    /** A command line that starts the program which reports, to end with `code`. */
    std::string line(int code, const std::string &words) const
    {
        return "\"" STARTED_PROGRAM "\" \"" + report().string() + "\" " + std::to_string(code) + " " + words;
    }
    std::filesystem::path report() const { return folder.native() / "report"; }

    /** Wait for the report of a program that nobody else waits for. */
    std::string awaitReport() const
    {
        for (;;) {
            std::string text = std::filesystem::exists(report()) ? folder.read("report") : "";
            if (text.find("open") != text.npos && text.ends_with('\n'))
                return text;
            usleep(1000);
        }
    }

    TempFolder folder;
};

TEST_F(Programs, GetTheirWordsAsTheyAre)
{
    int32_t code = -1;
    EXPECT_EQ(VxRunApp(line(3, "\"a b\" \\\"q\\\" $HOME * \"\"").c_str(), &code), 0u);
    EXPECT_EQ(code, 3);
    EXPECT_EQ(folder.read("report"), "a b\n\"q\"\n$HOME\n*\n\nopen 0 1 2\n");
}

TEST_F(Programs, AreFoundByPathInTheToolkitsSpellingAndByName)
{
    std::string path = STARTED_PROGRAM;
    std::replace(path.begin(), path.end(), '/', '\\');
    CodePageScope japanese(932);
    EXPECT_EQ(VxRunApp((path + " " + report().string() + " 0 \x83\x5C\x95\x5C").c_str(), nullptr), 0u);
    EXPECT_EQ(folder.read("report"), "\xE3\x82\xBD\xE8\xA1\xA8\nopen 0 1 2\n");
    int32_t code = 5;
    EXPECT_EQ(VxRunApp("sh -c \"kill -15 $$\"", &code), 0u);
    EXPECT_EQ(code, 128 + 15);
}

TEST_F(Programs, ThatCannotBeStartedAreAFailure)
{
    folder.write("text", "no program");
    int32_t code = 77;
    for (std::string name : {std::string("no-such-program-anywhere"), std::string("Q:\\x"),
                             folder.text("text"), folder.text(), std::string("  "), std::string("\"\"")})
        EXPECT_EQ(VxRunApp(name.c_str(), &code) + VxRunApp2(name.c_str(), 1), 2u) << name;
    EXPECT_EQ(code, 77);
}

TEST_F(Programs, InheritNothingOfTheToolkitsOrTheHosts)
{
    // A file of the toolkit's, and one of a host that forgot about children.
    std::FILE *stream = nullptr;
    folder.write("open", "x");
    ASSERT_EQ(os::openFile(folder.text("open").c_str(), "r", stream), os::Error::none);
    int careless = open("/dev/null", O_RDONLY);
    EXPECT_EQ(VxRunApp(line(0, "").c_str(), nullptr), 0u);
    EXPECT_EQ(folder.read("report"), "open 0 1 2\n");
    std::filesystem::remove(report());
    close(careless);
    // The C library's shell gets what a host leaves open, and no more through us.
    EXPECT_EQ(std::system(line(0, "").c_str()), 0);
    std::string byTheLibrary = folder.read("report");
    EXPECT_EQ(VxSysCmd(line(0, "").c_str(), 0), 0);
    EXPECT_EQ(folder.read("report"), byTheLibrary);
    std::string ours = " " + std::to_string(fileno(stream));
    EXPECT_FALSE(std::regex_search(byTheLibrary, std::regex(ours + "\\b"))) << byTheLibrary;
    std::fclose(stream);
}

TEST_F(Programs, ThatAreNotWaitedForGoOnAndLeaveNothing)
{
    EXPECT_EQ(VxRunApp2(line(0, "shown").c_str(), 1), 0u);
    EXPECT_EQ(awaitReport(), "shown\nopen 0 1 2\n");
    std::filesystem::remove(report());
    CapturedOutput output;
    EXPECT_EQ(VxRunApp2("sh -c \"echo hidden; echo hidden >&2\"", 0), 0u);
    EXPECT_EQ(VxRunApp2(line(0, "last").c_str(), 0), 0u);
    EXPECT_EQ(awaitReport(), "last\nopen 0 1 2\n");
    EXPECT_EQ(output.text(), "");
    // Their ends are taken when the next is started, at the latest.
    auto children = [] {
        std::string list;
        std::getline(std::ifstream("/proc/thread-self/children"), list);
        return list;
    };
    while (!children().empty()) {
        usleep(1000);
        EXPECT_EQ(VxRunApp("true", nullptr), 0u);
    }
}

TEST_F(Programs, AFailedStepIsAFailure)
{
    for (fault::Kind kind : {fault::Kind::verb, fault::Kind::allocation})
        for (auto run : {+[] { return VxRunApp("true with some long words", nullptr); },
                         +[] { return VxSysCmdHddn("true with some long words", nullptr); },
                         +[] { return VxRunApp2("true with some long words", 1); }})
            failsWhenRefused(kind, run);
}

TEST(Processes, AreFoundByTheirProgramInAnyCase)
{
    uint32_t id = 0;
    char path[4096];
    ASSERT_EQ(os::executablePath(path, sizeof path), os::Error::none);
    VxStrToupper(path, 4096);
    EXPECT_EQ(VxProcessFind("TEST_Platform", &id) + VxProcessFind(path, nullptr), 2);
    EXPECT_GT(id, 0u);
    EXPECT_EQ(VxProcessFind("test_plat", nullptr), 1) << "an ending may be left out";
    id = 99;
    fault::refuseFrom(fault::Kind::verb, 1);
    int32_t found = VxProcessFind("test_platform", &id);
    fault::refuse(fault::Kind::verb, 0);
    EXPECT_EQ(found + VxProcessFind("test_platform.exe", &id) + VxProcessFind("", &id), 0);
    EXPECT_EQ(id, 99u);
}

}
