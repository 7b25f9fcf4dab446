#pragma once

// Blocks of the toolkit's allocator, for storage whose size is a product.

#include <cstdint>
#include <limits>

#include "heap/block.h"
#include "vx/err.h"

namespace vx::containers {

using heap::Block;

/** True for a size that a block can have; one that is too large is filed as a refused request. */
inline bool blockCanHave(int64_t bytes)
{
    constexpr int32_t errorAllocate = 1;
    constexpr int64_t largest = std::numeric_limits<int32_t>::max();
    if (bytes <= largest)
        return true;
    VxErrInt(errorAllocate, static_cast<int32_t>(largest));
    return false;
}

/** A block of `count` records, not set; null when it cannot be had. */
template <typename T> Block<T> allocate(int64_t count)
{
    void *block = nullptr;
    int64_t bytes = count * static_cast<int64_t>(sizeof(T));
    if (!blockCanHave(bytes) || VxMemAlloc(static_cast<int32_t>(bytes), &block))
        return {};
    return Block<T>(static_cast<T *>(block));
}

/** The same, filled with zeros. */
template <typename T> Block<T> allocateZero(int64_t count)
{
    void *block = nullptr;
    int64_t bytes = count * static_cast<int64_t>(sizeof(T));
    if (!blockCanHave(bytes) || VxMemAllocZero(static_cast<int32_t>(bytes), &block))
        return {};
    return Block<T>(static_cast<T *>(block));
}

}
