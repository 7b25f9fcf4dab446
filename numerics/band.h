#pragma once

// The factorisation L D L' of symmetric band matrices.

#include <algorithm>

#include "numerics/row_kernels.h"
#include "numerics/storage.h"

namespace vx::numerics {

/** Rows that the window takes before those that are done with leave it. */
constexpr int32_t windowSlack = 64;

/** factoriseBand for bands of any width. */
inline bool factoriseWideBand(const RowKernels &kernel, const VxBndMat &matrix, const VxBndMat &factor,
                              int32_t count, double *const *x)
{
    const int32_t n = matrix.size, semi = matrix.width - 1;
    const ptrdiff_t stride = ptrdiff_t{semi} + 1 + bandPadding;
    Block<double> rows = allocate<double>((int64_t{semi} + windowSlack) * stride);
    Block<double> work = allocate<double>(bandWorkSize(semi));
    if (!rows || !work)
        return false;
    BandWindow window{n, semi, 0, rows.get(), stride};
    auto finish = [&](int32_t first, int32_t end) {
        kernel.takeBandRows(window, first, end, factor.row);
        kernel.bandForward(factor.row, n, semi, first, end, count, x);
    };
    int32_t finished = 0;
    for (int32_t first = 0; first < n; first += kernel.bandRows) {
        const int32_t rowsHere = std::min(kernel.bandRows, n - first);
        if (!kernel.eliminateBand(window, first, rowsHere, matrix.row, negligible, work.get()))
            return false;
        if (first - finished >= mostBandRows) {
            finish(finished, first);
            finished = first;
        }
        if (first + rowsHere + kernel.bandRows - window.first > semi + windowSlack) {
            const int32_t kept = std::min(finished, first + rowsHere - semi);
            std::copy_n(rows.get() + (kept - window.first) * stride, (first + rowsHere - kept) * stride,
                        rows.get());
            window.first = kept;
        }
    }
    finish(finished, n);
    return true;
}

/**
 * Factorise `matrix` into `factor`, of the same shape and perhaps the same,
 * and solve for `count` vectors with L and D in place. False when a pivot is
 * negligible, or there is no memory.
 */
inline bool factoriseBand(const RowKernels &kernel, const VxBndMat &matrix, const VxBndMat &factor,
                          int32_t count, double *const *x)
{
    const int32_t semi = matrix.width - 1;
    if (semi > narrowBand)
        return factoriseWideBand(kernel, matrix, factor, count, x);
    return kernel.eliminateNarrow(matrix.row, factor.row, matrix.size, semi, negligible, count, x);
}

}
