#include "vx/err.h"

#include <array>

#include "tests/support/error_log.h"
#include "vx/tools.h"

using namespace vx;
using namespace vx::frame;
using test::RecordedEvents;

namespace {

using Log = test::ErrorLog;

using Counts = std::array<int32_t, 3>; // errors, warnings, others

Counts counted()
{
    Counts counts;
    VxErrStatus(&counts[0], &counts[1], &counts[2]);
    return counts;
}

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
    int32_t id = alertFile("1,0,one\n5,1,The %s is %d of 100%%.\n6,0,100%s sure");
    using Record = std::tuple<int32_t, int32_t, int32_t, std::string, std::string>;
    auto filed = [] { return Record{last().id, last().severity, last().extra, last().where, last().text}; };
    EXPECT_EQ(VxErrLogFmt(id, 5, "here", 42, "part", 7), 0u);
    EXPECT_EQ(filed(), (Record{id, 1, 42, "here", "The part is 7 of 100%."}));
    EXPECT_EQ(VxErrLogMsg(4, 2, nullptr, -1, "%s %.1f", "given", 0.5), 0u);
    EXPECT_EQ(filed(), (Record{0, 2, -1, "", "given 0.5"}));
    EXPECT_EQ(VxErrLogVa(~17, 5, 9, "", 0, "kept under 17"), 0u);
    EXPECT_EQ(filed(), (Record{17, 9, 0, "", "kept under 17"}));
    EXPECT_TRUE(VxErrIsLogged(17, 5) && !VxErrIsLogged(17, 6) && !VxErrIsLogged(16, 5));
    EXPECT_EQ(VxErrLogNum(id, 6, "", 3), 0u);
    EXPECT_EQ(filed(), (Record{id, 0, 3, "", "100%s sure"}));
    setSecond(2000);
    EXPECT_EQ(logArgs(id, 6, " percent"), 0u);
    EXPECT_EQ(filed(), (Record{id, 0, 0, "", "100 percent sure"}));
}

TEST_F(Log, AFailedLookUpFilesNothing)
{
    int32_t id = alertFile("5,0,text");
    VgErrOccurred = 0;
    test::CapturedOutput output;
    for (uint32_t result :
         {VxErrLogNum(id, 6, "", 0), VxErrLogFmt(-1, 5, "", 0), logArgs(id, 6), VxErrLogSysFmt(id, 6, "", 0)})
        EXPECT_EQ(result, 1u);
    EXPECT_EQ(output.text(), "Invalid error file id (-1).\n");
    EXPECT_EQ(VxErrCnt() + VgErrOccurred, 0);
    EXPECT_EQ(counted(), Counts{});
}

TEST_F(Log, ATextIsCutTo512BytesAndAPlaceToItsLast254AtACharacter)
{
    int64_t second = 2000;
    for (auto [codePage, character] :
         {std::pair{1252, "\xE9"}, {932, "\x83\x5C"}, {65001, "\xF0\x9F\x98\x80"}}) {
        test::CodePageScope page(codePage);
        const size_t bytes = std::strlen(character);
        for (size_t count : {254 / bytes, 254 / bytes + 1, 512 / bytes, 512 / bytes + 1, size_t{20000}})
            for (size_t odd = 0; odd < bytes; ++odd) {
                SCOPED_TRACE(testing::Message() << codePage << ": " << count << " characters and " << odd);
                std::string run;
                for (size_t i = 0; i < count; ++i)
                    run += character;
                const std::string text = std::string(odd, 'x') + run, where = run + std::string(odd, 'y');
                setSecond(++second);
                EXPECT_EQ(VxErrLogMsg(1, 0, where.c_str(), 0, "%s", text.c_str()), 0u);
                auto kept = [&](size_t most) { return odd + std::min(count, (most - odd) / bytes) * bytes; };
                EXPECT_EQ(last().text, text.substr(0, kept(512)));
                EXPECT_EQ(last().where, where.substr(where.size() - kept(254)));
            }
    }
}

TEST_F(Log, AnEmptyTextIsCountedAndNotFiledUnlessItIsToComeLater)
{
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "%s", ""), 0u);
    EXPECT_EQ(VxErrLogMsg(3, 0, "", 0, nullptr), 1u);
    EXPECT_EQ(counted(), (Counts{2, 0, 0}));
    EXPECT_FALSE(VxErrLogVa(0, 4, 0, "", 0, "") || VxErrLogVa(0, 5, 0, "", 0, nullptr));
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{4, 5}));
}

TEST_F(Log, SuppressionLeavesOnlyTheFlagAndMayBeLiftedOrOverridden)
{
    VgErrOccurred = 0;
    VxErrDisable();
    EXPECT_EQ(VxErrLogMsg(1, 0, "", 0, "text"), 0u);
    EXPECT_EQ(VgErrOccurred, 1);
    VxErrTempEnable(1);
    EXPECT_FALSE(VxErrIsDisabled());
    VxErrTempEnable(0);
    VxErrDisableOverride(1);
    VxErrEnable();
    EXPECT_TRUE(VxErrIsDisabled());
    VxErrDisableOverride(0);
    VxErrEnable();
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
        }
    };
    std::thread silent(work, 0, true), loud(work, 10000, false), another(work, 20000, false);
    for (std::thread *thread : {&silent, &loud, &another})
        thread->join();
    EXPECT_EQ(VxErrCnt(), 2 * perThread);
    for (const ErrorRecord &record : errorState().pending) {
        ASSERT_GE(record.number, 10000);
        ASSERT_EQ(record.text, "number " + std::to_string(record.number));
    }
    EXPECT_EQ(counted(), (Counts{334, 334, 332}));
}

TEST_F(Log, AnEscapeUnderWayLeavesLookedUpErrorsOut)
{
    int32_t id = alertFile("5,0,text\n6,0,text");
    VgEscapeFlag = 1;
    EXPECT_FALSE(VxErrLogNum(id, 5, "", 0) || VxErrLogFmt(-1, 5, "", 0));
    EXPECT_EQ(VxErrCnt(), 0);
    // The others do not ask.
    EXPECT_EQ(logArgs(id, 6) + VxErrLogMsg(7, 0, "", 0, "text"), 0u);
    VgEscapeFlag = 0;
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{6, 7}));
}

TEST_F(Log, SystemErrorsAreTold)
{
    int32_t id = alertFile("5,1,File %s");
    errno = ENOENT;
    EXPECT_EQ(VxErrLogSys("File x:", "here", 3), 0u);
    EXPECT_EQ(last().text, std::string("File x: ") + std::strerror(ENOENT));
    EXPECT_TRUE(last().number == 1 && last().severity == 0 && last().id == 0);
    errno = ENOSPC;
    EXPECT_EQ(VxErrLogSysFmt(id, 5, "here", 3, "100%s"), 0u);
    EXPECT_EQ(last().text, std::string("File 100%s: ") + std::strerror(ENOSPC));
    for (int noError : {-1, 134, 100000}) {
        errno = noError;
        EXPECT_EQ(VxErrLogSys("x", "", 0), 1u);
        errno = noError;
        EXPECT_EQ(VxErrLogSysFmt(id, 5, "", 0, "y"), 1u);
    }
}

TEST_F(Log, TheEventLogGetsEachFiledTextAndItsHandlerMayLog)
{
    RecordedEvents recorded;
    for (int32_t severity : {1, 2, 3})
        VxErrLogMsg(severity, severity, "", 0, "severity %d", severity);
    VxErrLogMsg(1, 0, "", 0, "repeat");
    recorded.andThen = [] {
        VxErrLogMsg(5, 0, "", 0, "from the handler");
        std::thread([] { VxErrLogMsg(6, 0, "", 0, "from another thread"); }).join();
        EXPECT_GE(VxErrCnt(), 4);
    };
    EXPECT_EQ(VxErrLogMsg(4, 0, "", 0, "100%%"), 0u);
    EXPECT_EQ(pendingNumbers(), (std::vector<int32_t>{1, 2, 3, 4, 5, 6}));
    using Events = std::vector<RecordedEvents::Event>;
    recorded.events.resize(4);
    EXPECT_EQ(recorded.events, (Events{{3, "Tools", "severity 1"}, {1, "Tools", "severity 2"},
                                       {4, "Tools", "severity 3"}, {4, "Tools", "100%"}}));
}

TEST_F(Log, WithoutMemoryAnErrorIsCountedAndLost)
{
    std::string longText(600, 'a');
    test::refusingEachAllocation([&] {
        resetErrorLog();
        uint32_t result = VxErrLogMsg(1, 0, "where", 0, "%s", longText.c_str());
        EXPECT_EQ(result, VxErrCnt() == 1 ? 0u : 1u);
        EXPECT_EQ(counted(), (Counts{1, 0, 0}));
    });
}

// Records, counters and repeats against a plain account of them.
TEST_F(Log, FilingAgreesWithAModelOverTime)
{
    test::Random random;
    std::map<std::pair<int32_t, int32_t>, int64_t> lastSeen;
    std::vector<int32_t> filed;
    Counts counts{};
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
            ++counts[static_cast<size_t>(std::min(severity, 2))];
            auto [seen, isNew] = lastSeen.try_emplace({marker, number}, now);
            if (isNew || seen->second != now)
                filed.push_back(number);
            seen->second = now;
        }
        ASSERT_EQ(VxErrCnt(), static_cast<int32_t>(filed.size()));
    }
    EXPECT_EQ(pendingNumbers(), filed);
    EXPECT_EQ(counted(), counts);
}

}
