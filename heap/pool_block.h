#pragma once

// How a block of the heap storage manager lies in memory.
//
//      p - 4   header    payload bytes of a free block, or minus the bytes
//                        asked for of a block in use
//      p       payload   of a free block first its two links
//              trailer   payload bytes of a free block again, or the tag of
//                        the area of a block in use
//
// Blocks follow one another without gaps, so a block's neighbours are found
// from the words around it. Payloads are aligned to 8 bytes. The first and the
// last word of a chunk are guards that no header or trailer of a block equals
// while its neighbour looks at it.
//
// Links are 32 bits wide on every system: the number of a mebibyte in the
// table of mebibytes that chunks occupy, and a place in it in units of 8 bytes.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vx::heap {

using Link = uint32_t;

constexpr int32_t wordBytes = 4;
constexpr int32_t unitBytes = 8;
constexpr int32_t tagBytes = 2 * wordBytes; ///< header and trailer
constexpr int32_t minGross = 16;

constexpr int32_t guard = -345678;
constexpr int32_t areaTag = -456789; ///< less the area's index

constexpr int64_t mebibyte = int64_t{1} << 20;
constexpr uint32_t unitsPerMebibyte = static_cast<uint32_t>(mebibyte / unitBytes);

constexpr Link nullLink = 0; // no payload stands at the start of a chunk

// Links from here on name list heads instead of blocks.
constexpr Link firstHeadLink = 0xFF000000u;
constexpr uint32_t maxMebibytes = firstHeadLink / unitsPerMebibyte;

constexpr int32_t exactLists = 33; ///< list k holds payloads of 8 * k bytes
constexpr int32_t largeList = 33;
constexpr int32_t listCount = 34;
constexpr int32_t headsPerArea = 64; ///< room for list numbers in a head's link
constexpr uint32_t maxAreas = (0xFFFFFFFFu - firstHeadLink) / headsPerArea;

// A request's gross size is a 31-bit number.
constexpr int64_t maxRequest = INT32_MAX - 64;

using Payload = std::byte *;

/** Header, payload, padding and trailer for `size` bytes. */
constexpr int64_t grossOf(int64_t size)
{
    int64_t gross = (size + tagBytes + unitBytes - 1) & ~int64_t{unitBytes - 1};
    return gross < minGross ? minGross : gross;
}
static_assert(grossOf(1) == 16 && grossOf(8) == 16 && grossOf(9) == 24);

constexpr int32_t listOf(int32_t payload)
{
    int32_t list = payload / unitBytes;
    return list < exactLists ? list : largeList;
}

inline int32_t wordAt(const std::byte *at)
{
    int32_t word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

inline void setWord(std::byte *at, int32_t word)
{
    std::memcpy(at, &word, sizeof word);
}

inline int32_t headerOf(const std::byte *p)
{
    return wordAt(p - wordBytes);
}

inline void setHeader(Payload p, int32_t word)
{
    setWord(p - wordBytes, word);
}

/** The trailer of a block of `payload` bytes. */
inline Payload trailerAt(Payload p, int32_t payload)
{
    return p + payload;
}

/** The two links of a free block: to the next one of its list, and to the link that names this one. */
struct FreeLinks {
    Link next;
    Link back;
};
static_assert(sizeof(FreeLinks) == minGross - tagBytes);

inline FreeLinks linksOf(const std::byte *p)
{
    FreeLinks links;
    std::memcpy(&links, p, sizeof links);
    return links;
}

inline void setNext(Payload p, Link next)
{
    std::memcpy(p + offsetof(FreeLinks, next), &next, sizeof next);
}

inline void setBack(Payload p, Link back)
{
    std::memcpy(p + offsetof(FreeLinks, back), &back, sizeof back);
}

/** The bytes of the chunk that holds `payload` bytes as its only block. */
constexpr int64_t chunkBytesFor(int64_t gross)
{
    return gross + 2 * wordBytes;
}

}
