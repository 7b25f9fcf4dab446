#pragma once

#include <cstddef>
#include <memory>

#include "platform/os/os.h"
#include "vx/mem.h"

namespace vx::heap {

struct FreeBlock {
    void operator()(void *block) const noexcept { VxMemFree(&block); }
};

/** A block of the toolkit's allocator that is given back unless it is released. */
template <typename T = void> using Block = std::unique_ptr<T, FreeBlock>;

/** On large pages a block of megabytes is filled several times as fast for the first time. */
inline void preferLargePages(void *block, size_t bytes) noexcept
{
    constexpr size_t worthIt = size_t{4} << 20;
    if (bytes >= worthIt)
        os::preferLargePages(block, bytes);
}

}
