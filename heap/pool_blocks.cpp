// Taking blocks from areas and giving them back. Everything that happens for
// each block stands in this file, so that the compiler sees it whole.
//
// With many blocks alive the time goes into cache misses, and into branches
// that nobody can foretell: whether a neighbour is free. So an area of many
// blocks keeps a small one that is given back for the next request of its size.
// Merging is left to a walk over the whole area (pool_merge.cpp), which looks at
// each block once and in the order of addresses. New blocks are cut from a slab
// of zeros, without a free block being split for each. Nothing of this changes
// what an area of few blocks does, and misuse finds the same checks everywhere.

#include <algorithm>
#include <bit>

#include "heap/pool_area.h"
#include "heap/pool_lists.h"
#include "vx/pool.h"

namespace vx::heap {

namespace {

constexpr int32_t persistentArea = 1;
constexpr int32_t noArea = -2;
constexpr int32_t notFound = -1;

constexpr int32_t recordBytes = sizeof(VxHpPool);
constexpr int32_t largestSmall = leastLarge - unitBytes; ///< payload bytes

// How many blocks of the large list are looked at for one that fits exactly.
constexpr int exactTries = 25;

inline void zero16(Payload at)
{
    std::memset(at, 0, 16);
}

/** Zero from the byte `from` to `to`; writes beyond `last` fall there. */
template <ptrdiff_t from, ptrdiff_t to> inline void zeroPart(Payload p, ptrdiff_t last)
{
#pragma GCC unroll 9
    for (ptrdiff_t at = from; at < to; at += 16)
        zero16(p + std::min(at, last));
}

/** Zero a small payload. Sizes vary, and a branch for each 16 bytes would mostly be a guess. */
inline void zeroSmall(Payload p, ptrdiff_t payload)
{
    if (payload < 16)
        return setLinks(p, {});
    ptrdiff_t last = payload - 16;
    zeroPart<0, 48>(p, last);
    zero16(p + last);
    if (payload > 64)
        zeroPart<48, 112>(p, last);
    if (payload > 128)
        zeroPart<112, largestSmall - 16>(p, last);
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

/** A block with its trailer: only its header does not say yet that it is in use. */
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
    setBack(payloadOf(next), area.headsLink + static_cast<Link>(list));
    area.mayHave &= ~(uint64_t{next == nullLink} << list);
    int32_t gross = payload + tagBytes;
    if (int32_t rest = list * unitBytes - gross; rest > 0)
        pushFree(area, self + static_cast<uint32_t>(gross) / unitBytes, p + gross, rest);
    setWord(p + payload, area.tag);
    return {p, self};
}

/**
 * The exact lists that may have a block, from the payload's own on: bit 0 is
 * that, bit 1 never set, as the remainder of a block one unit larger could not
 * be a block.
 */
inline uint64_t fittingLists(const AreaState &area, int32_t payload)
{
    constexpr uint64_t exact = (uint64_t{1} << exactLists) - 1;
    return (area.mayHave & exact) >> (static_cast<uint32_t>(payload) / unitBytes) & ~uint64_t{2};
}

inline Chosen fromExactLists(AreaState &area, int32_t payload)
{
    while (uint64_t fits = fittingLists(area, payload)) {
        int32_t list = payload / unitBytes + std::countr_zero(fits);
        if (Chosen chosen = takeFirst(area, list, payload); chosen.p) [[likely]]
            return chosen;
        area.mayHave &= ~(uint64_t{1} << list);
    }
    return {};
}

bool isFreeBlock(const AreaState &area, const std::byte *p)
{
    const Chunk *chunk = chunkOf(p);
    if (!chunk || chunk->area != &area)
        return false;
    int32_t payload = headerOf(p);
    return payload > 0 && payload <= chunk->first + chunk->span - p && wordAt(p + payload) == payload;
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

/** Use the front of a block of the large list, zeroed, and the rest as a free block. */
Payload splitLarge(AreaState &area, Link self, int32_t payload)
{
    Payload p = payloadOf(self);
    int32_t gross = payload + tagBytes;
    int32_t rest = headerOf(p) - gross;
    unlinkFree(p);
    if (rest > 0)
        pushFree(area, self + static_cast<uint32_t>(gross) / unitBytes, p + gross, rest);
    std::memset(p, 0, static_cast<size_t>(payload));
    setWord(p + payload, area.tag);
    return p;
}

/** A zeroed block that is kept for a request of its size, or null. */
inline Payload takeKept(AreaState &area, size_t units)
{
    auto payload = static_cast<ptrdiff_t>(units * unitBytes);
    Payload &kept = area.kept[units];
    Payload p = kept;
    if (headerOf(p) != keptHeader(payload))
        return nullptr; // there is none, or somebody has written over it
    kept = nextKept(p);
    zeroSmall(p, payload);
    return p;
}

/** A zeroed small block from the front of the slab, or null. What fits on a list goes first. */
inline Payload cutSlab(AreaState &area, int32_t payload)
{
    Payload p = area.slab;
    int32_t rest = area.slabPayload - payload - tagBytes;
    if (rest < unitBytes || fittingLists(area, payload) || headerOf(p) != keptHeader(area.slabPayload))
        return nullptr;
    area.slab = p + payload + tagBytes;
    area.slabPayload = rest;
    ++area.blocks;
    setHeader(area.slab, keptHeader(rest));
    setWord(p + payload, area.tag);
    return p;
}

inline void keep(AreaState &area, Payload p, size_t units)
{
    setHeader(p, keptHeader(static_cast<ptrdiff_t>(units * unitBytes)));
    setNextKept(p, area.kept[units]);
    area.kept[units] = p;
}

/** Have a new slab when the old one is too small; what is left of that is kept. False without room for it. */
bool renewSlab(AreaState &area)
{
    Link self = searchLargeList(area, largestKept);
    if (!self)
        return false;
    if (area.slabPayload && headerOf(area.slab) != keptHeader(area.slabPayload)) {
        complain(&area, "a free block is overwritten", area.slab);
    } else if (area.slabPayload) {
        keep(area, area.slab, static_cast<size_t>(area.slabPayload) / unitBytes);
        ++area.blocks;
    }
    area.slab = splitLarge(area, self, largestKept);
    area.slabPayload = largestKept;
    setHeader(area.slab, keptHeader(largestKept));
    return true;
}

Chosen choose(AreaState &area, int32_t payload);

/** @throw VX::VxException without a chunk */
Chosen fromLargeList(AreaState &area, int32_t payload)
{
    Link self = searchLargeList(area, payload);
    if (!self && manager().waiting.count) {
        settleWaiting();
        return choose(area, payload);
    }
    if (!self && isWorthMerging(area)) {
        mergeFree(area); // there may be room yet
        return choose(area, payload);
    }
    if (!self) {
        // Room for this block and for a smallest one behind it.
        self = addChunk(area, int64_t{payload} + tagBytes + minGross);
        if (!self)
            return choose(area, payload);
        Payload p = payloadOf(self);
        pushFree(area, self, p, headerOf(p));
    }
    ++area.blocks;
    return {splitLarge(area, self, payload), self};
}

Chosen choose(AreaState &area, int32_t payload)
{
    if (payload < leastLarge) {
        // Areas that need links keep nothing.
        if (Payload p = takeKept(area, static_cast<size_t>(payload) / unitBytes))
            return {p, nullLink};
        if (Chosen chosen = fromExactLists(area, payload); chosen.p) {
            zeroSmall(chosen.p, payload);
            ++area.blocks;
            return chosen;
        }
        if (Payload p = cutSlab(area, payload))
            return {p, nullLink};
        if (area.live > area.mergeBelow && renewSlab(area))
            return choose(area, payload);
    }
    return fromLargeList(area, payload);
}

inline Payload enterUsed(AreaState &area, Payload p, int64_t size)
{
    ++area.live;
    setHeader(p, static_cast<int32_t>(-size));
    return p;
}

/** A block that waits was free and given back once more: it is not to be taken from its new owner. */
[[gnu::noinline, gnu::cold]] Payload forgetAndUse(AreaState &area, Payload p, int64_t size)
{
    manager().waiting.forget(p);
    return enterUsed(area, p, size);
}

/** @return the block, in use */
inline Payload use(AreaState &area, Payload p, int64_t size)
{
    if (isLarge(area) && manager().waiting.mayHave(p)) [[unlikely]]
        return forgetAndUse(area, p, size);
    return enterUsed(area, p, size);
}

Payload allocateIn(AreaState &area, int64_t size)
{
    auto payload = static_cast<int32_t>(payloadFor(size + area.trackingBytes));
    auto [p, self] = choose(area, payload);
    use(area, p, size);
    if (manager().statistics || area.trackingBytes)
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

/** Whatever may be the matter: another pool, none, a large block, nothing left, somebody counting. */
[[gnu::noinline]] void *allocateFrom(void *pool, int32_t count, int32_t size)
{
    if (pool)
        return allocateOrRefuse(areaOfPool(pool), count, size, "VxAlocHpMemPool");
    void *block = nullptr;
    VxAlocPersHpMem(count, size, &block);
    return block;
}

/** A small block from the pool of the last time, when none is kept. */
[[gnu::noinline]] void *allocateUnkept(AreaState &area, int32_t size, int32_t payload)
{
    if (Payload p = cutSlab(area, payload)) [[likely]]
        return use(area, p, size);
    return allocateOrRefuse(&area, 1, size, "VxAlocHpMemPool");
}

uint32_t store(void *block, void **out)
{
    *out = block;
    return block ? 0 : 1;
}

// ---------------------------------------------------------------- giving back

/** What a pointer is that lies where a block of the chunk may be. */
BlockInUse inspectIn(const Chunk &chunk, const std::byte *p)
{
    BlockInUse block{Found::damaged, chunk.area};
    int64_t header = headerOf(p);
    if (header >= 0 || keptPayload(headerOf(p))) {
        block.found = header ? Found::freeBlock : Found::damaged;
        return block;
    }
    int64_t payload = payloadFor(-header + chunk.area->trackingBytes);
    if (payload > chunk.first + chunk.span - p || wordAt(p + payload) != chunk.area->tag)
        return block;
    block.found = Found::block;
    block.size = static_cast<int32_t>(-header);
    block.payload = static_cast<int32_t>(payload);
    return block;
}

/** A free block beside one that is given back, or the block of no bytes. */
struct Neighbour {
    Payload p;
    ptrdiff_t payload;
    ptrdiff_t gross;
};

/**
 * The free block at `p` if one of its ends says that there is one: `payload`
 * is above 0, and not above what there is room for. By arithmetic, because a
 * branch would be a guess.
 */
inline Neighbour neighbour(Payload p, ptrdiff_t payload, ptrdiff_t room)
{
    ptrdiff_t isFree = ~((payload - 1) >> 63 | (room - payload) >> 63);
    return {noBlock() + ((p - noBlock()) & isFree), payload & isFree, (payload + tagBytes) & isFree};
}

/** A block of a chunk that is given back, and what is on both sides of it. */
struct Leaving {
    const Chunk &chunk;
    Payload p;
    ptrdiff_t payload;
    Neighbour before, after;

    Leaving(const Chunk &chunk_, Payload p_, ptrdiff_t payload_) : chunk(chunk_), p(p_), payload(payload_)
    {
        ptrdiff_t place = p - chunk.first;
        ptrdiff_t has = wordAt(p - tagBytes);
        before = neighbour(p - tagBytes - has, has, place - tagBytes);
        Payload next = p + payload + tagBytes;
        after = neighbour(next, headerOf(next), chunk.span - place - payload - tagBytes);
    }

    // The other ends of the neighbours must say the same.
    bool beforeIsSound() const { return headerOf(before.p) == before.payload; }
    bool afterIsSound() const { return wordAt(after.p + after.payload) == after.payload; }
};

/** Merge it with its neighbours into one free block; the whole chunk goes back. */
inline void join(const Leaving &block)
{
    const Chunk &chunk = block.chunk;
    setHeader(block.p, 0); // when it is merged away it is no block any more
    unlinkFree(block.after.p);
    unlinkFree(block.before.p);
    Payload p = block.p - block.before.gross;
    ptrdiff_t payload = block.before.gross + block.payload + block.after.gross;
    if (payload == chunk.span) [[unlikely]]
        return dropChunk(chunk);
    pushFree(*chunk.area, linkOf(chunk, p), p, static_cast<int32_t>(payload));
}

void leaveOut(const AreaState &area, Neighbour &damaged)
{
    complain(&area, "a free block is overwritten", damaged.p);
    damaged = {noBlock(), 0, 0};
}

/** Merge a block in use with its neighbours; a damaged one is left out. */
void mergeNow(const Chunk &chunk, Payload p, int32_t payload)
{
    AreaState &area = *chunk.area;
    Leaving block(chunk, p, payload);
    if (!block.beforeIsSound())
        leaveOut(area, block.before);
    if (!block.afterIsSound())
        leaveOut(area, block.after);
    join(block);
}

/** Whatever may be the matter: no block, a large one, few blocks in the area, somebody counting. */
[[gnu::noinline]] void giveBack(Payload p)
{
    if (!p)
        return;
    const Chunk *chunk = chunkOf(p);
    BlockInUse found = chunk ? inspectIn(*chunk, p) : BlockInUse{Found::notOurs};
    if (found.found != Found::block)
        return complain(found.area,
                        found.found == Found::freeBlock ? "handed back twice" : "not a block in use", p);
    AreaState &area = *found.area;
    leave(area, p, found.size, found.payload);
    bool fewLeft = --area.live < area.mergeBelow;
    --area.blocks;
    if (chunk->damaged)
        pushFree(area, linkOf(*chunk, p), p, found.payload);
    else
        mergeNow(*chunk, p, found.payload);
    if (fewLeft && keepsAny(area))
        mergeFree(area);
}

/** Fetch a block's tags, unless it is a long one. */
inline void fetchBlock(const std::byte *p)
{
    constexpr ptrdiff_t cacheLine = 64;
    __builtin_prefetch(p - tagBytes, 1);
    __builtin_prefetch(p - tagBytes + cacheLine, 1);
}

/** Keep a small block while more than `limit` are in use in its area; false when it is anything else. */
inline bool keepSmall(Payload p, uint32_t AreaState::*limit)
{
    const Chunk &chunk = chunkNear(p);
    if (!chunk.mayHaveSmall(p))
        return false;
    AreaState &area = *chunk.area;
    if (area.live <= area.*limit)
        return false; // and not looked at
    auto size = -static_cast<uint32_t>(headerOf(p));
    size_t units = unitsFor(size);
    if (size - 1 >= uint32_t{largestSmall} || wordAt(p + units * unitBytes) != area.tag)
        return false;
    --area.live;
    keep(area, p, units);
    return true;
}

/** A block of a large area, or whatever else may be the matter. */
[[gnu::noinline]] void giveBackLater(Payload p)
{
    StorageManager &all = manager();
    const Chunk *chunk = chunkOf(p);
    if (chunk && isLarge(*chunk->area) && !all.checking) {
        fetchBlock(p);
        all.waiting.add(p);
        if (all.waiting.count == Waiting::room)
            settleWaiting();
    } else if (!keepSmall(p, &AreaState::mergeBelow)) {
        giveBack(p);
    }
}

}

void settleWaiting()
{
    Waiting &waiting = manager().waiting;
    while (waiting.count)
        if (Payload p = waiting.takeLast(); !keepSmall(p, &AreaState::mergeBelow))
            giveBack(p);
}

Payload allocate(int32_t area, int64_t size)
{
    return size < 1 || size > maxRequest ? nullptr : allocateIn(stateOf(area), size);
}

BlockInUse inspect(const std::byte *p)
{
    settleWaiting();
    const Chunk *chunk = chunkOf(p);
    return chunk ? inspectIn(*chunk, p) : BlockInUse{Found::notOurs};
}

AreaState *areaOfPool(const void *pool)
{
    auto p = static_cast<const std::byte *>(pool);
    auto record = static_cast<const VxHpPool *>(pool);
    BlockInUse block = p ? inspect(p) : BlockInUse{Found::notOurs};
    if (block.found != Found::block || block.size != recordBytes || block.area->index <= persistentArea ||
        record->area != block.area->index)
        return nullptr;
    if (!manager().statistics) {
        manager().lastPool = pool;
        manager().lastPoolArea = block.area;
    }
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
    // A small block of the same pool as last time, while nobody counts.
    const StorageManager &all = manager();
    uint64_t bytes = uint64_t{static_cast<uint32_t>(count)} * static_cast<uint32_t>(size);
    if (pool == all.lastPool && headerOf(static_cast<Payload>(pool)) == -recordBytes &&
        bytes - 1 < uint64_t{largestSmall}) [[likely]] {
        AreaState &area = *all.lastPoolArea;
        auto small = static_cast<int32_t>(bytes);
        size_t units = unitsFor(bytes);
        auto payload = static_cast<int32_t>(units * unitBytes);
        Payload p = takeKept(area, units);
        return p ? use(area, p, small) : allocateUnkept(area, small, payload);
    }
    return allocateFrom(pool, count, size);
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
    return store(
        allocateOrRefuse(area < persistentArea ? nullptr : &stateOf(area), count, size, "VxAlocSameMPool"),
        block);
}

void VxDeleteMemObj(void *block)
{
    auto p = static_cast<Payload>(block);
    if (!keepSmall(p, &AreaState::keepAbove)) [[unlikely]]
        giveBackLater(p);
}
