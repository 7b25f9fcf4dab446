#pragma once

// Areas: free lists over the blocks of their chunks.

#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "heap/pool_chunks.h"
#include "vx/pool.h"
#include "vx/pool.hpp"

namespace vx::heap {

/**
 * The block of the large list that an area carves small ones from, one after
 * the other, and how far ahead its bytes are known to be zero. It is only
 * believed while the block is first of its list and has this payload: whatever
 * else happened to it has changed the one or the other.
 */
struct Carving {
    Link block = nullLink;
    int32_t payload = 0;
    Payload p = noBlock();       ///< the block's
    std::byte *zeroTo = nullptr; ///< from behind the block's links
};

/** What VxHsmArea has no room for. One goes with each entry of the area table, and keeps its place. */
struct AreaState {
    Payload heads = nullptr; ///< those of the entry
    uint64_t mayHave = 0;    ///< bit k: list k may have a block; clear: it has none
    Carving carving;
    int32_t index = 0;
    Link headsLink = nullLink; ///< names the first of them
    int32_t tag = areaTag;     ///< the trailer of its blocks
    int32_t trackingBytes = 0; ///< that a block of the area carries for the list of live blocks
    uint32_t chunks = 0;       ///< the first of its chunks
    uint32_t chunkCount = 0;
    char name[64] = ""; ///< cut to fit

    // While statistics are on.
    int64_t requests = 0, frees = 0;
    int64_t bytes = 0, peakBytes = 0, grossBytes = 0;
};

#ifdef NDEBUG
constexpr bool checkedByDefault = false;
#else
constexpr bool checkedByDefault = true;
#endif

/**
 * Blocks of large areas that were given back and are not yet merged. Such
 * blocks and their neighbours are seldom near the processor; a group of them
 * is fetched together, and then waits for memory about once.
 */
struct Waiting {
    static constexpr uint32_t room = 32;
    Payload blocks[room] = {};
    uint32_t count = 0;
};

/** The manager: the area table is the exported VgAreas and VgNAreas. */
struct StorageManager {
    bool started = false;
    bool failed = false;
    bool statistics = false;          ///< count what areas hand out
    bool checking = checkedByDefault; ///< report misuse to the debugger's output, with the area's name
    int32_t maxAlignment = unitBytes;
    int32_t sizeLimit = 16'777'216; ///< kept, without effect
    int32_t pageBytes = 4096;
    Link liveBlocks = nullLink; ///< of the tracked area
    // The pool that was allocated from last: its record is known to be readable.
    const void *lastPool = nullptr;
    AreaState *lastPoolArea = nullptr;
    Waiting waiting;
    std::vector<std::unique_ptr<AreaState>> areas;
};

namespace detail {

/** Built before anything runs, and never destroyed: hosts may free blocks until the very end. */
template <typename T> union Lasting {
    T value;
    constexpr Lasting() : value{} {}
    ~Lasting() {}
};
extern constinit Lasting<StorageManager> storage;

}

inline StorageManager &manager()
{
    return detail::storage.value;
}

inline AreaState &stateOf(int32_t area)
{
    return *manager().areas[static_cast<size_t>(area)];
}

/** In use, by its index. */
bool isArea(int64_t index);

/** Have states for so many areas. @throw std::bad_alloc */
void needStates(int32_t count);

/** Let links name the lists of all areas of the table, wherever it is now. */
void placeAreas();

/** Empty lists, a name, no chunk. */
void openArea(int32_t index, const char *name, int32_t chunkSize, bool tracked);

/** Release every chunk and mark the entry unused. */
void closeArea(int32_t index);

/** Give back a chunk without a block in use. */
void dropChunk(const Chunk &chunk);

/**
 * Let the area have a chunk with a free block, on no list, that a request of
 * `gross` bytes fits in.
 * @return the block's link
 * @throw VX::VxException when there is none to be had
 */
Link addChunk(AreaState &area, int64_t gross);

/**
 * A zero-filled block of `size` bytes, or null for a size below 1 or beyond 31 bits.
 * @throw VX::VxException when the area needs a chunk and gets none
 */
Payload allocate(int32_t area, int64_t size);

/** What a pointer is. */
enum class Found { block, notOurs, freeBlock, damaged };

struct BlockInUse {
    Found found;
    AreaState *area = nullptr;
    int32_t size = 0;    ///< bytes asked for
    int32_t payload = 0; ///< gross bytes less the tags
};

/** Looks at a pointer without trusting what it points at. */
BlockInUse inspect(const std::byte *p);

/** Merge the blocks that wait for it. */
void mergeWaiting();

/** The area of a pool's record, or null for what is no record of a pool in use. */
AreaState *areaOfPool(const void *pool);

// Only a tracked area and the time that statistics are kept need these.
void enter(AreaState &area, Payload p, Link self, int32_t size, int32_t payload);
void leave(AreaState &area, Payload p, int32_t size, int32_t payload);

/** Tell the debugger's output what is wrong, in checking mode. */
void complain(const AreaState *area, const char *what, const void *p);

/** File error 84. @return 1 */
uint32_t refuse(const char *where);

/** Start the manager unless it runs. */
bool startManager();

/** Run `body`; what it throws for want of memory becomes `failure`. */
template <typename Body, typename Result> inline Result guarded(Result failure, Body body)
{
    try {
        return body();
    } catch (const VX::VxException &e) {
        complain(nullptr, e.what(), nullptr);
    } catch (const std::bad_alloc &) {
    }
    return failure;
}

/** Walk an area: headers, trailers, merging, links, lists and guards. Null when all is well, else what is
 * not. */
const char *verifyArea(int32_t area);

}
