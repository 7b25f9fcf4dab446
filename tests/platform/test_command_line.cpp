#include "platform/command_line.h"

#include <gtest/gtest.h>

#include "tests/support/code_page.h"

using namespace vx;

namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, IsDividedByBlanksQuotesAndBackslashes)
{
    struct Case {
        const char *line;
        Words words;
    };
    // The results of the C runtime of Windows.
    const Case cases[] = {
        {"", {}},
        {" \t ", {}},
        {"a b\tc  ", {"a", "b", "c"}},
        {"\"a b\" c", {"a b", "c"}},
        {"a\" b\"c d", {"a bc", "d"}},
        {"\"\" x \"\"", {"", "x", ""}},
        {"a\\b c\\", {"a\\b", "c\\"}},
        {"x \\\"a\\\" b", {"\"a\"", "b"}},
        {"x \"a\\\\\" b", {"a\\", "b"}},
        {"x a\\\\\\\"b", {"a\\\"b"}},
        {"x \"a\"\"b\" c", {"a\"b", "c"}},
        {"x \"open end", {"open end"}},
        {"x 'a b'", {"'a", "b'"}},
    };
    for (const Case &one : cases) {
        bool program = std::string_view(one.line).starts_with("x ");
        Words words = program ? platform::wordsOfCommandLine(one.line) : platform::wordsOfArguments(one.line);
        if (program)
            words.erase(words.begin());
        EXPECT_EQ(words, one.words) << one.line;
    }
}

TEST(CommandLine, BackslashesOfTheProgramAreSeparators)
{
    EXPECT_EQ(platform::wordsOfCommandLine("\"C:\\a folder\\\" \"b\\\" c\""),
              (Words{"C:\\a folder\\", "b\" c"}));
}

TEST(CommandLine, IsWalkedByCharacters)
{
    // The second byte of this character of code page 932 is that of the backslash.
    test::CodePageScope japanese(932);
    EXPECT_EQ(platform::wordsOfArguments("\"\x83\x5C\" b"), (Words{"\x83\x5C", "b"}));
}

}
