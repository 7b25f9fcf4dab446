#pragma once

// What the general allocator keeps for the process.

#include <atomic>

namespace vx::heap {

struct HeapState {
    /** The emergency reserve; null when released or never taken. */
    std::atomic<void *> reserve{nullptr};
};

HeapState &state() noexcept;

}
