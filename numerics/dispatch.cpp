// Solving by the way that fits the matrix.

#include "numerics/solve.h"
#include "numerics/storage.h"

namespace vx::numerics {

Way wayToSolve(uint32_t form, int32_t n, const void *matrix, int32_t &semi) noexcept
{
    const auto general = form == 0 ? static_cast<const VxGenMat *>(matrix) : nullptr;
    const auto band = form == 1 ? static_cast<const VxBndMat *>(matrix) : nullptr;
    if (n < 1 || !(general ? isSquare(general, n) : usable(band) && band->size == n))
        return Way::none;
    semi = band ? band->width - 1 : 0;
    if (n < leastFactored)
        return Way::inverse;
    if (general && GetSemiBndWidth(general, n, &semi))
        return Way::none;
    return semi < 0 || 1 + 3 * int64_t{semi} >= n ? Way::dense : Way::band;
}

namespace {

uint32_t solveAsBand(int32_t n, int32_t semi, const VxGenMat &matrix, int32_t count, double **rhs,
                     double **solutions)
{
    OwnBndMat band;
    if (Full2SymBndMat(&matrix, n, semi, &band))
        return 1;
    return SolvBandMatSys(n, semi, &band, count, rhs, solutions);
}

}

}

using namespace vx::numerics;

uint32_t SolvLinSystem(uint32_t form, int32_t n, const void *matrix, int32_t count, double **rhs,
                       double **solutions)
{
    if (!matrix || !allThere(count, rhs) || !allThere(count, solutions))
        return 1;
    int32_t semi = 0;
    const Way way = wayToSolve(form, n, matrix, semi);
    if (way == Way::none)
        return 1;
    if (form == 1) {
        const auto &band = *static_cast<const VxBndMat *>(matrix);
        return way == Way::band ? SolvBandMatSys(n, semi, &band, count, rhs, solutions)
                                : solveExpanded(n, band, count, rhs, solutions);
    }
    const auto &general = *static_cast<const VxGenMat *>(matrix);
    return way == Way::band ? solveAsBand(n, semi, general, count, rhs, solutions)
                            : SolvFullMatSys(n, &general, count, rhs, solutions);
}
