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
#include "heap/pool_chunks.h"
#include "vx/pool.h"
#include "vx/pool.hpp"

namespace vx::heap {

namespace {

constexpr int32_t transientArea = 0;
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

/** An area's list heads. A head's first word is a link to the next block, as a free block's is. */
class Heads {
public:
    explicit Heads(int32_t area) : heads_(payloadOf(headLink(area, 0))), link_(headLink(area, 0)) {}

    Link linkTo(int32_t list) const { return link_ + static_cast<Link>(list); }
    Link first(int32_t list) const { return linksOf(at(list)).next; }
    void setFirst(int32_t list, Link first) const { setNext(at(list), first); }

private:
    Payload at(int32_t list) const { return heads_ + static_cast<size_t>(list) * sizeof(VxHsmHead); }

    Payload heads_;
    Link link_;
};
static_assert(sizeof(VxHsmHead) == unitBytes);

/** Make a free block of `payload` bytes at `p`, which `self` names, and put it at the front of its list. */
inline void pushFree(AreaState &area, const Heads &heads, Link self, Payload p, int32_t payload)
{
    setFree(p, payload);
    int32_t list = listOf(payload);
    Link next = heads.first(list);
    setLinks(p, {next, heads.linkTo(list)});
    setBack(payloadOf(next), self);
    heads.setFirst(list, self);
    area.mayHave |= uint64_t{1} << list;
}

inline void unlinkFree(Payload p)
{
    auto [next, back] = linksOf(p);
    setBack(payloadOf(next), back);
    setNext(payloadOf(back), next);
}

/**
 * The first block of an exact list, or null. A list that begins with a block
 * somebody has written over is given up, as its links cannot be believed.
 */
inline Payload firstOf(int32_t area, const Heads &heads, int32_t list)
{
    Link link = heads.first(list);
    if (!link)
        return nullptr;
    Payload p = payloadOf(link);
    if (headerOf(p) == list * unitBytes) [[likely]]
        return p;
    complain(area, "a free block is overwritten", p);
    heads.setFirst(list, nullLink);
    return nullptr;
}

// ---------------------------------------------------------------- choosing a block

struct Chosen {
    Payload p = nullptr;
    Link self = nullLink;
};

/** Use the first block of an exact list, and what it has beyond `payload` as a free block. */
inline Chosen takeFirst(AreaState &area, const Heads &heads, int32_t list, Payload p, int32_t payload)
{
    Link self = heads.first(list);
    Link next = linksOf(p).next;
    heads.setFirst(list, next);
    setBack(payloadOf(next), heads.linkTo(list));
    int32_t gross = payload + tagBytes;
    if (int32_t rest = list * unitBytes - gross; rest > 0)
        pushFree(area, heads, self + static_cast<Link>(gross / unitBytes), p + gross, rest);
    return {p, self};
}

inline Chosen fromExactLists(int32_t index, AreaState &area, const Heads &heads, int32_t payload)
{
    int32_t k = payload / unitBytes;
    if (Payload p = firstOf(index, heads, k))
        return takeFirst(area, heads, k, p, payload);
    // The remainder of a block one unit larger could not be a block.
    constexpr uint64_t exact = (uint64_t{1} << exactLists) - 1;
    for (uint64_t larger = area.mayHave & exact & ~uint64_t{0} << (k + 2); larger; larger &= larger - 1) {
        int32_t list = std::countr_zero(larger);
        if (Payload p = firstOf(index, heads, list))
            return takeFirst(area, heads, list, p, payload);
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
inline Chosen carve(AreaState &area, const Heads &heads, int32_t payload)
{
    Carving &carving = area.carving;
    Link self = heads.first(largeList);
    Payload p = payloadOf(self);
    int32_t gross = payload + tagBytes;
    int32_t rest = carving.payload - gross;
    if (self != carving.block || headerOf(p) != carving.payload || rest < leastLarge)
        return {};
    Payload behind = p + gross;
    Link next = linksOf(p).next;
    Link behindLink = self + static_cast<Link>(gross / unitBytes);
    if (behind + sizeof(FreeLinks) > carving.zeroTo)
        zeroOn(carving, behind + sizeof(FreeLinks), behind + rest);
    setLinks(p, {});
    setFree(behind, rest);
    setLinks(behind, {next, heads.linkTo(largeList)});
    setBack(payloadOf(next), behindLink);
    heads.setFirst(largeList, behindLink);
    carving.block = behindLink;
    carving.payload = rest;
    return {p, self};
}

bool isFreeBlock(int32_t area, const std::byte *p)
{
    const Chunk *chunk = chunkOf(p);
    if (!chunk || chunk->area != area)
        return false;
    int32_t payload = headerOf(p);
    return payload > 0 && payload <= chunk->lastWord() - wordBytes - p && wordAt(p + payload) == payload;
}

/**
 * One that fits exactly among the first of the large list, else the first that
 * is large enough to be split. A list is cut off at a block somebody has written over.
 */
Link searchLargeList(int32_t area, const Heads &heads, int32_t payload)
{
    Link fit = nullLink;
    int looked = 0;
    Link back = heads.linkTo(largeList);
    for (Link link = heads.first(largeList); link; back = link, link = linksOf(payloadOf(link)).next) {
        Payload p = payloadOf(link);
        if (!isFreeBlock(area, p)) {
            complain(area, "a free block is overwritten", p);
            setNext(payloadOf(back), nullLink);
            break;
        }
        if (headerOf(p) == payload)
            return link;
        if (!fit && headerOf(p) >= payload + minGross)
            fit = link;
        if (fit && (payload < leastLarge || ++looked >= exactTries))
            break;
    }
    return fit;
}

/** @throw VX::VxException without a chunk */
[[gnu::noinline]] Chosen fromLargeList(int32_t index, int32_t payload)
{
    Heads heads(index);
    Link self = searchLargeList(index, heads, payload);
    int32_t gross = payload + tagBytes;
    AreaState &area = manager().areas[static_cast<size_t>(index)];
    if (!self) {
        // Room for this block and for a smallest one behind it.
        self = addChunk(index, int64_t{gross} + minGross);
        Payload p = payloadOf(self);
        pushFree(area, heads, self, p, headerOf(p));
    }
    Payload p = payloadOf(self);
    int32_t rest = headerOf(p) - gross;
    unlinkFree(p);
    area.carving = {};
    if (rest > 0) {
        Payload behind = p + gross;
        Link behindLink = self + static_cast<Link>(gross / unitBytes);
        pushFree(area, heads, behindLink, behind, rest);
        if (rest >= leastLarge)
            area.carving = {behindLink, rest, behind + sizeof(FreeLinks)};
    }
    std::memset(p, 0, static_cast<size_t>(payload));
    return {p, self};
}

inline Chosen choose(int32_t index, AreaState &area, int32_t payload)
{
    if (payload < leastLarge) {
        Heads heads(index);
        if (Chosen chosen = fromExactLists(index, area, heads, payload); chosen.p) {
            zero(chosen.p, payload);
            return chosen;
        }
        if (Chosen chosen = carve(area, heads, payload); chosen.p)
            return chosen;
    }
    return fromLargeList(index, payload);
}

inline Payload allocateIn(int32_t index, int64_t size)
{
    AreaState &area = manager().areas[static_cast<size_t>(index)];
    auto payload = static_cast<int32_t>(grossOf(size + area.trackingBytes) - tagBytes);
    auto [p, self] = choose(index, area, payload);
    setHeader(p, static_cast<int32_t>(-size));
    setWord(p + payload, areaTag - index);
    if (manager().statistics || area.trackingBytes) [[unlikely]]
        enter(index, p, self, static_cast<int32_t>(size), payload);
    return p;
}

/** A zero-filled block of an area in use, or null with error 84. */
inline void *allocateOrRefuse(int32_t area, int32_t count, int32_t size, const char *where)
{
    int64_t bytes = int64_t{count} * size;
    if (count > 0 && size > 0 && bytes <= maxRequest && area > transientArea) {
        if (Payload p = guarded(Payload{}, [&] { return allocateIn(area, bytes); }))
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

inline BlockInUse inspectIn(const Chunk &chunk, const std::byte *p)
{
    BlockInUse block{Found::damaged, chunk.area};
    ptrdiff_t place = p - chunk.base;
    if (place % unitBytes != 0 || place < 2 * wordBytes || place > chunk.size - minGross)
        return block;
    int64_t header = headerOf(p);
    if (header > 0)
        block.found = Found::freeBlock;
    if (header >= 0)
        return block;
    int32_t trackingBytes = manager().areas[static_cast<size_t>(chunk.area)].trackingBytes;
    int64_t payload = grossOf(-header + trackingBytes) - tagBytes;
    if (payload > chunk.lastWord() - wordBytes - p || wordAt(p + payload) != areaTag - chunk.area)
        return block;
    block.found = Found::block;
    block.size = static_cast<int32_t>(-header);
    block.payload = static_cast<int32_t>(payload);
    return block;
}

/** A free block beside one that is given back, or the block of no bytes. */
struct Neighbour {
    Payload p;
    int32_t payload;
    int32_t gross;
};

/** The free block at `p` if there is one. Its header, `payload`, and its trailer must agree. */
inline Neighbour neighbour(int32_t area, Payload p, int32_t payload, bool isFree)
{
    Neighbour found{isFree ? p : noBlock(), isFree ? payload : 0, isFree ? payload + tagBytes : 0};
    if (headerOf(found.p) == found.payload && wordAt(found.p + found.payload) == found.payload) [[likely]]
        return found;
    complain(area, "a free block is overwritten", p);
    return {noBlock(), 0, 0};
}

inline Neighbour following(const Chunk &chunk, Payload p, int32_t payload)
{
    Payload next = p + payload + tagBytes;
    int32_t has = headerOf(next);
    return neighbour(chunk.area, next, has, (has > 0) & (has <= chunk.lastWord() - wordBytes - next));
}

inline Neighbour preceding(const Chunk &chunk, Payload p)
{
    int32_t has = wordAt(p - tagBytes);
    return neighbour(chunk.area, p - tagBytes - has, has,
                     (has > 0) & (has <= p - tagBytes - chunk.firstBlock()));
}

}

Payload allocate(int32_t area, int64_t size)
{
    return size < 1 || size > maxRequest ? nullptr : allocateIn(area, size);
}

BlockInUse inspect(const std::byte *p)
{
    const Chunk *chunk = chunkOf(p);
    return chunk ? inspectIn(*chunk, p) : BlockInUse{Found::notOurs};
}

int32_t areaOfPool(const void *pool)
{
    constexpr int32_t recordBytes = sizeof(VxHpPool);
    auto p = static_cast<const std::byte *>(pool);
    auto record = static_cast<const VxHpPool *>(pool);
    StorageManager &all = manager();
    if (!p)
        return notFound;
    if (p == all.lastPool && headerOf(p) == -recordBytes && record->area == all.lastPoolArea) [[likely]]
        return all.lastPoolArea;
    BlockInUse block = inspect(p);
    if (block.found != Found::block || block.size != recordBytes || block.area <= persistentArea
        || record->area != block.area)
        return notFound;
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
    return found.found == Found::block ? found.area : notFound;
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
    return store(allocateOrRefuse(persistentArea, count, size, "VxAlocPersHpMem"), block);
}

uint32_t VxAlocSameMPool(const void *neighbour, int32_t count, int32_t size, void **block)
{
    if (!block)
        return refuse("VxAlocSameMPool");
    if (!neighbour)
        return VxAlocPersHpMem(count, size, block);
    return store(allocateOrRefuse(AskHeapSMemArea(neighbour), count, size, "VxAlocSameMPool"), block);
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
    int32_t index = found.area;
    AreaState &area = manager().areas[static_cast<size_t>(index)];
    if (manager().statistics || area.trackingBytes) [[unlikely]]
        leave(index, p, found.size, found.payload);

    setHeader(p, 0); // when it is merged away it is no block any more
    Neighbour after = following(*chunk, p, found.payload);
    unlinkFree(after.p);
    Neighbour before = preceding(*chunk, p);
    unlinkFree(before.p);
    p -= before.gross;
    int32_t payload = before.gross + found.payload + after.gross;
    if (payload == chunk->wholePayload()) [[unlikely]]
        dropChunk(index, numberOf(*chunk));
    else
        pushFree(area, Heads(index), linkOf(*chunk, p), p, payload);
}
