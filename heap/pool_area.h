#pragma once

// Areas: free lists over the blocks of their chunks.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "heap/pool_chunks.h"
#include "vx/pool.h"
#include "vx/pool.hpp"

namespace vx::heap {

// An area with so many blocks in use keeps small ones that are given back. With
// half as many it merges each at once again, so that no area goes to and fro.
constexpr uint32_t manyBlocks = 256;

/** What VxHsmArea has no room for. One goes with each entry of the area table, and keeps its place. */
struct AreaState {
    Payload heads = nullptr; ///< those of the entry
    uint64_t mayHave = 0;    ///< bit k: list k may have a block; clear: it has none
    int32_t index = 0;
    Link headsLink = nullLink; ///< names the first of them
    int32_t tag = areaTag;     ///< the trailer of its blocks
    int32_t trackingBytes = 0; ///< that a block of the area carries for the list of live blocks
    uint32_t chunks = 0;       ///< the first of its chunks
    uint32_t chunkCount = 0;
    uint32_t live = 0;                ///< blocks in use
    uint32_t mergeBelow = manyBlocks; ///< keep blocks only while more than these are in use
    uint32_t keepAbove = manyBlocks;  ///< the same for those that need not wait: none of a large area
    uint32_t blocks = 0;              ///< in use or kept, without the slab
    Payload kept[exactLists + 1];     ///< by payload in units, the one given back last; noBlock() for none
    Payload slab = noBlock();         ///< a kept block of zeros, from whose front small ones are cut
    int32_t slabPayload = 0;          ///< 0 for no slab
    char name[64] = "";               ///< cut to fit

    // While statistics are on.
    int64_t requests = 0, frees = 0;
    int64_t bytes = 0, peakBytes = 0, grossBytes = 0;

    AreaState() { std::fill(std::begin(kept), std::end(kept), noBlock()); }
};

/**
 * Blocks of large areas that were given back and not looked at yet: they are
 * seldom near the processor, and a group of them waits for memory about once.
 */
struct Waiting {
    static constexpr uint32_t room = 32;
    Payload blocks[room] = {};
    uint32_t count = 0;

    void add(Payload p)
    {
        blocks[count++] = p;
        mayHave_[placeOf(p)] = true;
    }
    Payload takeLast()
    {
        Payload p = blocks[--count];
        mayHave_[placeOf(p)] = false;
        return p;
    }
    bool mayHave(const std::byte *p) const { return mayHave_[placeOf(p)]; }
    void forget(const std::byte *p)
    {
        count = static_cast<uint32_t>(std::remove(blocks, blocks + count, p) - blocks);
    }

private:
    static size_t placeOf(const std::byte *p) { return reinterpret_cast<uintptr_t>(p) / unitBytes % 1024; }
    bool mayHave_[1024] = {};
};

// An area of so many chunks does not fit near the processor: its blocks wait,
// and as they are in use it has no fewer chunks meanwhile.
constexpr uint32_t manyChunks = 4;

inline bool isLarge(const AreaState &area)
{
    return area.chunkCount >= manyChunks;
}

#ifdef NDEBUG
constexpr bool checkedByDefault = false;
#else
constexpr bool checkedByDefault = true;
#endif

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
    // The pool that was allocated from last, if nobody counts: its record is known to be readable.
    const void *lastPool = noBlock();
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
 * @return the block's link; null when there is no chunk, but merging may have made room
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

/** Take the blocks back that wait for it. */
void settleWaiting();

/** Merge all kept blocks of an area with their neighbours, and give wholly free chunks back. */
void mergeFree(AreaState &area);

/** The same for every area that keeps blocks. False when none did. */
bool mergeEverything();

/** Set with how many blocks in use an area merges what it keeps. */
void setMergeBelow(AreaState &area, uint32_t live);

/** With how many blocks in use it is to do so from now on. */
uint32_t mergeBelowFor(const AreaState &area);

/** Blocks that are kept, without the slab. */
inline uint32_t keptCount(const AreaState &area)
{
    return area.blocks - area.live;
}

inline bool keepsAny(const AreaState &area)
{
    return keptCount(area) > 0 || area.slabPayload > 0;
}

/** Whether the walk is worth its time: it looks at every block of the area. */
inline bool isWorthMerging(const AreaState &area)
{
    return keptCount(area) > area.live / 8;
}

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

/** Walk an area: headers, trailers, merging, links, lists, guards. Null, or what is wrong with it. */
const char *verifyArea(int32_t area);

}
