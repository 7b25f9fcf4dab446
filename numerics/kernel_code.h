// The source of every variant of the kernels; included by each with
//   VX_VECTOR_BYTES   bytes of a vector register
//   VX_TILE_ROWS      rows of the register tile
//   VX_KERNELS        the table to define, and VX_KERNELS_NAME its name
//
// A product with an exactly zero factor is not to be formed, lest infinite and
// NaN elements spread. Subtracting a zero product of finite numbers changes
// nothing but the sign of a zero, so vectors need to look only where a factor
// is not finite; there the plain loops take over.

#include "numerics/kernels.h"

namespace vx::numerics {

namespace {

typedef double Vec __attribute__((vector_size(VX_VECTOR_BYTES)));
typedef int64_t Mask __attribute__((vector_size(VX_VECTOR_BYTES)));
typedef double Unaligned __attribute__((vector_size(VX_VECTOR_BYTES), aligned(8), may_alias));

constexpr int32_t lanes = VX_VECTOR_BYTES / 8;
constexpr int32_t tileRows = VX_TILE_ROWS;
constexpr int32_t tileColumns = 2 * lanes;
static_assert(tileRows <= mostTileRows && tileColumns <= mostTileColumns);
static_assert(stripColumns % tileColumns == 0);

#if VX_VECTOR_BYTES == 16
constexpr Mask laneNumbers = {0, 1};
#elif VX_VECTOR_BYTES == 32
constexpr Mask laneNumbers = {0, 1, 2, 3};
#else
constexpr Mask laneNumbers = {0, 1, 2, 3, 4, 5, 6, 7};
#endif

inline Vec load(const double *p)
{
    return *reinterpret_cast<const Unaligned *>(p);
}

inline void store(double *p, Vec v)
{
    *reinterpret_cast<Unaligned *>(p) = v;
}

inline Vec magnitude(Vec v)
{
    constexpr int64_t allButSign = 0x7fffffffffffffff;
    Mask bits = reinterpret_cast<Mask>(v) & allButSign;
    return reinterpret_cast<Vec>(bits);
}

inline bool isFinite(double v)
{
    return v - v == 0;
}

inline int32_t smaller(int32_t a, int32_t b)
{
    return a < b ? a : b;
}

inline void exchange(double &a, double &b)
{
    double kept = a;
    a = b;
    b = kept;
}

inline void exchange(int32_t &a, int32_t &b)
{
    int32_t kept = a;
    a = b;
    b = kept;
}

/** c -= l * u, without the products that have a zero factor. */
inline void subtractPlain(double &c, double l, double u)
{
    if (l != 0 && u != 0)
        c -= l * u;
}

/** The sum of v * 0 over `count` numbers: zero if all of them are finite. */
double finiteness(const double *v, int32_t count)
{
    Vec sum = {};
    int32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        sum += load(v + i) * 0.0;
    double total = 0;
    for (int32_t lane = 0; lane < lanes; ++lane)
        total += sum[lane];
    for (; i < count; ++i)
        total += v[i] * 0.0;
    return total;
}

/**
 * Where scale * |value| is largest among `count` places, the later of equal
 * ones; places without a number are passed over. Vectors run over at most
 * panelPadding places behind the last.
 */
int32_t pivotPlace(const double *scale, const double *value, int32_t count)
{
    Vec best = {};
    for (int32_t i = 0; i < count; i += lanes) {
        Vec v = load(scale + i) * magnitude(load(value + i));
        best = v > best ? v : best;
    }
    double largest = 0;
    for (int32_t lane = 0; lane < lanes; ++lane)
        largest = best[lane] > largest ? best[lane] : largest;
    for (int32_t i = count - 1; i > 0; --i)
        if (scale[i] * __builtin_fabs(value[i]) == largest)
            return i;
    return 0;
}

double largestMagnitude(const double *v, int32_t count)
{
    Vec best[2] = {};
    int32_t i = 0;
    for (; i + 2 * lanes <= count; i += 2 * lanes) {
        for (int32_t k = 0; k < 2; ++k) {
            Vec size = magnitude(load(v + i + k * lanes));
            best[k] = size > best[k] ? size : best[k];
        }
    }
    best[0] = best[1] > best[0] ? best[1] : best[0];
    double largest = 0;
    for (int32_t lane = 0; lane < lanes; ++lane)
        largest = best[0][lane] > largest ? best[0][lane] : largest;
    for (; i < count; ++i)
        largest = __builtin_fabs(v[i]) > largest ? __builtin_fabs(v[i]) : largest;
    return largest;
}

// ---------------------------------------------------------------- small matrices

/**
 * A small matrix at work. Multipliers have a place of their own: a vector that
 * holds an element just stored would have to wait for it.
 */
struct SmallMatrix {
    /** Rows padded to whole vectors; one more, as the last place of the last row has a neighbour. */
    alignas(VX_VECTOR_BYTES) double element[smallOrder * smallOrder + 1];
    alignas(VX_VECTOR_BYTES) double factor[smallOrder];               ///< the pivot row right of the pivot
    double multiplier[smallOrder * smallOrder];
    double scale[smallOrder];
    int32_t row[smallOrder]; ///< where in the two the i-th row now lies
    int32_t stride;
};

void copyIn(SmallMatrix &work, const double *const *row, int32_t n, const double *scale, int32_t *pivot)
{
    work.stride = (n + lanes - 1) / lanes * lanes;
    for (int32_t i = 0; i < n; ++i) {
        double *to = work.element + i * work.stride;
        work.row[i] = i * work.stride;
        work.scale[i] = scale[i];
        pivot[i] = i;
        for (int32_t j = 0; j < n; ++j)
            to[j] = row[i][j];
        for (int32_t j = n; j < work.stride; ++j)
            to[j] = 0;
    }
}

void copyOut(const SmallMatrix &work, double *const *row, int32_t n)
{
    for (int32_t i = 0; i < n; ++i) {
        for (int32_t j = 0; j < i; ++j)
            row[i][j] = work.multiplier[work.row[i] + j];
        for (int32_t j = i; j < n; ++j)
            row[i][j] = work.element[work.row[i] + j];
    }
}

/** Take the pivot row out, with zeros up to column `j`. */
inline void takeFactor(SmallMatrix &work, int32_t j)
{
    const double *top = work.element + work.row[j];
    for (int32_t c = (j + 1) / lanes * lanes; c < work.stride; c += lanes) {
        Mask right = laneNumbers + int64_t{c} > int64_t{j};
        Mask kept = reinterpret_cast<Mask>(load(top + c)) & right;
        store(work.factor + c, reinterpret_cast<Vec>(kept));
    }
}

/** Subtract a multiple of the pivot row right of column `j` from another one. */
template <bool plain>
inline void subtractRow(double *to, double l, const double *factor, int32_t j, int32_t stride)
{
    if (l == 0)
        return;
    for (int32_t c = j + 1; plain && c < stride; ++c)
        subtractPlain(to[c], l, factor[c]);
    for (int32_t c = (j + 1) / lanes * lanes; !plain && c < stride; c += lanes)
        *reinterpret_cast<Vec *>(to + c) -= l * *reinterpret_cast<const Vec *>(factor + c);
}

/** The place of the largest scale * |element| met, the later of equal ones. */
struct PivotSearch {
    int32_t place;
    double best = 0;

    void look(double candidate, int32_t at)
    {
        place = candidate >= best ? at : place;
        best = candidate > best ? candidate : best;
    }
};

template <bool plain>
bool eliminateRows(SmallMatrix &work, int32_t n, double least, int32_t *pivot)
{
    double *scale = work.scale;
    PivotSearch search{0};
    for (int32_t i = 0; i < n; ++i)
        search.look(scale[i] * __builtin_fabs(work.element[work.row[i]]), i);
    for (int32_t j = 0; j < n; ++j) {
        if (search.place != j) {
            exchange(work.row[j], work.row[search.place]);
            exchange(scale[j], scale[search.place]);
            exchange(pivot[j], pivot[search.place]);
        }
        const double top = work.element[work.row[j] + j];
        if (!(__builtin_fabs(top) >= least))
            return false;
        const double reciprocal = 1 / top;
        const double right = work.element[work.row[j] + j + 1];
        takeFactor(work, j);
        search = {j + 1};
        for (int32_t i = j + 1; i < n; ++i) {
            double *to = work.element + work.row[i];
            const double l = to[j] * reciprocal;
            // What the next search looks at, without waiting for the row to be stored.
            const double next = to[j + 1] - l * right;
            work.multiplier[work.row[i] + j] = l;
            subtractRow<plain>(to, l, work.factor, j, work.stride);
            search.look(scale[i] * __builtin_fabs(plain ? to[j + 1] : next), i);
        }
    }
    return true;
}

/**
 * Most matrices stay finite; whether this one did is seen in the end, since a
 * factor that is not leaves its mark on every row that it meets. If it did
 * not, elimination begins anew.
 */
bool eliminateSmall(const double *const *from, double *const *row, int32_t n, double least,
                    const double *scale, int32_t *pivot)
{
    SmallMatrix work;
    copyIn(work, from, n, scale, pivot);
    bool regular = eliminateRows<false>(work, n, least, pivot);
    if (finiteness(work.element, n * work.stride) != 0) {
        copyIn(work, from, n, scale, pivot);
        regular = eliminateRows<true>(work, n, least, pivot);
    }
    if (regular)
        copyOut(work, row, n);
    return regular;
}

// ---------------------------------------------------------------- panels

/** Columns of a panel that are eliminated one by one. */
constexpr int32_t narrow = 8;

/** The rank of the panel's register tile: columns that share a load of the multipliers. */
constexpr int32_t panelTileColumns = 4;

/** Subtract u times `count` multipliers from a column, and from what pads it. */
void subtractColumn(double *to, const double *l, double u, int32_t count)
{
    if (u == 0)
        return;
    if (!isFinite(u)) {
        for (int32_t i = 0; i < count; ++i)
            subtractPlain(to[i], l[i], u);
        return;
    }
    for (int32_t i = 0; i < count; i += lanes)
        store(to + i, load(to + i) - load(l + i) * u);
}

/** The same for a column whose elements behind `count` must stay. */
void subtractPartOfColumn(double *to, const double *l, double u, int32_t count)
{
    int32_t whole = isFinite(u) ? count / lanes * lanes : 0;
    subtractColumn(to, l, u, whole);
    for (int32_t i = whole; i < count; ++i)
        subtractPlain(to[i], l[i], u);
}

void exchangeRows(const Panel &panel, int32_t firstColumn, int32_t endColumn, const int32_t *swap,
                  int32_t first, int32_t end)
{
    for (int32_t c = firstColumn; c < endColumn; ++c) {
        double *column = panel.column + c * panel.stride;
        for (int32_t i = first; i < end; ++i)
            exchange(column[i], column[swap[i]]);
    }
}

bool eliminateNarrow(Panel &panel, int32_t first, int32_t end, double least, double *scale, int32_t *swap)
{
    for (int32_t c = first; c < end; ++c) {
        double *column = panel.column + c * panel.stride;
        int32_t p = c + pivotPlace(scale + c, column + c, panel.rows - c);
        swap[c] = p;
        if (p != c) {
            exchange(scale[c], scale[p]);
            exchangeRows(panel, first, end, swap, c, c + 1);
        }
        if (!(__builtin_fabs(column[c]) >= least))
            return false;
        double reciprocal = 1 / column[c];
        int32_t below = panel.rows - c - 1;
        double *l = column + c + 1;
        for (int32_t i = 0; i < below; i += lanes)
            store(l + i, load(l + i) * reciprocal);
        panel.finite = panel.finite && finiteness(l, below) == 0;
        for (int32_t right = c + 1; right < end; ++right) {
            double *to = panel.column + right * panel.stride;
            subtractColumn(to + c + 1, l, to[c], below);
        }
    }
    return true;
}

/** Solve the rows `first` to `end` of a column with the panel's triangle there. */
void solveColumn(const Panel &panel, double *to, int32_t first, int32_t end)
{
    for (int32_t k = first; k < end; ++k)
        subtractPartOfColumn(to + k + 1, panel.column + k * panel.stride + k + 1, to[k], end - k - 1);
}

/** Subtract columns `first` to `end` times the solved rows there from `columns` columns, below row `end`. */
template <size_t columns> void subtractColumns(const Panel &panel, double *to, int32_t first, int32_t end)
{
    const double *factor[columns];
    for (size_t c = 0; c < columns; ++c)
        factor[c] = to + static_cast<ptrdiff_t>(c) * panel.stride;
    for (int32_t i = end; i < panel.rows; i += 2 * lanes) {
        Vec sum[columns][2];
        for (size_t c = 0; c < columns; ++c) {
            sum[c][0] = load(to + static_cast<ptrdiff_t>(c) * panel.stride + i);
            sum[c][1] = load(to + static_cast<ptrdiff_t>(c) * panel.stride + i + lanes);
        }
        const double *l = panel.column + first * panel.stride + i;
        for (int32_t k = first; k < end; ++k, l += panel.stride) {
            Vec l0 = load(l);
            Vec l1 = load(l + lanes);
            for (size_t c = 0; c < columns; ++c) {
                double u = factor[c][k];
                sum[c][0] -= l0 * u;
                sum[c][1] -= l1 * u;
            }
        }
        for (size_t c = 0; c < columns; ++c) {
            store(to + static_cast<ptrdiff_t>(c) * panel.stride + i, sum[c][0]);
            store(to + static_cast<ptrdiff_t>(c) * panel.stride + i + lanes, sum[c][1]);
        }
    }
}

void subtractColumnsPlain(const Panel &panel, double *to, int32_t first, int32_t end)
{
    for (int32_t k = first; k < end; ++k)
        for (int32_t i = end; i < panel.rows; ++i)
            subtractPlain(to[i], panel.column[k * panel.stride + i], to[k]);
}

bool eliminateColumns(Panel &panel, int32_t first, int32_t end, double least, double *scale, int32_t *swap)
{
    if (end - first <= narrow)
        return eliminateNarrow(panel, first, end, least, scale, swap);
    int32_t middle = first + (end - first + narrow) / (2 * narrow) * narrow;
    if (!eliminateColumns(panel, first, middle, least, scale, swap))
        return false;
    exchangeRows(panel, middle, end, swap, first, middle);
    bool finite = panel.finite;
    for (int32_t c = middle; c < end; ++c) {
        double *to = panel.column + c * panel.stride;
        solveColumn(panel, to, first, middle);
        finite = finite && finiteness(to + first, middle - first) == 0;
    }
    int32_t c = middle;
    for (; finite && c + panelTileColumns <= end; c += panelTileColumns)
        subtractColumns<panelTileColumns>(panel, panel.column + c * panel.stride, first, middle);
    for (; c < end; ++c) {
        double *to = panel.column + c * panel.stride;
        if (finite)
            subtractColumns<1>(panel, to, first, middle);
        else
            subtractColumnsPlain(panel, to, first, middle);
    }
    if (!eliminateColumns(panel, middle, end, least, scale, swap))
        return false;
    exchangeRows(panel, first, middle, swap, middle, end);
    return true;
}

bool eliminatePanel(Panel &panel, double least, double *scale, int32_t *swap)
{
    return eliminateColumns(panel, 0, panel.width, least, scale, swap);
}

// ---------------------------------------------------------------- register tiles

/** The multipliers of one group of rows, column after column; rows behind the last are zero. */
void packGroup(const Panel &panel, int32_t first, double *to)
{
    int32_t there = smaller(tileRows, panel.rows - first);
    for (int32_t k = 0; k < panel.width; ++k, to += tileRows) {
        const double *from = panel.column + k * panel.stride + first;
        for (int32_t r = 0; r < tileRows; ++r)
            to[r] = r < there ? from[r] : 0;
    }
}

/** Keep the columns of a packed group that are not all zero. */
int32_t dropZeros(double *group, int32_t width, int32_t *kept)
{
    int32_t depth = 0;
    for (int32_t k = 0; k < width; ++k) {
        const double *from = group + ptrdiff_t{k} * tileRows;
        bool any = false;
        for (int32_t r = 0; r < tileRows; ++r)
            any |= from[r] != 0;
        if (!any)
            continue;
        double *to = group + ptrdiff_t{depth} * tileRows;
        for (int32_t r = 0; to != from && r < tileRows; ++r)
            to[r] = from[r];
        kept[depth++] = k;
    }
    return depth;
}

void pack(PackedPanel &packed)
{
    const Panel &panel = packed.panel;
    const ptrdiff_t groupSize = ptrdiff_t{panel.width} * tileRows;
    for (int32_t first = 0; packed.top && first < panel.width; first += tileRows)
        packGroup(panel, first, packed.top + first / tileRows * groupSize);
    int32_t group = 0;
    for (int32_t first = packed.top ? panel.width : 0; first < panel.rows; first += tileRows, ++group) {
        double *to = packed.tail + group * groupSize;
        packGroup(panel, first, to);
        packed.tailDepth[group] =
            dropZeros(to, panel.width, packed.tailColumn + ptrdiff_t{group} * panel.width);
    }
}

/** Subtract a group's multiples of packed rows of the strip from a tile. */
template <bool listed> void subtractTile(const double *group, const double *strip, const int32_t *column,
                                         int32_t depth, double *const *row, ptrdiff_t at)
{
    Vec sum[tileRows][2];
    for (int32_t r = 0; r < tileRows; ++r) {
        sum[r][0] = load(row[r] + at);
        sum[r][1] = load(row[r] + at + lanes);
    }
    for (int32_t k = 0; k < depth; ++k, group += tileRows) {
        const double *u = strip + ptrdiff_t{listed ? column[k] : k} * tileColumns;
        Vec u0 = load(u);
        Vec u1 = load(u + lanes);
        for (int32_t r = 0; r < tileRows; ++r) {
            sum[r][0] -= group[r] * u0;
            sum[r][1] -= group[r] * u1;
        }
    }
    for (int32_t r = 0; r < tileRows; ++r) {
        store(row[r] + at, sum[r][0]);
        store(row[r] + at + lanes, sum[r][1]);
    }
}

/** The same for a tile at the edge, of which only some rows and columns are there. */
void subtractEdge(const double *group, const double *strip, const int32_t *column, int32_t depth,
                  double *const *row, ptrdiff_t at, int32_t rows, int32_t columns)
{
    double tile[mostTileRows * mostTileColumns] = {};
    double *tileRow[mostTileRows];
    for (int32_t r = 0; r < tileRows; ++r) {
        tileRow[r] = tile + r * tileColumns;
        for (int32_t c = 0; r < rows && c < columns; ++c)
            tileRow[r][c] = row[r][at + c];
    }
    subtractTile<true>(group, strip, column, depth, tileRow, 0);
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < columns; ++c)
            row[r][at + c] = tileRow[r][c];
}

/** Rows of the strip, `columns` wide, filled up with zeros. */
void packStrip(const double *const *row, int32_t depth, int32_t at, int32_t columns, double *strip)
{
    for (int32_t k = 0; k < depth; ++k, strip += tileColumns) {
        const double *from = row[k] + at;
        if (columns == tileColumns) {
            store(strip, load(from));
            store(strip + lanes, load(from + lanes));
            continue;
        }
        for (int32_t c = 0; c < tileColumns; ++c)
            strip[c] = c < columns ? from[c] : 0;
    }
}

void unpackStrip(const double *strip, int32_t depth, int32_t at, int32_t columns, double *const *row)
{
    for (int32_t k = 0; k < depth; ++k, strip += tileColumns)
        for (int32_t c = 0; c < columns; ++c)
            row[k][at + c] = strip[c];
}

/** Solve the packed rows with the panel's triangle. */
void solveStrip(const PackedPanel &packed, double *strip)
{
    const int32_t width = packed.panel.width;
    for (int32_t first = 0; first < width; first += tileRows) {
        const double *group = packed.top + ptrdiff_t{first} * width;
        double *row[tileRows];
        for (int32_t r = 0; r < tileRows; ++r)
            row[r] = strip + ptrdiff_t{smaller(first + r, width - 1)} * tileColumns;
        int32_t there = smaller(tileRows, width - first);
        if (there == tileRows)
            subtractTile<false>(group, strip, nullptr, first, row, 0);
        for (int32_t r = 0; r < there; ++r) {
            for (int32_t k = there == tileRows ? first : 0; k < first + r; ++k) {
                double l = group[ptrdiff_t{k} * tileRows + r];
                for (int32_t c = 0; c < tileColumns; ++c)
                    row[r][c] -= l * strip[ptrdiff_t{k} * tileColumns + c];
            }
            for (int32_t c = 0; packed.diagonal && c < tileColumns; ++c)
                row[r][c] *= packed.diagonal[first + r];
        }
    }
}

/** Solve and subtract in columns in which a factor may be infinite or NaN. */
void updatePlain(const PackedPanel &packed, double *const *row, int32_t first, int32_t end)
{
    const Panel &panel = packed.panel;
    for (int32_t i = 0; i < panel.rows; ++i) {
        for (int32_t k = 0; k < i && k < panel.width; ++k)
            for (int32_t c = first; c < end; ++c)
                subtractPlain(row[i][c], panel.column[k * panel.stride + i], row[k][c]);
        for (int32_t c = first; packed.diagonal && i < panel.width && c < end; ++c)
            row[i][c] *= packed.diagonal[i];
    }
}

enum class StripKind : char { done, zero, full };

/** Subtract the tail's multiples of the packed strips from the rows below. */
void subtractTail(const PackedPanel &packed, double *const *row, int32_t rows, int32_t first, int32_t end,
                  const double *strip, const StripKind *kind)
{
    const int32_t width = packed.panel.width;
    int32_t group = 0;
    for (int32_t i = 0; i < rows; i += tileRows, ++group) {
        const double *l = packed.tail + ptrdiff_t{group} * width * tileRows;
        const int32_t *column = packed.tailColumn + ptrdiff_t{group} * width;
        int32_t depth = packed.tailDepth[group];
        int32_t there = smaller(tileRows, rows - i);
        for (int32_t at = first, s = 0; depth > 0 && at < end; at += tileColumns, ++s) {
            const double *u = strip + ptrdiff_t{s} * width * tileColumns;
            if (kind[s] != StripKind::full)
                continue;
            if (there < tileRows || end - at < tileColumns)
                subtractEdge(l, u, column, depth, row + i, at, there, smaller(tileColumns, end - at));
            else if (depth == width)
                subtractTile<false>(l, u, nullptr, depth, row + i, at);
            else
                subtractTile<true>(l, u, column, depth, row + i, at);
        }
    }
}

bool allZero(const double *v, ptrdiff_t count)
{
    bool any = false;
    for (ptrdiff_t i = 0; i < count && !any; ++i)
        any = v[i] != 0;
    return !any;
}

void update(const PackedPanel &packed, double *const *row, int32_t first, int32_t end, double *strip)
{
    const int32_t width = packed.panel.width;
    StripKind kind[stripColumns / tileColumns];
    for (int32_t at = first, s = 0; at < end; at += tileColumns, ++s) {
        int32_t columns = smaller(tileColumns, end - at);
        double *packedRows = strip + ptrdiff_t{s} * width * tileColumns;
        kind[s] = StripKind::done;
        if (packed.panel.finite) {
            packStrip(row, width, at, columns, packedRows);
            solveStrip(packed, packedRows);
        }
        if (!packed.panel.finite || finiteness(packedRows, width * tileColumns) != 0) {
            updatePlain(packed, row, at, at + columns);
            continue;
        }
        kind[s] = allZero(packedRows, ptrdiff_t{width} * tileColumns) ? StripKind::zero : StripKind::full;
        unpackStrip(packedRows, width, at, columns, row);
    }
    subtractTail(packed, row + width, packed.panel.rows - width, first, end, strip, kind);
}

void subtractProduct(const PackedPanel &packed, const double *const *factor, double *const *row,
                     int32_t first, int32_t end, double *strip)
{
    const Panel &panel = packed.panel;
    StripKind kind[stripColumns / tileColumns];
    for (int32_t at = first, s = 0; at < end; at += tileColumns, ++s) {
        int32_t columns = smaller(tileColumns, end - at);
        double *packedRows = strip + ptrdiff_t{s} * panel.width * tileColumns;
        packStrip(factor, panel.width, at, columns, packedRows);
        kind[s] = StripKind::full;
        if (panel.finite && finiteness(packedRows, panel.width * tileColumns) == 0)
            continue;
        kind[s] = StripKind::done;
        for (int32_t i = 0; i < panel.rows; ++i)
            for (int32_t k = 0; k < panel.width; ++k)
                for (int32_t c = at; c < at + columns; ++c)
                    row[i][c] -= panel.column[k * panel.stride + i] * factor[k][c];
    }
    subtractTail(packed, row, panel.rows, first, end, strip, kind);
}

// ---------------------------------------------------------------- one right-hand side

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

#include "numerics/row_kernel_code.h"

namespace vx::numerics {

const Kernels VX_KERNELS = {VX_KERNELS_NAME, largestMagnitude, eliminateSmall, eliminatePanel, pack,
                            update,          subtractProduct,  substitute,     &rowKernels};

}
