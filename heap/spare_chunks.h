#pragma once

// Chunks for stores that cut them into blocks of their own.
//
// A program that fills and drops such stores in turn gets the same chunks
// again, whose pages the processor and the system know: a run-time heap gives
// its end back to the system, and each page that comes from there anew costs
// more than the filling of it. Refused memory and the toolkit's end free what
// is kept. Any thread may call.

#include <cstdint>

namespace vx::heap {

constexpr int32_t spareChunkBytes = 64 * 1024;

/** A chunk, not set; null for want of memory, reported as VxMemAlloc reports it. */
void *takeSpareChunk();

void giveBackSpareChunk(void *chunk) noexcept;

/** Free the chunks that are kept. */
void freeSpareChunks() noexcept;

}
