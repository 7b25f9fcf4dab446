#include "platform/command_line.h"

#include <gtest/gtest.h>

#include "tests/support/code_page.h"

using namespace vx;

namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, IsDividedByBlanksQuotesAndBackslashes)
{
    // The second byte of the last text's character is that of the backslash.
    test::CodePageScope japanese(932);
    // The results of the C runtime of Windows.
    const std::pair<const char *, Words> cases[] = {
        {"a b\tc  ", {"a", "b", "c"}},  {"\"a b\" c", {"a b", "c"}},   {"a\" b\"c d", {"a bc", "d"}},
        {"\"\" x \"\"", {"", "x", ""}}, {"a\\b c\\", {"a\\b", "c\\"}}, {"\\\"a\\\" b", {"\"a\"", "b"}},
        {"\"a\\\\\" b", {"a\\", "b"}},  {"a\\\\\\\"b", {"a\\\"b"}},    {"\"a\"\"b\" c", {"a\"b", "c"}},
        {"\"open end", {"open end"}},   {"'a b'", {"'a", "b'"}},       {"\"\x83\x5C\" b", {"\x83\x5C", "b"}},
    };
    for (const auto &[line, words] : cases)
        EXPECT_EQ(platform::wordsOfArguments(line), words) << line;
    EXPECT_EQ(platform::wordsOfCommandLine("\"C:\\a b\\\" \"b\\\" c\""), (Words{"C:\\a b\\", "b\" c"}))
        << "those of the program are separators";
}

}
