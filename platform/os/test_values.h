#pragma once

// Values that tests put in place of the system's own. Only in builds with VX_FAULTS.

#include <cstdint>

namespace vx::os {

/** From now on wallSeconds() and wallMicroseconds() give this time; negative for the system's clock. */
void setTestClock(int64_t microseconds) noexcept;

/** What localeCodePage() and memoryStatus() report instead of the system's values; -1 and null for those. */
void setTestLocaleCodePage(int32_t codePage) noexcept;
struct MemoryStatus;
void setTestMemoryStatus(const MemoryStatus *status) noexcept;

}
