#include "vx/timing.h"

#include <cstring>
#include <ctime>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/os/test_values.h"
#include "tests/session/started_toolkit.h"
#include "tests/support/code_page.h"
#include "tests/support/temp_folder.h"

using namespace vx;

namespace {

constexpr int64_t lastSecondOf3000 = 32535215999;

/** A time zone for a scope. */
class TimeZone {
public:
    explicit TimeZone(const char *name) : variable_("TZ", name) { tzset(); }
    ~TimeZone() { tzset(); }

private:
    test::Environment variable_;
};

TEST(Stopwatch, SplitsAddUpToTheWholeAndProcessorTimeIsASecondOne)
{
    os::setTestClock(1'000'000'250'000);
    os::setTestProcessorClock(2'000'000);
    VxTimeWallBeg();
    VxTimeTstBeg();
    os::setTestClock(1'000'001'750'000);
    EXPECT_NEAR(VxTimeWallDel(), 1.5, 1e-6);
    os::setTestClock(1'000'004'000'000);
    EXPECT_NEAR(VxTimeWallDel(), 2.25, 1e-6);
    EXPECT_NEAR(VxTimeWallEnd(), 3.75, 1e-6);
    EXPECT_EQ(VxTime(), 1'000'004);
    os::setTestProcessorClock(2'500'000);
    EXPECT_DOUBLE_EQ(VxTimeTstDel(), 0.5);
    os::setTestProcessorClock(4'500'000);
    EXPECT_DOUBLE_EQ(VxTimeTstDel(), 2.0);
    EXPECT_DOUBLE_EQ(VxTimeTstEnd(), 2.5);
    VxTimeWallBeg();
    EXPECT_EQ(VxTimeWallDel() + VxTimeWallEnd(), 0.0) << "a start sets both";
    os::setTestProcessorClock(-1);
    os::setTestClock(-1);
}

class TimeText : public test::StartedToolkit {};

TEST_F(TimeText, IsThatOfTheCLibraryInEveryZone)
{
    for (const char *name : {"UTC", "America/New_York", "Asia/Kolkata", "Pacific/Kiritimati", "XYZ+11"}) {
        TimeZone zone(name);
        for (int64_t t : {int64_t{0}, int64_t{1}, int64_t{86399}, int64_t{951782400}, int64_t{2147483647},
                          int64_t{2147483648}, int64_t{4102444800}, lastSecondOf3000}) {
            auto seconds = static_cast<std::time_t>(t);
            char expected[64];
            ctime_r(&seconds, expected);
            expected[std::strlen(expected) - 1] = '\0';
            EXPECT_STREQ(VxTimeToAsc(t), expected) << name;
            std::tm local{};
            localtime_r(&seconds, &local);
            char name2[64];
            std::snprintf(name2, sizeof name2, "%d.%d.%d_%d:%d", local.tm_year % 100, local.tm_mon + 1,
                          local.tm_mday, local.tm_hour, local.tm_min);
            EXPECT_STREQ(VxTimeToAsc2(t), name2) << name;
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
    char *now = VxTimeAsc(), *asc = VxTimeToAsc(0), *name = VxTimeToAsc2(1104635040);
    std::thread other([] { VxTimeToAsc2(VxTimeToAsc(86400) ? 86400 : 0); });
    other.join();
    EXPECT_STREQ(asc, "Thu Jan  1 00:00:00 1970");
    EXPECT_STREQ(name, "5.1.2_3:4");
    EXPECT_STREQ(now, "Sun Nov 15 07:26:00 2026");
}

TEST_F(TimeText, OfTheUserIsWrittenByTheLocaleElseWithoutOne)
{
    TimeZone zone("UTC");
    char text[64] = "?";
    {
        test::Environment locale("LC_ALL", "de_DE.UTF-8");
        EXPECT_EQ(VxTimeToFmt(1794727560, 1, text, sizeof text), 0u);
        EXPECT_STREQ(text, "15.11.2026");
        EXPECT_EQ(VxTimeToFmt(1794727560, 3, text, 20), 0u);
        EXPECT_STREQ(text, "15.11.2026 07:26:00");
        EXPECT_EQ(VxTimeToFmt(1794727560, 3, text, 19) + VxTimeToFmt(0, 4, text, 20), 2u);
        EXPECT_STREQ(text, "");
    }
    test::Environment locale("LC_ALL", "no_SUCH.locale");
    EXPECT_EQ(VxTimeToFmt(0, 3, text, sizeof text), 0u);
    EXPECT_STREQ(text, "Thu Jan  1 00:00:00 1970");
}

}
