// What panels do to the rows beside them: packed multipliers and packed strips
// of rows meet in tiles that stay in registers.

namespace vx::numerics {

namespace {

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

}

}
