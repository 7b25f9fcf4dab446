#include "heap/pool_chunks.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#include "vx/mem.h"

namespace vx::heap {

namespace detail {

constinit ChunkTables tables = {};
constinit Chunk noChunk = {}; // nothing may be in it
alignas(unitBytes) constinit std::byte nowhere[4 * unitBytes] = {};

}

namespace {

using namespace detail;

uint64_t mebibyteOf(const std::byte *p)
{
    return uint64_t{reinterpret_cast<uintptr_t>(p)} >> mebibyteBits;
}

Place &placeOf(uint64_t number)
{
    return tables.places[number >> leafBits][number & (leafSize - 1)];
}

/** Make the leaf that an address needs; false without memory or for an address beyond user space. */
bool needPlace(uint64_t number)
{
    if (number >> leafBits >= rootSize)
        return false;
    Place *&leaf = tables.places[number >> leafBits];
    if (!leaf)
        leaf = new (std::nothrow) Place[leafSize];
    return leaf != nullptr;
}

bool needPlaces(const std::byte *base, int64_t size)
{
    for (uint64_t m = mebibyteOf(base); m <= mebibyteOf(base + size - 1); ++m)
        if (!needPlace(m))
            return false;
    return true;
}

/** Enter the chunk at the addresses it covers, or take it out. */
void setPlaces(Chunk &chunk, bool entered)
{
    uint64_t first = mebibyteOf(chunk.base());
    uint64_t last = mebibyteOf(chunk.lastWord());
    Chunk *found = entered ? &chunk : &noChunk;
    placeOf(first).chunks[1] = found;
    placeOf(first).split = entered ? reinterpret_cast<uintptr_t>(chunk.base()) : UINTPTR_MAX;
    for (uint64_t m = first + 1; m <= last; ++m)
        placeOf(m).chunks[0] = found;
}

void setPages(const Chunk &chunk, std::byte *base)
{
    for (int64_t at = 0; at < chunk.size(); at += mebibyte)
        tables.pages[chunk.number + static_cast<uint32_t>(at / mebibyte)] = base ? base + at : nullptr;
}

/** The first of `count` free neighbouring pages, or 0. */
uint32_t freePages(uint32_t count)
{
    while (tables.firstFree < tables.headPages && tables.pages[tables.firstFree])
        ++tables.firstFree;
    uint32_t run = 0;
    for (uint32_t page = tables.firstFree; page < tables.headPages; ++page) {
        run = tables.pages[page] ? 0 : run + 1;
        if (run == count)
            return page + 1 - count;
    }
    return 0;
}

/** One free block from guard to guard. */
void format(Chunk &chunk)
{
    setWord(chunk.base(), guard);
    setFree(chunk.first, static_cast<int32_t>(chunk.span));
    setWord(chunk.lastWord(), guard);
}

void release(uint32_t number)
{
    Chunk &chunk = chunkAt(number);
    setPages(chunk, nullptr);
    tables.firstFree = std::min(tables.firstFree, number);
    tables.held -= chunk.size();
    void *block = chunk.base();
    VxMemFree(&block);
    chunk = Chunk{};
}

void dropSpare()
{
    if (tables.spare)
        release(std::exchange(tables.spare, 0u));
}

/** Room for the descriptors of chunks below `end`. */
bool needDescriptors(size_t end)
{
    try {
        if (tables.chunks->size() < end)
            tables.chunks->resize(end);
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

ChunkCode take(int64_t size, uint32_t &number)
{
    if (tables.cap > 0 && tables.held + size > tables.cap)
        dropSpare();
    if (size > INT32_MAX || (tables.cap > 0 && tables.held + size > tables.cap))
        return ChunkCode::refused;
    auto pages = static_cast<uint32_t>(size / mebibyte);
    number = freePages(pages);
    void *block = nullptr;
    if (!number || !needDescriptors(number + pages) || VxMemAlloc(static_cast<int32_t>(size), &block))
        return ChunkCode::refused;
    auto base = static_cast<std::byte *>(block);
    if (!needPlaces(base, size)) {
        VxMemFree(&block);
        return ChunkCode::refused;
    }
    Chunk &chunk = chunkAt(number);
    chunk.first = base + 2 * wordBytes;
    chunk.span = size - Chunk::outsideBytes;
    chunk.smallSpan = static_cast<size_t>(chunk.span - leastLarge);
    chunk.number = number;
    chunk.firstLink = number * unitsPerPage + 1;
    setPages(chunk, base);
    tables.held += size;
    return ChunkCode::done;
}

}

void startChunks()
{
    if (!tables.chunks)
        tables.chunks = new std::deque<Chunk>(1);
    tables.pages[0] = nowhere + unitBytes;
    tables.firstFree = 1;
    tables.headPages = pageCount;
    const char *cap = std::getenv("BHSM_PSEUDO_VM_LIMIT");
    tables.cap = cap ? std::strtoll(cap, nullptr, 0) : 0;
}

void endChunks()
{
    if (!tables.chunks)
        return;
    dropSpare();
    for (Place *&leaf : tables.places) {
        if (leaf)
            delete[] std::exchange(leaf, nullptr);
    }
    delete std::exchange(tables.chunks, nullptr);
    std::fill(tables.pages + tables.headPages, std::end(tables.pages), nullptr);
    tables.cap = 0;
}

int64_t chunkBytesHeld()
{
    return tables.held;
}

ChunkCode takeChunk(int64_t gross, AreaState &area, uint32_t &number)
{
    int64_t size = (std::max<int64_t>(chunkBytesFor(gross), 1) + mebibyte - 1) / mebibyte * mebibyte;
    if (tables.spare && chunkAt(tables.spare).size() == size) {
        number = std::exchange(tables.spare, 0u);
    } else if (ChunkCode code = take(size, number); code != ChunkCode::done) {
        return code;
    }
    Chunk &chunk = chunkAt(number);
    chunk.area = &area;
    chunk.damaged = false;
    setPlaces(chunk, true);
    format(chunk);
    return ChunkCode::done;
}

void giveChunk(uint32_t number)
{
    // One ordinary chunk is kept, so that work at the border of a chunk does
    // not take and give it again and again.
    Chunk &chunk = chunkAt(number);
    setPlaces(chunk, false);
    chunk.area = nullptr;
    chunk.next = chunk.previous = 0;
    if (tables.spare || chunk.size() != mebibyte)
        release(number);
    else
        tables.spare = number;
}

bool reserveHeadPages(int32_t areas)
{
    uint32_t first = headsPage(areas - 1);
    if (static_cast<uint32_t>(areas) >= pageCount || first < tables.chunks->size())
        return false;
    tables.headPages = first;
    return true;
}

void placeHeads(int32_t area, void *heads)
{
    tables.pages[headsPage(area)] = static_cast<std::byte *>(heads);
}

}
