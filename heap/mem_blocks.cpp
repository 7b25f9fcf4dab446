// Blocks of memory at work: copying, filling, two-dimensional arrays.

#include "vx/mem.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "vx/err.h"

namespace vx::heap {

namespace {

constexpr int32_t errorAllocate = 1;

/** VxMemAlloc for a product of sizes, which may be more than any request can be. */
uint32_t allocateWide(int64_t size, void **block)
{
    constexpr int64_t largest = std::numeric_limits<int32_t>::max();
    if (size <= largest)
        return VxMemAlloc(static_cast<int32_t>(size), block);
    VxErrInt(errorAllocate, static_cast<int32_t>(largest));
    return 1;
}

void freeRows(void **rows)
{
    for (void **row = rows; *row; ++row)
        VxMemFree(row);
}

}

}

using namespace vx;

uint32_t VxMemDup(int32_t size, const void *source, void **copy)
{
    if (!copy)
        return 1;
    *copy = nullptr;
    if (!source || size < 1 || VxMemAlloc(size, copy))
        return 1;
    if (VxMemCpy(*copy, size, source, size)) {
        VxMemFree(copy);
        return 1;
    }
    return 0;
}

uint32_t VxMemCpy(void *dst, int32_t dstSize, const void *src, int32_t count)
{
    if (!dst || !src || dstSize < 1 || count < 0 || count > dstSize)
        return 1;
    std::memmove(dst, src, static_cast<size_t>(count));
    return 0;
}

int32_t VxMemIsZero(const void *bytes, int32_t count)
{
    if (count < 1)
        return 1;
    if (!bytes)
        return 0;
    auto first = static_cast<const unsigned char *>(bytes);
    return std::all_of(first, first + count, [](unsigned char byte) { return byte == 0; });
}

void *VxMemZero(void *bytes, int32_t count)
{
    if (bytes && count > 0)
        std::memset(bytes, 0, static_cast<size_t>(count));
    return bytes;
}

double *VxMemSetDouble(double *p, double value, int32_t count)
{
    if (p && count > 0)
        std::fill_n(p, count, value);
    return p;
}

int32_t *VxMemSetInt(int32_t *p, int32_t value, int32_t count)
{
    if (p && count > 0)
        std::fill_n(p, count, value);
    return p;
}

uint32_t Vx2DArrAlloc(int32_t elemSize, int32_t rows, int32_t columns, void ***array)
{
    if (!array)
        return 1;
    *array = nullptr;
    void *block = nullptr;
    if (heap::allocateWide((int64_t{rows} + 1) * int64_t{sizeof(void *)}, &block))
        return 1;
    void **index = static_cast<void **>(block);
    std::fill_n(index, rows + 1, nullptr);
    int64_t rowSize = elemSize < 1 || columns < 1 ? 0 : int64_t{elemSize} * columns;
    for (int32_t row = 0; row < rows; ++row) {
        if (heap::allocateWide(rowSize, &index[row])) {
            heap::freeRows(index);
            VxMemFree(&block);
            return 1;
        }
    }
    *array = index;
    return 0;
}

uint32_t Vx2DArrFree(void ***array)
{
    if (!array || !*array)
        return 0;
    heap::freeRows(*array);
    void *index = *array;
    VxMemFree(&index);
    *array = nullptr;
    return 0;
}

void **VxMemAllocA2(int32_t rows, int32_t columns, int32_t elemSize)
{
    void **array = nullptr;
    Vx2DArrAlloc(elemSize, rows, columns, &array);
    return array;
}

int32_t **VxMemAllocA2Int(int32_t rows, int32_t columns)
{
    return reinterpret_cast<int32_t **>(VxMemAllocA2(rows, columns, sizeof(int32_t)));
}

uint32_t VxMemFreeA2(void **array)
{
    return Vx2DArrFree(&array);
}

uint32_t VxMemFreeA2Int(int32_t **array)
{
    return VxMemFreeA2(reinterpret_cast<void **>(array));
}
