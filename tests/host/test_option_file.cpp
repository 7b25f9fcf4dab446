#include "host/option_file.h"

#include "tests/support/test.h"

using namespace talm;
using namespace vx;
using testing::UnorderedElementsAre;

namespace {

TEST(OptionFile, ReadsKeysAndValuesAndTellsTheLinesThatSayNothing)
{
    std::string text = "\xEF\xBB\xBF# a comment\n"
                       "  Vx.B \t=  two words = \"three\"  \r\n"
                       "\n"
                       "no divider\n"
                       " = no key\n"
                       "Vx.A = 1\n"
                       "vx.a = other case\n"
                       "Vx.Empty =\n"
                       "Vx.A = 2 # part of the value\n";
    text += std::string("Vx.Zero = a\0b\n", 14);
    text += "Vx.Last = no line end";
    ParsedOptions parsed = parseOptions(text);
    EXPECT_THAT(parsed.values,
                UnorderedElementsAre(Pair("Vx.A", "2 # part of the value"),
                                     Pair("Vx.B", "two words = \"three\""), Pair("vx.a", "other case"),
                                     Pair("Vx.Empty", ""), Pair("Vx.Last", "no line end")));
    using testing::Field;
    EXPECT_THAT(parsed.faults, ElementsAre(Field(&OptionFault::line, 4U), Field(&OptionFault::line, 5U),
                                           Field(&OptionFault::line, 10U)));
}

TEST(OptionFile, AChangeTouchesTheLineThatCountsAndNoOther)
{
    std::string text = "# mine\r\nA = 1\r\nB=2\r\nA = 3\r\nbroken\r\nC = 4";
    EXPECT_EQ(withOption(text, "A", "9"), "# mine\r\nA = 1\r\nB=2\r\nA = 9\r\nbroken\r\nC = 4");
    EXPECT_EQ(withOption(text, "D", " x "), text + "\nD = x\n");
    EXPECT_EQ(withOption("", "A", ""), "A = \n");
}

/** What makes option files difficult. */
const std::string_view pieces[] = {
    "A",   "B", " ", "=", "=", "\n", "\n", "\r\n", "#", "\t", "x", "\xEF\xBB\xBF", std::string_view("\0", 1),
    "\xE9"};

TEST(OptionFile, WhatIsStoredIsReadBackAndEverythingElseStays)
{
    vx::test::Random random;
    int stored = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = random.text(pieces, 0, 30), key = random.text(pieces, 0, 3),
                    value = random.text(pieces, 0, 4);
        if (!isStorable(key, value))
            continue;
        ++stored;
        ParsedOptions model = parseOptions(text);
        model.values[key] = trimmed(value);
        ParsedOptions changed = parseOptions(withOption(text, key, value));
        ASSERT_EQ(changed.values, model.values) << testing::PrintToString(text) << key << '=' << value;
        ASSERT_EQ(changed.faults.size(), model.faults.size()) << testing::PrintToString(text);
    }
    EXPECT_GT(stored, 500);
}

}
