#include "talm/base.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <random>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/os/fault.h"
#include "tests/host/caught_log.h"
#include "tests/support/captured_output.h"
#include "tests/support/temp_folder.h"

using namespace vx;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> out;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        out.push_back(line);
    return out;
}

TEST(EventLog, WritesNothingBeforeASinkIsChosen)
{
    test::CapturedOutput standardError(stderr);
    EXPECT_EQ(EsIsEnabled(), 0);
    EXPECT_EQ(EsCheck(EsLevelError, EsCategoryTools), 1);
    EsLog(EsCategoryTools, EsLevelError, "nobody reads this");
    EsSinkStandardError(1);
    EXPECT_EQ(EsIsEnabled(), 1);
    EsSinkStandardError(0);
    EXPECT_EQ(EsIsEnabled(), 0);
    EXPECT_EQ(standardError.text(), "");
}

TEST(EventLog, EachSinkGetsTheSameLineWithTimeLevelAndSource)
{
    test::TempFolder folder;
    test::CapturedOutput standardError(stderr);
    test::CaughtLog log;
    std::string file = folder.native() / "log.txt";
    ASSERT_EQ(EsSinkFile(file.c_str()), 0);
    EsSinkStandardError(1);
    EsLog(EsCategoryTools, EsLevelError, "no %s in %d", "cat", 7);
    EsLogGeneral("Importer", EsLevelWarning, "odd");
    EsPut(EsCategoryTools, EsLevelTrace, "a start\n");

    std::vector<std::string> lines = linesOf(folder.read("log.txt"));
    ASSERT_EQ(lines.size(), 3U);
    const char *time = "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d ";
    EXPECT_TRUE(std::regex_match(lines[0], std::regex(std::string(time) + "error Tools: no cat in 7")));
    EXPECT_TRUE(std::regex_match(lines[1], std::regex(std::string(time) + "warning Importer: odd")));
    EXPECT_TRUE(std::regex_match(lines[2], std::regex(std::string(time) + "trace Tools: a start")));
    EXPECT_EQ(linesOf(standardError.text()), lines);
    auto records = log.records();
    ASSERT_EQ(records.size(), 3U);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(records[i].line, lines[i]);
    EXPECT_EQ(records[0].category, EsCategoryTools);
    EXPECT_EQ(records[1].category, EsCategoryGeneral);
}

TEST(EventLog, AFileIsContinuedAndOneThatCannotBeOpenedChangesNothing)
{
    test::TempFolder folder;
    test::CaughtLog log;
    folder.write("log.txt", "before\n");
    std::string file = folder.native() / "log.txt", none = folder.native() / "no" / "log.txt";
    ASSERT_EQ(EsSinkFile(file.c_str()), 0);
    EXPECT_EQ(EsSinkFile(none.c_str()), 1);
    EsLog(EsCategoryTools, EsLevelError, "still written");
    EsReport();
    auto lines = linesOf(folder.read("log.txt"));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "before");
    EXPECT_THAT(lines[1], testing::EndsWith("still written"));
    EXPECT_EQ(EsSinkFile(""), 0);
    EsLog(EsCategoryTools, EsLevelError, "elsewhere");
    EXPECT_EQ(linesOf(folder.read("log.txt")).size(), 2U);
}

TEST(EventLog, LevelsAreSwitchedForEachCategoryByItself)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    test::CaughtLog log;
    bool model[EsCategories][EsLevels];
    for (auto &category : model)
        std::fill(std::begin(category), std::end(category), true);
    for (int step = 0; step < 200; ++step) {
        auto category = static_cast<int32_t>(random() % (EsCategories + 2)) - 1;
        auto level = static_cast<int32_t>(random() % (EsLevels + 2)) - 1;
        bool on = random() % 2;
        EsSetLevel(category, level, on);
        for (int32_t c = 0; c < EsCategories; ++c)
            for (int32_t l = 0; l < EsLevels; ++l)
                if ((category == -1 || category == c) && (level == -1 || level == l))
                    model[c][l] = on;
    }
    size_t written = 0;
    for (int32_t c = -1; c <= EsCategories; ++c)
        for (int32_t l = -1; l <= EsLevels; ++l) {
            bool inRange = c >= 0 && c < EsCategories && l >= 0 && l < EsLevels;
            bool on = inRange && model[c][l];
            ASSERT_EQ(EsCheck(l, c), on) << "level " << l << ", category " << c;
            EsLog(c, l, "level %d of %d", l, c);
            written += on;
        }
    EXPECT_EQ(log.records().size(), written);
}

TEST(EventLog, SectionsIndentUnderTheirHeadingsAndEmptyOnesLeaveNoTrace)
{
    test::CaughtLog log;
    auto say = [](const char *text) { EsLog(EsCategoryTools, EsLevelInformation, "%s", text); };
    EsEnter(EsLevelInformation, "outer");
    EsEnter(EsLevelInformation, "empty");
    EsLeave(EsLevelInformation);
    EsEnter(EsLevelInformation, "inner");
    say("a");
    say("b");
    std::thread([&] { say("of another thread"); }).join();
    EsLeave(EsLevelInformation);
    EsEnter(EsLevelInformation, "");
    say("c");
    EsLeave(EsLevelInformation);
    EsLeave(EsLevelInformation);
    EsLeave(EsLevelInformation);
    say("d");
    EXPECT_THAT(log.texts(), ElementsAre("outer", "  inner", "    a", "    b",
                                         "of another thread", "    c", "d"));
}

TEST(EventLog, OnlyARepetitionFurtherInIsLeftOut)
{
    test::CaughtLog log;
    auto fail = [](const char *text) { EsLogGeneral("Tools", EsLevelError, "%s", text); };
    fail("broken");
    EsEnter(EsLevelError, "error");
    fail("broken");
    EsLeave(EsLevelError);
    fail("broken");
    EsEnter(EsLevelError, "error");
    fail("worse");
    EsLeave(EsLevelError);
    EXPECT_THAT(log.texts(), ElementsAre("broken", "broken", "error", "  worse"));
}

TEST(EventLog, DeepNestingAndSurplusLeavesDoNoHarm)
{
    test::CaughtLog log;
    for (int i = 0; i < 1000; ++i)
        EsEnter(EsLevelTrace, "deep");
    EsLog(EsCategoryTools, EsLevelError, "down here");
    for (int i = 0; i < 1010; ++i)
        EsLeave(EsLevelTrace);
    EsLog(EsCategoryTools, EsLevelError, "up");
    EXPECT_EQ(log.records().back().depth, 0);
    EXPECT_EQ(log.records().back().text, "up");
}

TEST(EventLog, NoTextForgesARecordOrReachesTheTerminal)
{
    test::TempFolder folder;
    test::CaughtLog log;
    std::string file = folder.native() / "log.txt";
    ASSERT_EQ(EsSinkFile(file.c_str()), 0);
    const char *hostile = "100%n%s\r\n2026-01-01 00:00:00 error Tools: forged\n\033[2Jgone\n\n";
    EsEnter(EsLevelError, hostile);
    EsLog(EsCategoryTools, EsLevelError, "%s", hostile);
    EsLeave(EsLevelError);
    EsLogGeneral("a\nb", EsLevelError, "text");
    EsControlSetForm("Form\n");
    EsControlGetField("%s", hostile);
    EsLogControl(EsCategoryTools, EsLevelError);
    std::string written = folder.read("log.txt");
    EXPECT_EQ(written.find('\033'), written.npos);
    EXPECT_EQ(written.find('\r'), written.npos);
    size_t records = 0;
    for (const std::string &line : linesOf(written)) {
        ASSERT_FALSE(line.empty());
        records += line[0] != ' ';
    }
    EXPECT_EQ(records, log.records().size());
    EXPECT_NE(written.find("100%n%s"), written.npos);
}

TEST(EventLog, TheFormGetsTheTextOfItsFieldWhileItIsThere)
{
    test::CaughtLog log;
    EXPECT_EQ(EsControlHasForm(), 0);
    EsControlGetField("no form");
    EsLogControl(EsCategoryTools, EsLevelError);
    EsControlSetForm("Checks");
    EXPECT_EQ(EsControlHasForm(), 1);
    EsControlGetField("%d of %d", 1, 2);
    EsLogControl(EsCategoryTools, EsLevelError);
    EsControlSetForm("");
    EXPECT_EQ(EsControlHasForm(), 0);
    auto records = log.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].source, "Checks");
    EXPECT_EQ(records[0].text, "1 of 2");
    EXPECT_EQ(records[0].level, EsLevelError);
}

TEST(EventLog, ACallBackThatLogsReachesTheOtherSinksOnly)
{
    test::TempFolder folder;
    test::CaughtLog restore;
    std::string file = folder.native() / "log.txt";
    ASSERT_EQ(EsSinkFile(file.c_str()), 0);
    std::vector<std::string> seen;
    EsSinkCallback(
        [](void *context, const EsRecord *record) {
            static_cast<std::vector<std::string> *>(context)->push_back(record->text);
            EsLog(EsCategoryTools, EsLevelError, "and again: %s", record->text);
        },
        &seen);
    EsLog(EsCategoryTools, EsLevelError, "first");
    EsLog(EsCategoryTools, EsLevelError, "second");
    EXPECT_THAT(seen, ElementsAre("first", "second"));
    EXPECT_EQ(linesOf(folder.read("log.txt")).size(), 4U);
}

TEST(EventLog, ACallBackMayTakeItselfAway)
{
    test::CaughtLog restore;
    int calls = 0;
    EsSinkCallback(
        [](void *context, const EsRecord *) {
            ++*static_cast<int *>(context);
            EsSinkCallback(nullptr, nullptr);
        },
        &calls);
    EsLog(EsCategoryTools, EsLevelError, "once");
    EsLog(EsCategoryTools, EsLevelError, "no more");
    EXPECT_EQ(calls, 1);
}

TEST(EventLog, NoThreadIsInTheCallBackAnyMoreOnceItIsTakenAway)
{
    struct Shared {
        std::atomic<bool> entered{false}, removing{false}, left{false};
    } shared;
    test::CaughtLog restore;
    EsSinkCallback(
        [](void *context, const EsRecord *) {
            auto &state = *static_cast<Shared *>(context);
            state.entered = true;
            while (!state.removing)
                std::this_thread::yield();
            // The other thread is about to wait, or waits; it must not come back before this.
            for (int i = 0; i < 1000; ++i)
                std::this_thread::yield();
            state.left = true;
        },
        &shared);
    std::thread logging([] { EsLog(EsCategoryTools, EsLevelError, "slow"); });
    while (!shared.entered)
        std::this_thread::yield();
    shared.removing = true;
    EsSinkCallback(nullptr, nullptr);
    EXPECT_TRUE(shared.left);
    logging.join();
}

TEST(EventLog, RecordsOfManyThreadsStayWholeAndAreNumberedWithoutAGap)
{
    constexpr int threads = 8, each = 250;
    test::TempFolder folder;
    test::CaughtLog log;
    std::string file = folder.native() / "log.txt";
    ASSERT_EQ(EsSinkFile(file.c_str()), 0);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([t] {
            for (int i = 0; i < each; ++i) {
                EsEnter(EsLevelTrace, "");
                EsLog(EsCategoryTools, EsLevelInformation, "thread %d record %d.", t, i);
                EsLeave(EsLevelTrace);
            }
        });
    for (std::thread &worker : workers)
        worker.join();
    auto lines = linesOf(folder.read("log.txt"));
    EXPECT_EQ(lines.size(), size_t{threads * each});
    std::regex whole(".{19} information Tools:   thread \\d record \\d+\\.");
    EXPECT_TRUE(std::all_of(lines.begin(), lines.end(),
                            [&](const std::string &line) { return std::regex_match(line, whole); }));
    std::vector<int64_t> numbers;
    for (const auto &record : log.records())
        numbers.push_back(record.number);
    std::sort(numbers.begin(), numbers.end());
    ASSERT_EQ(numbers.size(), size_t{threads * each});
    EXPECT_EQ(numbers.back() - numbers.front(), threads * each - 1);
    EXPECT_EQ(std::adjacent_find(numbers.begin(), numbers.end()), numbers.end());
}

TEST(EventLog, OutOfMemoryIsStillTold)
{
    test::CapturedOutput standardError(stderr);
    test::CaughtLog restore;
    EsSinkCallback(nullptr, nullptr);
    EsSinkStandardError(1);
    std::string longText(100000, 'x');
    fault::refuseFrom(fault::Kind::allocation, 1);
    EsLog(EsCategoryTools, EsLevelError, "Unable to allocate %d bytes of memory.", 48);
    EsLog(EsCategoryTools, EsLevelError, "%s", longText.c_str());
    EsLog(EsCategoryTools, EsLevelError, "Going on.");
    fault::refuse(fault::Kind::allocation, 0);
    auto lines = linesOf(standardError.text());
    ASSERT_GE(lines.size(), 2U);
    EXPECT_THAT(lines.front(), testing::EndsWith("Unable to allocate 48 bytes of memory."));
    EXPECT_THAT(lines.back(), testing::EndsWith("Going on."));
    EsLog(EsCategoryTools, EsLevelError, "%s", longText.c_str());
    EXPECT_THAT(linesOf(standardError.text()).back(), testing::EndsWith(longText));
}

}
