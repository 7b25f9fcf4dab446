#pragma once

// Blocks of one size, cut from chunks of the toolkit's allocator. A block that
// is given back is the next to be taken; chunks are freed all at once.

#include <cstddef>
#include <cstdint>
#include <new>

#include "vx/mem.h"

namespace vx::containers {

class BlockPool {
public:
    /** @param bytes  of a block, at least a pointer's; @param alignment  a power of two */
    BlockPool(size_t bytes, size_t alignment) noexcept
        : bytes_((bytes + alignment - 1) & ~(alignment - 1)), alignment_(alignment)
    {
    }

    ~BlockPool() { freeAll(); }

    BlockPool(const BlockPool &) = delete;
    BlockPool &operator=(const BlockPool &) = delete;

    /** A block, not set; null when no memory is left. */
    void *take()
    {
        if (free_) {
            Free *block = free_;
            free_ = block->next;
            return block;
        }
        if (left_ < bytes_ && !addChunk())
            return nullptr;
        void *block = next_;
        next_ += bytes_;
        left_ -= bytes_;
        return block;
    }

    void giveBack(void *block) noexcept
    {
        auto freed = static_cast<Free *>(block);
        freed->next = free_;
        free_ = freed;
    }

    void freeAll() noexcept
    {
        while (chunks_) {
            void *chunk = chunks_;
            chunks_ = chunks_->next;
            VxMemFree(&chunk);
        }
        free_ = nullptr;
        next_ = nullptr;
        left_ = 0;
        blocksInChunk_ = fewest;
    }

private:
    struct Free {
        Free *next;
    };

    static constexpr size_t fewest = 8; ///< blocks in the first chunk; each next one has twice as many
    static constexpr size_t largestChunk = 64 * 1024; ///< bytes, unless one block is larger

    bool addChunk()
    {
        size_t payload = bytes_ * (bytes_ > largestChunk ? 1 : blocksInChunk_);
        size_t bytes = payload + sizeof(Free) + alignment_;
        void *chunk = nullptr;
        if (bytes > INT32_MAX || VxMemAlloc(static_cast<int32_t>(bytes), &chunk))
            return false;
        chunks_ = new (chunk) Free{chunks_};
        auto first = reinterpret_cast<uintptr_t>(chunks_ + 1);
        next_ = reinterpret_cast<char *>((first + alignment_ - 1) & ~(alignment_ - 1));
        left_ = payload;
        if (2 * payload <= largestChunk)
            blocksInChunk_ *= 2;
        return true;
    }

    size_t bytes_;
    size_t alignment_;
    Free *free_ = nullptr;
    Free *chunks_ = nullptr;
    char *next_ = nullptr;
    size_t left_ = 0;
    size_t blocksInChunk_ = fewest;
};

}
