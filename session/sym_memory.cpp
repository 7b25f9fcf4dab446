// Warns the user when the address space runs short.

#include "vx/sym.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <limits>

#include "platform/os/os.h"
#include "vx/msg.h"
#include "vx/str.h"
#include "vx/tools.h"

namespace {

constexpr int32_t smallAddressSpace = 124;
constexpr int32_t addressSpaceRunsOut = 125;

constexpr double mebibyte = 1024.0 * 1024.0;
constexpr int32_t enoughTotalMiB = 768;
constexpr int32_t enoughAvailableMiB = 128;

int32_t nearestMiB(double bytes)
{
    constexpr double lowest = std::numeric_limits<int32_t>::min();
    constexpr double highest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(std::round(bytes / mebibyte), lowest, highest));
}

/** Show a message of the toolkit's catalogue, its text a printf format. */
void show(int32_t number, ...)
{
    const char *format = VxMsg(VxToolsMsgID(), number);
    if (!format)
        return;
    char text[1024] = "";
    va_list values;
    va_start(values, number);
    vx::os::formatArgs(text, sizeof text, format, values);
    va_end(values);
    VxStrProcNewline(text);
    VxMessage(text);
}

}

uint32_t VxCheckMemory(void)
{
    vx::os::MemoryStatus status{};
    if (vx::os::memoryStatus(status) != vx::os::Error::none)
        return 0;
    double physical = static_cast<double>(status.totalPhysical);
    if (static_cast<double>(status.totalVirtual) < enoughTotalMiB * mebibyte)
        show(smallAddressSpace, nearestMiB(static_cast<double>(status.totalPageFile)),
             nearestMiB(enoughTotalMiB * mebibyte - physical));
    if (static_cast<double>(status.availableVirtual) < enoughAvailableMiB * mebibyte)
        show(addressSpaceRunsOut, enoughAvailableMiB);
    return 0;
}
