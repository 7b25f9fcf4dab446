// Memory blocks through zlib, and three queries to the host.
//
// The result of a compression or expansion is defined byte by byte: zlib is
// given one byte and room for one byte per call, until the stream ends, the input
// is used up or the buffer is full. Here it is fed in large pieces that lead
// to the same bytes, the same progress values and the same verdict.

#include "vx/compress.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <zlib.h>

#include "talm/base.h"
#include "vx/escape.h"
#include "vx/mem.h"
#include "vx/tools.h"

namespace {

constexpr int32_t maxDeflateLength = 1073741824;
constexpr int32_t bestCompression = 9;
// The oldest zlib whose interface is used; the library compares the first character.
constexpr const char *zlibInterface = "1.2.5";

// Progress of a compression runs from the first to the second value.
constexpr int32_t progressStart = 80;
constexpr int32_t progressEnd = 100;
constexpr int32_t progressSteps = progressEnd - progressStart;

constexpr int64_t defaultExpansion = 8;

constexpr int32_t hostShowText = 71;
constexpr int32_t hostVersionLessThan = 232;
constexpr int32_t hostQaRun = 14;

/** A block of the general allocator, freed unless handed out. */
class Block {
public:
    Block() = default;
    ~Block() { VxMemFree(&bytes_); }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    bool allocate(int32_t size) { return VxMemAlloc(size, &bytes_) == 0; }
    bool resize(int32_t size) { return VxMemResize(size, &bytes_) == 0; }
    Bytef *bytes() const { return static_cast<Bytef *>(bytes_); }
    void *handOut() { return std::exchange(bytes_, nullptr); }

private:
    void *bytes_ = nullptr;
};

void *allocateFor(void *, uInt items, uInt size)
{
    void *block = nullptr;
    uint64_t bytes = uint64_t{items} * size;
    if (bytes <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max()))
        VxMemAllocNoEmer(static_cast<int32_t>(bytes), &block);
    return block;
}

void freeFor(void *, void *block)
{
    VxMemFree(&block);
}

/** A stream of zlib between its start and `end`, which zlib tells apart by direction. */
class Stream : public z_stream {
public:
    explicit Stream(int (*end)(z_stream *)) : z_stream{}, end_(end)
    {
        zalloc = allocateFor;
        zfree = freeFor;
    }
    ~Stream() { end_(this); }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    void from(const void *source) { next_in = static_cast<z_const Bytef *>(const_cast<void *>(source)); }

private:
    int (*end_)(z_stream *);
};

/** All of the source in pieces that end where the progress changes, then the end of the stream. */
bool deflateAll(Stream &stream, int32_t length)
{
    int64_t reported = progressStart;
    for (int64_t step = 1; step <= progressSteps; ++step) {
        uint64_t end = static_cast<uint64_t>((step * length + progressSteps - 1) / progressSteps);
        if (end == stream.total_in)
            continue;
        stream.avail_in = static_cast<uInt>(end - stream.total_in);
        if (deflate(&stream, Z_NO_FLUSH) != Z_OK || stream.avail_in != 0)
            return false;
        int64_t progress = progressStart + progressSteps * static_cast<int64_t>(end) / length;
        if (progress > reported)
            VxProgress(static_cast<intptr_t>(progress));
        reported = progress;
    }
    return deflate(&stream, Z_FINISH) == Z_STREAM_END;
}

enum class Outcome { ended, stopped, damaged, noMemory };

Outcome outcomeOf(int result)
{
    switch (result) {
    case Z_STREAM_END: return Outcome::ended;
    case Z_OK: return Outcome::stopped;
    case Z_MEM_ERROR: return Outcome::noMemory;
    default: return Outcome::damaged;
    }
}

/** Go on byte by byte, to the stream's end or as far as `length` and `size` allow. */
Outcome inflateByBytes(Stream &stream, uint64_t length, uint64_t size)
{
    Outcome outcome = Outcome::stopped;
    while (outcome == Outcome::stopped && stream.total_out < size && stream.total_in < length) {
        stream.avail_in = 1;
        stream.avail_out = 1;
        outcome = outcomeOf(inflate(&stream, Z_NO_FLUSH));
    }
    return outcome;
}

/**
 * As inflateByBytes() from the start, but all except the last byte of input
 * and output in one call. Where that ends at the stream's end, or with a full
 * buffer and input left, single bytes would have ended there too. Nothing is
 * concluded from any other ending: damaged and truncated input can stop the
 * two at different places.
 */
Outcome inflateAtOnce(Stream &stream, uint64_t length, uint64_t size)
{
    Outcome outcome = Outcome::stopped;
    if (length > 1 && size > 1) {
        stream.avail_in = static_cast<uInt>(length - 1);
        stream.avail_out = static_cast<uInt>(size - 1);
        outcome = outcomeOf(inflate(&stream, Z_NO_FLUSH));
    }
    if (outcome == Outcome::stopped)
        outcome = inflateByBytes(stream, length, size);
    if (outcome == Outcome::stopped && (stream.total_out < size || stream.total_in == length))
        outcome = Outcome::damaged;
    return outcome;
}

/** The bytes produced, or -1 when the source is damaged or memory is short. */
int64_t inflateInto(Bytef *out, int32_t size, const void *source, int32_t length)
{
    Stream stream(inflateEnd);
    if (inflateInit_(&stream, zlibInterface, sizeof(z_stream)) != Z_OK)
        return -1;
    auto rewind = [&] {
        stream.from(source);
        stream.next_out = out;
    };
    rewind();
    uint64_t in = static_cast<uint64_t>(length);
    Outcome outcome = inflateAtOnce(stream, in, static_cast<uint64_t>(size));
    if (outcome == Outcome::damaged) {
        inflateReset(&stream);
        rewind();
        outcome = inflateByBytes(stream, in, static_cast<uint64_t>(size));
    }
    bool good = outcome == Outcome::ended || outcome == Outcome::stopped;
    return good ? static_cast<int64_t>(stream.total_out) : -1;
}

int32_t expandedSize(int32_t length, int32_t wanted)
{
    if (wanted > 0)
        return wanted;
    int64_t size = defaultExpansion * length;
    return static_cast<int32_t>(std::min<int64_t>(size, std::numeric_limits<int32_t>::max()));
}

bool isWorkable(const void *source, int32_t length, void **result, const int32_t *resultLength)
{
    return source && length > 0 && result && !*result && resultLength;
}

template <typename Function> Function hostFunction(int32_t number)
{
    return reinterpret_cast<Function>(ApBaseGetFunction(number));
}

}

uint32_t VxLibDeflate(const void *source, int32_t length, void **result, int32_t *resultLength)
{
    if (!isWorkable(source, length, result, resultLength) || length > maxDeflateLength)
        return 1;
    Stream stream(deflateEnd);
    if (deflateInit_(&stream, bestCompression, zlibInterface, sizeof(z_stream)) != Z_OK)
        return 1;
    uLong bound = deflateBound(&stream, static_cast<uLong>(length));
    Block block;
    if (!block.allocate(static_cast<int32_t>(bound)))
        return 1;
    stream.from(source);
    stream.next_out = block.bytes();
    stream.avail_out = static_cast<uInt>(bound);
    if (!deflateAll(stream, length))
        return 1;
    *resultLength = static_cast<int32_t>(stream.total_out);
    *result = block.handOut();
    return 0;
}

uint32_t VxLibInflate(const void *source, int32_t length, void **result, int32_t *resultLength)
{
    if (!isWorkable(source, length, result, resultLength))
        return 1;
    int32_t size = expandedSize(length, *resultLength);
    Block block;
    if (!block.allocate(size))
        return 1;
    int64_t produced = inflateInto(block.bytes(), size, source, length);
    if (produced < 0 || !block.resize(static_cast<int32_t>(produced)))
        return 1;
    *resultLength = static_cast<int32_t>(produced);
    *result = block.handOut();
    return 0;
}

int32_t VerNum(void)
{
    auto showText = hostFunction<int32_t (*)(const char *)>(hostShowText);
    return showText ? showText(GetVerNum()) : 0;
}

int32_t HkVersionLessThan(intptr_t a0, intptr_t a1, intptr_t a2, intptr_t a3)
{
    auto compare = hostFunction<int32_t (*)(intptr_t, intptr_t, intptr_t, intptr_t)>(hostVersionLessThan);
    return compare ? compare(a0, a1, a2, a3) : 0;
}

int32_t HkQaTestIsActive(void)
{
    auto active = static_cast<const int32_t *>(ApBaseGetVariable(hostQaRun));
    return active ? *active : 0;
}
