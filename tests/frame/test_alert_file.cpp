#include "frame/alert_file.h"

#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/support/captured_output.h"
#include "tests/support/code_page.h"
#include "tests/support/conversions.h"
#include "tests/support/error_log.h"
#include "tests/support/faults.h"
#include "vx/lang.h"

using namespace vx;
using namespace vx::frame;

namespace {

struct Found {
    uint32_t result;
    int32_t severity;
    std::string text;

    bool operator==(const Found &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Found &found)
{
    return out << found.result << " " << found.severity << " \"" << found.text << "\"";
}

const Found absent{1, -77, "untouched"};

class AlertFiles : public test::ErrorLog {
protected:
    static Found find(int32_t id, int32_t number)
    {
        char text[600] = "untouched";
        Found found{0, -77, ""};
        found.result = VxErrGet(id, number, &found.severity, text, sizeof text);
        found.text = text;
        return found;
    }

    Found findIn(std::string_view file, int32_t number) { return find(alertFile(file), number); }
};

constexpr int32_t rowFrench = 4;

TEST_F(AlertFiles, ALineIsNumberSeverityText)
{
    const struct {
        const char *line;
        Found found;
    } cases[] = {
        {"7,1,The text.", {0, 1, "The text."}},
        {"7,,The text.", {0, 0, "The text."}},
        {"7,The text.", {0, 0, "The text."}},
        {" \t7,2,A, b, and c.", {0, 2, "A, b, and c."}},
        {"7,Now, a text without severity.", {0, 0, "Now, a text without severity."}},
        {" 7 , 3 ,The text.\r", {0, 3, "The text."}},
        {"7,0,", {0, 0, ""}},
        {"7,0,[Fr] # , all text", {0, 0, "[Fr] # , all text"}},
        {"#7,0,A comment", absent},
        {"   # 7,0,A comment", absent},
        {"[Fr]7,0,Un texte", absent},
        {"7", absent},
        {"7x,0,No number", absent},
        {"99999999999,0,No number of 32 bits", absent},
        {",0,No number", absent},
        {"", absent},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(findIn(c.line, 7), c.found) << c.line;
        EXPECT_EQ(findIn(std::string("1,0,Before\r\n\r\n") + c.line + "\n8,0,After\n", 7), c.found) << c.line;
    }
}

TEST_F(AlertFiles, ALineCountsToIts255thByte)
{
    std::string head = "7,0,";
    for (size_t size : {250u, 251u, 252u, 600u, 5000u}) {
        std::string text(size, 'x');
        std::string file = head + text + ",8,0,no entry\n9,1,After\n";
        EXPECT_EQ(findIn(file, 7).text, (text + ",8,0,no entry").substr(0, 251)) << size;
        EXPECT_EQ(findIn(file, 9), (Found{0, 1, "After"})) << size;
        EXPECT_EQ(findIn(file, 8), absent) << size;
    }
}

TEST_F(AlertFiles, ALongLineIsCutAtACharacter)
{
    test::CodePageScope page(936);
    // Byte 255 is the first half of a character.
    std::string file = "7,0," + std::string(250, 'x') + "\xB0\xA1\xB0\xA1";
    EXPECT_EQ(findIn(file, 7).text, std::string(250, 'x'));
}

TEST_F(AlertFiles, TheTextIsBoundedByTheBuffer)
{
    int32_t id = alertFile("7,0,A text");
    char text[] = "........";
    EXPECT_EQ(VxErrGet(id, 7, nullptr, text, 5), 0u);
    EXPECT_EQ(std::string(text, 8), std::string("A te\0...", 8));
    EXPECT_STREQ(VxErr(id, 7, text, 3), "A ");
    EXPECT_STREQ(VxErr(id, 8, text, 3), "");
}

TEST_F(AlertFiles, TheCurrentLanguagesLineWins)
{
    const char file[] = "7,0,plain\n[De]7,1,deutsch\n[fR]7,1,francais\n[It]8,1,other number\n[FR] 7,2,encore\n"
                        "8,0,eight\n7,0,stray\n[Fr]9,0,neuf\n10,0,ten\n[Fr]11,0,onze\n";
    int32_t id = alertFile(file);
    EXPECT_EQ(find(id, 7), (Found{0, 0, "plain"}));
    EXPECT_EQ(find(id, 9), absent);
    text::languageState.current = rowFrench;
    EXPECT_EQ(find(id, 7), (Found{0, 2, "encore"}));
    EXPECT_EQ(find(id, 8), (Found{0, 0, "eight"}));
    EXPECT_EQ(find(id, 9), (Found{0, 0, "neuf"}));
    EXPECT_EQ(find(id, 10), (Found{0, 0, "ten"}));
}

TEST_F(AlertFiles, EveryLanguagesTagIsTold)
{
    std::string file = "7,0,plain\n";
    std::map<int32_t, std::string> tags;
    for (int32_t row = 1; row <= 26; ++row) {
        char tag[9];
        text::languageState.current = row;
        VxLangGet(nullptr, 0, tag, sizeof tag);
        tags[row] = tag;
        file += tags[row] + "7,0,text of " + tags[row] + "\n";
    }
    int32_t id = alertFile(file);
    for (const auto &[row, tag] : tags) {
        text::languageState.current = row;
        EXPECT_EQ(find(id, 7).text, "text of " + tag);
    }
}

// Files of whole groups, with everything between them that must not count.
TEST_F(AlertFiles, LookUpAgreesWithAModelOnRandomFiles)
{
    unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    auto upTo = [&random](unsigned n) { return random() % n; };
    for (int round = 0; round < 200; ++round) {
        std::string file;
        std::map<int32_t, std::string> plain, french;
        std::vector<int32_t> numbers;
        for (auto i = upTo(12); i > 0; --i)
            numbers.push_back(static_cast<int32_t>(upTo(1000)) * 20 + static_cast<int32_t>(i));
        for (int32_t number : numbers) {
            std::string entry = std::to_string(number) + "," + std::to_string(upTo(4)) + ",";
            std::string text = "text " + std::to_string(random());
            file += entry + text + (upTo(2) ? "\r\n" : "\n");
            plain[number] = french[number] = text;
            for (auto i = upTo(6); i > 0; --i) {
                const char *noise[] = {"# comment\n", "\n", "no entry\n", "[It]3,0,altro\n", "\t\r\n"};
                file += noise[upTo(5)];
                if (upTo(3) == 0) {
                    french[number] = text + " fr " + std::to_string(i);
                    file += "[fr]" + entry + french[number] + "\n";
                }
            }
        }
        int32_t id = alertFile(file);
        for (int32_t number : numbers) {
            text::languageState.current = 0;
            EXPECT_EQ(find(id, number).text, plain[number]) << file;
            text::languageState.current = rowFrench;
            EXPECT_EQ(find(id, number).text, french[number]) << file;
        }
        EXPECT_EQ(find(id, 19), absent);
    }
}

TEST_F(AlertFiles, ATruncatedFileGivesWhatStandsInIt)
{
    std::string file = "1,0,one\r\n[Fr]1,0,un\r\n2,1,two";
    text::languageState.current = rowFrench;
    for (size_t size = 0; size <= file.size(); ++size) {
        int32_t id = alertFile(file.substr(0, size));
        bool oneThere = size >= 2, unThere = size >= 15;
        Found one = find(id, 1);
        EXPECT_EQ(one.result, oneThere ? 0u : 1u) << size;
        if (size >= 7 && !unThere) {
            EXPECT_EQ(one.text, "one") << size;
        }
        if (size >= 19) {
            EXPECT_EQ(one.text, "un") << size;
        }
        EXPECT_EQ(find(id, 2).result, size >= 23 ? 0u : 1u) << size;
    }
}

TEST_F(AlertFiles, BinaryNoiseIsReadWithoutHarm)
{
    unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::string alphabet("7,0\n\r#[]Fr \0\xFF\x81x", 15);
    text::languageState.current = rowFrench;
    for (int round = 0; round < 300; ++round) {
        std::string file(random() % 3000, ' ');
        for (char &c : file)
            c = alphabet[random() % alphabet.size()];
        // Whatever stands before it, an entry on a line of its own is found when its number is the first.
        int32_t id = alertFile("\n12345,5,here\n" + file + "\n");
        Found found = find(id, 12345);
        EXPECT_EQ(found, (Found{0, 5, "here"}));
        EXPECT_LE(find(id, 7).text.size(), 255u);
    }
}

TEST_F(AlertFiles, AFileHasOneId)
{
    int32_t first = alertFile("1,0,one", "A.ALERT");
    int32_t second = alertFile("1,0,two", "B.ALERT");
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    EXPECT_EQ(alertFile("1,0,three", "A.ALERT"), first);
    EXPECT_EQ(find(first, 1).text, "three");
    EXPECT_EQ(find(second, 1).text, "two");
}

TEST_F(AlertFiles, ARefusedFilePrintsWhy)
{
    int32_t id = -5;
    std::string missing = folder_.text("missing"), name255(255, 'n'), name256(256, 'n');
    test::CapturedOutput output;
    EXPECT_EQ(VxErrLoadFile(missing.c_str(), &id), 1u);
    EXPECT_EQ(VxErrLoadFile(name255.c_str(), &id), 1u);
    EXPECT_EQ(VxErrLoadFile(name256.c_str(), &id), 1u);
    EXPECT_EQ(VxErrLoadFile(nullptr, &id), 1u);
    EXPECT_EQ(id, -5);
    EXPECT_EQ(output.text(), "Unable to access error file " + missing + ".Unable to access error file " + name255
                                 + ".Error file name is longer than 255 characters.");
}

TEST_F(AlertFiles, ABadIdPrintsWhy)
{
    alertFile("1,0,one");
    std::string gone = folder_.text("Gone.ALERT");
    int32_t goneId = alertFile("1,0,one", "Gone.ALERT");
    std::filesystem::remove(folder_.native() / "Gone.ALERT");
    test::CapturedOutput output;
    EXPECT_EQ(find(-1, 1), absent);
    EXPECT_EQ(find(3, 1), absent);
    // As many as there are files: let through, and then no file.
    EXPECT_EQ(find(2, 1), absent);
    EXPECT_EQ(find(goneId, 1), absent);
    EXPECT_EQ(output.text(), "Invalid error file id (-1).\nInvalid error file id (3).\nUnable to access error file .\n"
                             "Unable to access error file " + gone + ".\n");
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
        EXPECT_EQ(result, id == 0 ? 0u : 1u);
        EXPECT_EQ(errorState().alertFiles.size(), id == 0 ? 1u : 0u);
        EXPECT_TRUE(id == 0 || id == -5);
    });
}

TEST_F(AlertFiles, TheShippedTextsAreWellFormed)
{
    struct Entry {
        int32_t number, severity;
        const char *conversions;
    };
    const Entry entries[] = {
        {1, 0, "d"},   {2, 0, "d"},  {3, 3, "d"},  {19, 0, ""},  {20, 0, "s"}, {22, 0, "s"}, {23, 0, "s"},  {29, 0, ""},
        {30, 0, ""},   {44, 0, "s"}, {46, 0, ""},  {47, 0, ""},  {48, 0, ""},  {49, 0, ""},  {50, 0, ""},   {51, 0, ""},
        {52, 0, ""},   {55, 0, "sd"}, {56, 0, "s"}, {57, 0, ""}, {61, 0, "s"}, {65, 0, "s"}, {66, 0, "s"},  {69, 0, "s"},
        {73, 0, ""},   {80, 0, "ss"}, {81, 0, "s"}, {83, 0, ""}, {84, 0, ""},
    };
    std::map<int32_t, Entry> expected;
    for (const Entry &entry : entries)
        expected[entry.number] = entry;
    int32_t id = -1;
    ASSERT_EQ(VxErrLoadFile("Tools.ALERT", &id), 0u) << "run from the folder of the product";
    for (int32_t number = 0; number < 1000; ++number) {
        Found found = find(id, number);
        ASSERT_EQ(found.result, expected.count(number) ? 0u : 1u) << number;
        if (found.result)
            continue;
        EXPECT_EQ(found.severity, expected[number].severity) << number;
        EXPECT_FALSE(found.text.empty()) << number;
        EXPECT_EQ(test::conversions(found.text), expected[number].conversions) << number;
    }
}

}
