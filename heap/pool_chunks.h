#pragma once

// The layer below the areas: chunks of whole mebibytes from the general
// allocator, and the translation between addresses and links.

#include <deque>

#include "heap/pool_block.h"

namespace vx::heap {

/** What the layer answers. */
enum class ChunkCode : int32_t { done = 0, refused = 101, notReleased = 102 };

struct AreaState;

/**
 * One chunk's descriptor. A chunk is as large as it was taken: a whole number
 * of mebibytes. Its number is that of the first page it occupies.
 */
struct alignas(64) Chunk {
    Payload first = nullptr;   ///< where the first block's payload is; null for a descriptor not in use
    size_t smallSpan = 0;      ///< bytes from there on at which a small block may begin
    ptrdiff_t span = 0;        ///< bytes of the payload that a block from guard to guard has
    AreaState *area = nullptr; ///< null while nobody has it
    uint32_t number = 0;
    Link firstLink = nullLink;       ///< names `first`
    uint32_t next = 0, previous = 0; ///< of the same area; 0 ends
    bool damaged = false;            ///< a tag was found overwritten: blocks are no longer merged

    int64_t size() const { return span + outsideBytes; }
    std::byte *base() const { return first - 2 * wordBytes; }
    std::byte *lastWord() const { return first + span + wordBytes; }
    /** Whether `p` is where a block's payload may be. */
    bool mayHave(const std::byte *p) const
    {
        uintptr_t place = reinterpret_cast<uintptr_t>(p) - reinterpret_cast<uintptr_t>(first);
        return place < static_cast<uintptr_t>(span) && place % unitBytes == 0;
    }

    /** The same for a small one, which ends in the chunk whatever its header says. */
    bool mayHaveSmall(const std::byte *p) const
    {
        uintptr_t place = reinterpret_cast<uintptr_t>(p) - reinterpret_cast<uintptr_t>(first);
        return place < smallSpan && place % unitBytes == 0;
    }

    static constexpr int64_t outsideBytes = 2 * wordBytes + tagBytes; ///< guards and tags
};

/** Read the cap on the bytes held ("BHSM_PSEUDO_VM_LIMIT") and begin with nothing held. */
void startChunks();

/** Give the spare chunk and every table back. Areas have given theirs back before. */
void endChunks();

/** Bytes of all chunks held, the spare one included. */
int64_t chunkBytesHeld();

/**
 * Take a chunk with room for a block of `gross` bytes. It is one free block
 * between guards, on no list.
 * @param chunk receives its number, above 0
 */
ChunkCode takeChunk(int64_t gross, AreaState &area, uint32_t &chunk);

/** Give a chunk back; the layer may keep one for the next request. */
void giveChunk(uint32_t chunk);

/** Let list heads of so many areas be named by links. False when their pages are taken. */
bool reserveHeadPages(int32_t areas);

/** Name the list heads of an area by links from now on. */
void placeHeads(int32_t area, void *heads);

namespace detail {

// Addresses are found again by the mebibyte they lie in: a chunk that is not
// aligned shares its first and last with neighbours. Two levels cover the 47
// bits of user addresses without taking memory for what is not used.
constexpr int addressBits = 47;
constexpr int mebibyteBits = 20;
constexpr int leafBits = 11;
constexpr size_t leafSize = size_t{1} << leafBits;
constexpr size_t rootSize = size_t{1} << (addressBits - mebibyteBits - leafBits);

extern constinit Chunk noChunk;

/** The chunks that reach into one mebibyte of addresses. */
struct Place {
    uintptr_t split = UINTPTR_MAX; ///< where the second begins
    // The one that reaches in from below, or covers it, and the one that begins
    // in it. Picked by number, as a branch would be a guess.
    Chunk *chunks[2] = {&noChunk, &noChunk};
};

/** Two large tables of which only what is used takes memory, and little else. */
struct ChunkTables {
    std::byte *pages[pageCount];
    Place *places[rootSize];
    std::deque<Chunk> *chunks; ///< by number; number 0 is none
    int64_t held;
    int64_t cap; ///< 0 for none
    uint32_t spare;
    uint32_t firstFree; ///< no page below it is free
    uint32_t headPages; ///< the first page that list heads may have
};
extern constinit ChunkTables tables;

// What null links and absent neighbours stand for: a header before anything,
// the block at page 0's start, whose links are written and never read, and
// noBlock(), which is only read.
alignas(unitBytes) extern constinit std::byte nowhere[4 * unitBytes];

}

inline Chunk &chunkAt(uint32_t number)
{
    return (*detail::tables.chunks)[number];
}

/** The only chunk that may have `p`, or one that has nothing. Any pointer may be asked about. */
inline Chunk &chunkNear(const std::byte *p)
{
    using namespace detail;
    auto address = reinterpret_cast<uintptr_t>(p);
    uint64_t number = uint64_t{address} >> mebibyteBits;
    const Place *leaf = tables.places[number >> leafBits & (rootSize - 1)];
    if (!leaf)
        return noChunk;
    const Place &place = leaf[number & (leafSize - 1)];
    return *place.chunks[address >= place.split];
}

/** The chunk that has `p` where a block may be, or null. */
inline Chunk *chunkOf(const std::byte *p)
{
    Chunk &chunk = chunkNear(p);
    return chunk.mayHave(p) ? &chunk : nullptr;
}

/** The address that a link names. */
inline Payload payloadOf(Link link)
{
    return detail::tables.pages[link >> unitBits] + size_t{link % unitsPerPage} * unitBytes;
}

/** The link that names a payload of this chunk. */
inline Link linkOf(const Chunk &chunk, const std::byte *p)
{
    return chunk.firstLink + static_cast<Link>(static_cast<size_t>(p - chunk.first) / unitBytes);
}

/** Stands for the neighbour that a block does not have: a free block of no bytes, on no list. */
constexpr Payload noBlock()
{
    return detail::nowhere + 3 * unitBytes;
}

}
