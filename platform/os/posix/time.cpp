#include "platform/os/os.h"

#include <langinfo.h>
#include <locale.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <memory>
#include <strings.h>

#include "platform/os/fault.h"
#include "platform/os/native_text.h"
#include "platform/os/posix/error.h"
#include "platform/os/test_values.h"

namespace vx::os {

namespace {

#ifdef VX_FAULTS
std::atomic<int64_t> testMicroseconds{-1};
std::atomic<int64_t> testProcessorMicroseconds{-1};
#endif

/** A text of the user's locale in the process code page; false when it does not fit. */
bool handOutLocaleText(locale_t user, const char *text, char *out, size_t size) noexcept
{
    char room[512];
    if (strcasecmp(nl_langinfo_l(CODESET, user), "UTF-8") == 0) {
        fromUtf8(text, room, sizeof room);
        text = room;
    }
    size_t length = std::strlen(text);
    if (length < size)
        std::memcpy(out, text, length + 1);
    return length < size;
}

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

int64_t processorMicroseconds() noexcept
{
#ifdef VX_FAULTS
    if (int64_t set = testProcessorMicroseconds; set >= 0)
        return set;
#endif
    static_assert(CLOCKS_PER_SEC == 1000000);
    return std::clock();
}

Error localTimeText(int64_t seconds, TimeForm form, char *out, size_t size) noexcept
{
    VX_OS_VERB("localTimeText");
    std::time_t t = static_cast<std::time_t>(seconds);
    std::tm local{};
    if (!localtime_r(&t, &local))
        return errorOf(errno);
    // Asked of the environment, not of the process's locale, which a host may never have set.
    locale_t user = newlocale(LC_TIME_MASK | LC_CTYPE_MASK, "", nullptr);
    if (!user)
        return errorOf(errno);
    char text[256];
    bool fits = strftime_l(text, sizeof text, form == TimeForm::date ? "%x" : "%X", &local, user) > 0 &&
                handOutLocaleText(user, text, out, size);
    freelocale(user);
    return fits ? Error::none : refusePath(Error::nameTooLong);
}

#ifdef VX_FAULTS
void setTestClock(int64_t microseconds) noexcept
{
    testMicroseconds = microseconds;
}

void setTestProcessorClock(int64_t microseconds) noexcept
{
    testProcessorMicroseconds = microseconds;
}
#endif

Error fineClock(bool) noexcept
{
    VX_OS_VERB("fineClock");
    // The clock here counts nanoseconds, whatever is asked of it.
    return Error::none;
}

}
