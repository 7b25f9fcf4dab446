#include "vx/config.h"

#include "tests/support/test.h"
#include "vx/tools.h"

using namespace vx;

namespace {

/** A manager over two maps, which notes what it is asked to write and to load. */
struct Config : testing::Test, IConfigMgr {
    Config() { TalmSetConfigMgr(this); }
    ~Config() override { TalmSetConfigMgr(nullptr); }

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
        return 7;
    }

    bool Load(int32_t file) override
    {
        loaded += file;
        return file != 2;
    }

    std::map<std::string, std::string> values, defaults;
    std::vector<std::pair<std::string, std::string>> written;
    int32_t loaded = 0;
};

/** What the readers make of an option: the integer, yes, no, whether it is neither, the answer, the real. */
std::vector<double> read(const char *key)
{
    int32_t answer = 9;
    double real = 9;
    double neither = VxConfigYesOrNo(key, &answer);
    VxConfigVal(key, &real);
    double number = VxConfigNum(key), yes = VxConfigYes(key), no = VxConfigNo(key);
    return {number, yes, no, neither, 1.0 * answer, real};
}

TEST_F(Config, EachReaderTakesATextInItsOwnWay)
{
    const std::pair<const char *, std::vector<double>> cases[] = {
        {"yes", {1, 1, 0, 0, 1, 0}},
        {"Yup", {0, 1, 0, 0, 1, 0}},
        {"\t Nope", {0, 0, 1, 0, 0, 0}},
        {"-12.75e1 mm", {-12, 0, 0, 1, 0, -127.5}},
        {"1,5", {1, 0, 0, 1, 0, 1}},
        {"99999999999", {2147483647, 0, 0, 1, 0, 99999999999.0}},
        {"-99999999999", {-2147483648.0, 0, 0, 1, 0, -99999999999.0}},
        {"", {0, 0, 0, 1, 0, 0}},
    };
    for (const auto &[text, expected] : cases) {
        values["Vx.Option"] = text;
        EXPECT_EQ(read("Vx.Option"), expected) << "'" << text << "'";
    }
}

TEST_F(Config, AMissingOptionGivesTheDefaultOfItsReader)
{
    EXPECT_THAT(read("Vx.None"), ElementsAre(0, 0, 0, 1, 0, 0));
    EXPECT_EQ(VxConfigColor("Vx.None"), 16);
    EXPECT_EQ(VxLaDefaultColor("Vx.None"), -1);
}

TEST_F(Config, AStringIsCutAtACharacterAndEmptyWhenTheOptionIsMissing)
{
    test::CodePageScope chinese(936);
    values["s"] = "ab\xB0\xA1\xB0\xA2";
    char text[8];
    for (auto [size, cut] : {std::pair{7, "ab\xB0\xA1\xB0\xA2"}, {6, "ab\xB0\xA1"}, {1, ""}}) {
        EXPECT_EQ(VxConfigString("s", size, text), 0u);
        EXPECT_STREQ(text, cut);
    }
    *text = 'x';
    EXPECT_EQ(VxConfigString("Vx.None", sizeof text, text), 1u);
    EXPECT_STREQ(text, "");
}

TEST_F(Config, ThreeNumbersAreAColourAndNothingElseIs)
{
    int32_t r = 0, g = 0, b = 0;
    for (const char *text : {" 300, -5 ,12", "1,2", "1,2,3,4", "", "7 8 9"}) {
        values["c"] = text;
        EXPECT_EQ(VxConfigRGB("c", &r, &g, &b), *text != ' ') << text;
        EXPECT_THAT((std::vector{r, g, b}), ElementsAre(255, 0, 12)) << text;
    }
}

TEST_F(Config, AChoiceIsFoundWithoutRegardToCaseAndTheFirstCounts)
{
    auto positionOf = [this](const char *value, const std::string &list) {
        values["o"] = value;
        return VxConfigOpt("o", list.c_str());
    };
    EXPECT_EQ(positionOf(" Second ", "first,SECOND,second"), 2);
    EXPECT_EQ(positionOf("seco", "first,SECOND,second"), 0);
    EXPECT_EQ(positionOf("two words", "two words,twowords"), 2) << "the value loses its blanks";
    std::string many;
    for (int i = 1; i < 32; ++i)
        many += std::to_string(i) + ",";
    EXPECT_EQ(positionOf("last", many + "last"), 32);
    EXPECT_EQ(positionOf("late", many + "last,late"), 0);
}

TEST_F(Config, ColoursAreNumberedByName)
{
    auto numbers = [this](const char *value) {
        values["c"] = defaults["c"] = value;
        return std::vector{VxConfigColor("c"), VxConfigVuColor("c"), VxLaDefaultColor("c"),
                           VxLaDefaultVuColor("c")};
    };
    EXPECT_THAT(numbers("ignore"), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(numbers("MED-grey"), ElementsAre(18, 18, 18, 18));
    EXPECT_THAT(numbers("purple"), ElementsAre(16, 16, -1, -1));
    EXPECT_THAT(numbers("-FROM PART-"), ElementsAre(16, 255, -1, 255));
    EXPECT_THAT(numbers("-from part-"), ElementsAre(16, 16, -1, -1));
}

TEST_F(Config, DefaultReadersReadTheInstallationDefaults)
{
    values["o"] = "1";
    defaults["o"] = "2";
    int32_t number = 0;
    double real = 0;
    char text[16];
    VxLaDefaultInt("o", &number);
    VxLaDefaultVal("o", &real);
    VxLaDefaultString("o", sizeof text, text);
    EXPECT_TRUE(number == 2 && real == 2 && *text == '2');
    EXPECT_EQ(VxLaDefaultOpt("o", "1,2"), 2);
    EXPECT_EQ(VxConfigNum("o"), 1) << "the flag is lowered again";
}

TEST_F(Config, KeysChangeTheirPrefixBothWays)
{
    EXPECT_STREQ(MapIn("Tlacuache"), "Vxacuache") << "it needs no dot";
    EXPECT_STREQ(MapOut("VxGrid"), "VxGrid") << "the toolkit's prefix needs its dot";
    EXPECT_EQ(std::strlen(MapIn(("Tl." + std::string(200, 'x')).c_str())), 79u);
    EXPECT_EQ(std::strlen(MapOut(std::string(80, 'x').c_str())), 79u);
    const char *in = MapIn(MapIn("Tl.a"));
    EXPECT_STREQ(MapOut("Vx.b"), "Tl.b");
    EXPECT_STREQ(in, "Vx.a") << "each has a buffer of its own";
}

TEST_F(Config, LoadingStopsAtTheFirstFileThatFails)
{
    EXPECT_EQ(VxAcmLoad(), 1u);
    EXPECT_EQ(loaded, 3);
}

TEST_F(Config, AnIntegerIsWrittenInTheStyleTheOptionHas)
{
    values = {{"answer", "Yes"}, {"number", "12"}, {"text", "blue"}};
    for (auto [key, number] : {std::pair{"answer", 1}, {"answer", 0}, {"answer", 12345}, {"answer", -123},
                               {"number", INT32_MIN}, {"text", 5}})
        EXPECT_EQ(VxAcmInt(key, number), 7u) << "the manager's status is passed on";
    EXPECT_EQ(VxAcmInt("missing", 5), 1u);
    EXPECT_THAT(written,
                ElementsAre(Pair("answer", "yes"), Pair("answer", "no"), Pair("answer", "123"),
                            Pair("answer", "-12"), Pair("number", "-2147483648"), Pair("text", "5")));
}

TEST_F(Config, LinesAreMergedUnlessTheyAreIncompleteOrBelongToTheSession)
{
    for (const char *line :
         {"no equals sign", "=value", "  =  ", "Vx.Empty=", "Vx.Quotes=\"\"", "Vx.Session=1",
          "Tl.Session = x", "Vx.PaperSizes=A4,VXGL 7", "Tl.Grid=\"on\"", "  Vx.Sum\t=  a = b  ",
          "Vx.PaperSizes=A4", "Vx.Sessions=1", "Vx.Two=\"a\" \"b\""}) {
        std::string copy = line;
        EXPECT_EQ(VxAcmMerge(copy.data()), 0u) << line;
    }
    EXPECT_THAT(written,
                ElementsAre(Pair("Vx.Grid", "on"), Pair("Vx.Sum", "a = b"), Pair("Vx.PaperSizes", "A4"),
                            Pair("Vx.Sessions", "1"), Pair("Vx.Two", "a   b")));
}

TEST_F(Config, NothingWorksOnNull)
{
    EXPECT_EQ(VxConfigInt("k", nullptr) & VxConfigYesOrNo("k", nullptr) & VxConfigVal("k", nullptr) &
                  VxConfigString("k", 8, nullptr) & VxAcmMod("k", nullptr) & VxAcmInt(nullptr, 1),
              1u);
    EXPECT_EQ(VxConfigOpt("k", nullptr) + VxConfigYes(nullptr), 0);
    EXPECT_TRUE(VxAcmMerge(nullptr) == 0 && !MapIn(nullptr) && !MapOut(nullptr));
}

}
