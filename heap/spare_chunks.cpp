// Chunks that were given back, kept for the next store.

#include "heap/spare_chunks.h"

#include <mutex>
#include <new>
#include <utility>

#include "heap/heap_state.h"
#include "vx/mem.h"

namespace vx::heap {

namespace {

constexpr int32_t mostSpare = 32; ///< 2 MB

/** The chunk kept last; null when there is none. */
void *takeSpare() noexcept
{
    SpareChunks &spare = state().spare;
    std::lock_guard lock(spare.mutex);
    if (!spare.first)
        return nullptr;
    --spare.count;
    return std::exchange(spare.first, spare.first->next);
}

bool keep(void *chunk) noexcept
{
    SpareChunks &spare = state().spare;
    std::lock_guard lock(spare.mutex);
    if (spare.count == mostSpare)
        return false;
    spare.first = new (chunk) SpareChunk{spare.first};
    ++spare.count;
    return true;
}

}

void *takeSpareChunk()
{
    void *chunk = takeSpare();
    if (!chunk)
        VxMemAlloc(spareChunkBytes, &chunk);
    return chunk;
}

void giveBackSpareChunk(void *chunk) noexcept
{
    if (!keep(chunk))
        VxMemFree(&chunk);
}

void freeSpareChunks() noexcept
{
    while (void *chunk = takeSpare())
        VxMemFree(&chunk);
}

}
