// What happens to an area as a whole, and what is kept about its blocks when
// somebody wants to know.

#include "heap/pool_area.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "heap/pool_chunks.h"
#include "platform/os/os.h"
#include "vx/pool.hpp"

namespace vx::heap {

namespace detail {

constinit Lasting<StorageManager> storage;

}

namespace {

VxHsmArea &entryOf(int32_t area)
{
    return VgAreas[area];
}

AreaState &stateOf(int32_t area)
{
    return manager().areas[static_cast<size_t>(area)];
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
    setLinks(trackingOf(p, payload), {head, nullLink});
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

}

bool isArea(int64_t index)
{
    return index >= 0 && index < VgNAreas && index < static_cast<int64_t>(manager().areas.size())
           && VgAreas[index].inUse;
}

void placeAreas()
{
    manager().areas.resize(static_cast<size_t>(VgNAreas));
    for (int32_t i = 0; i < VgNAreas; ++i)
        placeHeads(i, VgAreas[i].heads);
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
    state.trackingBytes = tracked ? VgTransientTrailerSize : 0;
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
    manager().lastPool = nullptr;
}

void dropChunk(int32_t area, uint32_t number)
{
    const Chunk &chunk = chunkAt(number);
    if (chunk.next)
        chunkAt(chunk.next).previous = chunk.previous;
    if (chunk.previous)
        chunkAt(chunk.previous).next = chunk.next;
    else
        stateOf(area).chunks = chunk.next;
    giveChunk(number);
    manager().lastPool = nullptr;
}

Link addChunk(int32_t area, int64_t gross)
{
    uint32_t number = 0;
    int64_t wanted = std::max<int64_t>(gross, entryOf(area).chunkSize[1] - 2 * wordBytes);
    if (takeChunk(wanted, area, number) != ChunkCode::done)
        throw VX::VxException(__LINE__, "src\\heap\\VxOsAlloc");
    Chunk &chunk = chunkAt(number);
    uint32_t &first = stateOf(area).chunks;
    chunk.next = first;
    if (first)
        chunkAt(first).previous = number;
    first = number;
    return linkOf(chunk, chunk.firstBlock());
}

void enter(int32_t area, Payload p, Link self, int32_t size, int32_t payload)
{
    if (entryOf(area).tracked)
        track(p, payload, self);
    if (manager().statistics)
        count(area, size, int64_t{payload} + tagBytes, true);
}

void leave(int32_t area, Payload p, int32_t size, int32_t payload)
{
    if (entryOf(area).tracked)
        untrack(p, payload);
    if (manager().statistics)
        count(area, size, int64_t{payload} + tagBytes, false);
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
