// Stopwatches and texts of times.

#include "vx/timing.h"

#include <cstring>

#include "platform/os/os.h"
#include "vx/msg.h"
#include "vx/str.h"
#include "vx/tools.h"

using namespace vx;

namespace {

constexpr int64_t microseconds = 1000000;
constexpr int64_t lastTime = 32535215999; ///< the last second of the year 3000, UTC
constexpr int32_t messageInvalidTime = 166;
constexpr int32_t withDate = 1;
constexpr int32_t withTime = 2;
constexpr size_t textSize = 48;

struct Stopwatch {
    double start = 0;
    double lap = 0;

    void begin(double now) noexcept { start = lap = now; }
    double split(double now) noexcept
    {
        double since = now - lap;
        lap = now;
        return since;
    }
};

struct Stopwatches {
    Stopwatch wall, processor;
};

Stopwatches &stopwatches() noexcept
{
    static Stopwatches state;
    return state;
}

using Text = char[textSize];

struct Texts {
    Text now, asc, asc2;
};

Texts &texts() noexcept
{
    thread_local Texts ofThread{};
    return ofThread;
}

bool calendarTime(int64_t t, os::CalendarTime &local) noexcept
{
    return t >= 0 && t <= lastTime && os::localTime(t, local) == os::Error::none;
}

/** The text of ctime, which is English in every locale, without its line break. */
char *ascText(int64_t t, Text &out) noexcept
{
    constexpr const char *days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char *months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    os::CalendarTime at;
    if (calendarTime(t, at))
        VxSprintf(out, sizeof out, "%s %s %2d %02d:%02d:%02d %d", days[at.weekday], months[at.month - 1],
                  at.day, at.hour, at.minute, at.second, at.year);
    else
        VxStrCpy(out, VxMsg(VxToolsMsgID(), messageInvalidTime), sizeof out);
    return out;
}

/** What the locale writes, or the text that needs none: false when it does not fit. */
bool localeText(int64_t t, int32_t what, char *buf, size_t size) noexcept
{
    using os::TimeForm;
    os::CalendarTime at;
    bool known = calendarTime(t, at);
    char date[256] = "", time[256] = "";
    if (known && (what & withDate))
        known = os::localTimeText(t, TimeForm::date, date, sizeof date) == os::Error::none;
    if (known && (what & withTime))
        known = os::localTimeText(t, TimeForm::time, time, sizeof time) == os::Error::none;
    Text plain;
    const char *parts[] = {known ? date : ascText(t, plain), *date && *time ? " " : "", time};
    size_t length = 0;
    for (const char *part : parts) {
        size_t n = std::strlen(part);
        if (n >= size - length)
            return false;
        std::memcpy(buf + length, part, n + 1);
        length += n;
        if (!known)
            break;
    }
    return true;
}

}

void VxTimeWallBeg(void)
{
    stopwatches().wall.begin(VxTimingGetWall());
}

double VxTimeWallEnd(void)
{
    return VxTimingGetWall() - stopwatches().wall.start;
}

double VxTimeWallDel(void)
{
    return stopwatches().wall.split(VxTimingGetWall());
}

double VxTimingGetWall(void)
{
    int64_t now = os::wallMicroseconds();
    return static_cast<double>(now / microseconds) + static_cast<double>(now % microseconds) * 1e-6;
}

void VxTimeTstBeg(void)
{
    stopwatches().processor.begin(VxTimingGetTime());
}

double VxTimeTstEnd(void)
{
    return VxTimingGetTime() - stopwatches().processor.start;
}

double VxTimeTstDel(void)
{
    return stopwatches().processor.split(VxTimingGetTime());
}

double VxTimingGetTime(void)
{
    return static_cast<double>(os::processorMicroseconds()) / static_cast<double>(microseconds);
}

int64_t VxTime(void)
{
    return os::wallSeconds();
}

char *VxTimeAsc(void)
{
    return ascText(VxTime(), texts().now);
}

char *VxTimeToAsc(int64_t t)
{
    return ascText(t, texts().asc);
}

char *VxTimeToAsc2(int64_t t)
{
    Text &out = texts().asc2;
    os::CalendarTime at;
    if (calendarTime(t, at))
        VxSprintf(out, sizeof out, "%d.%d.%d_%d:%d", at.year % 100, at.month, at.day, at.hour, at.minute);
    return out;
}

uint32_t VxTimeToFmt(int64_t t, int32_t what, char *buf, int32_t size)
{
    if (!buf || size < 1)
        return 1;
    *buf = '\0';
    if (what < withDate || what > (withDate | withTime) ||
        !localeText(t, what, buf, static_cast<size_t>(size))) {
        *buf = '\0';
        return 1;
    }
    return 0;
}
