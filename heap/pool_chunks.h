#pragma once

// The layer below the areas: chunks of whole mebibytes from the general
// allocator, and the translation between addresses and links.

#include "heap/pool_block.h"

namespace vx::heap {

/** What the layer answers. */
enum class ChunkCode : int32_t { done = 0, refused = 101, notReleased = 102 };

/** One chunk. It is as large as it was taken: a whole number of mebibytes. */
struct Chunk {
    std::byte *base = nullptr; ///< null for a descriptor not in use
    int64_t size = 0;
    uint32_t firstMebibyte = 0; ///< its first number in the table of mebibytes
    int32_t area = -1;
    uint32_t next = 0; ///< of the same area; 0 ends

    Payload firstBlock() const { return base + 2 * wordBytes; }
    int32_t wholePayload() const { return static_cast<int32_t>(size - 2 * wordBytes - tagBytes); }
    bool contains(const std::byte *p) const { return base && p >= base && p < base + size; }
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
ChunkCode takeChunk(int64_t gross, int32_t area, uint32_t &chunk);

/** Give a chunk back; the layer may keep one for the next request. */
void giveChunk(uint32_t chunk);

Chunk &chunkAt(uint32_t chunk);

/** The number of the chunk that `p` points into, 0 for none. Any pointer may be asked about. */
uint32_t chunkOf(const std::byte *p);

namespace detail {
extern std::byte **mebibytes;
}

/** The payload that a block's link names. */
inline Payload payloadOf(Link link)
{
    return detail::mebibytes[link / unitsPerMebibyte] + size_t{link % unitsPerMebibyte} * unitBytes;
}

/** The link that names a payload of this chunk. */
inline Link linkOf(const Chunk &chunk, const std::byte *p)
{
    return chunk.firstMebibyte * unitsPerMebibyte + static_cast<Link>((p - chunk.base) / unitBytes);
}

}
