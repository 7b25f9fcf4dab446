#pragma once

#include <cstdint>

namespace vx::frame {

/** The event log's category for the toolkit's errors. */
constexpr int32_t errorCategory = 6;

/** Hand an error's text to the host's event log, at the level that belongs to its severity. */
void forwardToEventLog(int32_t severity, const char *text);

}
