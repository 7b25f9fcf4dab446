#include <ctime>
#include <thread>

#include "tests/session/started_toolkit.h"
#include "vx/timing.h"

using namespace vx;
using namespace vx::test;

namespace {

constexpr int64_t lastSecondOf3000 = 32535215999;

/** A time zone for a scope. */
class TimeZone {
public:
    explicit TimeZone(const char *name) : variable_("TZ", name) { tzset(); }
    ~TimeZone() { tzset(); }

private:
    Environment variable_;
};

TEST(Stopwatch, SplitsAddUpToTheWholeAndProcessorTimeIsASecondOne)
{
    auto at = [](int64_t clock, int64_t processorClock) {
        os::setTestClock(clock);
        os::setTestProcessorClock(processorClock);
    };
    at(1'000'000'250'000, 2'000'000);
    VxTimeWallBeg();
    VxTimeTstBeg();
    at(1'000'001'750'000, 2'500'000);
    EXPECT_NEAR(VxTimeWallDel(), 1.5, 1e-6);
    EXPECT_DOUBLE_EQ(VxTimeTstDel(), 0.5);
    at(1'000'004'000'000, 4'500'000);
    EXPECT_NEAR(VxTimeWallDel(), 2.25, 1e-6);
    EXPECT_NEAR(VxTimeWallEnd(), 3.75, 1e-6);
    EXPECT_EQ(VxTime(), 1'000'004);
    EXPECT_DOUBLE_EQ(VxTimeTstDel(), 2.0);
    EXPECT_DOUBLE_EQ(VxTimeTstEnd(), 2.5);
    VxTimeWallBeg();
    EXPECT_EQ(VxTimeWallDel() + VxTimeWallEnd(), 0.0) << "a start sets both";
    at(-1, -1);
}

using TimeText = StartedToolkit;

TEST_F(TimeText, IsThatOfTheCLibraryInEveryZone)
{
    for (const char *name : {"UTC", "America/New_York", "Asia/Kolkata", "Pacific/Kiritimati", "XYZ+11"}) {
        TimeZone zone(name);
        for (std::time_t t : {0L, 1L, 86399L, 951782400L, 2147483647L, 2147483648L, 4102444800L,
                              lastSecondOf3000}) {
            char text[64];
            EXPECT_EQ(std::string(VxTimeToAsc(t)) + "\n", ctime_r(&t, text)) << name;
            std::tm local{};
            localtime_r(&t, &local);
            std::snprintf(text, sizeof text, "%d.%d.%d_%d:%d", local.tm_year % 100, local.tm_mon + 1,
                          local.tm_mday, local.tm_hour, local.tm_min);
            EXPECT_STREQ(VxTimeToAsc2(t), text) << name;
        }
    }
}

TEST_F(TimeText, IsAMessageForATimeThatCannotBeWritten)
{
    TimeZone zone("UTC");
    VxTimeToAsc2(1104635040);
    for (int64_t t : {int64_t{-1}, INT64_MIN, lastSecondOf3000 + 1, INT64_MAX}) {
        EXPECT_STREQ(VxTimeToAsc(t), "Invalid time") << t;
        EXPECT_STREQ(VxTimeToAsc2(t), "5.1.2_3:4") << "the text of the call before";
    }
}

TEST_F(TimeText, HasABufferOfItsOwnInEachFunctionAndThread)
{
    TimeZone zone("UTC");
    os::setTestClock(1794727560'000'000);
    const char *texts[] = {VxTimeAsc(), VxTimeToAsc(0), VxTimeToAsc2(1104635040)};
    std::thread([] { VxTimeToAsc2(VxTimeToAsc(86400) ? 86400 : 0); }).join();
    EXPECT_EQ(std::string(texts[0]) + ", " + texts[1] + ", " + texts[2],
              "Sun Nov 15 07:26:00 2026, Thu Jan  1 00:00:00 1970, 5.1.2_3:4");
}

TEST_F(TimeText, OfTheUserIsWrittenByTheLocaleElseWithoutOne)
{
    TimeZone zone("UTC");
    const std::tuple<const char *, int32_t, int32_t, const char *> cases[] = { // no text after a failure
        {"de_DE.UTF-8", 1, 64, "15.11.2026"},  {"de_DE.UTF-8", 3, 20, "15.11.2026 07:26:00"},
        {"de_DE.UTF-8", 3, 19, ""},            {"de_DE.UTF-8", 4, 20, ""},
        {"no_SUCH.locale", 3, 64, "Sun Nov 15 07:26:00 2026"}};
    for (const auto &[name, format, size, expected] : cases) {
        Environment locale("LC_ALL", name);
        char text[64] = "?";
        EXPECT_EQ(VxTimeToFmt(1794727560, format, text, size), !*expected) << name << ", " << format;
        EXPECT_STREQ(text, expected);
    }
}

}
