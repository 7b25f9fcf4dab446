#include "heap/pool_chunks.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

#include "vx/mem.h"

namespace vx::heap {

namespace {

// Addresses are found again by the mebibyte they lie in: a chunk that is not
// aligned shares its first and last with neighbours. Two levels cover the 47
// bits of user addresses without taking memory for what is not used.
constexpr int addressBits = 47;
constexpr int leafBits = 13;
constexpr size_t leafSize = size_t{1} << leafBits;
constexpr size_t rootSize = size_t{1} << (addressBits - 20 - leafBits);

/** The chunks that reach into one mebibyte of addresses; 0 for none. */
struct Place {
    uint32_t low;  ///< the one that reaches in from below or covers it
    uint32_t high; ///< the one that begins in it
};

struct ChunkState {
    std::vector<Chunk> chunks; ///< number 0 is none
    std::vector<std::byte *> mebibytes;
    Place *root[rootSize] = {};
    int64_t held = 0;
    int64_t cap = 0; ///< 0 for none
    uint32_t spare = 0;
};

ChunkState &state()
{
    static ChunkState &only = *new ChunkState;
    return only;
}

uint64_t mebibyteOf(const std::byte *p)
{
    return reinterpret_cast<uintptr_t>(p) >> 20;
}

Place *placeOf(uint64_t mebibyte)
{
    if (mebibyte >= uint64_t{rootSize} << leafBits)
        return nullptr;
    Place *leaf = state().root[mebibyte >> leafBits];
    return leaf ? &leaf[mebibyte & (leafSize - 1)] : nullptr;
}

/** Make the leaf that an address needs; false without memory or for an address beyond user space. */
bool needPlace(uint64_t mebibyte)
{
    if (mebibyte >= uint64_t{rootSize} << leafBits)
        return false;
    Place *&leaf = state().root[mebibyte >> leafBits];
    if (!leaf)
        leaf = new (std::nothrow) Place[leafSize]();
    return leaf != nullptr;
}

bool needPlaces(const Chunk &chunk)
{
    for (uint64_t m = mebibyteOf(chunk.base); m <= mebibyteOf(chunk.base + chunk.size - 1); ++m)
        if (!needPlace(m))
            return false;
    return true;
}

/** Enter the chunk's number at the addresses it covers, or with 0 take it out. */
void setPlaces(const Chunk &chunk, uint32_t number)
{
    uint64_t first = mebibyteOf(chunk.base);
    uint64_t last = mebibyteOf(chunk.base + chunk.size - 1);
    placeOf(first)->high = number;
    for (uint64_t m = first + 1; m <= last; ++m)
        placeOf(m)->low = number;
}

/** The first of `count` free neighbouring numbers of mebibytes; the table grows when it must. */
bool reserveMebibytes(uint32_t count, uint32_t &first)
{
    auto &table = state().mebibytes;
    uint32_t run = 0;
    for (uint32_t i = 0; i < table.size(); ++i) {
        run = table[i] ? 0 : run + 1;
        if (run == count) {
            first = i + 1 - count;
            return true;
        }
    }
    first = static_cast<uint32_t>(table.size()) - run;
    if (first + count > maxMebibytes)
        return false;
    table.resize(first + count);
    detail::mebibytes = table.data();
    return true;
}

void setMebibytes(const Chunk &chunk, std::byte *base)
{
    for (int64_t at = 0; at < chunk.size; at += mebibyte)
        state().mebibytes[chunk.firstMebibyte + static_cast<uint32_t>(at / mebibyte)] = base ? base + at : nullptr;
}

uint32_t freeDescriptor()
{
    auto &chunks = state().chunks;
    if (chunks.empty())
        chunks.emplace_back();
    for (uint32_t i = 1; i < chunks.size(); ++i)
        if (!chunks[i].base)
            return i;
    chunks.emplace_back();
    return static_cast<uint32_t>(chunks.size() - 1);
}

/** One free block from guard to guard. */
void format(Chunk &chunk)
{
    int32_t payload = chunk.wholePayload();
    Payload p = chunk.firstBlock();
    setWord(chunk.base, guard);
    setHeader(p, payload);
    setWord(trailerAt(p, payload), payload);
    setWord(chunk.base + chunk.size - wordBytes, guard);
}

void release(uint32_t number)
{
    Chunk &chunk = chunkAt(number);
    setPlaces(chunk, 0);
    setMebibytes(chunk, nullptr);
    state().held -= chunk.size;
    void *block = chunk.base;
    VxMemFree(&block);
    chunk = Chunk{};
}

void dropSpare()
{
    if (state().spare)
        release(std::exchange(state().spare, 0u));
}

ChunkCode take(int64_t size, uint32_t &number)
{
    ChunkState &all = state();
    if (all.cap > 0 && all.held + size > all.cap)
        dropSpare();
    if (size > INT32_MAX || (all.cap > 0 && all.held + size > all.cap))
        return ChunkCode::refused;
    void *block = nullptr;
    try {
        number = freeDescriptor();
        Chunk chunk;
        chunk.size = size;
        if (!reserveMebibytes(static_cast<uint32_t>(size / mebibyte), chunk.firstMebibyte)
            || VxMemAlloc(static_cast<int32_t>(size), &block))
            return ChunkCode::refused;
        chunk.base = static_cast<std::byte *>(block);
        if (!needPlaces(chunk)) {
            VxMemFree(&block);
            return ChunkCode::refused;
        }
        chunkAt(number) = chunk;
    } catch (const std::bad_alloc &) {
        return ChunkCode::refused;
    }
    setMebibytes(chunkAt(number), chunkAt(number).base);
    setPlaces(chunkAt(number), number);
    all.held += size;
    return ChunkCode::done;
}

}

namespace detail {

std::byte **mebibytes = nullptr;

}

void startChunks()
{
    const char *cap = std::getenv("BHSM_PSEUDO_VM_LIMIT");
    state().cap = cap ? std::strtoll(cap, nullptr, 0) : 0;
}

void endChunks()
{
    dropSpare();
    ChunkState &all = state();
    for (Place *&leaf : all.root) {
        delete[] leaf;
        leaf = nullptr;
    }
    all.chunks = {};
    all.mebibytes = {};
    detail::mebibytes = nullptr;
    all.cap = 0;
}

int64_t chunkBytesHeld()
{
    return state().held;
}

ChunkCode takeChunk(int64_t gross, int32_t area, uint32_t &number)
{
    int64_t size = (std::max<int64_t>(chunkBytesFor(gross), 1) + mebibyte - 1) / mebibyte * mebibyte;
    ChunkState &all = state();
    if (all.spare && chunkAt(all.spare).size == size) {
        number = std::exchange(all.spare, 0u);
    } else if (ChunkCode code = take(size, number); code != ChunkCode::done) {
        return code;
    }
    chunkAt(number).area = area;
    chunkAt(number).next = 0;
    format(chunkAt(number));
    return ChunkCode::done;
}

void giveChunk(uint32_t number)
{
    // One ordinary chunk is kept, so that work at the border of a chunk does
    // not take and give it again and again.
    Chunk &chunk = chunkAt(number);
    chunk.area = -1;
    if (state().spare || chunk.size != mebibyte)
        release(number);
    else
        state().spare = number;
}

Chunk &chunkAt(uint32_t number)
{
    return state().chunks[number];
}

uint32_t chunkOf(const std::byte *p)
{
    const Place *place = placeOf(mebibyteOf(p));
    if (!place)
        return 0;
    for (uint32_t number : {place->low, place->high})
        if (number && chunkAt(number).contains(p) && chunkAt(number).area >= 0)
            return number;
    return 0;
}

}
