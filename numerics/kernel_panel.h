// Elimination of panels: a block of columns, each of them contiguous, is halved
// until it is narrow.

namespace vx::numerics {

namespace {

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

}

}
