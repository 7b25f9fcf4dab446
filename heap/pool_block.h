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
// Links are 32 bits wide on every system: a page's number and a place in it in
// units of 8 bytes. Page 0 is nowhere, the pages from 1 on are the mebibytes
// that chunks occupy, and the n-th from the end holds the list heads of area n.
// So null, a block and a list head are all resolved, and written to, alike.

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

constexpr Link nullLink = 0;
constexpr int unitBits = 17; ///< of a link; the rest is the page
constexpr Link unitsPerPage = Link{1} << unitBits;
static_assert(int64_t{unitsPerPage} * unitBytes == mebibyte);
constexpr uint32_t pageCount = uint32_t{1} << (32 - unitBits);

constexpr uint32_t headsPage(int32_t area)
{
    return pageCount - 1 - static_cast<uint32_t>(area);
}

constexpr Link headLink(int32_t area, int32_t list)
{
    return headsPage(area) * unitsPerPage + static_cast<Link>(list);
}

constexpr int32_t exactLists = 33; ///< list k holds payloads of 8 * k bytes
constexpr int32_t largeList = 33;
constexpr int32_t listCount = 34;
constexpr int32_t leastLarge = exactLists * unitBytes; ///< payload bytes

// A request's gross size is a 31-bit number.
constexpr int64_t maxRequest = INT32_MAX - 64;

using Payload = std::byte *;

/** The payload with padding for `size` bytes, which are 1 at least, in units of 8 bytes and in bytes. */
constexpr uint64_t unitsFor(uint64_t size)
{
    return (size + unitBytes - 1) / unitBytes;
}

constexpr int64_t payloadFor(int64_t size)
{
    return static_cast<int64_t>(unitsFor(static_cast<uint64_t>(size)) * unitBytes);
}

/** The same with header and trailer. */
constexpr int64_t grossOf(int64_t size)
{
    return payloadFor(size) + tagBytes;
}
static_assert(grossOf(1) == minGross && grossOf(8) == 16 && grossOf(9) == 24);

constexpr int32_t listOf(int32_t payload)
{
    int32_t beyond = static_cast<int32_t>(static_cast<uint32_t>(payload) / unitBytes) - largeList;
    return largeList + (beyond & beyond >> 31); // the lesser, without a branch
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

/** Make the block at `p` a free one of `payload` bytes. */
inline void setFree(Payload p, int32_t payload)
{
    setHeader(p, payload);
    setWord(p + payload, payload);
}

// A block may be kept for requests to come: neither in use nor free. Its header
// says how large it is, its trailer is the area's tag as that of a block in use.

constexpr int32_t largestKept = 4096 - tagBytes;

constexpr int32_t keptHeader(int64_t payload)
{
    return static_cast<int32_t>(INT32_MIN + payload);
}

/** Payload bytes of a kept block, or 0 for another header: no block in use is that large. */
constexpr int32_t keptPayload(int32_t header)
{
    return header <= keptHeader(largestKept) ? header - keptHeader(0) : 0;
}

/** A kept block begins with the address of another one of its size. */
inline Payload nextKept(const std::byte *p)
{
    Payload next;
    std::memcpy(&next, p, sizeof next);
    return next;
}

inline void setNextKept(Payload p, Payload next)
{
    std::memcpy(p, &next, sizeof next);
}
static_assert(sizeof(Payload) <= minGross - tagBytes);

/** The two links of a free block: to the next one of its list, and to the link that names this one. */
struct FreeLinks {
    Link next;
    Link back;
};
static_assert(sizeof(FreeLinks) == minGross - tagBytes);

// The links are mostly read one by one, as they are mostly written: a processor
// waits when it is to read two words at once of which it has just written one.

inline FreeLinks linksOf(const std::byte *p)
{
    FreeLinks links;
    std::memcpy(&links, p, sizeof links);
    return links;
}

inline Link nextOf(const std::byte *p)
{
    Link next;
    std::memcpy(&next, p + offsetof(FreeLinks, next), sizeof next);
    return next;
}

inline Link backOf(const std::byte *p)
{
    Link back;
    std::memcpy(&back, p + offsetof(FreeLinks, back), sizeof back);
    return back;
}

inline void setLinks(Payload p, FreeLinks links)
{
    std::memcpy(p, &links, sizeof links);
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
