// Dense factorisations and what follows from them.

#include "numerics/dense.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "numerics/kernel_choice.h"

namespace vx::numerics {

namespace {

/** A result matrix: allocated when it has no rows, else of the right shape and no operand. */
bool prepared(VxGenMat *result, int32_t rows, int32_t columns, const VxGenMat *a, const VxGenMat *b = nullptr)
{
    if (!result || result == a || result == b)
        return false;
    if (!result->row)
        return VxGenMatAlloc(rows, columns, result) == 0;
    return result->rows == rows && result->columns == columns;
}

/** Where the largest magnitude stands among rows and columns from `first` on. */
std::pair<int32_t, int32_t> largestElement(const double *const *row, int32_t rows, int32_t columns,
                                           int32_t first)
{
    std::pair<int32_t, int32_t> place{first, first};
    double largest = 0;
    for (int32_t i = first; i < rows; ++i) {
        double largestInRow = 0;
        for (int32_t j = first; j < columns; ++j)
            largestInRow = std::max(largestInRow, std::fabs(row[i][j]));
        if (!(largestInRow > largest))
            continue;
        largest = largestInRow;
        auto at = std::find_if(row[i] + first, row[i] + columns,
                               [largest](double v) { return std::fabs(v) == largest; });
        place = {i, static_cast<int32_t>(at - row[i])};
    }
    return place;
}

void eliminateBelow(double *const *row, int32_t rows, int32_t columns, int32_t k) noexcept
{
    const double reciprocal = 1 / row[k][k];
    for (int32_t i = k + 1; i < rows; ++i) {
        const double l = row[i][k] *= reciprocal;
        if (l == 0)
            continue;
        for (int32_t j = k + 1; j < columns; ++j)
            row[i][j] -= l * row[k][j];
    }
}

}

int32_t eliminateCompletely(double *const *row, int32_t rows, int32_t columns, double least,
                            int32_t *rowPivot, int32_t *columnPivot)
{
    std::iota(rowPivot, rowPivot + rows, 0);
    std::iota(columnPivot, columnPivot + columns, 0);
    const int32_t most = std::min(rows, columns);
    for (int32_t k = 0; k < most; ++k) {
        auto [i, j] = largestElement(row, rows, columns, k);
        if (!(std::fabs(row[i][j]) >= least))
            return k;
        if (i != k)
            std::swap_ranges(row[k], row[k] + columns, row[i]);
        std::swap(rowPivot[k], rowPivot[i]);
        for (int32_t r = 0; j != k && r < rows; ++r)
            std::swap(row[r][k], row[r][j]);
        std::swap(columnPivot[k], columnPivot[j]);
        eliminateBelow(row, rows, columns, k);
    }
    return most;
}

namespace {

uint32_t factorised(const VxGenMat *a, int32_t n, int32_t *pivot, int32_t *sign)
{
    return eliminate(kernels(), a->row, n, negligible, pivot, sign) == Outcome::done ? 0 : 1;
}

double product(const VxGenMat &lu, int32_t sign) noexcept
{
    double det = sign;
    for (int32_t i = 0; i < lu.rows; ++i)
        det *= lu.row[i][i];
    return det;
}

/**
 * A vector that these factors of rank `rank` take to zero: the first unknown
 * without a pivot is 1, the others without one are 0, and the rest follows.
 */
void nullVector(const VxGenMat &lu, int32_t rank, const int32_t *columnPivot, double *vec) noexcept
{
    std::fill_n(vec, lu.columns, 0.0);
    vec[columnPivot[rank]] = 1;
    for (int32_t i = rank - 1; i >= 0; --i) {
        double sum = lu.row[i][rank];
        for (int32_t k = i + 1; k < rank; ++k)
            sum += lu.row[i][k] * vec[columnPivot[k]];
        vec[columnPivot[i]] = -sum / lu.row[i][i];
    }
    double norm = 0;
    for (int32_t i = 0; i < lu.columns; ++i)
        norm = std::hypot(norm, vec[i]);
    for (int32_t i = 0; i < lu.columns; ++i)
        vec[i] /= norm;
}

}

}

using namespace vx::numerics;

uint32_t VxMatFullLuD(VxGenMat *a, int32_t n, int32_t *pivot)
{
    if (!isSquare(a, n) || !pivot)
        return 1;
    return factorised(a, n, pivot, nullptr);
}

uint32_t VxMatFullFBS(const VxGenMat *lu, int32_t n, const int32_t *pivot, const double *b, double *x)
{
    if (!isSquare(lu, n) || !pivot || !b || !x)
        return 1;
    if (x != b) {
        substitute(kernels(), lu->row, n, pivot, b, x);
        return 0;
    }
    Block<double> work = allocate<double>(n);
    if (!work)
        return 1;
    substitute(kernels(), lu->row, n, pivot, b, work.get());
    std::copy_n(work.get(), n, x);
    return 0;
}

uint32_t VxMatFullPvtLuD(VxGenMat *a, int32_t n, int32_t *rowPivot, int32_t *colPivot)
{
    if (!isSquare(a, n) || !rowPivot || !colPivot)
        return 1;
    return eliminateCompletely(a->row, n, n, negligible, rowPivot, colPivot) == n ? 0 : 1;
}

uint32_t VxMatFullPvtFBS(const VxGenMat *lu, int32_t n, const int32_t *rowPivot, const int32_t *colPivot,
                         const double *b, double *x)
{
    if (!isSquare(lu, n) || !rowPivot || !colPivot || !b || !x)
        return 1;
    Block<double> work = allocate<double>(n);
    if (!work)
        return 1;
    substitute(kernels(), lu->row, n, rowPivot, b, work.get());
    for (int32_t i = 0; i < n; ++i)
        x[colPivot[i]] = work.get()[i];
    return 0;
}

uint32_t VxMatLuD(VxGenMat *a, int32_t n, int32_t *pivot, int32_t *sign)
{
    if (!isSquare(a, n) || !pivot || !sign)
        return 1;
    return factorised(a, n, pivot, sign);
}

uint32_t VxMatGetInv(const VxGenMat *a, VxGenMat *inverse)
{
    if (!usable(a) || a->rows != a->columns || !inverse || inverse == a)
        return 1;
    OwnGenMat made;
    const bool wanted = !inverse->row;
    if (wanted ? VxGenMatAlloc(a->rows, a->rows, &made) != 0 : !isSquare(inverse, a->rows))
        return 1;
    if (invert(*a, wanted ? made : *inverse) != Outcome::done)
        return 1;
    if (wanted)
        *inverse = std::exchange(static_cast<VxGenMat &>(made), VxGenMat{});
    return 0;
}

uint32_t VxMatGetDet(const VxGenMat *a, double *det)
{
    if (!usable(a) || a->rows != a->columns || !det)
        return 1;
    const int32_t n = a->rows;
    int32_t sign = 1;
    OwnGenMat lu;
    Block<int32_t> pivot = allocate<int32_t>(n);
    if (!pivot || VxGenMatCopy(a, &lu))
        return 1;
    const Outcome outcome = eliminate(kernels(), lu.row, n, negligible, pivot.get(), &sign);
    if (outcome == Outcome::noMemory)
        return 1;
    *det = outcome == Outcome::singular ? 0 : product(lu, sign);
    return 0;
}

uint32_t VxMatGetNullVec(const VxGenMat *a, double *vec)
{
    if (!usable(a) || !vec)
        return 1;
    OwnGenMat lu;
    Block<int32_t> rowPivot = allocate<int32_t>(a->rows);
    Block<int32_t> columnPivot = allocate<int32_t>(a->columns);
    if (!rowPivot || !columnPivot || VxGenMatCopy(a, &lu))
        return 1;
    const int32_t rank =
        eliminateCompletely(lu.row, lu.rows, lu.columns, negligible, rowPivot.get(), columnPivot.get());
    if (rank == a->columns)
        return 1;
    nullVector(lu, rank, columnPivot.get(), vec);
    return 0;
}

uint32_t VxMatGetXpose(const VxGenMat *a, VxGenMat *transposed)
{
    if (!usable(a) || !prepared(transposed, a->columns, a->rows, a))
        return 1;
    constexpr int32_t tile = 16;
    for (int32_t top = 0; top < a->rows; top += tile)
        for (int32_t left = 0; left < a->columns; left += tile)
            for (int32_t i = top; i < std::min(top + tile, a->rows); ++i)
                for (int32_t j = left; j < std::min(left + tile, a->columns); ++j)
                    transposed->row[j][i] = a->row[i][j];
    return 0;
}

uint32_t VxMatMult(const VxGenMat *a, const VxGenMat *b, VxGenMat *product)
{
    if (!usable(a) || !usable(b) || a->columns != b->rows)
        return 1;
    const bool wanted = product && !product->row;
    if (!prepared(product, a->rows, b->columns, a, b))
        return 1;
    if (multiply(kernels(), *a, *b, *product) == Outcome::done)
        return 0;
    if (wanted)
        VxGenMatFree(product);
    return 1;
}
