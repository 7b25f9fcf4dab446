// Symmetric band matrices: L D L' without pivoting. The rows of the factor are
// computed some at a time from those above them, each sum in one go and in the
// order of the rows, so that the result is that of the plain loops.

#include <algorithm>
#include <cmath>

#include "numerics/band.h"
#include "numerics/kernel_choice.h"
#include "numerics/solve.h"
#include "numerics/storage.h"
#include "numerics/tridiagonal.h"

namespace vx::numerics {

namespace {

bool isBand(const VxBndMat *band, int32_t n, int32_t semi) noexcept
{
    return usable(band) && band->size == n && semi >= 0 && band->width - 1 == semi;
}

void copyVectors(int32_t n, int32_t count, double **from, double **to) noexcept
{
    for (int32_t v = 0; v < count; ++v)
        if (to[v] != from[v])
            std::copy_n(from[v], n, to[v]);
}

uint32_t solveThreeDiagonals(const VxBndMat &band, int32_t count, double **solutions)
{
    const int32_t n = band.size;
    Block<double> ratio = allocate<double>(n);
    if (!ratio)
        return 1;
    auto diagonal = [&](int32_t i) { return band.row[i][0]; };
    auto lower = [&](int32_t i) { return band.row[i - 1][1]; };
    auto upper = [&](int32_t i) { return band.row[i][1]; };
    return solveTridiagonal(n, lower, diagonal, upper, ratio.get(), count, solutions) ? 0 : 1;
}

uint32_t solveBand(const VxBndMat &band, int32_t count, double **solutions)
{
    const RowKernels &kernel = *kernels().rows;
    const int32_t n = band.size, semi = band.width - 1;
    const BandFactor factor(n, band.width);
    if (!factor.matrix().row || !factoriseBand(kernel, band, factor.matrix(), count, solutions))
        return 1;
    kernel.bandBackward(factor.matrix().row, n, semi, count, solutions);
    return 0;
}

}

}

using namespace vx::numerics;

uint32_t SolvBandMatSys(int32_t n, int32_t semi, const VxBndMat *band, int32_t count, double **rhs,
                        double **solutions)
{
    if (!isBand(band, n, semi) || !allThere(count, rhs) || !allThere(count, solutions))
        return 1;
    if (n < leastFactored)
        return solveExpanded(n, *band, count, rhs, solutions);
    copyVectors(n, count, rhs, solutions);
    return semi == 1 ? solveThreeDiagonals(*band, count, solutions) : solveBand(*band, count, solutions);
}

uint32_t VxMatBandGetLS(VxBndMat *band, int32_t n, int32_t semi)
{
    return isBand(band, n, semi) && factoriseBand(*kernels().rows, *band, *band, 0, nullptr) ? 0 : 1;
}

uint32_t VxMatBandFBS(const VxBndMat *factor, int32_t n, int32_t semi, const double *b, double *x)
{
    if (!isBand(factor, n, semi) || !b || !x)
        return 1;
    for (int32_t i = 0; i < n; ++i)
        if (!(std::fabs(factor->row[i][0]) >= negligible))
            return 1;
    if (x != b)
        std::copy_n(b, n, x);
    const RowKernels &kernel = *kernels().rows;
    kernel.bandForward(factor->row, n, semi, 0, n, 1, &x);
    kernel.bandBackward(factor->row, n, semi, 1, &x);
    return 0;
}

uint32_t VxMatSolvTriDag(int32_t n, const double *lower, const double *diag, const double *upper,
                         const double *rhs, double *x)
{
    if (n < 1 || !lower || !diag || !upper || !rhs || !x)
        return 1;
    Block<double> ratio = allocate<double>(n);
    if (!ratio)
        return 1;
    if (x != rhs)
        std::copy_n(rhs, n, x);
    auto of = [](const double *numbers) { return [numbers](int32_t i) { return numbers[i]; }; };
    return solveTridiagonal(n, of(lower), of(diag), of(upper), ratio.get(), 1, &x) ? 0 : 1;
}
