#pragma once

// Blocks larger than the public allocator's sizes can say.

#include <cstdint>

namespace vx::heap {

/**
 * VxMemAlloc for any number of bytes; the block goes back through VxMemFree.
 * The report of a refusal names at most INT32_MAX bytes.
 */
uint32_t allocate(int64_t bytes, void **block);

}
