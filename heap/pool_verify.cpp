// A walk over everything an area consists of, for tests and for finding who
// wrote past the end of a block.

#include <algorithm>
#include <unordered_set>

#include "heap/pool_area.h"
#include "heap/pool_chunks.h"

namespace vx::heap {

namespace {

using FreeBlocks = std::unordered_set<const std::byte *>;

const char *verifyChunk(int32_t area, const Chunk &chunk, FreeBlocks &free)
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
        } else {
            BlockInUse block = inspect(p);
            if (block.found != Found::block)
                return "a header or trailer is overwritten";
            payload = block.payload;
        }
        previousIsFree = headerOf(p) > 0;
        p += payload + tagBytes;
    }
    return nullptr;
}

bool isZeroAhead(const Carving &carving)
{
    const std::byte *p = payloadOf(carving.block);
    if (headerOf(p) != carving.payload)
        return true; // it is not carved from any more
    return std::all_of(p + sizeof(FreeLinks), static_cast<const std::byte *>(carving.zeroTo),
                       [](std::byte b) { return b == std::byte{0}; });
}

const char *verifyList(int32_t area, int32_t list, FreeBlocks &free)
{
    Link back = headLink(area, list);
    Link link = VgAreas[area].heads[list].first;
    const AreaState &state = stateOf(area);
    if (link && !(state.mayHave >> list & 1))
        return "the map of lists misses one";
    if (link && link == state.carving.block && !isZeroAhead(state.carving))
        return "a block that is carved from is not zero where it should be";
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
    mergeWaiting();
    FreeBlocks free;
    for (uint32_t number = stateOf(area).chunks; number; number = chunkAt(number).next)
        if (const char *wrong = verifyChunk(area, chunkAt(number), free))
            return wrong;
    for (int32_t list = 0; list < listCount; ++list)
        if (const char *wrong = verifyList(area, list, free))
            return wrong;
    return free.empty() ? nullptr : "a free block is on no list";
}

}
