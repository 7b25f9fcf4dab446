#pragma once

// Dense elimination, substitution and products on rows of doubles.

#include <cstdint>

#include "numerics/kernels.h"
#include "numerics/storage.h"

namespace vx::numerics {

enum class Outcome { done, singular, noMemory };

/** What the kernels need for panels of a matrix of `rows` rows. */
class PanelWorkspace {
public:
    /** Room for panels up to `width` columns; false when there is none. */
    bool reserve(int32_t rows, int32_t width);

    /** A panel of zeros, to be filled. */
    PackedPanel panel(int32_t rows, int32_t width, bool triangle) const noexcept;

    double *strip() const noexcept { return strip_; }

private:
    Block<double> block_;
    ptrdiff_t stride_ = 0;
    double *column_ = nullptr, *top_ = nullptr, *tail_ = nullptr, *strip_ = nullptr;
    int32_t *tailDepth_ = nullptr, *tailColumn_ = nullptr;
};

/**
 * Eliminate n rows in place with scaled partial pivoting. `pivot` receives the
 * permutation: place i holds what was row pivot[i].
 *
 * @param least  a row, or a pivot, whose magnitude is below it makes the matrix singular
 * @param sign   if not null, receives the sign of the permutation
 */
Outcome eliminate(const Kernels &kernels, double *const *row, int32_t n, double least, int32_t *pivot,
                  int32_t *sign = nullptr);

/** The same from `from` to `row`, which may be the same. */
Outcome eliminate(const Kernels &kernels, const double *const *from, double *const *row, int32_t n,
                  double least, int32_t *pivot);

/** Solve for one right-hand side; `x` may not be `b`. */
void substitute(const Kernels &kernels, const double *const *lu, int32_t n, const int32_t *pivot,
                const double *b, double *x);

/**
 * Solve in place for `count` right-hand sides, which are the columns of `row`,
 * permuted already. The solutions have the bits that one by one they have.
 */
Outcome substituteMany(const Kernels &kernels, const double *const *lu, int32_t n, double *const *row,
                       int32_t count);

/** product = a * b, for shapes that fit. */
Outcome multiply(const Kernels &kernels, const VxGenMat &a, const VxGenMat &b, const VxGenMat &product);

/** inverse = the inverse of `a`, whose shape it has. */
Outcome invert(const VxGenMat &a, const VxGenMat &inverse);

/**
 * Eliminate with complete pivoting up to pivots below `least`: the rank.
 * Row i was row rowPivot[i], column j was column columnPivot[j].
 */
int32_t eliminateCompletely(double *const *row, int32_t rows, int32_t columns, double least,
                            int32_t *rowPivot, int32_t *columnPivot);

}
