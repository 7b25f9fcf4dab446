#include "tests/vxsh/program.h"

namespace vx::test {

using testing::FieldsAre;
using testing::MatchesRegex;

namespace {

template <typename... Text> auto Holds(Text... texts)
{
    return AllOf(HasSubstr(texts)...);
}

/** What is printed without an error. */
std::string printed(const Texts &arguments)
{
    Outcome run = vxsh(arguments);
    EXPECT_THAT(run, FieldsAre(0, testing::EndsWith("\n"), ""));
    return run.out;
}

struct Run : testing::Test {
    Outcome runFile(const std::string &bytes, Texts options = {})
    {
        folder.write("part.vxp", bytes);
        options.insert(options.begin(), {"run", "part.vxp"});
        return vxsh(options, {}, place);
    }

    TempFolder folder;
    std::string place = folder.native().string();
};

using Console = Run;

}

TEST(Printed, isWhatIsAskedForAlone)
{
    const std::string longText(3000, 'x');
    const std::pair<Texts, std::string> cases[] = {
        {{"eval", "1/3"}, "0.333333333333333"},
        {{"eval", "1.in + 1.cm"}, "35.4"}, // base units without --unit
        {{"eval", "--unit", "cm", "1.in + 1.cm"}, "3.54"},
        {{"eval", "--unit", "deg", "atan2(1,1)"}, "45"},
        {{"eval", "--unit=cm^2", "2.in*1.in"}, "12.9032"},
        {{"eval", "--set", "half=width/2", "--set", "width=3.in", "--unit", "mm", "half + 1"}, "39.1"},
        {{"eval", "--set", "w : cm = 3", "w"}, "30"}, // a length of 30 mm
        {{"eval", "--set", "a b=2", "[a b]*a b"}, "4"},
        {{"eval", "--rad", "cos(0) + sin(1)"}, "1.8414709848079"},
        {{"value", "vector(1, 2, 3)"}, "Vector 1 2 3"},
        {{"value", "point(1.in, 2, 3) + vector(0, 0, 0.5)"}, "Point 25.4 2 3.5"},
        {{"value", "--set", "n=3", "num2str(n) + \" off\""}, "String 3 off"},
        {{"value", "1 > 2 then \"a\" else 2 > 2 then \"b\" else \"c\""}, "String c"},
        {{"value", "(0 then vector(1,2,3) else (1 then point(4,5,6) else \"then else\"))"}, "Point 4 5 6"},
        {{"value", "0 then \"a\""}, "Number 0"},
        {{"eval", "--rad", "--set=a=1", "a + 1"}, "2"},
        {{"replace", "a", "-", "-a"}, "--"},
        {{"names", "(b + a)*[c d] + a*sin(b)^2.mm"}, "b\na\nc d"},
        {{"replace", "a", "(b + 1)", "a + ab*a"}, "(b + 1) + ab*(b + 1)"},
        {{"replace", "a", longText, "a*a"}, longText + "*" + longText},
        {{"derive", "--by", "x", "--set", "x=3", "x^2"}, "6"},
        {{"derive", "--by", "x", "--set", "x=3", "--set", "y=5", "x*y + y"}, "5"},
    };
    for (const auto &[arguments, text] : cases)
        EXPECT_THAT(vxsh(arguments), FieldsAre(0, text + "\n", "")) << testing::PrintToString(arguments);
    EXPECT_EQ(vxsh({"names", "1 + 2"}).out, "");
    EXPECT_THAT(printed({"value", "time()"}), MatchesRegex("String [0-9][0-9]:[0-9][0-9]:[0-9][0-9]\n"));
    EXPECT_THAT(printed({"tree", "2*(a + 3.cm)"}), AllOf(StartsWith("* 2.000"), HasSubstr("[1]+ a")));
    EXPECT_THAT(printed({"units"}),
                Holds("\nin         25.4             length\n", "kg/m^3", "moment of inertia"));
}

TEST(Refused, saysWhatItIsThatCannotBeGiven)
{
    const std::pair<Texts, std::string> cases[] = {
        {{"eval", "(1+2"}, "A closing parenthesis is missing."},
        {{"eval", ""}, "An operand is expected."},
        {{"eval", "--5"}, "An operand is expected."}, // what begins with a minus sign may be a formula
        {{"eval", "1e308*10"}, "The result is no finite number."},
        {{"eval", "--unit", "cm", "3.kg"}, "does not match the expected unit: mass, not length."},
        {{"eval", "--unit", "furlong", "3"}, "There is no unit 'furlong'"},
        {{"eval", "vector(1,2,3)"}, "gives a Vector, not a number; see 'vxsh value'"},
        {{"eval", "--set", "a=b", "--set", "b=a", "1"}, "in a circle: b -> a -> b"},
        {{"eval", "--set", "a", "1"}, "No '=' divides"},
        {{"value", "\"a\" then \"b\" else \"c\""}, "The condition is a String, not a number."},
        {{"replace", "z", "b", "a + ab"}, "does not refer to 'z'"},
        {{"derive", "--by", "x", "--set", "x=0", "1/x"}, "vxsh: error: "},
        {{"derive", "--by", "x", "x^2"}, "'x' is not defined."},
    };
    for (const auto &[arguments, message] : cases)
        EXPECT_THAT(vxsh(arguments), FieldsAre(1, "", HasSubstr(message)))
            << testing::PrintToString(arguments);
}

TEST(Refused, showsTheFailureAtItsPlace)
{
    EXPECT_EQ(vxsh({"value", "1 then \"a\" + 1 else \"b\""}).err,
              "vxsh: error: The operands String and Number cannot be combined.\n"
              "    1 then \"a\" + 1 else \"b\"\n"
              "               ^\n");
}

TEST(Usage, isExplainedOnStandardErrorWithExitCode2)
{
    const std::pair<Texts, std::string> cases[] = {
        {{"evil"}, "there is no command 'evil'"},
        {{"eval"}, "the formula is missing"},
        {{"eval", "1", "+", "2"}, "'+' is one argument too many; write the formula in quotes"},
        {{"run"}, "the parameter file is missing"},
        {{"eval", "--nit", "1"}, "there is no option '--nit'"},
        {{"eval", "1", "--unit"}, "the value of '--unit' is missing"},
        {{"eval", "1", "--unit="}, "the value of '--unit' is empty"},
        {{"eval", "1", "--unit=cm", "--unit=mm"}, "'--unit' is given twice"},
        {{"eval", "--rad=1", "1"}, "'--rad' takes no value"},
        {{"eval", "--csv", "1"}, "'--csv' is no option of 'eval'"},
        {{"--csv"}, "'--csv' needs a command"},
        {{"derive", "x"}, "'derive' needs --by NAME"},
        {{"replace", "a", "b"}, "a name, a text and a formula are needed"},
    };
    for (const auto &[arguments, message] : cases)
        EXPECT_THAT(vxsh(arguments), FieldsAre(2, "",
                                               AllOf(StartsWith("vxsh: " + message), HasSubstr("Usage: vxsh"),
                                                     HasSubstr("--help"))));
}

TEST(Usage, helpAndVersionWinOverEverythingElse)
{
    const std::string overview = printed({"--help"});
    for (const char *command : {"eval", "value", "tree", "names", "replace", "derive", "units", "run"}) {
        EXPECT_THAT(printed({command, "--nonsense", "--help"}),
                    StartsWith("Usage: vxsh " + std::string(command)));
        EXPECT_THAT(overview, HasSubstr("  " + std::string(command) + " "));
    }
    EXPECT_THAT(printed({"nonsense", "--version"}), StartsWith("vxsh " VXSH_VERSION "\nVERNUM:"));
    EXPECT_EQ(vxsh({"eval", "--", "--help"}).status, 1) << "a formula";
}

TEST_F(Run, warnsOfMalformedOptionFilesAndGoesOn)
{
    folder.write("options/user.opt", "Vx.EscapeCount=100\nno option at all\n");
    Environment user("VX_USER_DIR", place.c_str());
    EXPECT_THAT(vxsh({"eval", "1"}),
                FieldsAre(0, "1\n", AllOf(StartsWith("vxsh: warning: "), HasSubstr("user.opt, line 2: "))));
}

TEST_F(Run, helpNeedsNothingOfTheToolkitsInstallation)
{
    fs::copy_file(VXSH_PROGRAM, folder.native() / "vxsh");
    Environment libraries("LD_LIBRARY_PATH", fs::path(VXSH_PROGRAM).parent_path().c_str());
    auto run = [&](const std::string &arguments) {
        return std::system((place + "/vxsh " + arguments + " >" + place + "/out 2>&1").c_str()) >> 8;
    };
    EXPECT_EQ(run("--help"), 0);
    EXPECT_THAT(folder.read("out"), StartsWith("Usage:"));
    EXPECT_EQ(run("eval 1"), 1) << "without its texts the toolkit does not start";
    EXPECT_THAT(folder.read("out"), HasSubstr("vxsh: error: The toolkit cannot start: no language"));
}

TEST_F(Run, printsATableOfEveryKindOfValue)
{
    EXPECT_THAT(runFile("title = \"a plate\"\nwidth : mm = 3.in\narea = width*width\nratio = 1/8\n"
                        "dir = vector(1, 0, 0.5)\ncorner = point(width, 0, 0)\nturn : deg = atan2(1, 1)\n"),
                FieldsAre(0, "name      value  unit\n"
                             "title   a plate\n"
                             "width      76.2  mm\n"
                             "area    5806.44  mm^2\n"
                             "ratio     0.125\n"
                             "dir     1 0 0.5\n"
                             "corner  76.2 0 0\n"
                             "turn         45  deg\n", ""));
}

TEST_F(Run, printsCommaSeparatedValues)
{
    Outcome run =
        runFile("b : cm = a*2\na = 1.in\n[x, y] = \"say \" + \"it\"\nbad = 1/0\nn = \"1,2\"\n", {"--csv"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "name,value,unit\nb,5.08,cm\na,25.4,mm\n\"x, y\",say it,\nbad,,\nn,\"1,2\",\n");
}

TEST_F(Run, evaluatesLinesInAnyOrderAndTellsWhatFailedAndWhatDependsOnIt)
{
    EXPECT_THAT(
        runFile("top = middle + 1\nmiddle = 2*bottom\nbottom = 1.in + 1.kg\ngood : mm = 2\nlate = good*2\n"),
        FieldsAre(1, Holds("good        2  mm\n", "late        4  mm\n", "bottom  (failed)\n"),
                  "part.vxp:1:7: error: It depends on 'middle', which failed.\n"
                  "    top = middle + 1\n"
                  "          ^~~~~~\n"
                  "part.vxp:2:12: error: It depends on 'bottom', which failed.\n"
                  "    middle = 2*bottom\n"
                  "               ^~~~~~\n"
                  "part.vxp:3:15: error: The dimensions of the operands do not agree: length + mass.\n"
                  "    bottom = 1.in + 1.kg\n"
                  "                  ^\n"
                  "vxsh: 3 of 5 parameters failed\n"));
}

TEST_F(Run, namesCirclesAndEvaluatesTheRest)
{
    EXPECT_THAT(
        runFile("a = b + d\nb = c\nc = a\nd = 1\nself = self + 1\nuser = a*2\nfar = near\nnear = b\n"),
        FieldsAre(1, HasSubstr("d         1\n"),
                  Holds("1:5: error: It depends on itself in a circle: a -> b -> c -> a\n",
                        "2:5: error: It depends on itself in a circle: b -> c -> a -> b\n",
                        "5:8: error: It depends on itself.\n",
                        "7:7: error: It depends on 'near', which failed.\n", "7 of 8 parameters failed\n")));
}

TEST_F(Run, refusesWhatIsNoDefinitionWithLineAndColumn)
{
    Outcome run = runFile("\xEF\xBB\xBF# ok\r\na : mm = 1\r\n\r\njust words\r\na = 2\r\n = 3\r\n"
                          "f : furlong = 1\r\ne =\r\nt : mm = \"text\"\r\n[] = 1\r\nu : = 1\r\n" +
                          std::string("z\0 = 1\r\n", 8));
    EXPECT_THAT(run, FieldsAre(1, HasSubstr("a         1  mm\n"), testing::_));
    for (const char *message :
         {"part.vxp:4:1: error: No '=' divides a name from a formula.\n"
          "    just words\n    ^~~~",
          "part.vxp:5:1: error: 'a' is already defined at line 2.\n",
          "part.vxp:6:2: error: The name is missing.\n", "part.vxp:7:5: error: There is no unit 'furlong'.\n",
          "part.vxp:8:3: error: The formula is missing.\n",
          "part.vxp:9:10: error: A String cannot be given in mm.\n",
          "part.vxp:10:4: error: The name is missing.\n", "part.vxp:11:3: error: The unit is missing.\n",
          "part.vxp:12:2: error: The line holds a zero byte.\n    z? = 1\n", "9 of 10 parameters failed\n"})
        EXPECT_THAT(run.err, HasSubstr(message));
}

TEST_F(Run, readsStandardInputAndReportsFilesThatCannotBeRead)
{
    EXPECT_THAT(vxsh({"run", "--csv", "-"}, "a = 1\n"), FieldsAre(0, "name,value,unit\na,1,\n", ""));
    EXPECT_THAT(vxsh({"run", "-"}, "a = 1/0\n").err, StartsWith("stdin:1:6: error: "));
    EXPECT_THAT(vxsh({"run", "nowhere.vxp"}, {}, place),
                FieldsAre(1, "", "vxsh: error: nowhere.vxp: No such file or directory\n"));
    EXPECT_EQ(vxsh({"run", "."}, {}, place).err, "vxsh: error: .: Is a directory\n");
    EXPECT_EQ(runFile("# nothing\n").status, 0);
}

TEST_F(Run, writesTheJournal)
{
    EXPECT_EQ(runFile("a : mm = 1.in\nbad = 1/0\n", {"--journal", "session.txt"}).status, 1);
    EXPECT_THAT(folder.read("session.txt"), AllOf(StartsWith("["), HasSubstr(" log start!\r\n"),
                                                  HasSubstr("a : mm = 1.in  # a = 25.4 mm\r\n"),
                                                  HasSubstr("bad = 1/0  # bad = (failed)\r\n")));
    EXPECT_THAT(
        runFile("a = 1\n", {"--journal", "no/such/folder.txt"}),
        FieldsAre(1, "", AllOf(StartsWith("vxsh: error: The directory "), HasSubstr("does not exist."))));
}

TEST_F(Run, takesAChainOfAHundredThousandParameters)
{
    constexpr int count = 100'000;
    std::string bytes;
    for (int i = count; i > 0; --i)
        bytes += "p" + std::to_string(i) + " = p" + std::to_string(i - 1) + " + 1\n";
    Outcome run = runFile(bytes + "p0 : mm = 1\n", {"--csv"});
    EXPECT_EQ(run.status, 0) << run.err.substr(0, 1000);
    EXPECT_THAT(run.out, HasSubstr("p100000,100001,mm\n")) << "1 beside a length is a millimetre";

    run = runFile(bytes + "p0 = p100000\n", {"--csv"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, Holds("(100,001 parameters)", "100,001 of 100,001 parameters failed"));
}

TEST_F(Run, takesFormulasOfAHundredThousandTermsAndRefusesDeepNests)
{
    std::string chain = "1", nest = std::string(100'000, '(') + "1" + std::string(100'000, ')');
    for (int i = 1; i < 100'000; ++i)
        chain += "+1";
    Outcome run = runFile("long = " + chain + "\ndeep = " + nest + "\n", {"--csv"});
    EXPECT_THAT(run.out, HasSubstr("long,100000,\n"));
    EXPECT_THAT(run.err, HasSubstr("The expression is nested too deeply."));
}

TEST_F(Run, leavesTheUsersFoldersAlone)
{
    Environment home("HOME", (place + "/home").c_str());
    EXPECT_EQ(vxsh({"eval", "1"}).status, 0);
    EXPECT_FALSE(fs::exists(place + "/home"));
}

TEST_F(Console, definesChangesAndAnswers)
{
    EXPECT_THAT(
        vxsh({}, "a = 3\nb : mm = a*2.mm\n# a comment\n\na = 4\nb\nb*2\nsin(30)\nlist\nquit\nnever = 1\n"),
        FieldsAre(0, "a = 3\n"
                     "b = 6 mm\n"
                     "a = 4\n"
                     "b = 8 mm\n"
                     "b : mm = a*2.mm\n"
                     "b = 8 mm\n"
                     "16 mm\n"
                     "0.5\n"
                     "name  value  unit\n"
                     "a         4\n"
                     "b         8  mm\n", ""));
}

TEST_F(Console, takesDefinitionsBeforeWhatTheyNeedAndKeepsThemWhenAChangeIsMalformed)
{
    EXPECT_THAT(vxsh({}, "b = a + 1\na = 2\na = b\nb\na = 5\n"),
                FieldsAre(1, "a = 2\nb = 3\nb = a + 1\na = 5\nb = 6\n",
                          Holds("'a' is not defined.", "in a circle: b -> a -> b")));
    EXPECT_THAT(vxsh({}, "a = 2\na = 2*\na : furlong = 2\na = \na\nsave\n"),
                FieldsAre(1, "a = 2\na = 2\na = 2\n",
                          Holds("The formula is missing.", "save needs the name of a file")));
}

TEST_F(Console, savesWhatItCanLoad)
{
    EXPECT_THAT(vxsh({}, "[a+b] : cm = 1.in\nc d = [a+b]*2\nsave my part.vxp\n", place),
                FieldsAre(0, HasSubstr("2 parameters saved to my part.vxp\n"), ""));
    EXPECT_EQ(folder.read("my part.vxp"), "[a+b] : cm = 1.in\nc d = [a+b]*2\n");
    EXPECT_THAT(vxsh({}, "load my part.vxp\nc d\nload nowhere\nsave /no/such/folder/x\n", place),
                FieldsAre(1, "2 parameters read from my part.vxp\nc d = [a+b]*2\nc d = 50.8 mm\n",
                          Holds("nowhere: No such file or directory", "/no/such/folder/x: ")));
}

TEST_F(Console, blamesAFileForItsOwnLinesOnly)
{
    folder.write("first", "p = 1/0\n");
    folder.write("second", "q = 2*\n");
    EXPECT_EQ(vxsh({}, "w = nothing\nload first\nload second\n", place).err,
              "vxsh: error: 'nothing' is not defined.\n    w = nothing\n        ^~~~~~~\n"
              "first:1:6: error: /: Division by zero.\n    p = 1/0\n         ^\n"
              "second:1:6: error: An operator has no valid operand after it.\n"
              "    q = 2*\n         ^\n");
}

TEST_F(Console, readsInputThatIsNoText)
{
    std::string noise;
    for (int i = 0; i < 20'000; ++i)
        noise += static_cast<char>(i * 7919 % 256);
    EXPECT_LT(vxsh({}, noise).status, 2);
    EXPECT_EQ(vxsh({"run", "-"}, noise).status, 1);
}

}
