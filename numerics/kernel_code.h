// The source of every variant of the kernels; included by each with
//   VX_VECTOR_BYTES   bytes of a vector register
//   VX_TILE_ROWS      rows of the register tile
//   VX_KERNELS        the table to define, and VX_KERNELS_NAME its name
//
// A product with an exactly zero factor is not to be formed, lest infinite and
// NaN elements spread. Subtracting a zero product of finite numbers changes
// nothing but the sign of a zero, so vectors need to look only where a factor
// is not finite; there the plain loops take over.

#include "numerics/kernel_vectors.h"

#include "numerics/kernel_panel.h"
#include "numerics/kernel_small.h"
#include "numerics/kernel_tile.h"

namespace vx::numerics {

namespace {

/** Rows whose sums run side by side, so that none waits for its own last step. */
constexpr int32_t sideBySide = 8;

/** The rows `i` on, where all unknowns before them are known. */
void substituteForwards(const double *const *lu, int32_t i, double *x)
{
    double sum[sideBySide];
    for (int32_t r = 0; r < sideBySide; ++r)
        sum[r] = x[i + r];
    for (int32_t k = 0; k < i; ++k)
        for (int32_t r = 0; r < sideBySide; ++r)
            sum[r] -= lu[i + r][k] * x[k];
    for (int32_t k = 0; k < sideBySide; ++k) {
        x[i + k] = sum[k];
        for (int32_t r = k + 1; r < sideBySide; ++r)
            sum[r] -= lu[i + r][i + k] * sum[k];
    }
}

/** The rows up to `i`, where all unknowns behind it are known. */
void substituteBackwards(const double *const *lu, int32_t i, int32_t n, double *x)
{
    double sum[sideBySide], reciprocal[sideBySide];
    for (int32_t r = 0; r < sideBySide; ++r) {
        sum[r] = x[i - r];
        reciprocal[r] = 1 / lu[i - r][i - r];
    }
    for (int32_t k = n - 1; k > i; --k)
        for (int32_t r = 0; r < sideBySide; ++r)
            sum[r] -= lu[i - r][k] * x[k];
    for (int32_t k = 0; k < sideBySide; ++k) {
        sum[k] *= reciprocal[k];
        x[i - k] = sum[k];
        for (int32_t r = k + 1; r < sideBySide; ++r)
            sum[r] -= lu[i - r][i - k] * sum[k];
    }
}

void substitute(const double *const *lu, int32_t n, double *x)
{
    int32_t i = 0;
    for (; i + sideBySide <= n; i += sideBySide)
        substituteForwards(lu, i, x);
    for (; i < n; ++i)
        for (int32_t k = 0; k < i; ++k)
            x[i] -= lu[i][k] * x[k];
    for (i = n - 1; i >= sideBySide - 1; i -= sideBySide)
        substituteBackwards(lu, i, n, x);
    for (; i >= 0; --i) {
        for (int32_t k = n - 1; k > i; --k)
            x[i] -= lu[i][k] * x[k];
        x[i] *= 1 / lu[i][i];
    }
}

}

}

#include "numerics/kernel_eight.h"

#include "numerics/kernel_band.h"
#include "numerics/kernel_narrow_band.h"
#include "numerics/row_kernel_code.h"

namespace vx::numerics {

const Kernels VX_KERNELS = {VX_KERNELS_NAME, largestMagnitude, eliminateSmall, eliminatePanel, pack,
                            update,          subtractProduct,  substitute,     &rowKernels};

}
