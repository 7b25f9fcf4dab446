// What happens to an area as a whole, and what is kept about its blocks when
// somebody wants to know.

#include "heap/pool_area.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "platform/os/os.h"

namespace vx::heap {

namespace detail {

constinit Lasting<StorageManager> storage;

}

namespace {

VxHsmArea &entryOf(int32_t area)
{
    return VgAreas[area];
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
    Payload links = trackingOf(p, payload);
    Link next = nextOf(links);
    Link previous = backOf(links);
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

void count(AreaState &state, int64_t size, int64_t gross, bool isRequest)
{
    (isRequest ? state.requests : state.frees) += 1;
    state.bytes += isRequest ? size : -size;
    state.grossBytes += isRequest ? gross : -gross;
    state.peakBytes = std::max(state.peakBytes, state.bytes);
    int32_t(&words)[6] = entryOf(state.index).statistics;
    words[1] = clamped(state.peakBytes);
    words[2] = clamped(state.bytes);
    words[3] = clamped(state.grossBytes);
    words[4] = clamped(state.requests);
    words[5] = clamped(state.frees);
}

/** As before anything was in the area. */
void clearArea(int32_t index)
{
    entryOf(index) = VxHsmArea{};
    stateOf(index) = AreaState{};
    stateOf(index).heads = payloadOf(headLink(index, 0));
    stateOf(index).headsLink = headLink(index, 0);
    stateOf(index).index = index;
    stateOf(index).tag = areaTag - index;
}

}

bool isArea(int64_t index)
{
    return index >= 0 && index < VgNAreas && index < static_cast<int64_t>(manager().areas.size()) &&
           VgAreas[index].inUse;
}

void needStates(int32_t count)
{
    auto &areas = manager().areas;
    while (areas.size() < static_cast<size_t>(count))
        areas.push_back(std::make_unique<AreaState>());
}

void placeAreas()
{
    for (int32_t i = 0; i < VgNAreas; ++i) {
        placeHeads(i, VgAreas[i].heads);
        stateOf(i).heads = payloadOf(headLink(i, 0));
    }
}

void openArea(int32_t index, const char *name, int32_t chunkSize, bool tracked)
{
    clearArea(index);
    VxHsmArea &entry = entryOf(index);
    entry.index = index;
    entry.storage = static_cast<uint32_t>(index) + 1;
    entry.chunkSize[0] = entry.chunkSize[1] = chunkSize;
    entry.tracked = tracked;
    entry.inUse = 1;
    AreaState &state = stateOf(index);
    state.trackingBytes = tracked ? VgTransientTrailerSize : 0;
    setMergeBelow(state, mergeBelowFor(state));
    std::snprintf(state.name, sizeof state.name, "%s", name);
}

void closeArea(int32_t index)
{
    settleWaiting();
    for (uint32_t number = stateOf(index).chunks; number;) {
        uint32_t next = chunkAt(number).next;
        giveChunk(number);
        number = next;
    }
    clearArea(index);
    manager().lastPool = noBlock();
}

void dropChunk(const Chunk &chunk)
{
    if (chunk.next)
        chunkAt(chunk.next).previous = chunk.previous;
    if (chunk.previous)
        chunkAt(chunk.previous).next = chunk.next;
    else
        chunk.area->chunks = chunk.next;
    --chunk.area->chunkCount;
    setMergeBelow(*chunk.area, chunk.area->mergeBelow);
    giveChunk(chunk.number);
    manager().lastPool = noBlock();
}

Link addChunk(AreaState &area, int64_t gross)
{
    uint32_t number = 0;
    int64_t wanted = std::max<int64_t>(gross, entryOf(area.index).chunkSize[1] - 2 * wordBytes);
    if (takeChunk(wanted, area, number) != ChunkCode::done) {
        if (mergeEverything())
            return nullLink;
        throw VX::VxException(__LINE__, "src\\heap\\VxOsAlloc");
    }
    Chunk &chunk = chunkAt(number);
    chunk.next = area.chunks;
    if (area.chunks)
        chunkAt(area.chunks).previous = number;
    area.chunks = number;
    ++area.chunkCount;
    setMergeBelow(area, area.live < manyBlocks ? area.mergeBelow : std::max(area.mergeBelow, area.live / 4));
    return linkOf(chunk, chunk.first);
}

void enter(AreaState &area, Payload p, Link self, int32_t size, int32_t payload)
{
    if (area.trackingBytes)
        track(p, payload, self);
    if (manager().statistics)
        count(area, size, int64_t{payload} + tagBytes, true);
}

void leave(AreaState &area, Payload p, int32_t size, int32_t payload)
{
    if (area.trackingBytes)
        untrack(p, payload);
    if (manager().statistics)
        count(area, size, int64_t{payload} + tagBytes, false);
}

void complain(const AreaState *area, const char *what, const void *p)
{
    if (!manager().checking)
        return;
    char line[192];
    std::snprintf(line, sizeof line, "memory pools: %s: %s (%" PRIxPTR ")\n", area ? area->name : "no area",
                  what, reinterpret_cast<uintptr_t>(p));
    os::debuggerOutput(line);
}

}
