#pragma once

// Values that tests put in place of the system's own. Only in builds with VX_FAULTS.

#include <cstdint>

namespace vx::os {

/** From now on wallSeconds() and wallMicroseconds() give this time; negative for the system's clock. */
void setTestClock(int64_t microseconds) noexcept;

/** The same for processorMicroseconds(). */
void setTestProcessorClock(int64_t microseconds) noexcept;

/** What processorCount() reports; 0 for the machine's. */
void setTestProcessorCount(int32_t count) noexcept;

/** What describeSystem() reports; null for the system's own. Keeps the pointer. */
struct SystemDescription;
void setTestSystem(const SystemDescription *system) noexcept;

/** What localeCodePage() and memoryStatus() report instead of the system's values; -1 and null for those. */
void setTestLocaleCodePage(int32_t codePage) noexcept;
struct MemoryStatus;
void setTestMemoryStatus(const MemoryStatus *status) noexcept;

}
