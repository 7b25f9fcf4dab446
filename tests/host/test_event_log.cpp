#include <atomic>
#include <regex>

#include "tests/host/caught_log.h"

using namespace vx;

namespace {

Texts linesOf(const std::string &text)
{
    Texts out;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        out.push_back(line);
    return out;
}

/** Its records are caught, and written into a file. */
struct EventLog : testing::Test {
    EventLog() { EXPECT_EQ(EsSinkFile((folder.native() / "log.txt").c_str()), 0); }
    Texts written() const { return linesOf(folder.read("log.txt")); }

    test::TempFolder folder;
    test::CaughtLog log;
};

TEST_F(EventLog, EachSinkGetsTheSameLineWithTimeLevelAndSource)
{
    test::CapturedOutput standardError(stderr);
    EsSinkStandardError(1);
    EsLog(EsCategoryTools, EsLevelError, "no %s in %d", "cat", 7);
    EsLogGeneral("Importer", EsLevelWarning, "odd");
    EsPut(EsCategoryTools, EsLevelTrace, "a start\n");

    Texts lines;
    for (const auto &record : log.records())
        lines.push_back(record.line);
    EXPECT_EQ(linesOf(standardError.text()), lines);
    EXPECT_EQ(written(), lines);
    ASSERT_EQ(lines.size(), 3U);
    const std::string time = "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d ";
    for (size_t i = 0;
         const char *text : {"error Tools: no cat in 7", "warning Importer: odd", "trace Tools: a start"})
        EXPECT_TRUE(std::regex_match(lines[i++], std::regex(time + text))) << text;
}

TEST_F(EventLog, LevelsAreSwitchedForEachCategoryByItself)
{
    const struct {
        int32_t category, level, on;
        std::vector<int32_t> passing; // of category 6 level 4, 6 level 31, 0 level 4, 0 level 31
    } steps[] = {{6, 4, 0, {0, 1, 1, 1}},   {-1, 31, 0, {0, 0, 1, 0}}, {6, -1, 1, {1, 1, 1, 0}},
                 {-1, -1, 0, {0, 0, 0, 0}}, {64, 4, 1, {0, 0, 0, 0}},  {-1, -1, 1, {1, 1, 1, 1}}};
    for (const auto &[category, level, on, passing] : steps) {
        EsSetLevel(category, level, on);
        EXPECT_EQ((std::vector{EsCheck(4, 6), EsCheck(31, 6), EsCheck(4, 0), EsCheck(31, 0)}), passing);
    }
    EXPECT_EQ(EsCheck(-1, 6) + EsCheck(32, 6) + EsCheck(4, -1) + EsCheck(4, 64), 0);
}

TEST_F(EventLog, SectionsIndentUnderTheirHeadingsAndEmptyOnesLeaveNoTrace)
{
    auto say = [](const char *text) { EsLog(EsCategoryTools, EsLevelInformation, "%s", text); };
    EsEnter(EsLevelInformation, "outer");
    EsEnter(EsLevelInformation, "empty");
    EsLeave(EsLevelInformation);
    EsEnter(EsLevelInformation, "inner");
    say("a");
    EsLeave(EsLevelInformation);
    EsEnter(EsLevelInformation, "");
    say("b");
    for (int i = 0; i < 1000; ++i)
        EsEnter(EsLevelInformation, "");
    say("deep");
    for (int i = 0; i < 1010; ++i)
        EsLeave(EsLevelInformation);
    say("c");
    EXPECT_THAT(log.texts(),
                ElementsAre("outer", "  inner", "    a", "    b", std::string(32, ' ') + "deep", "c"));
}

TEST_F(EventLog, OnlyARepetitionFurtherInIsLeftOut)
{
    auto fail = [](const char *text) { EsLogGeneral("Tools", EsLevelError, "%s", text); };
    for (const char *inner : {"broken", "worse"}) {
        fail("broken");
        EsEnter(EsLevelError, "error");
        fail(inner);
        EsLeave(EsLevelError);
    }
    EXPECT_THAT(log.texts(), ElementsAre("broken", "broken", "error", "  worse"));
}

TEST_F(EventLog, NoTextForgesARecordOrReachesTheTerminal)
{
    const char *hostile = "100%n%s\r\n2026-01-01 00:00:00 error Tools: forged\n\033[2Jgone\n\n";
    EsEnter(EsLevelError, hostile);
    EsLog(EsCategoryTools, EsLevelError, "%s", hostile);
    EsLeave(EsLevelError);
    EsLogGeneral("a\nb", EsLevelError, "text");
    EsControlSetForm("Form\n");
    EsControlGetField("%s", hostile);
    EsLogControl(EsCategoryTools, EsLevelError);
    const std::string bytes = folder.read("log.txt");
    EXPECT_EQ(bytes.find_first_of("\033\r"), bytes.npos);
    EXPECT_THAT(bytes, HasSubstr("100%n%s"));
    auto begins = [](const std::string &line) { return !line.empty() && line[0] != ' '; };
    EXPECT_EQ(std::ranges::count_if(written(), begins), std::ssize(log.records()));
}

TEST_F(EventLog, ACallBackThatLogsReachesTheOtherSinksOnlyAndMayTakeItselfAway)
{
    Texts seen;
    EsSinkCallback(
        [](void *context, const EsRecord *record) {
            auto texts = static_cast<Texts *>(context);
            texts->push_back(record->text);
            EsLog(EsCategoryTools, EsLevelError, "and again: %s", record->text);
            if (texts->size() == 2)
                EsSinkCallback(nullptr, nullptr);
        },
        &seen);
    for (const char *text : {"first", "second", "third"})
        EsLog(EsCategoryTools, EsLevelError, "%s", text);
    EXPECT_THAT(seen, ElementsAre("first", "second"));
    EXPECT_EQ(written().size(), 5U);
}

TEST_F(EventLog, NoThreadIsInTheCallBackAnyMoreOnceItIsTakenAway)
{
    struct Shared {
        std::atomic<bool> entered{false}, removing{false}, left{false};
    } shared;
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

TEST_F(EventLog, RecordsOfManyThreadsStayWholeAndAreNumberedWithoutAGap)
{
    constexpr int threads = 8, each = 250;
    {
        std::vector<std::jthread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([t] {
                EsEnter(EsLevelTrace, "");
                for (int i = 0; i < each; ++i)
                    EsLog(EsCategoryTools, EsLevelInformation, "thread %d record %d.", t, i);
            });
    }
    EXPECT_EQ(written().size(), size_t{threads * each});
    const std::regex whole(".{19} information Tools:   thread \\d record \\d+\\.");
    for (const std::string &line : written())
        ASSERT_TRUE(std::regex_match(line, whole)) << line;
    std::set<int64_t> numbers;
    for (const auto &record : log.records())
        numbers.insert(record.number);
    ASSERT_EQ(numbers.size(), size_t{threads * each});
    EXPECT_EQ(*numbers.rbegin() - *numbers.begin(), threads * each - 1);
}

TEST_F(EventLog, OutOfMemoryIsStillTold)
{
    test::CapturedOutput standardError(stderr);
    EsSinkCallback(nullptr, nullptr);
    EsSinkStandardError(1);
    const std::string longText(100000, 'x');
    fault::refuseFrom(fault::Kind::allocation, 1);
    EsLog(EsCategoryTools, EsLevelError, "Unable to allocate %d bytes of memory.", 48);
    EsLog(EsCategoryTools, EsLevelError, "%s", longText.c_str());
    EsLog(EsCategoryTools, EsLevelError, "Going on.");
    fault::refuse(fault::Kind::allocation, 0);
    EXPECT_THAT(linesOf(standardError.text()),
                ElementsAre(testing::EndsWith("Unable to allocate 48 bytes of memory."),
                            testing::EndsWith("Going on.")));
}

}
