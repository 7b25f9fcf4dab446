#pragma once

// The hot loops of dense elimination, compiled once for each kind of vector
// register. Every variant computes each element by the same operations in the
// same order, a product and a subtraction each rounded by itself, so results
// do not depend on which one runs.
//
// Only plain declarations stand here: the variants' sources may not take in
// inline functions of the standard library, of which the linker could keep a
// copy that other processors cannot run.

#include <cstddef>
#include <cstdint>

#include "numerics/row_kernels.h"

namespace vx::numerics {

/** Orders up to this are eliminated in one go, without panels. */
constexpr int32_t smallOrder = 64;

/** The most rows and columns that any variant's register tile has. */
constexpr int32_t mostTileRows = 8;
constexpr int32_t mostTileColumns = 16;

/** Columns of a strip that is updated while it lies in the cache; a multiple of every tile's. */
constexpr int32_t stripColumns = 256;

/** Elements behind the last row of a panel's column that vectors may run over. */
constexpr int32_t panelPadding = 32;

/** A block of columns, each contiguous, from the diagonal down. */
struct Panel {
    double *column;   ///< element (i, c) is column[c * stride + i]
    ptrdiff_t stride; ///< at least rows + panelPadding; what lies between holds zeros
    int32_t rows;
    int32_t width;
    bool finite; ///< no multiplier is infinite or NaN
};

/** The multipliers of a panel in the order in which register tiles take them. */
struct PackedPanel {
    Panel panel;
    double *top;            ///< the first `width` rows
    double *tail;           ///< the rows below
    int32_t *tailDepth;     ///< per group of rows: how many columns are not all zero
    int32_t *tailColumn;    ///< per group: which ones, `width` places each
    const double *diagonal; ///< what the solved rows are multiplied by; null for a unit diagonal
};

struct Kernels {
    const char *name;

    /** The largest magnitude; NaN is passed over. */
    double (*largestMagnitude)(const double *v, int32_t count);

    /**
     * Eliminate a matrix of at most smallOrder rows from `from` to `row`, which
     * may be the same. `scale` holds the rows' factors; `pivot` receives the
     * permutation. A pivot below `least` ends it.
     */
    bool (*eliminateSmall)(const double *const *from, double *const *row, int32_t n, double least,
                           const double *scale, int32_t *pivot);

    /**
     * Eliminate a panel. `scale` belongs to its rows and has panelPadding
     * zeros behind them; swap[c] receives the row that was exchanged with row c.
     */
    bool (*eliminatePanel)(Panel &panel, double least, double *scale, int32_t *swap);

    void (*pack)(PackedPanel &packed);

    /**
     * Solve the first `width` of these rows with the panel's triangle and
     * subtract its multiples of them from the others, in columns `first` to
     * `end`, which are at most stripColumns.
     */
    void (*update)(const PackedPanel &packed, double *const *row, int32_t first, int32_t end, double *strip);

    /** Subtract the panel's product with the strip of `factor` from `row`: no triangle, all rows are tail. */
    void (*subtractProduct)(const PackedPanel &packed, const double *const *factor, double *const *row,
                            int32_t first, int32_t end, double *strip);

    /** Solve in place with the unit lower triangle, then with the upper one. */
    void (*substitute)(const double *const *lu, int32_t n, double *x);

    const RowKernels *rows;
};

extern const Kernels baselineKernels;
#ifdef VX_KERNELS_X86
extern const Kernels avx2Kernels;
extern const Kernels avx512Kernels;
#endif

}
