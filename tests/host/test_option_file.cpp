#include "host/option_file.h"

#include <random>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace talm;
using testing::ElementsAre;
using testing::Pair;
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

/** Text of what makes option files difficult. */
std::string randomText(std::mt19937 &random, size_t pieces)
{
    const std::string_view choices[] = {"A", "B", " ", "=", "=", "\n", "\n", "\r\n", "#", "\t", "x",
                                        "\xEF\xBB\xBF", std::string_view("\0", 1), "\xE9"};
    std::string out;
    for (size_t i = random() % (pieces + 1); i > 0; --i)
        out += choices[random() % std::size(choices)];
    return out;
}

TEST(OptionFile, WhatIsStoredIsReadBackAndEverythingElseStays)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    int stored = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text = randomText(random, 30), key = randomText(random, 3), value = randomText(random, 4);
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
