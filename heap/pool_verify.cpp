// A walk over everything an area consists of, for tests and for finding who
// wrote past the end of a block.

#include <algorithm>
#include <unordered_set>

#include "heap/pool_area.h"
#include "heap/pool_chunks.h"

namespace vx::heap {

namespace {

using FreeBlocks = std::unordered_set<const std::byte *>;

const char *verifyChunk(int32_t area, const Chunk &chunk, FreeBlocks &free, uint32_t &live)
{
    if (chunk.area != &stateOf(area))
        return "a chunk of another area";
    if (wordAt(chunk.base()) != guard || wordAt(chunk.lastWord()) != guard)
        return "a guard is overwritten";
    bool previousIsFree = false;
    const std::byte *end = chunk.lastWord() + wordBytes;
    for (const std::byte *p = chunk.first; p != end;) {
        if (p > end)
            return "blocks do not end with their chunk";
        int64_t payload = headerOf(p);
        if (payload > 0) {
            if (previousIsFree)
                return "neighbouring free blocks are not merged";
            if (payload % unitBytes != 0 || payload > end - p - wordBytes - wordBytes)
                return "the header of a free block is overwritten";
            if (wordAt(p + payload) != payload)
                return "the trailer of a free block is overwritten";
            free.insert(p);
        } else if (int32_t kept = keptPayload(headerOf(p))) {
            payload = kept;
            if (kept % unitBytes != 0 || kept > end - p - tagBytes || wordAt(p + kept) != stateOf(area).tag)
                return "a tag of a kept block is overwritten";
            free.insert(p);
        } else {
            BlockInUse block = inspect(p);
            if (block.found != Found::block)
                return "a header or trailer is overwritten";
            payload = block.payload;
            ++live;
        }
        previousIsFree = headerOf(p) > 0;
        p += payload + tagBytes;
    }
    return nullptr;
}

const char *verifyKept(const AreaState &state, FreeBlocks &free)
{
    uint32_t count = 0;
    if (state.slabPayload) {
        const std::byte *slab = state.slab;
        if (free.erase(slab) == 0 || headerOf(slab) != keptHeader(state.slabPayload))
            return "the slab is no kept block";
        if (!std::all_of(slab, slab + state.slabPayload, [](std::byte b) { return b == std::byte{0}; }))
            return "the slab is not zero";
    }
    for (int32_t k = 0; k <= exactLists; ++k)
        for (const std::byte *p = state.kept[k]; p != noBlock(); p = nextKept(p), ++count)
            if (free.erase(p) == 0 || headerOf(p) != keptHeader(k * unitBytes))
                return "what is kept is no kept block of its size";
    return count == keptCount(state) ? nullptr : "the count of kept blocks is wrong";
}

const char *verifyList(int32_t area, int32_t list, FreeBlocks &free)
{
    Link back = headLink(area, list);
    Link link = VgAreas[area].heads[list].first;
    const AreaState &state = stateOf(area);
    if (link && !(state.mayHave >> list & 1))
        return "the map of lists misses one";
    while (link) {
        const std::byte *p = payloadOf(link);
        if (free.erase(p) == 0)
            return "a list names what is no free block";
        if (listOf(headerOf(p)) != list)
            return "a free block is on another size's list";
        if (backOf(p) != back)
            return "a link back is wrong";
        back = link;
        link = nextOf(p);
    }
    return nullptr;
}

}

const char *verifyArea(int32_t area)
{
    settleWaiting();
    uint32_t live = 0;
    FreeBlocks free;
    for (uint32_t number = stateOf(area).chunks; number; number = chunkAt(number).next)
        if (const char *wrong = verifyChunk(area, chunkAt(number), free, live))
            return wrong;
    if (live != stateOf(area).live)
        return "the count of blocks in use is wrong";
    if (const char *wrong = verifyKept(stateOf(area), free))
        return wrong;
    for (int32_t list = 0; list < listCount; ++list)
        if (const char *wrong = verifyList(area, list, free))
            return wrong;
    return free.empty() ? nullptr : "a free block is on no list";
}

}
