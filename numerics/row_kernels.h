#pragma once

// The hot loops of band systems and of the singular value decomposition: all
// run along rows, eight elements at a time in every variant, so that results
// do not depend on which one runs. Sums of products are kept in eight parts
// that are added up at the end.
//
// As in numerics/kernels.h, only plain declarations stand here.

#include <cstddef>
#include <cstdint>

namespace vx::numerics {

/** Elements that are handled together. */
constexpr int32_t rowStep = 8;

/** The most rows of a band that any variant eliminates together. */
constexpr int32_t mostBandRows = 8;

/**
 * The latest rows of the factor L D L' of a symmetric band matrix: the pivot,
 * the multipliers right of it, and bandPadding zeros. Rows before them that
 * reach down to the ones being computed must be there.
 */
struct BandWindow {
    int32_t n, semi; ///< of the matrix
    int32_t first;   ///< the matrix's row that is the first here
    double *element;
    ptrdiff_t stride; ///< semi + 1 + bandPadding
};

constexpr int32_t bandPadding = 7;

/** Room that eliminateBand needs, in elements. */
constexpr int64_t bandWorkSize(int32_t semi)
{
    return (2 * int64_t{semi} + mostBandRows + rowStep) * mostBandRows;
}

/** The widest band that eliminateNarrow takes. */
constexpr int32_t narrowBand = 20;

/** Rows of the matrix that lose their part along two directions at once: row -= left * sum + right * w. */
struct Reflection {
    int32_t first, end;      ///< rows
    int32_t column, columns; ///< the first column that counts, and the end, padded to whole steps
    double *const *row;
    const double *left; ///< a factor for each row
    const double *sum;  ///< zeros in front of `column`
    const double *w;    ///< the direction within rows; zeros in front of `column`
    double gamma;       ///< right = gamma * (row * w)
    double *next;       ///< receives column `column` of the rows
    double *nextSum;    ///< receives the sum of the rows behind the first, each times its element of `next`
};

/** Four reflections I - beta v v', of which the last is applied first. */
struct FourReflections {
    const double *v[4];
    double beta[4];
    double product[4][4]; ///< v[i] * v[j] for i < j
};

/** Rotations of neighbouring rows, row `first` with the next one in the direction of `step`, and so on. */
struct RotationSweep {
    int32_t first, step, count;
    const double *cosine, *sine;
};

struct RowKernels {
    /** Rows that eliminateBand takes together. */
    int32_t bandRows;

    /**
     * Compute rows `first` to `first + count` of the factor from those of the
     * matrix. False when a pivot is below `least`.
     */
    bool (*eliminateBand)(const BandWindow &window, int32_t first, int32_t count, const double *const *matrix,
                          double least, double *work);

    /**
     * Store rows of the factor. Best done for rows that are not the latest:
     * reading what is still being written would wait for that.
     */
    void (*takeBandRows)(const BandWindow &window, int32_t first, int32_t end, double *const *factor);

    /**
     * Factorise a whole matrix of semi-bandwidth 0 to narrowBand, and solve
     * with L and D in place. The rows of the factor may be those of the
     * matrix. False when a pivot is below `least`.
     */
    bool (*eliminateNarrow)(const double *const *matrix, double *const *factor, int32_t n, int32_t semi,
                            double least, int32_t count, double *const *x);

    /** Solve with L and D in place, rows `first` to `end` of each of `count` vectors. */
    void (*bandForward)(const double *const *factor, int32_t n, int32_t semi, int32_t first, int32_t end,
                        int32_t count, double *const *x);

    /** Solve with the transpose of L in place. */
    void (*bandBackward)(const double *const *factor, int32_t n, int32_t semi, int32_t count,
                         double *const *x);

    /** The product of two rows of `count` elements, a whole number of steps. */
    double (*product)(const double *a, const double *b, int32_t count);

    void (*reflect)(const Reflection &reflection);

    /** Apply reflections to rows, from column `first` to `end`, both whole steps. */
    void (*reflectRows)(const FourReflections &reflections, double *const *row, int32_t rows, int32_t first,
                        int32_t end);

    /** Apply sweeps of rotations, one after the other, to rows of `columns` elements, whole steps. */
    void (*rotateRows)(double *const *row, int32_t columns, const RotationSweep *sweep, int32_t sweeps);
};

}
