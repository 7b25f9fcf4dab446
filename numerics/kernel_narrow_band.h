// Symmetric bands so narrow that their latest rows stay at hand as registers
// want them: as many rows at a time as a vector has lanes, in vectors of columns
// that begin below each other. A part of numerics/kernel_code.h.

namespace vx::numerics {

namespace {

/** Vectors that a tile of the widest band has in a row. */
constexpr int32_t mostBlocks = (bandRows - 1 + narrowBand) / lanes + 1;

static_assert(bandRows == lanes);

/** Rows of the factor, in columns from the first one's diagonal on. */
struct alignas(VX_VECTOR_BYTES) NarrowTile {
    double row[bandRows][(mostBlocks + 1) * lanes]; ///< the multipliers
    double factor[bandRows][mostBlocks * lanes];    ///< times the pivots
    double pivot[bandRows];
};

struct NarrowBand {
    const double *const *matrix;
    double *const *factor;
    int32_t n, semi;
    double *const *x; ///< vectors to solve for, `count` of them
    int32_t count;
    NarrowTile *tile[mostBlocks];      ///< the one at hand, and those above it at their distance
    Mask inside[bandRows][mostBlocks]; ///< the elements of a tile that are in the band
};

/** Rows at hand: where each begins in the matrix, and what they have in their own columns. */
struct RowsAtHand {
    const double *from[bandRows];
    Corner corner;
};

inline int32_t rowsOf(const NarrowBand &f, int32_t i)
{
    return smaller(bandRows, f.n - i * bandRows);
}

/** Whether a tile's rows and the one below follow each other, and some more elements that are not theirs. */
inline bool haveNeighbours(const NarrowBand &f, const double *const *row, int32_t first)
{
    if (f.semi + 2 < bandRows || f.n - first < 2 * bandRows + f.semi)
        return false;
    bool all = true;
    for (int32_t r = 0; r < bandRows; ++r)
        all &= row[first + r + 1] == row[first + r] + f.semi + 1;
    return all;
}

/** The rows as a copy with zeros around them; those that the matrix does not have, of the identity. */
template <int32_t blocks> void copyRows(const NarrowBand &f, int32_t first, NarrowTile &tile)
{
    for (int32_t r = 0; r < bandRows; ++r) {
        for (int32_t c = 0; c < blocks * lanes; c += lanes)
            store(tile.row[r] + c, Vec{});
        if (first + r < f.n)
            copyRow(tile.row[r] + r, f.matrix[first + r], smaller(f.semi + 1, f.n - first - r));
        else
            tile.row[r][r] = 1;
    }
}

/** Where rows of zeros and of the band are to be read; in the matrix itself their neighbours are read too. */
template <int32_t blocks> inline void findRows(const NarrowBand &f, int32_t first, RowsAtHand &rows)
{
    if (haveNeighbours(f, f.matrix, first)) {
        for (int32_t r = 0; r < bandRows; ++r)
            rows.from[r] = f.matrix[first + r] - r;
        return;
    }
    copyRows<blocks>(f, first, *f.tile[0]);
    for (int32_t r = 0; r < bandRows; ++r)
        rows.from[r] = f.tile[0]->row[r];
}

/**
 * Have a sum computed here, not where it is used: else compilers compute row
 * by row, and run out of registers for what the rows have in common.
 */
inline void computeHere(Vec &sum)
{
#ifdef VX_KERNELS_X86
    Vec here = sum;
    __asm__ volatile("" : "+x"(here));
    sum = here;
#else
    static_cast<void>(sum);
#endif
}

/** Subtract from one or two vectors of each row what the rows above have there, `up` tiles up and down. */
template <int32_t blocks, int32_t block, int32_t up, size_t vectors>
inline void subtractTilesAbove(const NarrowBand &f, Elements<vectors> (&sum)[bandRows])
{
    if constexpr (up > 0) {
        constexpr size_t reached = up + block + 1 < blocks ? vectors : 1;
        const NarrowTile &above = *f.tile[up];
        for (int32_t p = 0; p < bandRows; ++p)
            for (int32_t r = 0; r < bandRows; ++r) {
                const double factor = above.factor[p][up * lanes + r];
                for (size_t v = 0; v < reached; ++v) {
                    sum[r].part[v] -= factor * load(above.row[p] + (up + block) * lanes + v * lanes);
                    computeHere(sum[r].part[v]);
                }
            }
        subtractTilesAbove<blocks, block, up - 1>(f, sum);
    }
}

/** Compute the tile's vectors from number `block` on, two at a time. */
template <int32_t blocks, int32_t block> inline void eliminateBlocks(const NarrowBand &f, RowsAtHand &rows)
{
    if constexpr (block < blocks) {
        constexpr size_t vectors = block + 1 < blocks ? 2 : 1;
        NarrowTile &tile = *f.tile[0];
        Elements<vectors> sum[bandRows];
        for (int32_t r = 0; r < bandRows; ++r)
            for (size_t v = 0; v < vectors; ++v)
                sum[r].part[v] = reinterpret_cast<Vec>(
                    reinterpret_cast<Mask>(load(rows.from[r] + block * lanes + v * lanes)) &
                    f.inside[r][block + v]);
        subtractTilesAbove<blocks, block, blocks - 1 - block>(f, sum);
        if constexpr (block == 0)
            eliminateDiagonal<0>(rows.corner, sum[0].part[0][0], sum);
        else
            eliminateRight<0>(rows.corner, sum);
        for (int32_t r = 0; r < bandRows; ++r)
            for (size_t v = 0; v < vectors; ++v) {
                store(tile.row[r] + block * lanes + v * lanes, sum[r].part[v]);
                if (block + v > 0)
                    store(tile.factor[r] + block * lanes + v * lanes, sum[r].part[v] * rows.corner.pivot[r]);
            }
        eliminateBlocks<blocks, block + 2>(f, rows);
    }
}

template <int32_t blocks> inline bool eliminateTile(const NarrowBand &f, int32_t i, double least)
{
    RowsAtHand rows;
    findRows<blocks>(f, i * bandRows, rows);
    eliminateBlocks<blocks, 0>(f, rows);
    NarrowTile &tile = *f.tile[0];
    for (int32_t r = 0; r < bandRows; ++r)
        tile.row[r][r] = tile.pivot[r] = rows.corner.pivot[r];
    return pivotsReach(rows.corner, least);
}

/** Solve the tile's rows among each other, from row `p` on. */
template <int32_t p> inline void forwardCorner(const NarrowTile &tile, Vec &unknown)
{
    if constexpr (p + 1 < bandRows) {
        const Vec below = unknown - unknown[p] * load(tile.row[p]);
        unknown = laneNumbers > p ? below : unknown;
        forwardCorner<p + 1>(tile, unknown);
    }
}

/** Subtract from a tile's unknowns what those above, which are not yet divided, have there. */
template <int32_t blocks> inline void forwardTile(const NarrowBand &f, int32_t i, double *x)
{
    double *at = x + i * bandRows;
    const int32_t count = rowsOf(f, i);
    double last[bandRows] = {};
    for (int32_t r = 0; r < count && count < bandRows; ++r)
        last[r] = at[r];
    Vec unknown = load(count < bandRows ? last : at);
    for (int32_t up = smaller(blocks - 1, i); up > 0; --up)
        for (int32_t p = 0; p < bandRows; ++p)
            unknown -= (at - up * bandRows)[p] * load(f.tile[up]->row[p] + up * lanes);
    forwardCorner<0>(*f.tile[0], unknown);
    if (count == bandRows)
        store(at, unknown);
    for (int32_t r = 0; r < count && count < bandRows; ++r)
        at[r] = unknown[r];
}

/** What no other tile needs any more leaves: its rows to the factor, its unknowns are divided. */
template <int32_t blocks> inline void takeTile(const NarrowBand &f, int32_t i, const NarrowTile &tile)
{
    const int32_t first = i * bandRows;
    if (haveNeighbours(f, f.factor, first)) {
        // What is written behind a row is where the next one comes.
        for (int32_t r = 0; r < bandRows; ++r)
            for (int32_t c = 0; c < blocks; ++c)
                if (c < blocks - 1 || f.semi >= c * lanes)
                    store(f.factor[first + r] + c * lanes, load(tile.row[r] + r + c * lanes));
        for (int32_t v = 0; v < f.count; ++v)
            store(f.x[v] + first, load(f.x[v] + first) / load(tile.pivot));
        return;
    }
    for (int32_t r = 0; r < rowsOf(f, i); ++r) {
        copyRow(f.factor[first + r], tile.row[r] + r, smaller(f.semi + 1, f.n - first - r));
        for (int32_t v = 0; v < f.count; ++v)
            f.x[v][first + r] /= tile.pivot[r];
    }
}

template <int32_t blocks> bool eliminateTiles(NarrowBand &f, double least)
{
    const int32_t tiles = (f.n + bandRows - 1) / bandRows;
    for (int32_t i = 0; i < tiles; ++i) {
        NarrowTile *oldest = f.tile[blocks - 1];
        if (i >= blocks)
            takeTile<blocks>(f, i - blocks, *oldest);
        for (int32_t up = blocks - 1; up > 0; --up)
            f.tile[up] = f.tile[up - 1];
        f.tile[0] = oldest;
        if (!eliminateTile<blocks>(f, i, least))
            return false;
        for (int32_t v = 0; v < f.count; ++v)
            forwardTile<blocks>(f, i, f.x[v]);
    }
    for (int32_t up = smaller(blocks, tiles) - 1; up >= 0; --up)
        takeTile<blocks>(f, tiles - 1 - up, *f.tile[up]);
    return true;
}

/** The instance whose tiles are as wide as the band needs. */
template <int32_t blocks> bool eliminateFitting(NarrowBand &f, double least)
{
    if constexpr (blocks < mostBlocks)
        if ((bandRows - 1 + f.semi) / lanes + 1 > blocks)
            return eliminateFitting<blocks + 1>(f, least);
    return eliminateTiles<blocks>(f, least);
}

bool eliminateNarrow(const double *const *matrix, double *const *factor, int32_t n, int32_t semi,
                     double least, int32_t count, double *const *x)
{
    NarrowTile tile[mostBlocks] = {};
    NarrowBand f = {matrix, factor, n, semi, x, count, {}, {}};
    for (int32_t i = 0; i < mostBlocks; ++i)
        f.tile[i] = &tile[i];
    for (int32_t r = 0; r < bandRows; ++r)
        for (int32_t c = 0; c < mostBlocks * lanes; ++c)
            f.inside[r][c / lanes][c % lanes] = c >= r && c <= r + semi ? -1 : 0;
    return eliminateFitting<2>(f, least);
}

}

}
