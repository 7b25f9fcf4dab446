// Symmetric bands: elimination of wide ones, and substitution. A part of
// numerics/kernel_code.h.

namespace vx::numerics {

namespace {

// As many rows as fill half of the registers with sums.
constexpr int32_t bandRows = lanes;
static_assert(bandRows <= mostBandRows);

/** Rows from which to the one at hand memory has time to deliver. */
constexpr int32_t fetchAhead = 2 * mostBandRows;

/** What rows that are eliminated together have in the columns of their diagonals. */
struct Corner {
    double pivot[bandRows], reciprocal[bandRows];
    double factor[bandRows][bandRows]; ///< of the rows among each other
};

/** Rows of a band matrix that are eliminated together, in columns from the first one's diagonal on. */
struct BandTile {
    double *row;
    double *factor; ///< for each row above that reaches down here, bandRows of them
    int32_t columns;
    int32_t top; ///< the first of those rows
    Corner corner;
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
        else
            to[r] = 1;
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
            subtract(sum[r], factor[r], v);
    }
}

/** Divide row `p` by its pivot and subtract its multiples from the rows below. */
template <int32_t p, size_t vectors>
inline void eliminateRow(const Corner &corner, Elements<vectors> (&sum)[bandRows])
{
    for (int32_t r = p + 1; r < bandRows; ++r)
        subtract(sum[r], corner.factor[p][r], sum[p]);
}

/**
 * Eliminate among the rows in the columns of their diagonals, from row `p` on.
 * Whether the pivots will do is seen afterwards: nothing here waits for that.
 */
template <int32_t p, size_t vectors>
inline void eliminateDiagonal(Corner &corner, double pivot, Elements<vectors> (&sum)[bandRows])
{
    const double reciprocal = 1 / pivot;
    corner.pivot[p] = pivot;
    corner.reciprocal[p] = reciprocal;
    if constexpr (p + 1 < bandRows) {
        // The next pivot is computed ahead of the row it stands in: all that follows waits for it.
        const double right = sum[p].part[0][p + 1];
        const double next = sum[p + 1].part[0][p + 1] - right * reciprocal * pivot * (right * reciprocal);
        for (Vec &part : sum[p].part)
            part *= reciprocal;
        store(corner.factor[p], sum[p].part[0] * pivot);
        eliminateRow<p>(corner, sum);
        eliminateDiagonal<p + 1>(corner, next, sum);
    } else {
        for (Vec &part : sum[p].part)
            part *= reciprocal;
    }
}

/** False for what is not a number, too. */
inline bool pivotsReach(const Corner &corner, double least)
{
    const Mask large = magnitude(load(corner.pivot)) >= least;
    bool all = true;
    for (int32_t r = 0; r < bandRows; ++r)
        all &= large[r] != 0;
    return all;
}

/** The same in columns right of these. */
template <int32_t p, size_t vectors>
inline void eliminateRight(const Corner &corner, Elements<vectors> (&sum)[bandRows])
{
    for (Vec &part : sum[p].part)
        part *= corner.reciprocal[p];
    eliminateRow<p>(corner, sum);
    if constexpr (p + 1 < bandRows)
        eliminateRight<p + 1>(corner, sum);
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
            eliminateRight<0>(tile.corner, sum);
        } else {
            eliminateDiagonal<0>(tile.corner, sum[0].part[0][0], sum);
            if (!pivotsReach(tile.corner, least))
                return false;
            clearLeft(sum);
        }
        for (int32_t r = 0; r < count; ++r)
            if (c <= r + f.semi)
                storeEight(windowRow(f, first + r) + c - r, sum[r]);
    }
    for (int32_t r = 0; r < count; ++r)
        windowRow(f, first + r)[0] = tile.corner.pivot[r];
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
        subtract(rest, value, loadEight(row + c));
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
            subtract(rest, value[p], v);
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

}

}
