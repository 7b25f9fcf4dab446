#include "vx/debug.h"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "platform/os/os.h"
#include "talm/config.hpp"
#include "tests/support/code_page.h"

using namespace vx;

namespace {

/** Options out of a map. */
class Options : public IConfigMgr {
public:
    uint32_t GetValue(const char *key, char **text, bool) override
    {
        auto option = values.find(key);
        *text = option == values.end() ? nullptr : strdup(option->second.c_str());
        return *text == nullptr;
    }
    uint32_t SetValue(const char *, const char *) override { return 1; }
    bool Load(int32_t) override { return true; }

    std::map<std::string, std::string> values;
};

class Debug : public testing::Test {
protected:
    Debug()
    {
        TalmSetConfigMgr(&options_);
        VgDbgDisplayLoc = 0;
    }

    ~Debug() override
    {
        TalmSetConfigMgr(nullptr);
        os::setDebuggerSink(nullptr);
        VgDbgDisplayLoc = 0;
        VgDbgFopenMode[0] = 'w';
    }

    std::map<std::string, std::string> &values() { return options_.values; }

    struct Channel {
        int32_t on, append, group, level;
        std::string file, mode;

        bool operator==(const Channel &) const = default;
    };

    static Channel channel(const char *name)
    {
        char file[40] = "untouched";
        Channel c{-1, -1, -1, -1, "", ""};
        c.on = VxGetDbgConfig(name, file, sizeof file, &c.append, &c.group, &c.level);
        c.file = file;
        c.mode = VgDbgFopenMode;
        return c;
    }

private:
    Options options_;
};

TEST_F(Debug, AChannelIsOffUnlessItsKeyIsSet)
{
    const Channel off{0, 0, 0, 0, "", "w"};
    EXPECT_EQ(channel("Expr"), off);
    values() = {{"Debug.Expr.File", "x"}, {"Debug.Expr.Group", "3"}, {"Debug.Expr.Level", "4"}};
    EXPECT_EQ(channel("Expr"), off);
    values()["Debug.Expr"] = "1";
    EXPECT_EQ(channel("Expr"), (Channel{1, 0, 3, 4, "x", "w"}));
    values() = {{"Debug.Expr", "-1"}};
    EXPECT_EQ(channel("Expr"), (Channel{1, 0, 0, 0, "stderr", "w"}));
}

TEST_F(Debug, TheFileOptionSaysWhereAndHow)
{
    const struct {
        const char *option, *file, *mode;
    } cases[] = {
        {">>trace.log", "trace.log", "a"},    {"D:\\dir\\trace.log", "D", "w"},
        {"to stdout, please", "stdout", "w"}, {">>stdout.stderr", "stdout", "w"},
        {"a_b-c+d.9Z", "a_b-c+d.9Z", "w"},    {">> trace.log", "stderr", "a"},
        {"x>>y", "y", "a"},                   {"", "stderr", "w"},
    };
    values()["Debug.Expr"] = "1";
    for (const auto &c : cases) {
        values()["Debug.Expr.File"] = c.option;
        Channel found = channel("Expr");
        EXPECT_EQ(found.file, c.file) << c.option;
        EXPECT_EQ(found.mode, c.mode) << c.option;
        EXPECT_EQ(found.append, *c.mode == 'a') << c.option;
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
