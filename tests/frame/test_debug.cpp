#include "vx/debug.h"

#include "tests/support/test.h"

using namespace vx;

namespace {

struct Debug : testing::Test {
    ~Debug() override
    {
        os::setDebuggerSink(nullptr);
        VgDbgDisplayLoc = 0;
        VgDbgFopenMode[0] = 'w';
    }
};

TEST_F(Debug, TheFileOptionOfAChannelThatIsOnSaysWhereAndHow)
{
    const char *cases[][4] = {
        {"1", ">>trace.log", "trace.log", "a"},
        {"1", "D:\\dir\\trace.log", "D", "w"},
        {"1", "to stdout, please", "stdout", "w"},
        {"1", ">>stdout.stderr", "stdout", "w"},
        {"1", "a_b-c+d.9Z", "a_b-c+d.9Z", "w"},
        {"1", ">> trace.log", "stderr", "a"},
        {"-1", "x>>y", "y", "a"},
        {"-1", "", "stderr", "w"},
        {"0", ">>trace.log", "", "w"},
    };
    test::Options options;
    for (auto [on, option, where, mode] : cases) {
        options.values = {{"Debug.Expr", on}, {"Debug.Expr.File", option}, {"Debug.Expr.Group", "3"}};
        char file[40] = "untouched";
        int32_t append = -1, group = -1, level = -1;
        const bool isOn = VxGetDbgConfig("Expr", file, sizeof file, &append, &group, &level);
        EXPECT_EQ(std::tuple(isOn, std::string(file), std::string(VgDbgFopenMode), append, group, level),
                  std::tuple(*on != '0', where, mode, *mode == 'a', isOn ? 3 : 0, 0))
            << option;
    }
}

std::string debugger;

std::string contents(FILE *stream)
{
    std::string text(10000, '\0');
    std::rewind(stream);
    text.resize(std::fread(text.data(), 1, text.size(), stream));
    return text;
}

struct Stream {
    FILE *file = std::tmpfile();
    ~Stream() { std::fclose(file); }
};

TEST_F(Debug, AnEntryGoesToStreamAndDebugger)
{
    debugger.clear();
    os::setDebuggerSink([](const char *text) { debugger += text; });
    Stream stream;
    EXPECT_EQ(VxDebugOutput(stream.file, 8, "mod", 12, 1, "%s %.1f", "value", 0.5), 0);
    VgDbgDisplayLoc = 1;
    VxDebugOutput(stream.file, 8, "mod", 12, 1, "plain");
    VxDebugOutput(stream.file, 16, "mod", -3, 1, "error");
    VxDebugOutput(stream.file, 32, "mod", 14, 0, "warning");
    EXPECT_EQ(contents(stream.file), "value 0.5  \nplain  Module:mod, Line:12\n"
                                     "error  ERROR @ Module:mod, Line:-3\n"
                                     "warning  WARN @ Module:mod, Line:14");
    EXPECT_EQ(debugger, "value 0.5\nplain\nerror\nwarning");
}

TEST_F(Debug, AMessageHoldsAtMost2039BytesAndNoHalfCharacter)
{
    test::CodePageScope page(936);
    auto written = [](const std::string &text) {
        Stream stream;
        VxDebugOutput(stream.file, 8, "mod", 1, 0, "%s", text.c_str());
        return contents(stream.file);
    };
    for (size_t size : {2039u, 2040u, 5000u})
        EXPECT_EQ(written(std::string(size, 'x')), std::string(2039, 'x') + "  ");
    EXPECT_EQ(written(std::string(2038, 'x') + "\xB0\xA1"), std::string(2038, 'x') + "  ");
}

}
