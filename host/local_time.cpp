#include "host/local_time.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace talm {

namespace {

/** The calendar of UTC. std::gmtime and std::localtime share one record between all threads. */
std::tm calendarOf(int64_t seconds)
{
    using namespace std::chrono;
    sys_seconds time{std::chrono::seconds{seconds}};
    auto day = floor<days>(time);
    year_month_day date{day};
    hh_mm_ss clock{time - day};
    std::tm out = {};
    out.tm_year = static_cast<int>(date.year()) - 1900;
    out.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    out.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    out.tm_hour = static_cast<int>(clock.hours().count());
    out.tm_min = static_cast<int>(clock.minutes().count());
    out.tm_sec = static_cast<int>(clock.seconds().count());
    out.tm_isdst = 0;
    return out;
}

}

void localTimeText(int64_t seconds, char *out, size_t size)
{
    // std::mktime reads a calendar as local standard time and writes it anew
    // as the clocks of that moment show it. So look for the calendar that it
    // takes for our moment; a second step finds it unless the zone changed.
    std::tm local = {};
    int64_t shifted = seconds;
    for (int step = 0; step < 4; ++step) {
        local = calendarOf(shifted);
        auto moment = static_cast<int64_t>(std::mktime(&local));
        if (moment == seconds)
            break;
        shifted += seconds - moment;
    }
    std::snprintf(out, size, "%04d-%02d-%02d %02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

}
