#pragma once

// What the general allocator keeps for the process.

#include <atomic>
#include <cstdint>
#include <mutex>

namespace vx::heap {

struct SpareChunk {
    SpareChunk *next;
};

/** Chunks that were given back, see heap/spare_chunks.h. */
struct SpareChunks {
    std::mutex mutex;
    SpareChunk *first = nullptr;
    int32_t count = 0;
};

struct HeapState {
    /** The emergency reserve; null when released or never taken. */
    std::atomic<void *> reserve{nullptr};
    SpareChunks spare;
};

HeapState &state() noexcept;

}
