#include <bit>
#include <cstring>
#include <random>

#include "expr/number.h"
#include "platform/os/os.h"
#include "tests/expr/formula.h"
#include "tests/support/code_page.h"

using namespace vx;
using namespace vx::test;

namespace {

void expectShapes(std::initializer_list<std::pair<const char *, const char *>> cases, bool extended = false)
{
    for (auto [text, expected] : cases)
        EXPECT_EQ(shapeOf(text, extended), expected) << text;
}

TEST(Parser, BuildsTheTreeThatPrecedenceTells)
{
    expectShapes({
        {"-(5)", "(1 -5)"},                   {"+5", "(1 5)"},
        {"-a", "(4 -1 a)"},                   {"2^3^2", "(22 2 (22 3 2))"},
        {"8/2/2", "(5 (5 8 2) 2)"},           {"-2^2", "(4 -1 (22 2 2))"},
        {"2*-3", "(4 2 -3)"},                 {"!a^2", "(28 (22 a 2))"},
        {"a|b&c", "(29 (30 a b) c)"},         {"1+2<3*4", "(25 (2 1 2) (4 3 4))"},
        {"[a]>0 then 1", "(24 (26 a 0) 1 0)"}, {"a THEN b eLSe c", "(24 a b c)"},
        {"-2.cm", "(42 -2 .cm)"},             {"a*b.cm", "(4 a (42 b .cm))"},
        {"2^3.mm", "(42 (22 2 3) .mm)"},      {"-a.cm.in", "(42 (42 (4 -1 a) .cm) .in)"},
        {"len.zoll", "(1 len.zoll)"},         {"len.bogus+1", "(2 len 1)"},
        {"\"open", "(1 \"open\")"},            {"sin(cos(1))^2", "(22 (6 (7 1)) 2)"},
        {"SIN(30)", "(6 30)"},                {"substr(a,,)", "(46 a 0 0)"},
        {"time()", "(44)"},                   {"sin(a,b)", "(6 a,b)"},
        {"1<2&3>4|5=6", "(30 (29 (25 1 2) (26 3 4)) (27 5 6))"},
        {"a then b then c else d else e", "(24 a (24 b c d) e)"},
    });
}

TEST(Parser, ReadsNamesWithBlanksBracketsAndCoordinates)
{
    expectShapes({
        {"[my var]+1", "(2 my var 1)"}, {"my var +1", "(2 my var 1)"},
        {"[$my var]", "(1 my var)"},    {"[a[1]]+1", "(2 a[1] 1)"},
        {"[a \"]\" b]", "(1 a \"]\" b)"}, {"[a \\\" b]+1", "(2 a \\\" b 1)"},
        {"[open", "(1 open)"},          {"p.x", "(1 p.x)"},
        {"p.X", "(1 p)"},               {"len.cm", "(42 len .cm)"},
        {"#3+$b", "(2 #3 $b)"},         {"lengthen", "refused"},
        {"athen b", "(24 a b 0)"},      {"sin", "(1 sin)"},
        {"1e-3", "(1 0.001)"},          {"1.5.2+1", "(2 1.5 1)"},
    });
}

TEST(Parser, KnowsTheGeometricFunctionsOnlyWhenExtended)
{
    expectShapes({{"DirZ(a)", "(54 a)"}, {"sin(Dist(Pnt(a)))", "(6 (47 (53 a)))"}}, true);
    expectShapes({{"DirZ(a)", "refused"}, {"Dist(a)", "refused"}}); // the switch lasts for one parse
}

TEST(Parser, SaysWhatIsWrongAndWhere)
{
    const std::tuple<const char *, int32_t, int32_t, int32_t> cases[] = { // number, offset and length
        {"12a", 46, 0, 3},       {"1+2,5", 46, 2, 3},    {"1+", 47, 1, 1},       {"-", 47, 0, 1},
        {"a then", 47, 2, 4},    {"1+2*", 47, 3, 1},     {"(1+2", 48, 0, 1},     {"(", 48, 0, 1},
        {"(1<2<3)", 48, 4, 1},   {"sin(1", 48, 0, 3},    {"*2", 49, 0, 1},       {"2^-1", 49, 2, 1},
        {"--2", 49, 1, 1},       {"()", 49, 1, 1},       {"1+_a", 49, 2, 0},     {"max(1)", 49, 5, 1},
        {"1<2<3", 52, 3, 1},     {"sin (30)", 52, 4, 1}, {"3.cm^2", 52, 4, 1},   {"1 2", 52, 2, 1},
        {"1%2", 52, 1, 1},       {"sin(1 2)", 52, 6, 1}, {"1 else 2", 52, 2, 4}, {"1\n+2", 52, 1, 1},
        {"max(1,2a)", 46, 6, 2}, {"", 49, 0, 0},         {"sin()", 49, 4, 0},    {"1)", 52, 1, 1},
    };
    for (const auto &[text, number, offset, length] : cases) {
        SCOPED_TRACE(text);
        VxExprDiag diag;
        EXPECT_EQ(VxExprDiagParse(text, 0, 1, &diag), 1U);
        EXPECT_EQ(std::tuple(diag.number, diag.offset, diag.length), std::tuple(number, offset, length));
        EXPECT_EQ(diag.token, std::string(text + offset, static_cast<size_t>(length)));
        Parsed parsed(text);
        EXPECT_TRUE(parsed.result == 1 && parsed.constant == 0 && !parsed.tree);
    }
}

TEST(Parser, CallsOnlyFormulasWithoutNamesAndUnitsConstant)
{
    for (const char *text : {"1+2", "sin(30)", "\"text\"", "3.bogus", "time()"})
        EXPECT_EQ(Parsed(text).constant, 1) << text;
    for (const char *text : {"a", "sin(a)", "max(1,b)+2", "3.cm", "sin(3.deg)", "1 then a"})
        EXPECT_EQ(Parsed(text).constant, 0) << text;
}

TEST(Parser, TakesArgumentsOfUpTo511BytesAndCutsNamesBetweenCharactersAt1023)
{
    auto call = [](size_t bytes) { return "sin(" + std::string(bytes - 1, ' ') + "1)"; };
    EXPECT_EQ(parseError(call(511)), 0);
    EXPECT_EQ(parseError(call(512)), 48);
    CodePageScope scope(65001);
    const std::string name(1022, 'a');
    EXPECT_EQ(shapeOf(name + "cd"), "(1 " + name + "c)");
    EXPECT_EQ(shapeOf(name + "\xC3\xA4"), "(1 " + name + ")");
}

TEST(Parser, TakesNoTrailByteForAnOperator)
{
    for (int32_t number : {932, 936, 949, 950, 1252, 65001}) {
        CodePageScope scope(number);
        for (int trail = 0x21; trail < 0x100; ++trail) {
            const std::string name = {'\x83', static_cast<char>(trail), 'b'};
            if (text::charBytes(text::codePage(), name.c_str()) != 2)
                continue;
            EXPECT_EQ(shapeOf(name + "+1"), "(2 " + name + " 1)") << number << ": " << trail;
            EXPECT_EQ(shapeOf("[" + name + "]*2"), "(4 " + name + " 2)") << number << ": " << trail;
        }
        EXPECT_EQ(shapeOf("\xC3\xA4+1"), "(2 \xC3\xA4 1)") << number;
    }
}

TEST(Parser, SurvivesEveryTruncation)
{
    for (const std::string formula :
         {"[a]>0 then [b c] then 1 else 2 else \"x\"", "[my \"quoted ]\" name]+[$x[1]]^3/4/-.5e-3",
          "sin(30)+cos(a*2)^2-atan2(1,max(2,3))", "substr(\"abcdef\",2,3)+num2str(4.5)+substr(a,,)",
          "vector(1,2,3)*2+point(a.x,b.y,c.z)", "!(a=1)&b<2|c>3.cm.in+#1+$a"}) {
        EXPECT_EQ(parseError(formula), 0) << formula;
        for (size_t length = 0; length < formula.size(); ++length) {
            std::string piece = formula.substr(0, length);
            VxExprDiag diag;
            const bool failed = VxExprDiagParse(piece.c_str(), 0, 1, &diag) != 0;
            EXPECT_TRUE(failed == (Parsed(piece).result != 0) && failed == (diag.number != 0)) << piece;
            EXPECT_LE(static_cast<size_t>(diag.offset + diag.length), length) << piece;
        }
    }
}

TEST(Parser, ConvertsNumbersBitByBitAsTheRuntimeDoes)
{
    const unsigned seed = 20261122;
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    for (int run = 0; run < 300000; ++run) {
        std::string token;
        for (size_t n = random() % 18; n > 0; --n)
            token += static_cast<char>('0' + random() % 10);
        token.insert(random() % (token.size() + 1), random() % 4 ? "." : "");
        if (random() % 2)
            token += (random() % 2 ? "e-" : "e") + std::to_string(random() % 30);
        if (random() % 50 == 0)
            token += "e.";
        ASSERT_EQ(std::bit_cast<int64_t>(expr::numberValue(token)),
                  std::bit_cast<int64_t>(os::parseDouble(token.c_str(), nullptr)))
            << token;
    }
}

TEST(Names, AreReplacedAsWholeWords)
{
    CodePageScope scope(932);
    const struct {
        const char *name, *replacement, *text, *expected;
        uint32_t result;
    } cases[] = {
        {"a", "xyz", "a+ab*a", "xyz+ab*xyz", 0},    {"a", "", "a-a", "-", 0},
        {"my var", "v", "2*my var-1", "2*v-1", 0},  {"A", "b", "a", "a", 1},
        {"a", "b", "\x83\x61+a", "\x83\x61+b", 0},  {"", "b", "a", "", 1},
        {"len", "width", "len.cm+p.len", "width.cm+p.width", 0},
        {"a", "b", "p.x then a else a", "p.x then b else b", 0},
    };
    for (const auto &[name, replacement, text, expected, result] : cases) {
        char out[256] = "not yet written";
        EXPECT_EQ(VxParseVarReplace(name, replacement, text, out), result) << text;
        EXPECT_STREQ(out, expected) << text;
    }
}

TEST(Names, AreListedInOrderWithRepeats)
{
    using Names = std::vector<std::string>;
    EXPECT_EQ(VxParseVarInquire("a+max(b c,[d])*a"), (Names{"a", "b c", "d", "a"}));
    EXPECT_EQ(VxParseVarInquire("sin(a)"), (Names{"a"})) << "a function is no name";
    EXPECT_EQ(VxParseVarInquire("a+12b+c"), (Names{"a"})) << "up to the first malformed token";
    for (const char *none : {"\"a\"", static_cast<const char *>(nullptr)})
        EXPECT_EQ(VxParseVarInquire(none), Names{});
}

TEST(Units, AreFoundFromTheTableInAnyCase)
{
    const char *name;
    double factor;
    int32_t unitClass, count = 0;
    for (; VxUnitTableGet(count, &name, &factor, &unitClass); ++count) {
        std::string upper = name;
        for (char &c : upper)
            c = static_cast<char>(std::toupper(c));
        EXPECT_EQ(evaluate("1", upper).error, 0) << name;
        EXPECT_TRUE(unitClass >= 2 && unitClass <= 8 && factor > 0.0) << name;
    }
    EXPECT_EQ(count, 70);
    EXPECT_FALSE(VxUnitTableGet(-1, &name, &factor, &unitClass));
    EXPECT_DOUBLE_EQ(evaluate("1.dm", "mm").value, 100.4);
}

}
