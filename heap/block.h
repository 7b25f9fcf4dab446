#pragma once

#include <memory>

#include "vx/mem.h"

namespace vx::heap {

struct FreeBlock {
    void operator()(void *block) const noexcept { VxMemFree(&block); }
};

/** A block of the toolkit's allocator that is given back unless it is released. */
template <typename T = void> using Block = std::unique_ptr<T, FreeBlock>;

}
