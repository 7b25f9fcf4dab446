#include "platform/os/os.h"

#include <atomic>
#include <cerrno>
#include <ctime>

#include "platform/os/fault.h"
#include "platform/os/posix/error.h"
#include "platform/os/test_values.h"

namespace vx::os {

namespace {

#ifdef VX_FAULTS
std::atomic<int64_t> testMicroseconds{-1};
#endif

}

int64_t wallMicroseconds() noexcept
{
#ifdef VX_FAULTS
    if (int64_t set = testMicroseconds; set >= 0)
        return set;
#endif
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

int64_t wallSeconds() noexcept
{
#ifdef VX_FAULTS
    if (int64_t set = testMicroseconds; set >= 0)
        return set / 1000000;
#endif
    return static_cast<int64_t>(std::time(nullptr));
}

Error localTime(int64_t seconds, CalendarTime &out) noexcept
{
    VX_OS_VERB("localTime");
    std::time_t t = static_cast<std::time_t>(seconds);
    std::tm local{};
    if (!localtime_r(&t, &local))
        return errorOf(errno);
    out = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
           local.tm_min,         local.tm_sec,     local.tm_wday};
    return Error::none;
}

#ifdef VX_FAULTS
void setTestClock(int64_t microseconds) noexcept
{
    testMicroseconds = microseconds;
}
#endif

}
