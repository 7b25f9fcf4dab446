#pragma once

// Areas: free lists over the blocks of their chunks.

#include <cstdint>
#include <vector>

#include "heap/pool_block.h"
#include "vx/pool.h"

namespace vx::heap {

/** What VxHsmArea has no room for. One stands beside each entry of the area table. */
struct AreaState {
    uint64_t nonEmpty = 0; ///< bit k: list k has a block
    uint32_t chunks = 0;   ///< the first of its chunks
    char name[64] = "";    ///< cut to fit

    // While statistics are on.
    int64_t requests = 0, frees = 0;
    int64_t bytes = 0, peakBytes = 0, grossBytes = 0;
};

/** The manager: the area table is the exported VgAreas and VgNAreas. */
struct StorageManager {
    bool started = false;
    bool failed = false;
    bool statistics = false; ///< count what areas hand out
    bool checking = false;   ///< report misuse to the debugger's output, with the area's name
    int32_t maxAlignment = unitBytes;
    int32_t sizeLimit = 16'777'216; ///< kept, without effect
    int32_t pageBytes = 4096;
    int64_t counters[3] = {}; ///< allocations, frees, refusals
    Link liveBlocks = nullLink; ///< of the tracked area
    std::vector<AreaState> areas;
};
StorageManager &manager();

/** In use, by its index. */
bool isArea(int64_t index);

/** Empty lists, a name, no chunk. */
void openArea(int32_t index, const char *name, int32_t chunkSize, bool tracked);

/** Release every chunk and mark the entry unused. */
void closeArea(int32_t index);

/**
 * A block of `size` bytes, or null for a size below 1 or beyond 31 bits. Its
 * bytes are not cleared.
 * @throw VX::VxException when the area needs a chunk and gets none
 */
Payload allocate(int32_t area, int64_t size);

/** What a pointer is. */
enum class Found { block, notOurs, freeBlock, damaged };

struct BlockInUse {
    Found found;
    int32_t area = -1;
    uint32_t chunk = 0;
    int32_t size = 0;    ///< bytes asked for
    int32_t payload = 0; ///< gross bytes less the tags
};

/** Looks at a pointer without trusting what it points at. */
BlockInUse inspect(const std::byte *p);

/** Take a block back. What is not a block in use is left alone: false. */
bool release(Payload p);

/** Tell the debugger's output what is wrong, in checking mode. */
void complain(int32_t area, const char *what, const void *p);

/** Walk an area: headers, trailers, merging, links, lists and guards. Null when all is well, else what is not. */
const char *verifyArea(int32_t area);

}
