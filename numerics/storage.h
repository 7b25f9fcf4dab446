#pragma once

// Matrices and blocks of numbers that free themselves, and the checks that
// the entry points begin with.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

#include "heap/allocate.h"
#include "heap/block.h"
#include "vx/matrix.h"
#include "vx/mem.h"

namespace vx::numerics {

/** Elements and pivots below this magnitude count as zero. */
constexpr double negligible = 1e-12;

using heap::Block;

/** `count` elements, not set; null when they cannot be had. */
template <typename T> Block<T> allocate(int64_t count)
{
    constexpr int64_t size = sizeof(T);
    void *block = nullptr;
    if (count > std::numeric_limits<int64_t>::max() / size || heap::allocate(count * size, &block))
        return {};
    return Block<T>(static_cast<T *>(block));
}

/** A general matrix that is freed at the end of its scope. */
struct OwnGenMat : VxGenMat {
    OwnGenMat() noexcept : VxGenMat{} {}
    ~OwnGenMat() { VxGenMatFree(this); }
    OwnGenMat(const OwnGenMat &) = delete;
    OwnGenMat &operator=(const OwnGenMat &) = delete;
};

/** A band matrix that is freed at the end of its scope. */
struct OwnBndMat : VxBndMat {
    OwnBndMat() noexcept : VxBndMat{} {}
    ~OwnBndMat() { VxBndMatFree(this); }
    OwnBndMat(const OwnBndMat &) = delete;
    OwnBndMat &operator=(const OwnBndMat &) = delete;
};

inline bool usable(const VxGenMat *m) noexcept
{
    return m && m->row && m->rows > 0 && m->columns > 0;
}

inline bool usable(const VxSymMat *m) noexcept
{
    return m && m->row && m->size > 0;
}

inline bool usable(const VxBndMat *m) noexcept
{
    return m && m->row && m->width > 0 && m->width <= m->size;
}

/** A usable matrix of n rows and n columns. */
inline bool isSquare(const VxGenMat *m, int32_t n) noexcept
{
    return usable(m) && m->rows == n && m->columns == n;
}

/** Whether there are vectors, `count` of them, 1 or more. */
inline bool allThere(int32_t count, const double *const *vectors) noexcept
{
    return vectors && count > 0 && std::find(vectors, vectors + count, nullptr) == vectors + count;
}

/** Elements that row `i` of a band matrix stores. */
inline int32_t storedInRow(const VxBndMat &m, int32_t i) noexcept
{
    return i + m.width <= m.size ? m.width : m.size - i;
}

}
