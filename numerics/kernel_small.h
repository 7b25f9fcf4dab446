// Elimination of small matrices in one go.

namespace vx::numerics {

namespace {

/**
 * A small matrix at work. Multipliers have a place of their own: a vector that
 * holds an element just stored would have to wait for it.
 */
struct SmallMatrix {
    /** Rows padded to whole vectors; one more, as the last place of the last row has a neighbour. */
    alignas(VX_VECTOR_BYTES) double element[smallOrder * smallOrder + 1];
    alignas(VX_VECTOR_BYTES) double factor[smallOrder]; ///< the pivot row right of the pivot
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

template <bool plain> bool eliminateRows(SmallMatrix &work, int32_t n, double least, int32_t *pivot)
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

}

}
