#include "tests/support/test.h"
#include "tools/vxsh/options.h"

using namespace vx;

namespace vxsh {

namespace {

Options options(const Texts &arguments)
{
    auto read = readOptions(arguments);
    auto *error = std::get_if<UsageError>(&read);
    EXPECT_FALSE(error) << (error ? error->message : "");
    auto *found = std::get_if<Options>(&read);
    return found ? *found : Options{};
}

std::string errorOf(const Texts &arguments)
{
    auto read = readOptions(arguments);
    auto *error = std::get_if<UsageError>(&read);
    return error ? error->message : "no error";
}

}

TEST(Options, takeTheirValuesBehindAnEqualsSignOrAsTheNextArgument)
{
    Options o = options({"eval", "--unit", "cm", "--set=a=1", "a + 1", "--set", "b : mm = 2", "--rad"});
    EXPECT_EQ(o.command, Command::eval);
    EXPECT_EQ(o.unit, "cm");
    EXPECT_THAT(o.sets, ElementsAre("a=1", "b : mm = 2"));
    EXPECT_THAT(o.arguments, ElementsAre("a + 1"));
    EXPECT_TRUE(o.radians);
    EXPECT_EQ(options({"--rad"}).command, Command::console) << "without a command";
}

TEST(Options, leaveFormulasThatBeginWithAMinusSignAlone)
{
    EXPECT_THAT(options({"eval", "--5"}).arguments, ElementsAre("--5"));
    EXPECT_THAT(options({"eval", "--", "--unit"}).arguments, ElementsAre("--unit"));
    EXPECT_THAT(options({"replace", "a", "-", "-a"}).arguments, ElementsAre("a", "-", "-a"));
}

TEST(Options, helpAndVersionWinOverEverythingElse)
{
    auto help = readOptions({"eval", "--nonsense", "--help"});
    ASSERT_TRUE(std::holds_alternative<HelpWanted>(help));
    EXPECT_EQ(std::get<HelpWanted>(help).topic, "eval");
    EXPECT_TRUE(std::holds_alternative<VersionWanted>(readOptions({"nonsense", "--version"})));
    EXPECT_FALSE(std::holds_alternative<HelpWanted>(readOptions({"eval", "--", "--help"})));
}

TEST(Options, sayWhatIsWrong)
{
    const std::pair<Texts, const char *> cases[] = {
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
        EXPECT_EQ(errorOf(arguments), message);
}

TEST(Options, everyCommandHasHelpOfItsOwnThatTellsOfItsOptions)
{
    for (const char *command : {"eval", "value", "tree", "names", "replace", "derive", "units", "run"}) {
        EXPECT_THAT(helpText(command), StartsWith("Usage: vxsh " + std::string(command)));
        EXPECT_THAT(helpText(""), HasSubstr("  " + std::string(command) + " ")) << "the overview lists it";
    }
}

}
