// General band matrices: elimination with row exchanges. A row holds, `lower`
// places before its diagonal and `upper` behind it, what stands in the band,
// and behind that room for the elements that exchanges bring in.

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "numerics/storage.h"

namespace vx::numerics {

namespace {

bool bandFits(int32_t n, int32_t lower, int32_t upper) noexcept
{
    return lower >= 0 && upper >= 0 && lower < n && upper < n;
}

/** Whether a matrix has the shape that pivoting needs. */
bool hasRoom(const VxGenMat *band, int32_t n, int32_t lower, int32_t upper) noexcept
{
    return usable(band) && bandFits(n, lower, upper) && band->rows == n &&
           band->columns == 2 * int64_t{lower} + upper + 1;
}

/** Copy a band into rows of `width` places; they are allocated when there are none. */
uint32_t makeBand(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper, int64_t width,
                  VxGenMat *band)
{
    if (!isSquare(full, n) || !bandFits(n, lower, upper) || !band || width > INT32_MAX)
        return 1;
    const auto columns = static_cast<int32_t>(width);
    if (band->row ? band->rows != n || band->columns != columns : VxGenMatAlloc(n, columns, band) != 0)
        return 1;
    for (int32_t i = 0; i < n; ++i) {
        const int32_t first = std::max(0, i - lower), last = std::min(n - 1, i + std::min(upper, n - 1 - i));
        double *row = band->row[i];
        std::fill_n(row, columns, 0.0);
        std::copy(full->row[i] + first, full->row[i] + last + 1, row + (lower + first - i));
    }
    return 0;
}

/** Element (i, j) of a band. */
double &at(const VxGenMat &band, int32_t lower, int32_t i, int32_t j) noexcept
{
    return band.row[i][lower + j - i];
}

/** The last row, and the last column with fill-in, that column c's pivot concerns. */
int32_t lastBelow(int32_t n, int32_t lower, int32_t c) noexcept
{
    return std::min(n - 1 - c, lower) + c;
}

int32_t lastRight(int32_t n, int32_t lower, int32_t upper, int32_t c) noexcept
{
    return static_cast<int32_t>(std::min<int64_t>(n - 1, int64_t{c} + lower + upper));
}

/** The row with the largest element of a column from the diagonal down, the later of equal ones. */
int32_t pivotRowOf(const VxGenMat &band, int32_t n, int32_t column, int32_t lower) noexcept
{
    int32_t best = column;
    for (int32_t i = column + 1; i <= lastBelow(n, lower, column); ++i)
        if (std::fabs(at(band, lower, i, column)) >= std::fabs(at(band, lower, best, column)))
            best = i;
    return best;
}

bool regular(double pivot) noexcept
{
    return std::fabs(pivot) >= negligible;
}

/** Whether a factor's pivots and exchanges are such as elimination leaves. */
bool isFactor(const VxGenMat &band, int32_t n, int32_t lower, const int32_t *pivot) noexcept
{
    for (int32_t c = 0; c < n; ++c)
        if (pivot[c] < c || pivot[c] > lastBelow(n, lower, c) || !regular(band.row[c][lower]))
            return false;
    return true;
}

}

}

using namespace vx::numerics;

uint32_t VxMatBandMk(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper, VxGenMat *band)
{
    return makeBand(full, n, lower, upper, int64_t{lower} + upper + 1, band);
}

uint32_t VxMatBandMkPvt(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper, VxGenMat *band,
                        int32_t *pivot)
{
    if (!pivot || makeBand(full, n, lower, upper, 2 * int64_t{lower} + upper + 1, band))
        return 1;
    std::iota(pivot, pivot + n, 0);
    return 0;
}

uint32_t VxMatBandGetPvt(const VxGenMat *band, int32_t n, int32_t column, int32_t lower, int32_t *pivotRow)
{
    if (!usable(band) || band->rows != n || column < 0 || column >= n || lower < 0 ||
        lower >= band->columns || !pivotRow)
        return 1;
    *pivotRow = pivotRowOf(*band, n, column, lower);
    return regular(at(*band, lower, *pivotRow, column)) ? 0 : 1;
}

uint32_t VxMatBandPvtLuD(VxGenMat *band, int32_t n, int32_t lower, int32_t upper, int32_t *pivot)
{
    if (!hasRoom(band, n, lower, upper) || !pivot)
        return 1;
    for (int32_t c = 0; c < n; ++c) {
        const int32_t p = pivot[c] = pivotRowOf(*band, n, c, lower);
        const int32_t right = lastRight(n, lower, upper, c) - c;
        double *top = &at(*band, lower, c, c);
        if (p != c)
            std::swap_ranges(top, top + right + 1, &at(*band, lower, p, c));
        if (!regular(*top))
            return 1;
        for (int32_t i = c + 1; i <= lastBelow(n, lower, c); ++i) {
            double *row = &at(*band, lower, i, c);
            const double factor = row[0] /= top[0];
            for (int32_t j = 1; j <= right; ++j)
                row[j] -= factor * top[j];
        }
    }
    return 0;
}

uint32_t VxMatBandPvtFBS(const VxGenMat *band, int32_t n, int32_t lower, int32_t upper, const int32_t *pivot,
                         const double *b, double *x)
{
    if (!hasRoom(band, n, lower, upper) || !pivot || !b || !x || !isFactor(*band, n, lower, pivot))
        return 1;
    if (x != b)
        std::copy_n(b, n, x);
    for (int32_t c = 0; c < n; ++c) {
        std::swap(x[c], x[pivot[c]]);
        for (int32_t i = c + 1; i <= lastBelow(n, lower, c); ++i)
            x[i] -= at(*band, lower, i, c) * x[c];
    }
    for (int32_t i = n - 1; i >= 0; --i) {
        const double *row = &at(*band, lower, i, i);
        double rest = x[i];
        for (int32_t j = lastRight(n, lower, upper, i) - i; j > 0; --j)
            rest -= row[j] * x[i + j];
        x[i] = rest / row[0];
    }
    return 0;
}
