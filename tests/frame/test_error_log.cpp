#include "vx/err.h"

#include <cerrno>
#include <cstring>
#include <map>
#include <random>
#include <thread>

#include "tests/support/captured_output.h"
#include "tests/support/code_page.h"
#include "tests/support/error_log.h"
#include "tests/support/faults.h"
#include "vx/tools.h"

using namespace vx;
using namespace vx::frame;
using test::RecordedEvents;

namespace {

using Log = test::ErrorLog;

struct Counts {
    int32_t errors = -1, warnings = -1, others = -1;

    Counts() { VxErrStatus(&errors, &warnings, &others); }
    Counts(int32_t e, int32_t w, int32_t o) : errors(e), warnings(w), others(o) {}
    bool operator==(const Counts &) const = default;
};

uint32_t logArgs(int32_t id, int32_t number, ...)
{
    va_list args;
    va_start(args, number);
    uint32_t result = VxErrLogArgs(id, number, "", 0, args);
    va_end(args);
    return result;
}

TEST_F(Log, ARecordKeepsWhatItIsGiven)
{
    alertFile("1,0,one", "First.ALERT");
    int32_t id = alertFile("1,0,one\n5,1,The %s is %d of 100%%.");
    EXPECT_EQ(VxErrLogFmt(id, 5, "here", 42, "part", 7), 0u);
    EXPECT_EQ(last().marker, -1);
    EXPECT_EQ(last().number, 5);
    EXPECT_EQ(last().severity, 1);
    EXPECT_EQ(last().extra, 42);
    EXPECT_EQ(last().id, id);
    EXPECT_STREQ(last().where, "here");
    EXPECT_STREQ(last().text, "The part is 7 of 100%.");

    EXPECT_EQ(VxErrLogMsg(5, 2, nullptr, -1, "%s %.1f", "given", 0.5), 0u);
    EXPECT_EQ(last().severity, 2);
    EXPECT_EQ(last().id, 0);
    EXPECT_STREQ(last().where, "");
    EXPECT_STREQ(last().text, "given 0.5");

    EXPECT_EQ(VxErrLogVa(~17, 5, 9, "", 0, "kept under 17"), 0u);
    EXPECT_EQ(last().id, 17);
    EXPECT_EQ(last().marker, -1);
    EXPECT_TRUE(VxErrIsLogged(17, 5));
    EXPECT_FALSE(VxErrIsLogged(17, 6));
    EXPECT_FALSE(VxErrIsLogged(16, 5));
    EXPECT_EQ(VxErrCnt(), 3);
}

TEST_F(Log, ALookedUpTextIsNoFormatUnlessAskedFor)
{
    int32_t id = alertFile("5,0,100%s sure");
    EXPECT_EQ(VxErrLogNum(id, 5, "", 0), 0u);
    EXPECT_STREQ(last().text, "100%s sure");
    VxErrClear();
    setSecond(2000);
    EXPECT_EQ(logArgs(id, 5, " percent"), 0u);
    EXPECT_STREQ(last().text, "100 percent sure");
}

TEST_F(Log, AFailedLookUpFilesNothing)
{
    int32_t id = alertFile("5,0,text");
    VgErrOccurred = 0;
    test::CapturedOutput output;
    EXPECT_EQ(VxErrLogNum(id, 6, "", 0), 1u);
    EXPECT_EQ(VxErrLogFmt(-1, 5, "", 0), 1u);
    EXPECT_EQ(logArgs(id, 6), 1u);
    EXPECT_EQ(VxErrLogSysFmt(id, 6, "", 0), 1u);
    EXPECT_EQ(output.text(), "Invalid error file id (-1).\n");
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VgErrOccurred, 0);
    EXPECT_EQ(Counts(), Counts(0, 0, 0));
}

TEST_F(Log, TextsAreCutTo512Bytes)
{
    for (size_t size : {511u, 512u, 513u, 600u, 70000u}) {
        std::string text(size, 'a');
        text.back() = 'z';
        for (bool formatted : {false, true}) {
            setSecond(static_cast<int64_t>(size) * 2 + formatted);
            uint32_t result = formatted ? VxErrLogMsg(1, 0, "", 0, "%s", text.c_str())
                                        : VxErrLogMsg(1, 0, "", 0, text.c_str());
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(last().text, text.substr(0, 512));
        }
    }
}

TEST_F(Log, ACutSplitsNoCharacter)
{
    const struct {
        int32_t codePage;
        const char *character;
    } cases[] = {{936, "\xB0\xA1"}, {932, "\x83\x5C"}, {949, "\xB0\xA1"}, {950, "\xA4\x40"}, {65001, "\xF0\x9F\x98\x80"}};
    for (const auto &c : cases) {
        test::CodePageScope page(c.codePage);
        size_t bytes = std::strlen(c.character);
        for (size_t lead = 1; lead <= bytes; ++lead) {
            std::string text(lead, 'x'), where;
            for (int i = 0; i < 400; ++i)
                text += c.character;
            where = text + std::string(lead - 1, 'y');
            setSecond(c.codePage * 10 + static_cast<int64_t>(lead));
            VxErrLogMsg(1, 0, where.c_str(), 0, "%s", text.c_str());
            EXPECT_EQ(last().text, text.substr(0, lead + (512 - lead) / bytes * bytes)) << c.codePage;
            size_t keptWhere = lead - 1 + (254 - (lead - 1)) / bytes * bytes;
            EXPECT_EQ(last().where, where.substr(where.size() - keptWhere)) << c.codePage;
        }
    }
}

TEST_F(Log, OfALongPlaceTheEndIsKept)
{
    for (size_t size : {0u, 253u, 254u, 255u, 300u}) {
        std::string where(size, 'a');
        if (size)
            where[0] = where[size / 2] = 'b';
        setSecond(static_cast<int64_t>(size) * 2);
        VxErrLogMsg(1, 0, where.c_str(), 0, "text");
        EXPECT_EQ(last().where, where.substr(size > 254 ? size - 254 : 0));
    }
}

TEST_F(Log, AnEmptyTextIsNotFiled)
{
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "%s", ""), 0u);
    EXPECT_EQ(VxErrLogMsg(2, 0, "", 0, ""), 0u);
    EXPECT_EQ(VxErrLogMsg(3, 0, "", 0, nullptr), 1u);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(Counts(), Counts(3, 0, 0));
    // With the text to come later it is filed.
    EXPECT_EQ(VxErrLogVa(0, 4, 0, "", 0, ""), 0u);
    EXPECT_EQ(VxErrLogVa(0, 5, 0, "", 0, nullptr), 0u);
    EXPECT_EQ(VxErrCnt(), 2);
    EXPECT_EQ(last().marker, 0);
}

TEST_F(Log, ARepeatWithinTheSecondIsCountedNotFiled)
{
    auto log = [] { return VxErrLogMsg(1, 0, "", 0, "text"); };
    EXPECT_EQ(log(), 0u);
    EXPECT_EQ(log(), 0u);
    EXPECT_EQ(VxErrCnt(), 1);
    setSecond(1001);
    EXPECT_EQ(log(), 0u);
    EXPECT_EQ(VxErrCnt(), 2);
    // A clock that goes back is no repeat either.
    setSecond(1000);
    EXPECT_EQ(log(), 0u);
    EXPECT_EQ(VxErrCnt(), 3);
    EXPECT_EQ(Counts(), Counts(4, 0, 0));
}

TEST_F(Log, ARepeatIsTheSameNumberOfTheSameFile)
{
    int32_t a = alertFile("1,0,one", "A.ALERT"), b = alertFile("1,0,one", "B.ALERT");
    VxErrLogNum(a, 1, "", 0);
    VxErrLogNum(b, 1, "", 0);
    VxErrLogVa(a, 1, 0, "", 0, nullptr);
    VxErrLogVa(b, 1, 0, "", 0, nullptr);
    VxErrLogMsg(2, 0, "", 0, "text");
    EXPECT_EQ(VxErrCnt(), 5);
    for (int32_t id : {a, b}) {
        VxErrLogNum(id, 1, "", 0);
        VxErrLogVa(id, 1, 0, "", 0, nullptr);
    }
    // A text of the caller's counts as the first file's.
    VxErrLogMsg(1, 0, "", 0, "text");
    EXPECT_EQ(VxErrCnt(), 5);
}

TEST_F(Log, EmptyingTheListKeepsCountersAndRepeats)
{
    VxErrLogMsg(1, 0, "", 0, "text");
    EXPECT_EQ(VxErrClear(), 0u);
    EXPECT_EQ(VxErrCnt(), 0);
    VxErrLogMsg(1, 0, "", 0, "text");
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(Counts(), Counts(2, 0, 0));
}

TEST_F(Log, CountersAreReadOrReset)
{
    for (int32_t severity : {0, 0, 0, 1, 1, 2, 3, -1})
        VxErrLogMsg(severity, severity, "", 0, "text");
    int32_t warnings = 0;
    EXPECT_EQ(Counts(), Counts(3, 2, 3));
    EXPECT_EQ(VxErrStatus(nullptr, &warnings, nullptr), 0u);
    EXPECT_EQ(warnings, 2);
    EXPECT_EQ(Counts(), Counts(0, 2, 0));
    VxErrStatus(nullptr, nullptr, nullptr);
    EXPECT_EQ(Counts(), Counts(0, 0, 0));
}

TEST_F(Log, SuppressedErrorsLeaveOnlyTheFlag)
{
    VgErrOccurred = 0;
    VxErrDisable();
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "text"), 0u);
    EXPECT_EQ(VgErrOccurred, 1);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(Counts(), Counts(0, 0, 0));
    VxErrEnable();
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "text"), 0u);
    EXPECT_EQ(VxErrCnt(), 1);
}

TEST_F(Log, SuppressionCountsItsLevels)
{
    VxErrDisable();
    VxErrDisable();
    VxErrEnable();
    EXPECT_TRUE(VxErrIsDisabled());
    VxErrTempEnable(1);
    EXPECT_FALSE(VxErrIsDisabled());
    VxErrTempEnable(0);
    EXPECT_TRUE(VxErrIsDisabled());
    VxErrEnable();
    EXPECT_FALSE(VxErrIsDisabled());
    VxErrEnable();
    EXPECT_FALSE(VxErrIsDisabled());

    VxErrDisable();
    VxErrDisableOverride(1);
    VxErrEnable();
    EXPECT_TRUE(VxErrIsDisabled());
    VxErrDisableOverride(0);
    VxErrEnable();
    EXPECT_FALSE(VxErrIsDisabled());
    // The depth remembered is used up.
    VxErrDisable();
    VxErrTempEnable(0);
    EXPECT_FALSE(VxErrIsDisabled());
}

TEST_F(Log, OneThreadsSuppressionHidesNoOthersErrors)
{
    constexpr int32_t perThread = 500;
    auto work = [](int32_t first, bool suppressed) {
        if (suppressed)
            VxErrDisable();
        for (int32_t i = 0; i < perThread; ++i) {
            VxErrLogMsg(first + i, i % 3, "thread", i, "number %d", first + i);
            VxErrIsLogged(0, first);
            VxErrCnt();
        }
        if (suppressed)
            VxErrEnable();
    };
    std::thread silent(work, 0, true), loud(work, 10000, false), another(work, 20000, false);
    silent.join();
    loud.join();
    another.join();
    EXPECT_EQ(VxErrCnt(), 2 * perThread);
    for (const ErrorRecord &record : errorState().pending) {
        ASSERT_GE(record.number, 10000);
        ASSERT_EQ(record.text, "number " + std::to_string(record.number));
    }
    EXPECT_EQ(Counts(), Counts(334, 334, 332));
}

TEST_F(Log, AnEscapeUnderWayLeavesLookedUpErrorsOut)
{
    int32_t id = alertFile("5,0,text\n6,0,text\n7,0,text");
    VgErrOccurred = 0;
    VgEscapeFlag = 1;
    EXPECT_EQ(VxErrLogNum(id, 5, "", 0), 0u);
    EXPECT_EQ(VxErrLogFmt(id, 5, "", 0), 0u);
    EXPECT_EQ(VxErrLogNum(-1, 5, "", 0), 0u);
    EXPECT_EQ(VxErrCnt(), 0);
    EXPECT_EQ(VgErrOccurred, 0);
    // The others do not ask.
    EXPECT_EQ(logArgs(id, 6), 0u);
    EXPECT_EQ(VxErrLogMsg(7, 0, "", 0, "text"), 0u);
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{6, 7}));
    VgEscapeFlag = 0;
}

TEST_F(Log, SystemErrorsAreTold)
{
    errno = ENOENT;
    EXPECT_EQ(VxErrLogSys("File x:", "here", 3), 0u);
    EXPECT_EQ(last().text, std::string("File x: ") + std::strerror(ENOENT));
    EXPECT_EQ(last().number, 1);
    EXPECT_EQ(last().severity, 0);
    EXPECT_EQ(last().id, 0);
    setSecond(2000);
    errno = EACCES;
    EXPECT_EQ(VxErrLogSys(nullptr, "here", 3), 0u);
    EXPECT_STREQ(last().text, std::strerror(EACCES));

    int32_t id = alertFile("5,1,File %s");
    errno = ENOSPC;
    EXPECT_EQ(VxErrLogSysFmt(id, 5, "here", 3, "100%s"), 0u);
    EXPECT_EQ(last().text, std::string("File 100%s: ") + std::strerror(ENOSPC));
    EXPECT_EQ(last().severity, 1);

    for (int code : {-1, 134, 100000}) {
        errno = code;
        EXPECT_EQ(VxErrLogSys("x", "", 0), 1u);
        errno = code;
        EXPECT_EQ(VxErrLogSysFmt(id, 5, "", 0, "y"), 1u);
    }
    EXPECT_EQ(VxErrCnt(), 3);
}

TEST_F(Log, AnIntervalLimitsTheRate)
{
    int32_t id = alertFile("5,0,text");
    int64_t time = 0;
    EXPECT_EQ(VxErrLogNumTime(id, 5, 10, &time), 0u);
    EXPECT_EQ(time, 1000);
    setSecond(1010);
    EXPECT_EQ(VxErrLogNumTime(id, 5, 10, &time), 0u);
    EXPECT_EQ(time, 1000);
    EXPECT_EQ(VxErrCnt(), 1);
    setSecond(1011);
    EXPECT_EQ(VxErrLogNumTime(id, 6, 10, &time), 1u);
    EXPECT_EQ(time, 1011);
    EXPECT_EQ(VxErrLogNumTime(id, 5, 10, nullptr), 1u);
}

TEST_F(Log, ToolkitErrorsAreFiledUnderItsFile)
{
    alertFile("1,0,other");
    toolsAlertFile("1,0,size %d\n20,0,path %s");
    EXPECT_EQ(VxErrInt(1, -3), 0u);
    EXPECT_STREQ(last().text, "size -3");
    EXPECT_EQ(VxErrStr(20, "\\tmp\\100%d"), 0u);
    EXPECT_STREQ(last().text, "path \\tmp\\100%d");
    EXPECT_EQ(last().id, VxToolsErrID());
    EXPECT_EQ(VxErrStr(20, nullptr), 1u);
}

TEST_F(Log, TheEventLogGetsEachFiledText)
{
    int32_t id = alertFile("9,0,looked up");
    RecordedEvents recorded;
    for (int32_t severity : {0, 1, 2, 3, -1})
        VxErrLogMsg(severity, severity, "", 0, "severity %d", severity);
    VxErrLogMsg(0, 0, "", 0, "repeat");
    VxErrLogVa(id, 9, 1, "", 0, nullptr);
    VxErrDisable();
    VxErrLogMsg(10, 0, "", 0, "suppressed");
    VxErrEnable();
    using Event = RecordedEvents::Event;
    EXPECT_EQ(recorded.events,
              (std::vector<Event>{{4, "Tools", "severity 0"}, {3, "Tools", "severity 1"},
                                  {1, "Tools", "severity 2"}, {4, "Tools", "severity 3"},
                                  {4, "Tools", "severity -1"}, {3, "Tools", "looked up"}}));
}

TEST_F(Log, TheEventLogsFormGetsTheTextToo)
{
    RecordedEvents recorded;
    EsControlSetForm("Errors");
    VxErrLogMsg(1, 1, "", 0, "%s", "100%s");
    EsControlSetForm(nullptr);
    ASSERT_FALSE(recorded.events.empty());
    EXPECT_EQ(recorded.events[0], (RecordedEvents::Event{3, "Errors", "100%s"}));
}

TEST_F(Log, AHandlerOfTheEventLogMayLog)
{
    RecordedEvents recorded;
    recorded.andThen = [] {
        VxErrLogMsg(2, 0, "", 0, "from the handler");
        std::thread([] { VxErrLogMsg(3, 0, "", 0, "from another thread"); }).join();
        EXPECT_GE(VxErrCnt(), 1);
    };
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "first"), 0u);
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{1, 2, 3}));
}

TEST_F(Log, WithoutMemoryAnErrorIsCountedAndLost)
{
    std::string longText(600, 'a');
    test::refusingEachAllocation([&] {
        resetErrorLog();
        uint32_t result = VxErrLogMsg(1, 0, "where", 0, "%s", longText.c_str());
        EXPECT_EQ(result, VxErrCnt() == 1 ? 0u : 1u);
        EXPECT_EQ(Counts(), Counts(1, 0, 0));
    });
}

TEST_F(Log, AFormatThatCannotBeMetIsRefused)
{
    // A wide character that the C locale cannot express.
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "text %ls", L"\x4E2D"), 1u);
    EXPECT_EQ(VxErrCnt(), 0);
}

// Records, counters and repeats against a plain account of them.
TEST_F(Log, FilingAgreesWithAModelOverTime)
{
    unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::map<std::pair<int32_t, int32_t>, int64_t> lastSeen;
    std::vector<int32_t> filed;
    Counts counts(0, 0, 0);
    int64_t now = 5000;
    setSecond(now);
    int depth = 0;
    for (int step = 0; step < 20000; ++step) {
        auto marker = -1 - static_cast<int32_t>(random() % 3), number = static_cast<int32_t>(random() % 5);
        auto severity = static_cast<int32_t>(random() % 4);
        switch (random() % 12) {
        case 0: setSecond(now += static_cast<int64_t>(random() % 4) - 1); break;
        case 1: VxErrDisable(), ++depth; break;
        case 2:
        case 3: VxErrEnable(), depth -= depth > 0; break;
        case 4: VxErrClear(), filed.clear(); break;
        default:
            ASSERT_EQ(VxErrLogVa(marker, number, severity, "", 0, "text"), 0u);
            if (depth > 0)
                break;
            ++(severity == 0 ? counts.errors : severity == 1 ? counts.warnings : counts.others);
            auto [seen, isNew] = lastSeen.try_emplace({marker, number}, now);
            if (isNew || seen->second != now)
                filed.push_back(number);
            seen->second = now;
        }
        ASSERT_EQ(VxErrCnt(), static_cast<int32_t>(filed.size()));
    }
    EXPECT_EQ(pendingNumbers(), filed);
    EXPECT_EQ(Counts(), counts);
}

}
