// Taking blocks from areas and giving them back. Everything that happens for
// each block stands in this file, so that the compiler sees it whole.
//
// With many blocks alive the time goes into cache misses, and into branches
// that nobody can foretell: whether a neighbour is free. So a block merges
// without asking, as an absent neighbour is a block of no bytes; and blocks of
// large areas wait until there is a group of them, of which everything that
// merging touches is fetched at once. Whoever looks at an area has them merged
// first, and while misuse is reported none waits.

#include <algorithm>
#include <bit>
#include <utility>

#include "heap/pool_area.h"
#include "vx/pool.h"

namespace vx::heap {

namespace {

constexpr int32_t persistentArea = 1;
constexpr int32_t noArea = -2;
constexpr int32_t notFound = -1;

// An area of so many chunks does not fit near the processor.
constexpr uint32_t manyChunks = 4;

constexpr int32_t recordBytes = sizeof(VxHpPool);

// How many blocks of the large list are looked at for one that fits exactly.
constexpr int exactTries = 25;

// Bytes zeroed at a time ahead of where an area carves: one call for many blocks.
constexpr ptrdiff_t zeroAhead = 2048;

/** Zero a small payload. Sizes vary, so as many words are written for each as for the usual ones' largest. */
inline void zeroSmall(Payload p, int32_t payload)
{
    constexpr int32_t step = 16;
    constexpr int32_t usual = 8 * step;
    if (payload < step) {
        setLinks(p, {});
        return;
    }
    int32_t last = payload - step;
#pragma GCC unroll 8
    for (int32_t at = 0; at < usual; at += step)
        std::memset(p + std::min(at, last), 0, step);
    for (int32_t at = usual; at < payload; at += step)
        std::memset(p + std::min(at, last), 0, step);
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
    setBack(p, area.headsLink + static_cast<Link>(list));
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
    setBack(payloadOf(next), area.headsLink + static_cast<Link>(list));
    area.mayHave &= ~(uint64_t{next == nullLink} << list);
    int32_t gross = payload + tagBytes;
    if (int32_t rest = list * unitBytes - gross; rest > 0)
        pushFree(area, self + static_cast<uint32_t>(gross) / unitBytes, p + gross, rest);
    return {p, self};
}

inline Chosen fromExactLists(AreaState &area, int32_t payload)
{
    constexpr uint64_t exact = (uint64_t{1} << exactLists) - 1;
    // Its own list or one from the next but one on: the remainder of a block
    // one unit larger could not be a block.
    uint32_t k = static_cast<uint32_t>(payload) / unitBytes;
    while (uint64_t fits = (area.mayHave & exact) >> k & ~uint64_t{2}) {
        auto list = static_cast<int32_t>(k) + std::countr_zero(fits);
        if (Chosen chosen = takeFirst(area, list, payload); chosen.p) [[likely]]
            return chosen;
        area.mayHave &= ~(uint64_t{1} << list);
    }
    return {};
}

/** The front of the block that was carved from last, when it still is the first of the large list and is
 * zero. */
inline Chosen carve(AreaState &area, int32_t payload)
{
    Carving &carving = area.carving;
    Payload head = headOf(area, largeList);
    Link self = nextOf(head);
    Payload p = carving.p;
    int32_t gross = payload + tagBytes;
    int32_t rest = carving.payload - gross;
    Payload behind = p + gross;
    if (self != carving.block || headerOf(p) != carving.payload || rest < leastLarge ||
        behind + sizeof(FreeLinks) > carving.zeroTo)
        return {};
    FreeLinks links = linksOf(p);
    Link behindLink = self + static_cast<uint32_t>(gross) / unitBytes;
    setLinks(p, {});
    setFree(behind, rest);
    setLinks(behind, links);
    setBack(payloadOf(links.next), behindLink);
    setNext(head, behindLink);
    carving = {behindLink, rest, behind, carving.zeroTo};
    return {p, self};
}

/** Zero some more of the block that was carved from last. */
void zeroOn(Carving &carving, int32_t payload)
{
    if (!carving.block || headerOf(carving.p) != carving.payload)
        return;
    std::byte *from = carving.zeroTo;
    std::byte *end = carving.p + carving.payload;
    std::byte *needed = std::min(end, carving.p + payload + tagBytes + sizeof(FreeLinks));
    carving.zeroTo = end - from > zeroAhead ? std::max(needed, from + zeroAhead) : end;
    std::memset(from, 0, static_cast<size_t>(carving.zeroTo - from));
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

Chosen choose(AreaState &area, int32_t payload);

/** @throw VX::VxException without a chunk */
Chosen fromLargeList(AreaState &area, int32_t payload)
{
    Link self = searchLargeList(area, payload);
    int32_t gross = payload + tagBytes;
    if (!self && manager().waiting.count) {
        mergeWaiting(); // there may be room yet
        return choose(area, payload);
    }
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
            area.carving = {behindLink, rest, behind, behind + sizeof(FreeLinks)};
    }
    std::memset(p, 0, static_cast<size_t>(payload));
    return {p, self};
}

/** A zeroed small block that needs neither a call nor a search. */
inline Chosen chooseSmall(AreaState &area, int32_t payload)
{
    Chosen chosen = fromExactLists(area, payload);
    if (!chosen.p)
        return carve(area, payload);
    zeroSmall(chosen.p, payload);
    return chosen;
}

Chosen choose(AreaState &area, int32_t payload)
{
    if (payload < leastLarge) {
        zeroOn(area.carving, payload);
        if (Chosen chosen = chooseSmall(area, payload); chosen.p)
            return chosen;
    }
    return fromLargeList(area, payload);
}

inline Payload use(const AreaState &area, Payload p, int64_t size, int32_t payload)
{
    setHeader(p, static_cast<int32_t>(-size));
    setWord(p + payload, area.tag);
    return p;
}

Payload allocateIn(AreaState &area, int64_t size)
{
    auto payload = static_cast<int32_t>(grossOf(size + area.trackingBytes) - tagBytes);
    auto [p, self] = choose(area, payload);
    use(area, p, size, payload);
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
    if (header >= 0) {
        block.found = header ? Found::freeBlock : Found::damaged;
        return block;
    }
    int64_t payload = grossOf(-header + chunk.area->trackingBytes) - tagBytes;
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

/** Fetch a block's tags, and the tags of its neighbours, unless it is a long one. */
inline void fetchBlock(const std::byte *p)
{
    constexpr ptrdiff_t cacheLine = 64;
    __builtin_prefetch(p - tagBytes, 1);
    __builtin_prefetch(p - tagBytes + cacheLine, 1);
}

/** Fetch what merging a block will write to. What is no block is found out later. */
inline void fetchAround(Payload p)
{
    const Chunk *chunk = chunkOf(p);
    if (!chunk || headerOf(p) >= 0)
        return;
    ptrdiff_t payload = grossOf(-int64_t{headerOf(p)}) - tagBytes;
    if (payload > chunk->first + chunk->span - p)
        return;
    Leaving block(*chunk, p, payload);
    for (const Neighbour &free : {block.before, block.after}) {
        __builtin_prefetch(payloadOf(nextOf(free.p)), 1);
        __builtin_prefetch(payloadOf(backOf(free.p)), 1);
        __builtin_prefetch(free.p + free.payload, 1);
    }
}

/** Whatever may be the matter: no block, a neighbour written over, somebody counting. */
[[gnu::noinline]] void giveBack(Payload p)
{
    mergeWaiting();
    const Chunk *chunk = chunkOf(p);
    BlockInUse found = chunk ? inspectIn(*chunk, p) : BlockInUse{Found::notOurs};
    if (found.found != Found::block)
        return complain(found.area,
                        found.found == Found::freeBlock ? "handed back twice" : "not a block in use", p);
    leave(*found.area, p, found.size, found.payload);
    Leaving block(*chunk, p, found.payload);
    if (!block.beforeIsSound())
        leaveOut(*found.area, block.before);
    if (!block.afterIsSound())
        leaveOut(*found.area, block.after);
    join(block);
}

/** A block without anything that needs a word, like nearly all. */
inline void mergeNow(const Chunk &chunk, Payload p)
{
    if (int32_t header = headerOf(p); header < 0) [[likely]] {
        ptrdiff_t payload = grossOf(-int64_t{header}) - tagBytes;
        const AreaState &area = *chunk.area;
        if (payload <= chunk.first + chunk.span - p && wordAt(p + payload) == area.tag && !area.trackingBytes)
            [[likely]] {
            Leaving leaving(chunk, p, payload);
            if (leaving.beforeIsSound() && leaving.afterIsSound()) [[likely]]
                return join(leaving);
        }
    }
    giveBack(p);
}

}

void mergeWaiting()
{
    Waiting &waiting = manager().waiting;
    uint32_t count = std::exchange(waiting.count, 0u);
    for (uint32_t i = 0; i < count; ++i)
        fetchAround(waiting.blocks[i]);
    for (uint32_t i = 0; i < count; ++i) {
        Payload p = waiting.blocks[i];
        if (const Chunk *chunk = chunkOf(p))
            mergeNow(*chunk, p);
        else
            giveBack(p);
    }
}

Payload allocate(int32_t area, int64_t size)
{
    return size < 1 || size > maxRequest ? nullptr : allocateIn(stateOf(area), size);
}

BlockInUse inspect(const std::byte *p)
{
    mergeWaiting();
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
    manager().lastPool = pool;
    manager().lastPoolArea = block.area;
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
    int64_t bytes = int64_t{count} * size;
    if (pool && pool == all.lastPool && headerOf(static_cast<Payload>(pool)) == -recordBytes &&
        !all.statistics && (count | size) >= 0 && bytes > 0 && bytes <= leastLarge - unitBytes) [[likely]] {
        AreaState &area = *all.lastPoolArea;
        auto payload = static_cast<int32_t>(grossOf(bytes) - tagBytes);
        if (Payload p = chooseSmall(area, payload).p) [[likely]]
            return use(area, p, bytes, payload);
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
    if (!block)
        return;
    auto p = static_cast<Payload>(block);
    StorageManager &all = manager();
    const Chunk *chunk = chunkOf(p);
    if (!chunk || all.statistics) [[unlikely]]
        return giveBack(p);
    if (chunk->area->chunkCount < manyChunks || all.checking) {
        if (all.waiting.count) [[unlikely]]
            mergeWaiting();
        return mergeNow(*chunk, p);
    }
    fetchBlock(p);
    all.waiting.blocks[all.waiting.count++] = p;
    if (all.waiting.count == Waiting::room)
        mergeWaiting();
}
