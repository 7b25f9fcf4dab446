// Reflections and rotations, and the table of the row kernels: a part of
// numerics/kernel_code.h.

namespace vx::numerics {

namespace {

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
            subtract(v, left[r], sum);
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
            subtract(v, right[r], w);
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
                subtract(q, factor[k][r], loadEight(f.v[k] + c));
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

const RowKernels rowKernels = {bandRows,     eliminateBand, takeBandRows, eliminateNarrow, bandForward,
                               bandBackward, product,       reflect,      reflectRows,     rotateRows};

}

}
