// The source of every variant of the row kernels: a part of
// numerics/kernel_code.h, whose vectors it uses.

#include "numerics/row_kernels.h"

namespace vx::numerics {

namespace {

/** Eight elements. */
struct Eight {
    Vec part[rowStep / lanes];
};

constexpr int32_t parts = rowStep / lanes;

inline Eight loadEight(const double *p)
{
    Eight v;
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] = load(p + i * lanes);
    return v;
}

inline void storeEight(double *p, const Eight &v)
{
    for (int32_t i = 0; i < parts; ++i)
        store(p + i * lanes, v.part[i]);
}

/** v -= f * w */
inline void subtractEight(Eight &v, double f, const Eight &w)
{
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] -= f * w.part[i];
}

inline void addEight(Eight &v, double f, const Eight &w)
{
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] += f * w.part[i];
}

inline void addProducts(Eight &sum, const Eight &v, const Eight &w)
{
    for (int32_t i = 0; i < parts; ++i)
        sum.part[i] += v.part[i] * w.part[i];
}

/** Keep the first `count` elements and make the others zero. */
inline void keepFirst(Eight &v, int32_t count)
{
    static const int64_t kept[2 * rowStep] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
    const Eight mask = loadEight(reinterpret_cast<const double *>(kept + rowStep - count));
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] =
            reinterpret_cast<Vec>(reinterpret_cast<Mask>(v.part[i]) & reinterpret_cast<Mask>(mask.part[i]));
}

inline double total(const Eight &v)
{
    alignas(VX_VECTOR_BYTES) double t[rowStep];
    storeEight(t, v);
    return ((t[0] + t[4]) + (t[2] + t[6])) + ((t[1] + t[5]) + (t[3] + t[7]));
}

// ---------------------------------------------------------------- bands

// As many rows as fill half of the registers with sums.
constexpr int32_t bandRows = lanes;
static_assert(bandRows <= mostBandRows);

/** Rows from which to the one at hand memory has time to deliver. */
constexpr int32_t fetchAhead = 2 * mostBandRows;

/** Rows of a band matrix that are eliminated together, in columns from the first one's diagonal on. */
struct BandTile {
    double *row;
    double *factor; ///< for each row above that reaches down here, bandRows of them
    int32_t columns;
    int32_t top; ///< the first of those rows
    double pivot[bandRows], reciprocal[bandRows];
    double among[bandRows][bandRows]; ///< factors of the rows among each other
};

inline double *windowRow(const BandWindow &f, int32_t i)
{
    return f.element + (i - f.first) * f.stride;
}

/** Copy without writing or reading outside; the last step may overlap the one before. */
inline void copyRow(double *to, const double *from, int32_t count)
{
    int32_t c = 0;
    for (; c + rowStep <= count; c += rowStep)
        storeEight(to + c, loadEight(from + c));
    if (c < count && count >= rowStep)
        storeEight(to + count - rowStep, loadEight(from + count - rowStep));
    else
        for (; c < count; ++c)
            to[c] = from[c];
}

void fillTile(BandTile &tile, const BandWindow &f, int32_t first, int32_t count, const double *const *matrix,
              double *work)
{
    tile.columns = (bandRows + f.semi + rowStep - 1) / rowStep * rowStep;
    tile.row = work;
    tile.factor = work + ptrdiff_t{tile.columns} * bandRows;
    tile.top = first > f.semi ? first - f.semi : 0;
    for (int32_t r = 0; r < bandRows; ++r) {
        double *to = tile.row + ptrdiff_t{r} * tile.columns;
        for (int32_t c = 0; c < tile.columns; c += rowStep)
            storeEight(to + c, Eight{});
        if (r < count)
            copyRow(to + r, matrix[first + r], smaller(f.semi + 1, f.n - first - r));
    }
    for (int32_t k = tile.top; k < first; ++k) {
        const double *row = windowRow(f, k);
        store(tile.factor + ptrdiff_t{k - tile.top} * bandRows, load(row + (first - k)) * row[0]);
    }
}

/** Subtract from eight columns of the tile what the rows above have there. */
inline void subtractRowsAbove(const BandTile &tile, const BandWindow &f, int32_t first, int32_t c,
                              Eight (&sum)[bandRows])
{
    const int32_t column = first + c;
    const int32_t top = column - f.semi > tile.top ? column - f.semi : tile.top;
    if (top >= first)
        return;
    const double *factor = tile.factor + ptrdiff_t{top - tile.top} * bandRows;
    const double *above = windowRow(f, top) + (column - top);
    for (int32_t k = top; k < first; ++k, factor += bandRows, above += f.stride - 1) {
        const Eight v = loadEight(above);
        for (int32_t r = 0; r < bandRows; ++r)
            subtractEight(sum[r], factor[r], v);
    }
}

/** Divide row `p` by its pivot and subtract its multiples from the rows below. */
template <int32_t p> inline void eliminateRow(const BandTile &tile, Eight (&sum)[bandRows])
{
    for (int32_t r = p + 1; r < bandRows; ++r)
        subtractEight(sum[r], tile.among[p][r], sum[p]);
}

/**
 * Eliminate among the rows in the columns of their diagonals, from row `p` on.
 * False when a pivot is below `least`.
 */
template <int32_t p> inline bool eliminateDiagonal(BandTile &tile, double pivot, int32_t count, double least,
                                                   Eight (&sum)[bandRows])
{
    if (p >= count)
        pivot = 1;
    else if (!(__builtin_fabs(pivot) >= least))
        return false;
    const double reciprocal = 1 / pivot;
    tile.pivot[p] = pivot;
    tile.reciprocal[p] = reciprocal;
    if constexpr (p + 1 < bandRows) {
        // The next pivot is computed ahead of the row it stands in: all that follows waits for it.
        const double right = sum[p].part[0][p + 1];
        const double next = sum[p + 1].part[0][p + 1] - right * reciprocal * pivot * (right * reciprocal);
        for (Vec &part : sum[p].part)
            part *= reciprocal;
        store(tile.among[p], sum[p].part[0] * pivot);
        eliminateRow<p>(tile, sum);
        return eliminateDiagonal<p + 1>(tile, next, count, least, sum);
    }
    for (Vec &part : sum[p].part)
        part *= reciprocal;
    return true;
}

/** The same in eight columns right of these. */
template <int32_t p> inline void eliminateRight(const BandTile &tile, Eight (&sum)[bandRows])
{
    for (Vec &part : sum[p].part)
        part *= tile.reciprocal[p];
    eliminateRow<p>(tile, sum);
    if constexpr (p + 1 < bandRows)
        eliminateRight<p + 1>(tile, sum);
}

/** Make the elements left of the diagonal zero: they fall into the padding of the row before. */
inline void clearLeft(Eight (&sum)[bandRows])
{
    static const int64_t kept[2 * rowStep] = {0, 0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1};
    for (int32_t r = 1; r < bandRows; ++r) {
        const Vec mask = load(reinterpret_cast<const double *>(kept + rowStep - r));
        sum[r].part[0] =
            reinterpret_cast<Vec>(reinterpret_cast<Mask>(sum[r].part[0]) & reinterpret_cast<Mask>(mask));
    }
}

/** Have rows brought into the cache that are read, or written, soon. */
inline void fetchRows(const double *const *row, int32_t first, int32_t end, int32_t columns)
{
    for (int32_t i = first; i < end; ++i)
        for (int32_t c = 0; c < columns; c += rowStep)
            __builtin_prefetch(row[i] + c);
}

bool eliminateBand(const BandWindow &f, int32_t first, int32_t count, const double *const *matrix,
                   double least, double *work)
{
    BandTile tile;
    fillTile(tile, f, first, count, matrix, work);
    fetchRows(matrix, smaller(first + fetchAhead, f.n), smaller(first + fetchAhead + count, f.n), f.semi + 1);
    for (int32_t r = 0; r < count; ++r)
        storeEight(windowRow(f, first + r) + f.stride - rowStep, Eight{});
    for (int32_t c = 0; c < tile.columns; c += rowStep) {
        Eight sum[bandRows];
        for (int32_t r = 0; r < bandRows; ++r)
            sum[r] = loadEight(tile.row + ptrdiff_t{r} * tile.columns + c);
        subtractRowsAbove(tile, f, first, c, sum);
        if (c > 0) {
            eliminateRight<0>(tile, sum);
        } else {
            if (!eliminateDiagonal<0>(tile, sum[0].part[0][0], count, least, sum))
                return false;
            clearLeft(sum);
        }
        for (int32_t r = 0; r < count; ++r)
            if (c <= r + f.semi)
                storeEight(windowRow(f, first + r) + c - r, sum[r]);
    }
    for (int32_t r = 0; r < count; ++r)
        windowRow(f, first + r)[0] = tile.pivot[r];
    return true;
}

void takeBandRows(const BandWindow &f, int32_t first, int32_t end, double *const *factor)
{
    for (int32_t i = first; i < end; ++i)
        copyRow(factor[i], windowRow(f, i), smaller(f.semi + 1, f.n - i));
}

/** Whether what stands behind `right` elements of row `i` may be read too: its neighbour's elements. */
inline bool hasNeighbour(const double *const *factor, int32_t n, int32_t semi, int32_t i)
{
    return semi >= rowStep && i + 1 + semi + rowStep < n && factor[i + 1] == factor[i] + semi + 1;
}

/** Solve row `i` and subtract its multiples from what is right of it. */
inline void forwardRow(const double *const *factor, int32_t n, int32_t semi, int32_t i, double *x)
{
    const double *row = factor[i];
    const int32_t right = smaller(semi, n - 1 - i);
    double *to = x + i;
    const double value = to[0];
    int32_t c = 1;
    for (; c + rowStep <= right + 1; c += rowStep) {
        Eight rest = loadEight(to + c);
        subtractEight(rest, value, loadEight(row + c));
        storeEight(to + c, rest);
    }
    for (; c <= right; ++c)
        to[c] -= value * row[c];
    to[0] = value / row[0];
}

/** Rows that are solved together: among each other one by one, then all at once what stands right of them. */
constexpr int32_t togetherRows = 8;

void forwardRows(const double *const *factor, int32_t semi, int32_t first, double *x)
{
    double value[togetherRows];
    for (int32_t p = 0; p < togetherRows; ++p)
        value[p] = x[first + p];
    for (int32_t p = 0; p < togetherRows; ++p)
        for (int32_t i = p + 1; i < togetherRows; ++i)
            value[i] -= value[p] * factor[first + p][i - p];
    for (int32_t c = togetherRows; c < togetherRows + semi; c += rowStep) {
        Eight rest = loadEight(x + first + c);
        for (int32_t p = 0; p < togetherRows; ++p) {
            const int32_t there = semi + 1 - (c - p);
            if (there <= 0)
                continue;
            Eight v = loadEight(factor[first + p] + (c - p));
            if (there < rowStep)
                keepFirst(v, there);
            subtractEight(rest, value[p], v);
        }
        storeEight(x + first + c, rest);
    }
    for (int32_t p = 0; p < togetherRows; ++p)
        x[first + p] = value[p] / factor[first + p][0];
}

inline bool haveNeighbours(const double *const *factor, int32_t n, int32_t semi, int32_t first, int32_t end)
{
    bool all = true;
    for (int32_t i = first; i < end && all; ++i)
        all = hasNeighbour(factor, n, semi, i);
    return all;
}

void bandForward(const double *const *factor, int32_t n, int32_t semi, int32_t first, int32_t end,
                 int32_t count, double *const *x)
{
    int32_t i = first;
    for (; i + togetherRows <= end && haveNeighbours(factor, n, semi, i, i + togetherRows); i += togetherRows)
        for (int32_t v = 0; v < count; ++v)
            forwardRows(factor, semi, i, x[v]);
    for (; i < end; ++i)
        for (int32_t v = 0; v < count; ++v)
            forwardRow(factor, n, semi, i, x[v]);
}

/** The product of a row and a vector; `whole` if elements behind both may be read. */
inline double productOf(const double *row, const double *x, int32_t count, bool whole)
{
    Eight sum = {};
    int32_t c = 0;
    for (; c + rowStep <= count; c += rowStep)
        addProducts(sum, loadEight(row + c), loadEight(x + c));
    if (whole) {
        Eight rowTail = loadEight(row + c), tail = loadEight(x + c);
        keepFirst(rowTail, count - c);
        keepFirst(tail, count - c);
        addProducts(sum, rowTail, tail);
        return total(sum);
    }
    double rest = 0;
    for (; c < count; ++c)
        rest += row[c] * x[c];
    return total(sum) + rest;
}

/** Solve rows whose rest right of them is done, the last one first. */
inline void solveTriangle(const double *const *factor, double (&rest)[togetherRows])
{
    for (int32_t p = togetherRows - 1; p > 0; --p)
        for (int32_t i = 0; i < p; ++i)
            rest[i] -= factor[i][p - i] * rest[p];
}

void backwardRows(const double *const *factor, int32_t n, int32_t semi, int32_t first, int32_t end, double *x)
{
    double rest[togetherRows];
    for (int32_t i = first; i < end; ++i) {
        const int32_t skipped = end - i;
        const int32_t right = smaller(semi, n - 1 - i);
        rest[i - first] = x[i];
        if (right >= skipped)
            rest[i - first] -= productOf(factor[i] + skipped, x + end, right - skipped + 1,
                                         hasNeighbour(factor, n, semi, i));
    }
    if (semi >= togetherRows && end - first == togetherRows)
        solveTriangle(factor + first, rest);
    else
        for (int32_t p = end - 1; p > first; --p)
            for (int32_t i = p - semi > first ? p - semi : first; i < p; ++i)
                rest[i - first] -= factor[i][p - i] * rest[p - first];
    for (int32_t i = first; i < end; ++i)
        x[i] = rest[i - first];
}

void bandBackward(const double *const *factor, int32_t n, int32_t semi, int32_t count, double *const *x)
{
    for (int32_t end = n; end > 0; end -= togetherRows) {
        if (end > 3 * togetherRows)
            fetchRows(factor, end - 3 * togetherRows, end - 2 * togetherRows, semi + 1);
        for (int32_t v = 0; v < count; ++v)
            backwardRows(factor, n, semi, end > togetherRows ? end - togetherRows : 0, end, x[v]);
    }
}

// ---------------------------------------------------------------- reflections

double product(const double *a, const double *b, int32_t count)
{
    Eight sum = {};
    for (int32_t c = 0; c < count; c += rowStep)
        addProducts(sum, loadEight(a + c), loadEight(b + c));
    return total(sum);
}

/** One or two rows at a time, which share the loads of everything else. */
template <size_t rows> void reflectSome(const Reflection &f, int32_t i, int32_t start)
{
    double *const *row = f.row + i;
    const double *left = f.left + i;
    double right[rows], next[rows];
    Eight dot[rows] = {};
    for (int32_t c = start; c < f.columns; c += rowStep) {
        const Eight sum = loadEight(f.sum + c), w = loadEight(f.w + c);
        for (size_t r = 0; r < rows; ++r) {
            Eight v = loadEight(row[r] + c);
            subtractEight(v, left[r], sum);
            storeEight(row[r] + c, v);
            addProducts(dot[r], v, w);
        }
    }
    for (size_t r = 0; r < rows; ++r) {
        right[r] = f.gamma * total(dot[r]);
        next[r] = row[r][f.column] - right[r] * f.w[f.column];
        f.next[i + static_cast<ptrdiff_t>(r)] = next[r];
    }
    for (int32_t c = start; c < f.columns; c += rowStep) {
        const Eight w = loadEight(f.w + c);
        Eight nextSum = loadEight(f.nextSum + c);
        for (size_t r = 0; r < rows; ++r) {
            Eight v = loadEight(row[r] + c);
            subtractEight(v, right[r], w);
            storeEight(row[r] + c, v);
            addEight(nextSum, next[r], v);
        }
        storeEight(f.nextSum + c, nextSum);
    }
}

void reflect(const Reflection &f)
{
    const int32_t start = f.column / rowStep * rowStep;
    reflectSome<1>(f, f.first, start);
    for (int32_t c = start; c < f.columns; ++c)
        f.nextSum[c] = 0;
    int32_t i = f.first + 1;
    for (; i + 2 <= f.end; i += 2)
        reflectSome<2>(f, i, start);
    if (i < f.end)
        reflectSome<1>(f, i, start);
}

template <size_t rows>
void reflectRowsTogether(const FourReflections &f, double *const *row, int32_t first, int32_t end)
{
    Eight dot[4][rows] = {};
    for (int32_t c = first; c < end; c += rowStep)
        for (size_t r = 0; r < rows; ++r) {
            const Eight q = loadEight(row[r] + c);
            for (size_t k = 0; k < 4; ++k)
                addProducts(dot[k][r], q, loadEight(f.v[k] + c));
        }
    double factor[4][rows];
    for (size_t r = 0; r < rows; ++r)
        for (size_t k = 4; k-- > 0;) {
            double s = total(dot[k][r]);
            for (size_t done = 3; done > k; --done)
                s -= factor[done][r] * f.product[k][done];
            factor[k][r] = f.beta[k] * s;
        }
    for (int32_t c = first; c < end; c += rowStep)
        for (size_t r = 0; r < rows; ++r) {
            Eight q = loadEight(row[r] + c);
            for (size_t k = 0; k < 4; ++k)
                subtractEight(q, factor[k][r], loadEight(f.v[k] + c));
            storeEight(row[r] + c, q);
        }
}

void reflectRows(const FourReflections &f, double *const *row, int32_t rows, int32_t first, int32_t end)
{
    constexpr int32_t together = VX_VECTOR_BYTES == 64 ? 2 : 1; // as the registers allow
    int32_t i = 0;
    for (; i + together <= rows; i += together)
        reflectRowsTogether<together>(f, row + i, first, end);
    for (; i < rows; ++i)
        reflectRowsTogether<1>(f, row + i, first, end);
}

// ---------------------------------------------------------------- rotations

/** Run a sweep down a strip: the row in between two rotations stays in registers. */
template <size_t strips> void rotateStrip(double *const *row, int32_t column, const RotationSweep &sweep)
{
    double *const *at = row + sweep.first;
    Eight x[strips];
    for (size_t s = 0; s < strips; ++s)
        x[s] = loadEight(*at + column + s * rowStep);
    for (int32_t j = 0; j < sweep.count; ++j) {
        const double cosine = sweep.cosine[j], sine = sweep.sine[j];
        double *above = *at + column;
        at += sweep.step;
        const double *below = *at + column;
        for (size_t s = 0; s < strips; ++s) {
            const Eight y = loadEight(below + s * rowStep);
            Eight rotated;
            for (int32_t i = 0; i < parts; ++i) {
                rotated.part[i] = cosine * x[s].part[i] + sine * y.part[i];
                x[s].part[i] = cosine * y.part[i] - sine * x[s].part[i];
            }
            storeEight(above + s * rowStep, rotated);
        }
    }
    for (size_t s = 0; s < strips; ++s)
        storeEight(*at + column + s * rowStep, x[s]);
}

void rotateRows(double *const *row, int32_t columns, const RotationSweep *sweep, int32_t sweeps)
{
    constexpr int32_t strips = 2;
    int32_t c = 0;
    for (; c + strips * rowStep <= columns; c += strips * rowStep)
        for (int32_t k = 0; k < sweeps; ++k)
            rotateStrip<strips>(row, c, sweep[k]);
    for (; c < columns; c += rowStep)
        for (int32_t k = 0; k < sweeps; ++k)
            rotateStrip<1>(row, c, sweep[k]);
}

const RowKernels rowKernels = {bandRows, eliminateBand, takeBandRows, bandForward, bandBackward,
                               product,  reflect,       reflectRows,  rotateRows};

}

}
