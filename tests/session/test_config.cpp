#include "vx/config.h"

#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "talm/config.hpp"
#include "tests/support/code_page.h"
#include "vx/tools.h"

using namespace vx;
using testing::ElementsAre;
using testing::Pair;

namespace {

/** A manager over two maps, which notes what it is asked to write and to load. */
class Manager : public IConfigMgr {
public:
    Manager() { TalmSetConfigMgr(this); }
    ~Manager() { TalmSetConfigMgr(nullptr); }

    uint32_t GetValue(const char *key, char **text, bool fromDefaults) override
    {
        const auto &layer = fromDefaults ? defaults : values;
        auto found = layer.find(key);
        *text = found == layer.end() ? nullptr : strdup(found->second.c_str());
        return found == layer.end();
    }

    uint32_t SetValue(const char *key, const char *value) override
    {
        written.emplace_back(key, value);
        return status;
    }

    bool Load(int32_t file) override
    {
        loaded.push_back(file);
        return file != unloadable;
    }

    std::map<std::string, std::string> values, defaults;
    std::vector<std::pair<std::string, std::string>> written;
    std::vector<int32_t> loaded;
    uint32_t status = 0;
    int32_t unloadable = -1;
};

/** What the readers of numbers and answers make of a text. */
struct Reading {
    int32_t number;
    int32_t yes, no;
    uint32_t answered;
    int32_t answer;
    double real;

    bool operator==(const Reading &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Reading &r)
{
    return out << r.number << " yes " << r.yes << " no " << r.no << " answered " << r.answered << ": "
               << r.answer << " real " << r.real;
}

Reading read(const char *key)
{
    Reading r{};
    r.number = VxConfigNum(key);
    r.yes = VxConfigYes(key);
    r.no = VxConfigNo(key);
    r.answer = 9;
    r.answered = VxConfigYesOrNo(key, &r.answer);
    r.real = 9;
    VxConfigVal(key, &r.real);
    return r;
}

TEST(Config, EachReaderTakesATextInItsOwnWay)
{
    const std::pair<const char *, Reading> cases[] = {
        {"yes", {1, 1, 0, 0, 1, 0}},
        {"Yup", {0, 1, 0, 0, 1, 0}},
        {"YES", {0, 1, 0, 0, 1, 0}},
        {" yes", {0, 1, 0, 0, 1, 0}},
        {"no", {0, 0, 1, 0, 0, 0}},
        {"\t Nope", {0, 0, 1, 0, 0, 0}},
        {"-12.75e1 mm", {-12, 0, 0, 1, 0, -127.5}},
        {"  42", {42, 0, 0, 1, 0, 42}},
        {"1,5", {1, 0, 0, 1, 0, 1}},
        {"99999999999", {2147483647, 0, 0, 1, 0, 99999999999.0}},
        {"-99999999999", {-2147483647 - 1, 0, 0, 1, 0, -99999999999.0}},
        {"", {0, 0, 0, 1, 0, 0}},
    };
    Manager manager;
    for (const auto &[text, expected] : cases) {
        manager.values["Vx.Option"] = text;
        EXPECT_EQ(read("Vx.Option"), expected) << "'" << text << "'";
    }
}

TEST(Config, AMissingOptionGivesTheDefaultOfItsReader)
{
    Manager manager;
    EXPECT_EQ(read("Vx.None"), (Reading{0, 0, 0, 1, 0, 0}));
    int32_t number = 9, r = 1, g = 2, b = 3;
    double real = 9;
    char text[8] = "old";
    EXPECT_EQ(VxConfigInt("Vx.None", &number) + VxConfigVal("Vx.None", &real), 2u);
    EXPECT_EQ(VxConfigString("Vx.None", sizeof text, text), 1u);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(VxConfigRGB("Vx.None", &r, &g, &b), 1u);
    EXPECT_THAT((std::vector{number, r, g, b}), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(VxConfigOpt("Vx.None", "a,b"), 0);
    for (auto reader : {VxConfigColor, VxConfigVuColor})
        EXPECT_EQ(reader("Vx.None"), 16);
    for (auto reader : {VxLaDefaultColor, VxLaDefaultVuColor})
        EXPECT_EQ(reader("Vx.None"), -1);
}

TEST(Config, AStringIsCutAtACharacter)
{
    test::CodePageScope chinese(936);
    Manager manager;
    for (auto [value, size, cut] :
         {std::tuple{"abcdef", 7, "abcdef"}, {"abcdef", 4, "abc"}, {"abcdef", 1, ""},
          {"ab\xB0\xA1\xB0\xA2", 6, "ab\xB0\xA1"}}) {
        char text[8];
        manager.values["s"] = value;
        EXPECT_EQ(VxConfigString("s", size, text), 0u);
        EXPECT_STREQ(text, cut);
    }
}

TEST(Config, ThreeNumbersAreAColourAndNothingElseIs)
{
    Manager manager;
    int32_t r = 0, g = 0, b = 0;
    manager.values["c"] = " 300, -5 ,12";
    EXPECT_EQ(VxConfigRGB("c", &r, &g, &b), 0u);
    EXPECT_THAT((std::vector{r, g, b}), ElementsAre(255, 0, 12));
    for (const char *text : {"1,2", "1,2,3,4", "", "7 8 9"}) {
        manager.values["c"] = text;
        EXPECT_EQ(VxConfigRGB("c", &r, &g, &b), 1u) << text;
        EXPECT_THAT((std::vector{r, g, b}), ElementsAre(255, 0, 12)) << text;
    }
}

TEST(Config, AChoiceIsFoundWithoutRegardToCaseAndTheFirstCounts)
{
    Manager manager;
    auto positionOf = [&manager](const char *value, const char *list) {
        manager.values["o"] = value;
        return VxConfigOpt("o", list);
    };
    EXPECT_EQ(positionOf(" Second ", "first,SECOND,second"), 2);
    EXPECT_EQ(positionOf("seco", "first,SECOND,second"), 0);
    EXPECT_EQ(positionOf("two words", "one,twowords"), 2) << "the value loses its blanks";
    EXPECT_EQ(positionOf("two words", "one,two words"), 0) << "a choice keeps them";
    std::string many, last(31, 'x');
    for (int i = 1; i < 32; ++i)
        many += std::to_string(i) + ",";
    EXPECT_EQ(positionOf(last.c_str(), (many + last).c_str()), 32);
    EXPECT_EQ(positionOf("late", (many + last + ",late").c_str()), 0);
}

TEST(Config, ColoursAreNumberedByName)
{
    Manager manager;
    const struct {
        const char *value;
        int32_t color, viewColor, defaultColor, defaultViewColor;
    } cases[] = {{"ignore", 0, 0, 0, 0},
                 {"violet", 9, 9, 9, 9},
                 {"BLACK", 16, 16, 16, 16},
                 {"med-grey", 18, 18, 18, 18},
                 {"purple", 16, 16, -1, -1},
                 {"-FROM PART-", 16, 255, -1, 255},
                 {"-from part-", 16, 16, -1, -1}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.value);
        manager.values["c"] = manager.defaults["c"] = c.value;
        EXPECT_EQ(VxConfigColor("c"), c.color);
        EXPECT_EQ(VxConfigVuColor("c"), c.viewColor);
        EXPECT_EQ(VxLaDefaultColor("c"), c.defaultColor);
        EXPECT_EQ(VxLaDefaultVuColor("c"), c.defaultViewColor);
    }
}

TEST(Config, DefaultReadersReadTheInstallationDefaults)
{
    Manager manager;
    manager.values = {{"i", "1"}, {"rgb", "1,1,1"}, {"s", "user"}, {"o", "a"}};
    manager.defaults = {{"i", "2"}, {"rgb", "2,2,2"}, {"s", "installed"}, {"o", "b"}};
    int32_t i = 0, r = 0, g = 0, b = 0, answer = 0;
    double real = 0;
    char text[16];
    EXPECT_EQ(VxLaDefaultInt("i", &i) + VxLaDefaultVal("i", &real) + VxLaDefaultRGB("rgb", &r, &g, &b), 0u);
    EXPECT_TRUE(i == 2 && real == 2 && r == 2);
    EXPECT_EQ(VxLaDefaultString("s", sizeof text, text), 0u);
    EXPECT_STREQ(text, "installed");
    EXPECT_EQ(VxLaDefaultOpt("o", "a,b"), 2);
    EXPECT_EQ(VxLaDefaultYesOrNo("i", &answer), 1u);
    EXPECT_EQ(VxConfigNum("i"), 1) << "the flag is lowered again";
}

TEST(Config, KeysChangeTheirPrefixBothWays)
{
    for (auto [key, mapped] : {std::pair{"Tl.Grid", "Vx.Grid"}, {"Tlacuache", "Vxacuache"}, // it needs no dot
                               {"tl.Grid", "tl.Grid"}, {"", ""}})
        EXPECT_STREQ(MapIn(key), mapped);
    EXPECT_STREQ(MapOut("Vx.Grid"), "Tl.Grid");
    EXPECT_STREQ(MapOut("VxGrid"), "VxGrid") << "the toolkit's prefix needs its dot";
    EXPECT_EQ(std::strlen(MapIn(("Tl." + std::string(200, 'x')).c_str())), 79u);
    EXPECT_EQ(std::strlen(MapOut(std::string(80, 'x').c_str())), 79u);
    const char *in = MapIn("Tl.a"), *out = MapOut("Vx.b");
    EXPECT_STREQ(in, "Vx.a") << "each has a buffer of its own";
    EXPECT_STREQ(out, "Tl.b");
    EXPECT_STREQ(MapIn(MapIn("Tl.again")), "Vx.again");
}

TEST(Config, LoadingStopsAtTheFirstFileThatFails)
{
    Manager manager;
    EXPECT_EQ(VxAcmLoad(), 0u);
    EXPECT_THAT(manager.loaded, ElementsAre(0, 1, 2, 3));
    manager.loaded.clear();
    manager.unloadable = 1;
    EXPECT_EQ(VxAcmLoad(), 1u);
    EXPECT_THAT(manager.loaded, ElementsAre(0, 1));
}

TEST(Config, AnIntegerIsWrittenInTheStyleTheOptionHas)
{
    Manager manager;
    manager.values = {{"answer", "Yes"}, {"number", "12"}, {"text", "blue"}};
    manager.status = 7;
    EXPECT_EQ(VxAcmInt("answer", 1), 7u) << "the manager's status is passed on";
    VxAcmInt("answer", 0);
    VxAcmInt("answer", 12345);
    VxAcmInt("answer", -123);
    VxAcmInt("number", 1);
    VxAcmInt("number", -2147483647 - 1);
    VxAcmInt("text", 5);
    EXPECT_EQ(VxAcmInt("missing", 5), 1u);
    EXPECT_EQ(VxAcmMod("missing", "as given"), 7u);
    EXPECT_THAT(manager.written,
                ElementsAre(Pair("answer", "yes"), Pair("answer", "no"), Pair("answer", "123"),
                            Pair("answer", "-12"), Pair("number", "1"), Pair("number", "-2147483648"),
                            Pair("text", "5"), Pair("missing", "as given")));
}

TEST(Config, LinesAreMergedUnlessTheyAreIncompleteOrBelongToTheSession)
{
    Manager manager;
    for (const char *line : {"no equals sign", "=value", "  =  ", "Vx.Empty=", "Vx.Quotes=\"\"",
                             "Vx.Session=1", "Tl.Session = x", "Vx.PaperSizes=A4,VXGL 7"}) {
        std::string copy = line;
        EXPECT_EQ(VxAcmMerge(copy.data()), 0u) << line;
        EXPECT_TRUE(manager.written.empty()) << line;
    }
    for (const char *line : {"Tl.Grid=\"on\"", "  Vx.Sum\t=  a = b  ", "Vx.PaperSizes=A4", "Vx.Sessions=1",
                             "Vx.Two=\"a\" \"b\""}) {
        std::string copy = line;
        EXPECT_EQ(VxAcmMerge(copy.data()), 0u) << line;
    }
    EXPECT_THAT(manager.written,
                ElementsAre(Pair("Vx.Grid", "on"), Pair("Vx.Sum", "a = b"), Pair("Vx.PaperSizes", "A4"),
                            Pair("Vx.Sessions", "1"), Pair("Vx.Two", "a   b")));
}

TEST(Config, NothingWorksOnNull)
{
    Manager manager;
    manager.values["k"] = "yes";
    for (uint32_t result : {VxConfigInt("k", nullptr), VxConfigYesOrNo("k", nullptr),
                            VxConfigVal("k", nullptr), VxConfigString("k", 8, nullptr),
                            VxAcmMod("k", nullptr), VxAcmMod(nullptr, "v"), VxAcmInt(nullptr, 1)})
        EXPECT_EQ(result, 1u);
    EXPECT_EQ(VxConfigOpt("k", nullptr) + VxConfigYes(nullptr), 0);
    EXPECT_EQ(VxAcmMerge(nullptr), 0u);
    EXPECT_TRUE(!MapIn(nullptr) && !MapOut(nullptr));
    EXPECT_TRUE(manager.written.empty());
}

}
