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
        VgDbgDisplayLoc = VgCondDbg = 0;
    }

    ~Debug() override
    {
        TalmSetConfigMgr(nullptr);
        os::setDebuggerSink(nullptr);
        VgDbgDisplayLoc = VgCondDbg = 0;
        VgDbgFopenMode[0] = 'w';
    }

    std::map<std::string, std::string> &values() { return options_.values; }

    struct Channel {
        int32_t on, append, group, level;
        std::string file, mode;
    };

    static Channel channel(const char *name, int32_t size = 40)
    {
        char file[40] = "untouched";
        Channel c{-1, -1, -1, -1, "", ""};
        c.on = VxGetDbgConfig(name, file, size, &c.append, &c.group, &c.level);
        c.file = file;
        c.mode = VgDbgFopenMode;
        return c;
    }

private:
    Options options_;
};

TEST_F(Debug, AChannelIsOffUnlessItsKeyIsSet)
{
    values() = {{"Debug.Expr.File", "x"}, {"Debug.Expr.Group", "3"}, {"Debug.Expr.Level", "4"}};
    for (const char *key : {"absent", "0", "no number"}) {
        if (*key != 'a')
            values()["Debug.Expr"] = key;
        Channel off = channel("Expr");
        EXPECT_EQ(off.on, 0) << key;
        EXPECT_EQ(off.file, "");
        EXPECT_EQ(off.append + off.group + off.level, 0);
    }
    values()["Debug.Expr"] = "1";
    Channel on = channel("Expr");
    EXPECT_EQ(on.on, 1);
    EXPECT_EQ(on.file, "x");
    EXPECT_EQ(on.group, 3);
    EXPECT_EQ(on.level, 4);
    values() = {{"Debug.Expr", "-1"}};
    on = channel("Expr");
    EXPECT_EQ(on.on, 1);
    EXPECT_EQ(on.file, "stderr");
    EXPECT_EQ(on.group + on.level, 0);
    EXPECT_EQ(channel(nullptr).on, 0);
}

TEST_F(Debug, TheFileOptionSaysWhereAndHow)
{
    const struct {
        const char *option, *file, *mode;
    } cases[] = {
        {">>trace.log", "trace.log", "a"},  {"trace.log", "trace.log", "w"},   {"D:\\dir\\trace.log", "D", "w"},
        {"to stdout, please", "stdout", "w"}, {">>stderr", "stderr", "w"},     {">>stdout.stderr", "stdout", "w"},
        {"a_b-c+d.9Z", "a_b-c+d.9Z", "w"},  {"", "stderr", "w"},               {"\\trace.log", "stderr", "w"},
        {">> trace.log", "stderr", "a"},    {"x>>y", "y", "a"},                {"\xE9t\xE9", "stderr", "w"},
    };
    values()["Debug.Expr"] = "1";
    for (const auto &c : cases) {
        values()["Debug.Expr.File"] = c.option;
        Channel found = channel("Expr");
        EXPECT_EQ(found.file, c.file) << c.option;
        EXPECT_EQ(found.mode, c.mode) << c.option;
        EXPECT_EQ(found.append, *c.mode == 'a') << c.option;
    }
    values()["Debug.Expr.File"] = "trace.log";
    EXPECT_EQ(channel("Expr", 6).file, "trace");
}

TEST_F(Debug, ConditionalDebuggingIsOnForExactlyOne)
{
    for (int32_t before : {0, 1, 2}) {
        VgCondDbg = before;
        VxSetDbgCondCnfg();
        EXPECT_EQ(VgCondDbg, before == 1);
    }
    for (const char *value : {"0", "1", "2"}) {
        values()["Debug.ValidMac"] = value;
        for (int32_t before : {0, 1}) {
            VgCondDbg = before;
            VxSetDbgCondCnfg();
            EXPECT_EQ(VgCondDbg, *value == '1');
        }
    }
}

TEST_F(Debug, LocationDisplayFollowsItsOption)
{
    for (int32_t before : {0, 1}) {
        VgDbgDisplayLoc = before;
        EXPECT_EQ(VxSetDbgDspCnfg(), 1u);
        EXPECT_EQ(VgDbgDisplayLoc, before);
    }
    values()["Debug.DisplayLoc"] = "7";
    EXPECT_EQ(VxSetDbgDspCnfg(), 1u);
    EXPECT_EQ(VgDbgDisplayLoc, 1);
    values()["Debug.DisplayLoc"] = "0";
    EXPECT_EQ(VxSetDbgDspCnfg(), 0u);
    EXPECT_EQ(VgDbgDisplayLoc, 0);
    EXPECT_EQ(VxSetDbgDispLvl(5), 5);
    EXPECT_EQ(VgDbgDisplayLevel, 5);
    VxSetDbgDispLvl(0);
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
    EXPECT_EQ(contents(stream.file), "value 0.5  \nplain  Module:mod, Line:12\nerror  ERROR @ Module:mod, Line:-3\n"
                                     "warning  WARN @ Module:mod, Line:14");
    EXPECT_EQ(debugger, "value 0.5\nplain\nerror\nwarning");
    EXPECT_EQ(VxDebugOutput(nullptr, 8, "mod", 1, 1, "text"), EOF);
    EXPECT_EQ(VxDebugOutput(stream.file, 8, nullptr, 1, 1, "text"), EOF);
    EXPECT_EQ(VxDebugOutput(stream.file, 8, "mod", 1, 1, nullptr), EOF);
}

TEST_F(Debug, AMessageHoldsAtMost2039Bytes)
{
    test::CodePageScope page(936);
    for (size_t size : {2038u, 2039u, 2040u, 5000u}) {
        Stream stream;
        std::string text(size, 'x');
        VxDebugOutput(stream.file, 8, "mod", 1, 0, "%s", text.c_str());
        EXPECT_EQ(contents(stream.file), text.substr(0, 2039) + "  ");
    }
    Stream stream;
    std::string text = std::string(2038, 'x') + "\xB0\xA1";
    VxDebugOutput(stream.file, 8, "mod", 1, 0, "%s", text.c_str());
    EXPECT_EQ(contents(stream.file), text.substr(0, 2038) + "  ");
}

TEST_F(Debug, AFailedFlushIsTold)
{
    FILE *full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    EXPECT_EQ(VxDebugOutput(full, 8, "mod", 1, 1, "text"), EOF);
    std::fclose(full);
}

}
