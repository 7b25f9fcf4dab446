#pragma once

// Blocks of one size, cut from chunks. A block that is given back is the next
// to be taken; chunks go back all at once.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "heap/spare_chunks.h"
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

    /** True when a block can be had without a call. */
    bool isReady() const noexcept { return free_ || left_ >= bytes_; }

    /** Be ready; false when no memory is left. */
    bool prepare() { return isReady() || addChunk(); }

    /** A block of a pool that is ready, not set. */
    void *takeReady() noexcept
    {
        if (Free *block = free_) {
            free_ = block->next;
            return block;
        }
        void *block = next_;
        next_ += bytes_;
        left_ -= bytes_;
        return block;
    }

    /** A block, not set; null when no memory is left. */
    void *take() { return prepare() ? takeReady() : nullptr; }

    void giveBack(void *block) noexcept
    {
        auto freed = static_cast<Free *>(block);
        freed->next = free_;
        free_ = freed;
    }

    void freeAll() noexcept
    {
        while (chunks_) {
            Chunk *chunk = chunks_;
            chunks_ = chunk->next;
            freeChunk(chunk);
        }
        free_ = nullptr;
        next_ = nullptr;
        left_ = held_ = 0;
    }

private:
    struct Free {
        Free *next;
    };

    struct Chunk {
        Chunk *next;
        size_t bytes;
    };

    static constexpr size_t fewest = 8; ///< blocks in the first chunk
    static constexpr size_t full = heap::spareChunkBytes;

    /** A chunk as large as all before it, and soon full ones. */
    bool addChunk()
    {
        size_t extra = sizeof(Chunk) + alignment_;
        size_t bytes = std::max(fewest * bytes_ + extra, held_);
        if (bytes > full / 4)
            bytes = std::max(full, bytes_ + extra);
        Chunk *chunk = newChunk(bytes);
        if (!chunk)
            return false;
        chunks_ = chunk;
        held_ += bytes;
        auto first = reinterpret_cast<uintptr_t>(chunk + 1);
        next_ = reinterpret_cast<char *>((first + alignment_ - 1) & ~(alignment_ - 1));
        left_ = bytes - extra;
        return true;
    }

    Chunk *newChunk(size_t bytes)
    {
        void *chunk = nullptr;
        if (bytes == full)
            chunk = heap::takeSpareChunk();
        else if (bytes <= INT32_MAX)
            VxMemAlloc(static_cast<int32_t>(bytes), &chunk);
        return chunk ? new (chunk) Chunk{chunks_, bytes} : nullptr;
    }

    static void freeChunk(void *chunk) noexcept
    {
        if (static_cast<Chunk *>(chunk)->bytes == full)
            heap::giveBackSpareChunk(chunk);
        else
            VxMemFree(&chunk);
    }

    size_t bytes_;
    size_t alignment_;
    Free *free_ = nullptr;
    Chunk *chunks_ = nullptr;
    char *next_ = nullptr;
    size_t left_ = 0;
    size_t held_ = 0; ///< bytes of all chunks
};

}
