#include "frame/alert_file.h"

#include <array>

#include "tests/support/error_log.h"

using namespace vx;
using namespace vx::frame;

namespace {

using Found = std::tuple<uint32_t, int32_t, std::string>; // the result, the severity and the text

const Found absent{1, -77, "untouched"};

struct AlertFiles : test::ErrorLog {
    static Found find(int32_t id, int32_t number)
    {
        char text[600] = "untouched";
        int32_t severity = -77;
        uint32_t result = VxErrGet(id, number, &severity, text, sizeof text);
        return {result, severity, text};
    }

    Found findIn(std::string_view file, int32_t number) { return find(alertFile(file), number); }
};

TEST_F(AlertFiles, ALineIsNumberSeverityText)
{
    const std::pair<std::string, Found> cases[] = {
        {"7,1,The text.", {0, 1, "The text."}},
        {"7,,The text.", {0, 0, "The text."}},
        {"7,Now, a text without severity.", {0, 0, "Now, a text without severity."}},
        {" \t7 , 3 ,A, b, and c.\r", {0, 3, "A, b, and c."}},
        {"7,0,", {0, 0, ""}},
        {"7,0,[Fr] # , all text", {0, 0, "[Fr] # , all text"}},
        {"   # 7,0,A comment", absent},
        {"[Fr]7,0,Un texte", absent},
        {"7", absent},
        {"7x,0,No number", absent},
        {"99999999999,0,No number of 32 bits", absent},
        {",0,No number", absent},
    };
    for (const auto &[line, found] : cases)
        EXPECT_EQ(findIn("1,0,Before\r\n\r\n" + line + "\n8,0,After\n", 7), found) << line;
}

TEST_F(AlertFiles, ALineCountsToIts255thByteButToNoHalfCharacter)
{
    test::CodePageScope page(936);
    for (size_t size : {250u, 251u, 252u, 5000u}) {
        const std::string text = std::string(size, 'x') + ",8,0,no entry";
        int32_t id = alertFile("7,0," + text + "\n9,1,After\n");
        EXPECT_THAT((std::array{find(id, 7), find(id, 8), find(id, 9)}),
                    ElementsAre(Found{0, 0, text.substr(0, 251)}, absent, Found{0, 1, "After"}))
            << size;
    }
    // Byte 255 is the first half of a character.
    const std::string whole(250, 'x');
    EXPECT_EQ(findIn("7,0," + whole + "\xB0\xA1\xB0\xA1", 7), (Found{0, 0, whole}));
}

TEST_F(AlertFiles, TheCurrentLanguagesLineWins)
{
    const char file[] = "7,0,plain\n[De]7,1,deutsch\n[fR]7,1,francais\n[It]8,1,other number\n"
                        "[FR] 7,2,encore\n8,0,eight\n7,0,stray\n[Fr]9,0,neuf\n10,0,ten\n[Fr]11,0,onze\n";
    int32_t id = alertFile(file);
    auto found = [id] { return std::array{find(id, 7), find(id, 9), find(id, 10)}; };
    EXPECT_THAT(found(), ElementsAre(Found{0, 0, "plain"}, absent, Found{0, 0, "ten"}));
    text::languageState.current = 4; // French
    EXPECT_THAT(found(), ElementsAre(Found{0, 2, "encore"}, Found{0, 0, "neuf"}, Found{0, 0, "ten"}));
}

TEST_F(AlertFiles, AFileThatIsNotThereIsPrinted)
{
    std::string missing = folder_.text("missing"), name256(256, 'n'), gone = folder_.text("Gone.ALERT");
    alertFile("1,0,one");
    int32_t goneId = alertFile("1,0,one", "Gone.ALERT"), id = -5;
    fs::remove(folder_.native() / "Gone.ALERT");
    test::CapturedOutput output;
    for (const char *name : {missing.c_str(), name256.c_str(), static_cast<const char *>(nullptr)})
        EXPECT_EQ(VxErrLoadFile(name, &id), 1u);
    EXPECT_EQ(id, -5);
    // As many as there are files: let through, and then no file.
    for (int32_t bad : {-1, 3, 2, goneId})
        EXPECT_EQ(find(bad, 1), absent);
    EXPECT_EQ(output.text(), "Unable to access error file " + missing +
                                 ".Error file name is longer than 255 characters."
                                 "Invalid error file id (-1).\nInvalid error file id (3).\n"
                                 "Unable to access error file .\n"
                                 "Unable to access error file " +
                                 gone + ".\n");
}

TEST_F(AlertFiles, WithoutMemoryNothingIsRegistered)
{
    folder_.write("A.ALERT", "1,0,one");
    std::string name = folder_.text("A.ALERT");
    test::CapturedOutput messages;
    test::refusingEachAllocation([&] {
        resetErrorLog();
        int32_t id = -5;
        uint32_t result = VxErrLoadFile(name.c_str(), &id);
        EXPECT_EQ(id, result ? -5 : 0);
        EXPECT_EQ(errorState().alertFiles.size(), result ? 0u : 1u);
    });
}

}
