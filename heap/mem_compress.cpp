// Blocks compressed and expanded, with a marker byte in front if wanted.

#include "vx/mem.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "vx/compress.h"
#include "vx/err.h"
#include "vx/tools.h"

namespace {

constexpr int32_t markerMissing = 73;
constexpr int64_t maxSize = std::numeric_limits<int32_t>::max();

constexpr int64_t firstExpansion = 8;
constexpr int64_t expansionStep = 8;

uint32_t putInFront(uint8_t marker, void **block, int32_t *size)
{
    if (VxMemResize(*size + 1, block) != 0)
        return 1;
    auto bytes = static_cast<uint8_t *>(*block);
    std::memmove(bytes + 1, bytes, static_cast<size_t>(*size));
    bytes[0] = marker;
    ++*size;
    return 0;
}

uint32_t compress(uint8_t marker, const uint8_t *bytes, int32_t count, void **block, int32_t *size)
{
    if (VxLibDeflate(bytes, count, block, size) != 0)
        return 1;
    return marker ? putInFront(marker, block, size) : 0;
}

/** Into ever larger buffers until one is not filled: what fills its buffer may have been cut. */
uint32_t expandAll(const uint8_t *bytes, int32_t count, void **block, int32_t *size)
{
    for (int64_t room = firstExpansion * count;; room *= expansionStep) {
        room = std::min(room, maxSize);
        *size = static_cast<int32_t>(room);
        if (VxLibInflate(bytes, count, block, size) != 0)
            return 1;
        if (*size < room)
            return 0;
        VxMemFree(block);
        if (room == maxSize)
            return 1;
    }
}

uint32_t expand(uint8_t marker, const uint8_t *bytes, int32_t count, void **block, int32_t *size)
{
    if (!marker)
        return expandAll(bytes, count, block, size);
    if (bytes[0] != marker) {
        VxErrLogNum(VxToolsErrID(), markerMissing, "VxMemCompress", 0);
        return 1;
    }
    return expandAll(bytes + 1, count - 1, block, size);
}

}

uint32_t VxMemCompress(int32_t direction, int32_t marker, const void *bytes, int32_t count, void **result,
                       int32_t *resultSize)
{
    if (!bytes || count < 1 || !result || !resultSize)
        return 1;
    auto convert = direction != 0 ? compress : expand;
    auto source = static_cast<const uint8_t *>(bytes);
    void *block = nullptr;
    int32_t size = 0;
    if (convert(static_cast<uint8_t>(marker), source, count, &block, &size) != 0) {
        VxMemFree(&block);
        return 1;
    }
    *result = block;
    *resultSize = size;
    return 0;
}
