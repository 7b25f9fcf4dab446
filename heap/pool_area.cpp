#include "heap/pool_area.h"

#include <algorithm>
#include <bit>
#include <cinttypes>
#include <cstdio>

#include "heap/pool_chunks.h"
#include "platform/os/os.h"
#include "vx/pool.hpp"

namespace vx::heap {

namespace {

// How many blocks of the large list are looked at for one that fits exactly.
constexpr int exactTries = 25;

VxHsmArea &entryOf(int32_t area)
{
    return VgAreas[area];
}

AreaState &stateOf(int32_t area)
{
    return manager().areas[static_cast<size_t>(area)];
}

Link headLink(int32_t area, int32_t list)
{
    return firstHeadLink + static_cast<Link>(area) * headsPerArea + static_cast<Link>(list);
}

int32_t trackingBytes(int32_t area)
{
    return entryOf(area).tracked ? VgTransientTrailerSize : 0;
}

// ---------------------------------------------------------------- lists

void setFirst(int32_t area, int32_t list, Link first)
{
    entryOf(area).heads[list].first = first;
    uint64_t bit = uint64_t{1} << list;
    uint64_t &nonEmpty = stateOf(area).nonEmpty;
    nonEmpty = first ? nonEmpty | bit : nonEmpty & ~bit;
}

/** Make a free block of `payload` bytes at `p`, which `self` names, and put it at the front of its list. */
void pushFree(int32_t area, Link self, Payload p, int32_t payload)
{
    setHeader(p, payload);
    setWord(trailerAt(p, payload), payload);
    int32_t list = listOf(payload);
    Link next = entryOf(area).heads[list].first;
    setNext(p, next);
    setBack(p, headLink(area, list));
    if (next)
        setBack(payloadOf(next), self);
    setFirst(area, list, self);
}

void unlinkFree(int32_t area, Payload p)
{
    auto [next, back] = linksOf(p);
    if (next)
        setBack(payloadOf(next), back);
    if (back >= firstHeadLink)
        setFirst(area, static_cast<int32_t>((back - firstHeadLink) % headsPerArea), next);
    else
        setNext(payloadOf(back), next);
}

// ---------------------------------------------------------------- choosing a block

Link first(int32_t area, int32_t list)
{
    return entryOf(area).heads[list].first;
}

Link fromExactLists(int32_t area, int32_t payload)
{
    int32_t k = payload / unitBytes;
    if (k >= exactLists)
        return nullLink;
    uint64_t nonEmpty = stateOf(area).nonEmpty & ((uint64_t{1} << exactLists) - 1);
    if (nonEmpty >> k & 1)
        return first(area, k);
    // The remainder of a block one unit larger could not be a block.
    if (k >= exactLists - 2)
        return nullLink;
    uint64_t larger = nonEmpty >> (k + 2);
    return larger ? first(area, k + 2 + std::countr_zero(larger)) : nullLink;
}

Link fromLargeList(int32_t area, int32_t payload)
{
    Link link = first(area, largeList);
    for (int tries = 0; link && tries < exactTries; ++tries) {
        const std::byte *p = payloadOf(link);
        if (headerOf(p) == payload)
            return link;
        link = linksOf(p).next;
    }
    link = first(area, largeList);
    while (link) {
        const std::byte *p = payloadOf(link);
        int32_t has = headerOf(p);
        if (has == payload || has >= payload + minGross)
            break;
        link = linksOf(p).next;
    }
    return link;
}

void takeChunkInto(int32_t area, int64_t gross)
{
    uint32_t number = 0;
    int64_t wanted = std::max<int64_t>(gross, entryOf(area).chunkSize[1] - 2 * wordBytes);
    if (takeChunk(wanted, area, number) != ChunkCode::done)
        throw VX::VxException(__LINE__, "src\\heap\\VxOsAlloc");
    Chunk &chunk = chunkAt(number);
    chunk.next = stateOf(area).chunks;
    stateOf(area).chunks = number;
    pushFree(area, linkOf(chunk, chunk.firstBlock()), chunk.firstBlock(), chunk.wholePayload());
}

Link choose(int32_t area, int64_t gross)
{
    auto payload = static_cast<int32_t>(gross - tagBytes);
    if (Link link = fromExactLists(area, payload))
        return link;
    if (Link link = fromLargeList(area, payload))
        return link;
    // Room for this block and for a smallest one behind it.
    takeChunkInto(area, gross + minGross);
    return fromLargeList(area, payload);
}

// ---------------------------------------------------------------- live blocks of a tracked area

/** The links of a tracked block stand between its payload and its tag. */
Payload trackingOf(Payload p, int32_t payload)
{
    return p + payload - VgTransientTrailerSize;
}

Payload trackingOf(Link link)
{
    Payload p = payloadOf(link);
    auto gross = grossOf(int64_t{-headerOf(p)} + VgTransientTrailerSize);
    return trackingOf(p, static_cast<int32_t>(gross - tagBytes));
}

void track(Payload p, int32_t payload, Link self)
{
    Link &head = manager().liveBlocks;
    Payload links = trackingOf(p, payload);
    setNext(links, head);
    setBack(links, nullLink);
    if (head)
        setBack(trackingOf(head), self);
    head = self;
}

void untrack(Payload p, int32_t payload)
{
    auto [next, previous] = linksOf(trackingOf(p, payload));
    if (next)
        setBack(trackingOf(next), previous);
    if (previous)
        setNext(trackingOf(previous), next);
    else
        manager().liveBlocks = next;
}

// ---------------------------------------------------------------- statistics

int32_t clamped(int64_t value)
{
    return static_cast<int32_t>(std::min<int64_t>(value, INT32_MAX));
}

void count(int32_t area, int64_t size, int64_t gross, bool isRequest)
{
    AreaState &state = stateOf(area);
    (isRequest ? state.requests : state.frees) += 1;
    state.bytes += isRequest ? size : -size;
    state.grossBytes += isRequest ? gross : -gross;
    state.peakBytes = std::max(state.peakBytes, state.bytes);
    int32_t(&words)[6] = entryOf(area).statistics;
    words[1] = clamped(state.peakBytes);
    words[2] = clamped(state.bytes);
    words[3] = clamped(state.grossBytes);
    words[4] = clamped(state.requests);
    words[5] = clamped(state.frees);
}

// ---------------------------------------------------------------- giving back

void unlinkChunk(int32_t area, uint32_t number)
{
    uint32_t *at = &stateOf(area).chunks;
    while (*at != number)
        at = &chunkAt(*at).next;
    *at = chunkAt(number).next;
}

}

StorageManager &manager()
{
    static StorageManager &only = *new StorageManager;
    return only;
}

bool isArea(int64_t index)
{
    return index >= 0 && index < VgNAreas && index < static_cast<int64_t>(manager().areas.size())
           && VgAreas[index].inUse;
}

void openArea(int32_t index, const char *name, int32_t chunkSize, bool tracked)
{
    VxHsmArea &entry = entryOf(index);
    entry = VxHsmArea{};
    entry.index = index;
    entry.storage = static_cast<uint32_t>(index) + 1;
    entry.chunkSize[0] = entry.chunkSize[1] = chunkSize;
    entry.tracked = tracked;
    entry.inUse = 1;
    AreaState &state = stateOf(index);
    state = AreaState{};
    std::snprintf(state.name, sizeof state.name, "%s", name);
}

void closeArea(int32_t index)
{
    for (uint32_t number = stateOf(index).chunks; number;) {
        uint32_t next = chunkAt(number).next;
        giveChunk(number);
        number = next;
    }
    stateOf(index) = AreaState{};
    entryOf(index) = VxHsmArea{};
}

Payload allocate(int32_t area, int64_t size)
{
    if (size < 1 || size > maxRequest)
        return nullptr;
    int64_t gross = grossOf(size + trackingBytes(area));
    Link self = choose(area, gross);
    Payload p = payloadOf(self);
    unlinkFree(area, p);
    auto payload = static_cast<int32_t>(gross - tagBytes);
    int32_t rest = headerOf(p) - payload - tagBytes;
    if (rest >= minGross - tagBytes)
        pushFree(area, self + static_cast<Link>(gross / unitBytes), p + gross, rest);
    setHeader(p, static_cast<int32_t>(-size));
    setWord(trailerAt(p, payload), areaTag - area);
    if (entryOf(area).tracked)
        track(p, payload, self);
    if (manager().statistics)
        count(area, size, gross, true);
    return p;
}

BlockInUse inspect(const std::byte *p)
{
    BlockInUse block{Found::notOurs};
    block.chunk = chunkOf(p);
    if (!block.chunk)
        return block;
    const Chunk &chunk = chunkAt(block.chunk);
    block.area = chunk.area;
    block.found = Found::damaged;
    ptrdiff_t place = p - chunk.base;
    if (place % unitBytes != 0 || place < 2 * wordBytes || place > chunk.size - minGross)
        return block;
    int64_t header = headerOf(p);
    if (header > 0)
        block.found = Found::freeBlock;
    if (header >= 0)
        return block;
    int64_t payload = grossOf(-header + trackingBytes(chunk.area)) - tagBytes;
    if (payload > chunk.size - wordBytes - wordBytes - place)
        return block;
    if (wordAt(p + payload) != areaTag - chunk.area)
        return block;
    block.found = Found::block;
    block.size = static_cast<int32_t>(-header);
    block.payload = static_cast<int32_t>(payload);
    return block;
}

bool release(Payload p)
{
    BlockInUse block = inspect(p);
    if (block.found != Found::block) {
        complain(block.area, block.found == Found::freeBlock ? "handed back twice" : "not a block in use", p);
        return false;
    }
    int32_t area = block.area;
    if (manager().statistics)
        count(area, block.size, int64_t{block.payload} + tagBytes, false);
    if (entryOf(area).tracked)
        untrack(p, block.payload);

    Chunk &chunk = chunkAt(block.chunk);
    int32_t payload = block.payload;
    setHeader(p, 0); // what is merged away is no block any more
    setWord(trailerAt(p, payload), 0);
    Payload following = p + payload + tagBytes;
    if (int32_t after = headerOf(following); after > 0) {
        unlinkFree(area, following);
        payload += after + tagBytes;
    }
    int32_t before = wordAt(p - tagBytes);
    if (before > 0) {
        Payload preceding = p - tagBytes - before;
        unlinkFree(area, preceding);
        payload += before + tagBytes;
        p = preceding;
    }
    if (p == chunk.firstBlock() && payload == chunk.wholePayload()) {
        unlinkChunk(area, block.chunk);
        giveChunk(block.chunk);
    } else {
        pushFree(area, linkOf(chunk, p), p, payload);
    }
    return true;
}

void complain(int32_t area, const char *what, const void *p)
{
    if (!manager().checking)
        return;
    char line[192];
    std::snprintf(line, sizeof line, "memory pools: %s: %s (%" PRIxPTR ")\n",
                  isArea(area) ? stateOf(area).name : "no area", what, reinterpret_cast<uintptr_t>(p));
    os::debuggerOutput(line);
}

}
