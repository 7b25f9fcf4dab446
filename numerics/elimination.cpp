// Elimination in blocks. Panels of columns are taken out, eliminated where
// each column is contiguous, and put back; the rows beside them follow in
// strips that fit the cache. Every element meets the same subtractions in the
// same order, k ascending, as in the plain column-wise form.

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "numerics/dense.h"

namespace vx::numerics {

namespace {

/** Wide enough that rows beside a panel are not loaded too often, narrow enough that panels stay cheap. */
int32_t panelWidth(int32_t n) noexcept
{
    if (n <= 256)
        return 32;
    return n <= 1024 ? 64 : 128;
}

ptrdiff_t wholeLines(ptrdiff_t doubles) noexcept
{
    return (doubles + 7) / 8 * 8;
}

/** The distance of a panel's columns: whole cache lines, but no power of two, lest they evict each other. */
ptrdiff_t columnStride(int32_t rows) noexcept
{
    ptrdiff_t stride = wholeLines(rows + panelPadding);
    return stride % 64 == 0 ? stride + 8 : stride;
}

}

bool PanelWorkspace::reserve(int32_t rows, int32_t width)
{
    constexpr ptrdiff_t leastTileRows = 4;
    const ptrdiff_t groups = rows / leastTileRows + 2;
    stride_ = columnStride(rows);
    const ptrdiff_t column = stride_ * width;
    const ptrdiff_t top = wholeLines((ptrdiff_t{width} + mostTileRows) * width);
    const ptrdiff_t tail = wholeLines((ptrdiff_t{rows} + 2 * mostTileRows) * width);
    const ptrdiff_t strip = ptrdiff_t{stripColumns + mostTileColumns} * width;
    const ptrdiff_t lists = wholeLines(groups * (width + 1) / 2 + 1);
    constexpr ptrdiff_t line = 64 / sizeof(double);
    block_ = allocate<double>(line + column + top + tail + strip + lists);
    if (!block_)
        return false;
    auto address = reinterpret_cast<uintptr_t>(block_.get());
    column_ = block_.get() + (64 - address % 64) % 64 / sizeof(double);
    top_ = column_ + column;
    tail_ = top_ + top;
    strip_ = tail_ + tail;
    tailDepth_ = reinterpret_cast<int32_t *>(strip_ + strip);
    tailColumn_ = tailDepth_ + groups;
    return true;
}

PackedPanel PanelWorkspace::panel(int32_t rows, int32_t width, bool triangle) const noexcept
{
    for (int32_t c = 0; c < width; ++c)
        std::fill_n(column_ + c * stride_ + rows, panelPadding, 0.0);
    return {{column_, stride_, rows, width, true},
            triangle ? top_ : nullptr,
            tail_,
            tailDepth_,
            tailColumn_,
            nullptr};
}

namespace {

/** The factors of implicit scaling; false when a row has no element of magnitude `least`. */
bool rowScales(const Kernels &kernels, const double *const *row, int32_t n, double least, double *scale)
{
    for (int32_t i = 0; i < n; ++i) {
        const double largest = kernels.largestMagnitude(row[i], n);
        if (largest < least)
            return false;
        scale[i] = 1 / largest;
    }
    return true;
}

void takeOut(const double *const *row, int32_t first, const Panel &panel) noexcept
{
    for (int32_t i = 0; i < panel.rows; ++i)
        for (int32_t c = 0; c < panel.width; ++c)
            panel.column[c * panel.stride + i] = row[i][first + c];
}

void putBack(const Panel &panel, double *const *row, int32_t first) noexcept
{
    for (int32_t i = 0; i < panel.rows; ++i)
        for (int32_t c = 0; c < panel.width; ++c)
            row[i][first + c] = panel.column[c * panel.stride + i];
}

/** Exchange rows i and swap[i] of these columns, one after the other. */
void exchangeRows(double *const *row, const int32_t *swap, int32_t count, int32_t first, int32_t end) noexcept
{
    for (int32_t i = 0; i < count; ++i)
        if (swap[i] != i)
            std::swap_ranges(row[i] + first, row[i] + end, row[swap[i]] + first);
}

/** Panels from left to right; `swap` receives the exchanges, relative to their panel's first row. */
bool eliminatePanels(const Kernels &kernels, double *const *row, int32_t n, double least, int32_t width,
                     const PanelWorkspace &workspace, double *scale, int32_t *swap)
{
    for (int32_t first = 0; first < n; first += width) {
        const int32_t end = std::min(first + width, n);
        PackedPanel packed = workspace.panel(n - first, end - first, true);
        takeOut(row + first, first, packed.panel);
        if (!kernels.eliminatePanel(packed.panel, least, scale + first, swap + first))
            return false;
        putBack(packed.panel, row + first, first);
        if (end < n)
            kernels.pack(packed);
        for (int32_t at = end; at < n; at += stripColumns) {
            const int32_t stripEnd = std::min(at + stripColumns, n);
            exchangeRows(row + first, swap + first, end - first, at, stripEnd);
            kernels.update(packed, row + first, at, stripEnd, workspace.strip());
        }
    }
    return true;
}

/** The exchanges that each panel's columns have not seen, since they came later. */
void exchangeOnTheLeft(double *const *row, int32_t n, int32_t width, const int32_t *swap) noexcept
{
    for (int32_t left = 0; left < n; left += width)
        for (int32_t first = left + width; first < n; first += width)
            exchangeRows(row + first, swap + first, std::min(width, n - first), left, left + width);
}

/** Cycles of even length change the sign. Places seen are marked by their complement, which goes again. */
int32_t permutationSign(int32_t *pivot, int32_t n) noexcept
{
    int32_t sign = 1;
    for (int32_t start = 0; start < n; ++start) {
        int32_t length = 0;
        for (int32_t i = start; pivot[i] >= 0; ++length)
            i = std::exchange(pivot[i], ~pivot[i]);
        if (length > 0 && length % 2 == 0)
            sign = -sign;
    }
    for (int32_t i = 0; i < n; ++i)
        pivot[i] = ~pivot[i];
    return sign;
}

Outcome eliminateSmall(const Kernels &kernels, const double *const *from, double *const *row, int32_t n,
                       double least, int32_t *pivot)
{
    double scale[smallOrder];
    if (!rowScales(kernels, from, n, least, scale)
        || !kernels.eliminateSmall(from, row, n, least, scale, pivot))
        return Outcome::singular;
    return Outcome::done;
}

Outcome eliminateBlocked(const Kernels &kernels, double *const *row, int32_t n, double least, int32_t *pivot)
{
    const int32_t width = panelWidth(n);
    Block<double> scale = allocate<double>(int64_t{n} + panelPadding);
    Block<int32_t> swap = allocate<int32_t>(n);
    PanelWorkspace workspace;
    if (!scale || !swap || !workspace.reserve(n, width))
        return Outcome::noMemory;
    std::fill_n(scale.get() + n, panelPadding, 0.0);
    if (!rowScales(kernels, row, n, least, scale.get()))
        return Outcome::singular;
    if (!eliminatePanels(kernels, row, n, least, width, workspace, scale.get(), swap.get()))
        return Outcome::singular;
    exchangeOnTheLeft(row, n, width, swap.get());
    for (int32_t i = 0; i < n; ++i)
        std::swap(pivot[i], pivot[i / width * width + swap.get()[i]]);
    return Outcome::done;
}

}

Outcome eliminate(const Kernels &kernels, const double *const *from, double *const *row, int32_t n,
                  double least, int32_t *pivot)
{
    if (n <= smallOrder)
        return eliminateSmall(kernels, from, row, n, least, pivot);
    std::iota(pivot, pivot + n, 0);
    for (int32_t i = 0; from != row && i < n; ++i)
        std::copy_n(from[i], n, row[i]);
    return eliminateBlocked(kernels, row, n, least, pivot);
}

Outcome eliminate(const Kernels &kernels, double *const *row, int32_t n, double least, int32_t *pivot,
                  int32_t *sign)
{
    const Outcome outcome = eliminate(kernels, row, row, n, least, pivot);
    if (sign && outcome == Outcome::done)
        *sign = permutationSign(pivot, n);
    return outcome;
}

}
