#pragma once

#include <cstddef>
#include <cstdint>

namespace talm {

/** "2026-11-21 13:52:01" in the user's time zone, cut to `size` bytes. */
void localTimeText(int64_t seconds, char *out, size_t size);

}
