// Merging what was kept: a walk over the blocks of an area in the order of
// addresses, which finds those that are neighbours and makes the lists anew.

#include <algorithm>

#include "heap/pool_lists.h"

namespace vx::heap {

namespace {

/** The lists of an area while they are made anew, in the order of addresses. */
class NewLists {
public:
    explicit NewLists(AreaState &area) : area_(area)
    {
        area.mayHave = 0;
        area.blocks = area.live;
        area.slab = noBlock();
        area.slabPayload = 0;
        std::fill(std::begin(area.kept), std::end(area.kept), noBlock());
        for (int32_t list = 0; list < listCount; ++list) {
            last_[list] = area.headsLink + static_cast<Link>(list);
            setNext(headOf(area, list), nullLink);
        }
    }

    void append(Link self, Payload p, int32_t payload)
    {
        setFree(p, payload);
        int32_t list = listOf(payload);
        setLinks(p, {nullLink, last_[list]});
        setNext(payloadOf(last_[list]), self);
        last_[list] = self;
        area_.mayHave |= uint64_t{1} << list;
    }

private:
    AreaState &area_;
    Link last_[listCount];
};

// How far ahead of the walk memory is asked for.
constexpr ptrdiff_t fetchAhead = 2048;

inline void fetch(const std::byte *at)
{
    constexpr ptrdiff_t cacheLine = 64;
    __builtin_prefetch(at, 1);
    __builtin_prefetch(at + cacheLine, 1);
}

/** Whether a block of so many payload bytes at `p` ends with `trailer`. */
inline bool isSound(const Chunk &chunk, const std::byte *p, int64_t payload, int32_t trailer)
{
    return payload % unitBytes == 0 && payload <= chunk.first + chunk.span - p &&
           wordAt(p + payload) == trailer;
}

/** Nobody knows what lies behind a damaged block: the chunk is merged up to it, and never again beyond. */
void giveUp(Chunk &chunk, const std::byte *p)
{
    complain(chunk.area, "a header or trailer is overwritten", p);
    chunk.damaged = true;
}

/** @return whether the chunk is wholly free, and then on no list */
bool mergeChunk(Chunk &chunk, NewLists &lists)
{
    const AreaState &area = *chunk.area;
    Payload end = chunk.first + chunk.span + tagBytes;
    Payload run = nullptr; // of neighbours that are free or kept
    auto endRun = [&](Payload behind) {
        if (run)
            lists.append(linkOf(chunk, run), run, static_cast<int32_t>(behind - run - tagBytes));
        run = nullptr;
    };
    Payload p = chunk.first;
    while (p != end) {
        fetch(p + fetchAhead);
        // A branch for each kind, so that the processor goes on at the next
        // block before it has seen this one.
        int32_t header = headerOf(p);
        int64_t payload = keptPayload(header);
        if (payload > 0) {
            if (!isSound(chunk, p, payload, area.tag))
                break;
        } else if (header > 0) {
            payload = header;
            if (!isSound(chunk, p, payload, header))
                break;
        } else {
            payload = payloadFor(area.trackingBytes - int64_t{header});
            if (header == 0 || !isSound(chunk, p, payload, area.tag))
                break;
            endRun(p);
            p += payload + tagBytes;
            continue;
        }
        if (!run)
            run = p;
        p += payload + tagBytes;
    }
    if (p == end && run == chunk.first)
        return true;
    endRun(p);
    if (p != end)
        giveUp(chunk, p);
    return false;
}

}

void mergeFree(AreaState &area)
{
    NewLists lists(area);
    for (uint32_t number = area.chunks; number;) {
        Chunk &chunk = chunkAt(number);
        number = chunk.next;
        if (mergeChunk(chunk, lists))
            dropChunk(chunk);
    }
    setMergeBelow(area, mergeBelowFor(area));
}

void setMergeBelow(AreaState &area, uint32_t live)
{
    area.mergeBelow = live;
    area.keepAbove = isLarge(area) ? UINT32_MAX : live;
}

uint32_t mergeBelowFor(const AreaState &area)
{
    if (area.trackingBytes || manager().statistics)
        return UINT32_MAX; // each block is looked at when it is given back
    return area.live < manyBlocks / 2 ? manyBlocks : std::max(area.live / 4, manyBlocks / 2);
}

bool mergeEverything()
{
    bool anything = false;
    for (int32_t i = 0; i < VgNAreas; ++i)
        if (isArea(i) && keepsAny(stateOf(i))) {
            mergeFree(stateOf(i));
            anything = true;
        }
    return anything;
}

}
