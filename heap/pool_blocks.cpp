// Taking blocks from areas and giving them back. Everything that happens for
// each block stands in this file, so that the compiler sees it whole.
//
// With many blocks alive the time goes into cache misses, and into branches
// that nobody can foretell: whether a neighbour is free. So a block that is
// given back touches its own two lines and those that its neighbours' lists
// need, and merges without asking: an absent neighbour is a block of no bytes.

#include <algorithm>
#include <bit>

#include "heap/pool_area.h"
#include "vx/pool.h"

namespace vx::heap {

namespace {

constexpr int32_t persistentArea = 1;
constexpr int32_t noArea = -2;
constexpr int32_t notFound = -1;

// How many blocks of the large list are looked at for one that fits exactly.
constexpr int exactTries = 25;

// Bytes zeroed at a time ahead of where an area carves: one call for a dozen blocks.
constexpr ptrdiff_t zeroAhead = 1024;

/** Zero a whole payload. Their sizes vary, so usual ones do without a branch on the size. */
inline void zero(Payload p, int32_t payload)
{
    constexpr int32_t step = 16;
    constexpr int32_t usual = 8 * step;
    if (payload > usual) {
        std::memset(p, 0, static_cast<size_t>(payload));
    } else if (payload < step) {
        setLinks(p, {});
    } else {
        for (int32_t at = 0; at < usual; at += step)
            std::memset(p + std::min(at, payload - step), 0, step);
    }
}

// ---------------------------------------------------------------- lists

// A list's head begins with a link to its first block, as a free block does
// with one to the next.

inline Payload headOf(const AreaState &area, int32_t list)
{
    return area.heads + static_cast<uint32_t>(list) * sizeof(VxHsmHead);
}
static_assert(sizeof(VxHsmHead) == unitBytes);

/** Make a free block of `payload` bytes at `p`, which `self` names, and put it at the front of its list. */
inline void pushFree(AreaState &area, Link self, Payload p, int32_t payload)
{
    setFree(p, payload);
    int32_t list = listOf(payload);
    Payload head = headOf(area, list);
    Link next = nextOf(head);
    setNext(p, next);
    setBack(p, headLink(area.index, list));
    setBack(payloadOf(next), self);
    setNext(head, self);
    area.mayHave |= uint64_t{1} << list;
}

inline void unlinkFree(Payload p)
{
    Link next = nextOf(p);
    Link back = backOf(p);
    setBack(payloadOf(next), back);
    setNext(payloadOf(back), next);
}

/**
 * The first block of an exact list, or null. A list that begins with a block
 * somebody has written over is given up, as its links cannot be believed.
 */
inline Payload firstOf(const AreaState &area, int32_t list, Link self)
{
    if (!self)
        return nullptr;
    Payload p = payloadOf(self);
    if (headerOf(p) == list * unitBytes) [[likely]]
        return p;
    complain(&area, "a free block is overwritten", p);
    setNext(headOf(area, list), nullLink);
    return nullptr;
}

// ---------------------------------------------------------------- choosing a block

struct Chosen {
    Payload p = nullptr;
    Link self = nullLink;
};

/** Use the first block of an exact list, and what it has beyond `payload` as a free block. */
inline Chosen takeFirst(AreaState &area, int32_t list, int32_t payload)
{
    Payload head = headOf(area, list);
    Link self = nextOf(head);
    Payload p = firstOf(area, list, self);
    if (!p)
        return {};
    Link next = nextOf(p);
    setNext(head, next);
    setBack(payloadOf(next), headLink(area.index, list));
    int32_t gross = payload + tagBytes;
    if (int32_t rest = list * unitBytes - gross; rest > 0)
        pushFree(area, self + static_cast<uint32_t>(gross) / unitBytes, p + gross, rest);
    return {p, self};
}

inline Chosen fromExactLists(AreaState &area, int32_t payload)
{
    int32_t k = listOf(payload);
    if (Chosen chosen = takeFirst(area, k, payload); chosen.p)
        return chosen;
    // The remainder of a block one unit larger could not be a block.
    constexpr uint64_t exact = (uint64_t{1} << exactLists) - 1;
    for (uint64_t larger = area.mayHave & exact & ~uint64_t{0} << (k + 2); larger; larger &= larger - 1) {
        int32_t list = std::countr_zero(larger);
        if (Chosen chosen = takeFirst(area, list, payload); chosen.p)
            return chosen;
        area.mayHave &= ~(uint64_t{1} << list);
    }
    return {};
}

/** Zero on from where the area carves: until `needed` at least, never beyond `end`. */
[[gnu::noinline]] void zeroOn(Carving &carving, std::byte *needed, std::byte *end)
{
    std::byte *from = carving.zeroTo;
    carving.zeroTo = end - from > zeroAhead ? std::max(needed, from + zeroAhead) : end;
    std::memset(from, 0, static_cast<size_t>(carving.zeroTo - from));
}

/** The front of the block that was carved from last, zeroed, when it still is the first of the large list. */
inline Chosen carve(AreaState &area, int32_t payload)
{
    Carving &carving = area.carving;
    Payload head = headOf(area, largeList);
    Link self = nextOf(head);
    Payload p = payloadOf(self);
    int32_t gross = payload + tagBytes;
    int32_t rest = carving.payload - gross;
    if (self != carving.block || headerOf(p) != carving.payload || rest < leastLarge)
        return {};
    Payload behind = p + gross;
    Link next = nextOf(p);
    Link behindLink = self + static_cast<uint32_t>(gross) / unitBytes;
    if (behind + sizeof(FreeLinks) > carving.zeroTo) [[unlikely]]
        zeroOn(carving, behind + sizeof(FreeLinks), behind + rest);
    setLinks(p, {});
    setFree(behind, rest);
    setNext(behind, next);
    setBack(behind, headLink(area.index, largeList));
    setBack(payloadOf(next), behindLink);
    setNext(head, behindLink);
    carving.block = behindLink;
    carving.payload = rest;
    return {p, self};
}

bool isFreeBlock(const AreaState &area, const std::byte *p)
{
    const Chunk *chunk = chunkOf(p);
    if (!chunk || chunk->area != &area)
        return false;
    int32_t payload = headerOf(p);
    return payload > 0 && payload <= chunk->roomAt(p) && wordAt(p + payload) == payload;
}

/**
 * One that fits exactly among the first of the large list, else the first that
 * is large enough to be split. A list is cut off at a block somebody has written over.
 */
Link searchLargeList(const AreaState &area, int32_t payload)
{
    Link fit = nullLink;
    int looked = 0;
    Payload back = headOf(area, largeList);
    for (Link link = nextOf(back); link; link = nextOf(back)) {
        Payload p = payloadOf(link);
        if (!isFreeBlock(area, p)) {
            complain(&area, "a free block is overwritten", p);
            setNext(back, nullLink);
            break;
        }
        if (headerOf(p) == payload)
            return link;
        if (!fit && headerOf(p) >= payload + minGross)
            fit = link;
        if (fit && (payload < leastLarge || ++looked >= exactTries))
            break;
        back = p;
    }
    return fit;
}

/** @throw VX::VxException without a chunk */
[[gnu::noinline]] Chosen fromLargeList(AreaState &area, int32_t payload)
{
    Link self = searchLargeList(area, payload);
    int32_t gross = payload + tagBytes;
    if (!self) {
        // Room for this block and for a smallest one behind it.
        self = addChunk(area, int64_t{gross} + minGross);
        Payload p = payloadOf(self);
        pushFree(area, self, p, headerOf(p));
    }
    Payload p = payloadOf(self);
    int32_t rest = headerOf(p) - gross;
    unlinkFree(p);
    area.carving = {};
    if (rest > 0) {
        Payload behind = p + gross;
        Link behindLink = self + static_cast<uint32_t>(gross) / unitBytes;
        pushFree(area, behindLink, behind, rest);
        if (rest >= leastLarge)
            area.carving = {behindLink, rest, behind + sizeof(FreeLinks)};
    }
    std::memset(p, 0, static_cast<size_t>(payload));
    return {p, self};
}

inline Chosen choose(AreaState &area, int32_t payload)
{
    if (payload < leastLarge) {
        if (Chosen chosen = fromExactLists(area, payload); chosen.p) {
            zero(chosen.p, payload);
            return chosen;
        }
        if (Chosen chosen = carve(area, payload); chosen.p)
            return chosen;
    }
    return fromLargeList(area, payload);
}

inline Payload allocateIn(AreaState &area, int64_t size)
{
    auto payload = static_cast<int32_t>(grossOf(size + area.trackingBytes) - tagBytes);
    auto [p, self] = choose(area, payload);
    setHeader(p, static_cast<int32_t>(-size));
    setWord(p + payload, areaTag - area.index);
    if (manager().statistics || area.trackingBytes) [[unlikely]]
        enter(area, p, self, static_cast<int32_t>(size), payload);
    return p;
}

/** A zero-filled block of an area in use, or null with error 84. */
[[gnu::noinline]] void *allocateOrRefuse(AreaState *area, int32_t count, int32_t size, const char *where)
{
    int64_t bytes = int64_t{count} * size;
    if (area && count > 0 && size > 0 && bytes <= maxRequest) {
        if (Payload p = guarded(Payload{}, [&] { return allocateIn(*area, bytes); }))
            return p;
    }
    return refuse(where), nullptr;
}

uint32_t store(void *block, void **out)
{
    *out = block;
    return block ? 0 : 1;
}

// ---------------------------------------------------------------- giving back

/** What a pointer is that lies where a block of the chunk may be. */
inline BlockInUse inspectIn(const Chunk &chunk, const std::byte *p)
{
    BlockInUse block{Found::damaged, chunk.area};
    int64_t header = headerOf(p);
    if (header >= 0) {
        block.found = header ? Found::freeBlock : Found::damaged;
        return block;
    }
    int64_t payload = grossOf(-header + chunk.area->trackingBytes) - tagBytes;
    if (payload > chunk.roomAt(p) || wordAt(p + payload) != areaTag - chunk.area->index)
        return block;
    block.found = Found::block;
    block.size = static_cast<int32_t>(-header);
    block.payload = static_cast<int32_t>(payload);
    return block;
}

/** A free block beside one that is given back, or the block of no bytes. */
struct Neighbour {
    Payload p;
    int32_t gross;
};

/**
 * The free block at `p` if there is one.
 * @param header   what stands before `p`, when that begins the block
 * @param payload  what one end of the block says it has: above 0 for a free one
 * @param room     it cannot have more
 * @param other    where its other end says how many it has
 */
template <typename OtherEnd>
inline Neighbour neighbour(const AreaState &area, Payload p, ptrdiff_t payload, ptrdiff_t room, OtherEnd otherEnd)
{
    // All ones for a free block: arithmetic, because a branch would be a guess.
    ptrdiff_t isFree = ~((payload - 1) >> 63 | (room - payload) >> 63);
    Payload found = noBlock() + ((p - noBlock()) & isFree);
    payload &= isFree;
    if (otherEnd(found, payload) == payload) [[likely]]
        return {found, static_cast<int32_t>(payload + (tagBytes & isFree))};
    complain(&area, "a free block is overwritten", p);
    return {noBlock(), 0};
}

inline Neighbour following(const Chunk &chunk, Payload p, int32_t payload)
{
    Payload next = p + payload + tagBytes;
    return neighbour(*chunk.area, next, headerOf(next), chunk.roomAt(next),
                     [](Payload found, ptrdiff_t has) { return wordAt(found + has); });
}

inline Neighbour preceding(const Chunk &chunk, Payload p)
{
    ptrdiff_t has = wordAt(p - tagBytes);
    return neighbour(*chunk.area, p - tagBytes - has, has, p - tagBytes - chunk.first,
                     [](Payload found, ptrdiff_t) { return headerOf(found); });
}

}

Payload allocate(int32_t area, int64_t size)
{
    return size < 1 || size > maxRequest ? nullptr : allocateIn(stateOf(area), size);
}

BlockInUse inspect(const std::byte *p)
{
    const Chunk *chunk = chunkOf(p);
    return chunk ? inspectIn(*chunk, p) : BlockInUse{Found::notOurs};
}

AreaState *areaOfPool(const void *pool)
{
    constexpr int32_t recordBytes = sizeof(VxHpPool);
    auto p = static_cast<const std::byte *>(pool);
    auto record = static_cast<const VxHpPool *>(pool);
    StorageManager &all = manager();
    if (!p)
        return nullptr;
    if (p == all.lastPool && headerOf(p) == -recordBytes && record->area == all.lastPoolArea->index) [[likely]]
        return all.lastPoolArea;
    BlockInUse block = inspect(p);
    if (block.found != Found::block || block.size != recordBytes || block.area->index <= persistentArea
        || record->area != block.area->index)
        return nullptr;
    all.lastPool = pool;
    all.lastPoolArea = block.area;
    return block.area;
}

}

using namespace vx::heap;

int32_t AskHeapSMemArea(const void *block)
{
    if (!block)
        return noArea;
    BlockInUse found = inspect(static_cast<const std::byte *>(block));
    return found.found == Found::block ? found.area->index : notFound;
}

void *VxAlocHpMemPool(void *pool, int32_t count, int32_t size)
{
    if (pool)
        return allocateOrRefuse(areaOfPool(pool), count, size, "VxAlocHpMemPool");
    void *block = nullptr;
    VxAlocPersHpMem(count, size, &block);
    return block;
}

uint32_t VxAlocPersHpMem(int32_t count, int32_t size, void **block)
{
    if (!block || !startManager())
        return refuse("VxAlocPersHpMem");
    return store(allocateOrRefuse(&stateOf(persistentArea), count, size, "VxAlocPersHpMem"), block);
}

uint32_t VxAlocSameMPool(const void *neighbour, int32_t count, int32_t size, void **block)
{
    if (!block)
        return refuse("VxAlocSameMPool");
    if (!neighbour)
        return VxAlocPersHpMem(count, size, block);
    int32_t area = AskHeapSMemArea(neighbour);
    return store(allocateOrRefuse(area < persistentArea ? nullptr : &stateOf(area), count, size, "VxAlocSameMPool"),
                 block);
}

void VxDeleteMemObj(void *block)
{
    if (!block)
        return;
    auto p = static_cast<Payload>(block);
    const Chunk *chunk = chunkOf(p);
    BlockInUse found = chunk ? inspectIn(*chunk, p) : BlockInUse{Found::notOurs};
    if (found.found != Found::block) [[unlikely]]
        return complain(found.area, found.found == Found::freeBlock ? "handed back twice" : "not a block in use", p);
    if (manager().statistics || found.area->trackingBytes) [[unlikely]]
        leave(*found.area, p, found.size, found.payload);

    setHeader(p, 0); // when it is merged away it is no block any more
    Neighbour after = following(*chunk, p, found.payload);
    Neighbour before = preceding(*chunk, p);
    unlinkFree(after.p);
    unlinkFree(before.p);
    p -= before.gross;
    int32_t payload = before.gross + found.payload + after.gross;
    if (payload == chunk->wholePayload()) [[unlikely]]
        dropChunk(*chunk);
    else
        pushFree(*found.area, linkOf(*chunk, p), p, payload);
}
