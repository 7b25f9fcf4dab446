// The singular value decomposition: reflections from both sides make the
// matrix bidiagonal, rotations from both sides then make it diagonal.
//
// Each step of the first part goes through the matrix once, row by row, and
// collects on its way what the next step needs. The vectors of both sides
// stand in rows, and rotations are applied to them many sweeps at a time, a
// strip of columns after the other.

#include "numerics/svd.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>

#include "numerics/kernel_choice.h"
#include "numerics/storage.h"

namespace vx::numerics {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

/** Elements are scaled to at most 1; what is below this then counts as zero where squares are formed. */
constexpr double leastSquare = 1e-290;

constexpr int32_t sweepsPerValue = 30;

int64_t padded(int64_t count) noexcept
{
    const int64_t steps = (count + rowStep - 1) / rowStep;
    // Rows an odd number of cache lines apart do not crowd into a few sets of the cache.
    return (steps >= 8 ? steps | 1 : steps) * rowStep;
}

/** Rows of zeros, cut from one block. */
class RowStore {
public:
    struct Rows {
        double **row = nullptr;
        int32_t columns = 0; ///< padded to whole steps
    };

    bool reserve(int64_t elements, int64_t rows)
    {
        elements_ = allocate<double>(elements + rowStep);
        pointers_ = allocate<double *>(rows);
        if (!elements_ || !pointers_)
            return false;
        void *start = elements_.get();
        size_t room = static_cast<size_t>(elements + rowStep) * sizeof(double);
        nextElement_ = static_cast<double *>(
            std::align(64, static_cast<size_t>(elements) * sizeof(double), start, room));
        nextRow_ = pointers_.get();
        std::fill_n(nextElement_, elements, 0.0);
        return true;
    }

    Rows take(int32_t rows, int32_t columns) noexcept
    {
        Rows taken{nextRow_, static_cast<int32_t>(padded(columns))};
        for (int32_t i = 0; i < rows; ++i, nextElement_ += taken.columns)
            *nextRow_++ = nextElement_;
        return taken;
    }

private:
    Block<double> elements_;
    Block<double *> pointers_;
    double *nextElement_ = nullptr;
    double **nextRow_ = nullptr;
};

using Rows = RowStore::Rows;

/** A reflection that leaves one element of a vector: I - beta v v', v's first element being `first`. */
struct Reflector {
    double first, value, beta;
};

/** @param rest  the sum of the other elements' squares */
Reflector reflector(double alpha, double rest) noexcept
{
    const double square = alpha * alpha + rest;
    if (rest == 0 || square < leastSquare)
        return {0, alpha, 0};
    const double norm = std::sqrt(square);
    return {alpha + std::copysign(norm, alpha), -std::copysign(norm, alpha),
            1 / (norm * (norm + std::fabs(alpha)))};
}

/** The decomposition of a matrix with at least as many rows as columns. */
class Decomposition {
public:
    explicit Decomposition(const RowKernels &kernel) noexcept : kernel_(kernel) {}

    /** `leftVectors` are asked for, from `columns` to `rows` of them. */
    bool prepare(int32_t rows, int32_t columns, int32_t leftVectors)
    {
        rows_ = rows;
        columns_ = columns;
        leftVectors_ = leftVectors;
        const int32_t groups = (columns + 3) / 4 * 4;
        const int64_t tall = padded(rows), wide = padded(columns), sums = padded(rotationRoom());
        if (!store_.reserve(rows * wide + (groups + leftVectors + 1) * tall + (groups + columns + 6) * wide +
                                4 * sums,
                            int64_t{rows} + 2 * groups + leftVectors + columns + 11))
            return false;
        a = store_.take(rows, columns);
        leftReflections_ = store_.take(groups, rows);
        rightReflections_ = store_.take(groups, columns);
        left = store_.take(leftVectors, rows);
        right = store_.take(columns, columns);
        leftFactor_ = store_.take(1, rows).row[0];
        for (double **vector : {&value, &offDiagonal_, &leftBeta_, &rightBeta_, &sum_, &nextSum_})
            *vector = store_.take(1, columns).row[0];
        for (double *&part : rotation_)
            part = store_.take(1, rotationRoom()).row[0];
        return true;
    }

    /** From `a`, whose elements are at most 1. False when values do not settle. */
    bool run()
    {
        makeBidiagonal();
        collect(leftReflections_, leftBeta_, left, leftVectors_);
        collect(rightReflections_, rightBeta_, right, columns_);
        return makeDiagonal();
    }

    Rows a;
    Rows left, right; ///< the vectors, in rows
    double *value = nullptr;

private:
    static constexpr int32_t mostSweeps = 16;

    int32_t rotationRoom() const noexcept { return mostSweeps * columns_; }

    // ------------------------------------------------------------ bidiagonal

    void makeBidiagonal() noexcept
    {
        // Nothing is to be subtracted yet: this collects what the first step needs.
        reflect(0, 0, rightReflections_.row[0], 0);
        for (int32_t k = 0; k < columns_; ++k) {
            reduceColumn(k);
            if (k + 1 < columns_) {
                reduceRow(k);
                reflect(k + 1, k + 1, rightReflections_.row[k], rightBeta_[k]);
            }
        }
    }

    void reflect(int32_t first, int32_t column, const double *direction, double beta) noexcept
    {
        std::swap(sum_, nextSum_);
        kernel_.reflect({first, rows_, column, a.columns, a.row, leftFactor_, nextSum_, direction, beta,
                         leftReflections_.row[column], sum_});
    }

    /** Reflect column k onto its diagonal, as far as row k goes, and prepare it for the rows below. */
    void reduceColumn(int32_t k) noexcept
    {
        double *v = leftReflections_.row[k];
        const Reflector r = reflector(v[k], sum_[k]);
        value[k] = r.value;
        leftBeta_[k] = r.beta;
        v[k] = r.first;
        if (r.beta == 0)
            std::fill(v + k, v + rows_, 0.0);
        for (int32_t i = k + 1; i < rows_; ++i)
            leftFactor_[i] = r.beta * v[i];
        double *row = a.row[k];
        std::fill(sum_ + k / rowStep * rowStep, sum_ + k + 1, 0.0);
        for (int32_t c = k + 1; c < columns_; ++c) {
            sum_[c] += r.first * row[c];
            row[c] -= r.beta * r.first * sum_[c];
        }
    }

    /** Reflect row k onto the element right of its diagonal. */
    void reduceRow(int32_t k) noexcept
    {
        double *w = rightReflections_.row[k];
        const double *row = a.row[k];
        std::copy(row + k + 2, row + columns_, w + k + 2);
        const int32_t start = (k + 1) / rowStep * rowStep;
        const Reflector r = reflector(row[k + 1], kernel_.product(w + start, w + start, a.columns - start));
        offDiagonal_[k] = r.value;
        rightBeta_[k] = r.beta;
        w[k + 1] = r.first;
        if (r.beta == 0)
            std::fill(w + k + 1, w + columns_, 0.0);
    }

    /** The product of all reflections, its columns in rows. */
    void collect(const Rows &reflections, const double *beta, const Rows &vectors, int32_t count) noexcept
    {
        for (int32_t i = 0; i < count; ++i)
            vectors.row[i][i] = 1;
        const int32_t end = vectors.columns;
        for (int32_t group = (columns_ - 1) / 4 * 4; group >= 0; group -= 4) {
            const int32_t start = group / rowStep * rowStep;
            FourReflections four{};
            for (int32_t i = 0; i < 4; ++i) {
                four.v[i] = reflections.row[group + i];
                four.beta[i] = group + i < columns_ ? beta[group + i] : 0;
                for (int32_t j = 0; j < i; ++j)
                    four.product[j][i] = kernel_.product(four.v[j] + start, four.v[i] + start, end - start);
            }
            kernel_.reflectRows(four, vectors.row + group, count - group, start, end);
        }
    }

    // ------------------------------------------------------------ diagonal

    /** A stretch of the bidiagonal, seen from the end where the larger values are. */
    struct Stretch {
        double *d, *e;
        int32_t step, last;

        double &diagonal(int32_t i) const noexcept { return d[i * step]; }
        double &above(int32_t i) const noexcept { return e[i * step]; }
    };

    struct Rotation {
        double cosine, sine, length;
    };

    static Rotation rotation(double f, double g) noexcept
    {
        if (g == 0)
            return {1, 0, f};
        const double square = f * f + g * g;
        double length = std::sqrt(square), reciprocal = 0;
        if (square > leastSquare) {
            // The quotient does not wait for the root.
            reciprocal = length * (1 / square);
        } else {
            length = std::hypot(f, g);
            reciprocal = 1 / length;
        }
        return {std::fabs(f) * reciprocal, g * std::copysign(reciprocal, f), std::copysign(length, f)};
    }

    /** The smaller singular value of the triangle (f g; 0 h). */
    static double smallerValue(double f, double g, double h) noexcept
    {
        f = std::fabs(f), g = std::fabs(g), h = std::fabs(h);
        const double low = std::min(f, h), high = std::max(f, h);
        if (low == 0)
            return 0;
        const double plus = 1 + low / high, minus = (high - low) / high;
        if (g < high) {
            const double ratio = (g / high) * (g / high);
            return low * (2 / (std::sqrt(plus * plus + ratio) + std::sqrt(minus * minus + ratio)));
        }
        const double ratio = high / g;
        const double p = plus * ratio, m = minus * ratio;
        return 2 * (low / (std::sqrt(1 + p * p) + std::sqrt(1 + m * m))) * ratio;
    }

    bool makeDiagonal()
    {
        int64_t sweepsLeft = int64_t{sweepsPerValue} * columns_;
        int32_t last = columns_ - 1;
        while (last > 0) {
            int32_t first = last;
            while (first > 0 && !negligibleAbove(first - 1))
                --first;
            if (first > 0)
                offDiagonal_[first - 1] = 0;
            if (first == last) {
                --last;
                continue;
            }
            if (sweepsLeft-- == 0)
                return false;
            sweep(first, last);
        }
        rotateVectors();
        return true;
    }

    bool negligibleAbove(int32_t i) const noexcept
    {
        const double e = std::fabs(offDiagonal_[i]);
        return e <= epsilon * (std::fabs(value[i]) + std::fabs(value[i + 1])) ||
               e < std::numeric_limits<double>::min();
    }

    void sweep(int32_t first, int32_t last) noexcept
    {
        const int32_t count = last - first;
        if (sweeps_ == mostSweeps)
            rotateVectors();
        // Seen from behind, the bidiagonal is that of the transposed matrix: left and right change places.
        const bool down = std::fabs(value[first]) >= std::fabs(value[last]);
        const Stretch s = down ? Stretch{value + first, offDiagonal_ + first, 1, count}
                               : Stretch{value + last, offDiagonal_ + last - 1, -1, count};
        const int32_t from = down ? first : last;
        double *c0 = rotation_[0] + used_, *s0 = rotation_[1] + used_;
        double *c1 = rotation_[2] + used_, *s1 = rotation_[3] + used_;
        rightSweep_[sweeps_] =
            down ? RotationSweep{from, 1, count, c0, s0} : RotationSweep{from, -1, count, c1, s1};
        leftSweep_[sweeps_] =
            down ? RotationSweep{from, 1, count, c1, s1} : RotationSweep{from, -1, count, c0, s0};
        ++sweeps_;
        used_ += count;
        const double shift = shiftOf(s);
        if (shift == 0)
            sweepWithoutShift(s, c0, s0, c1, s1);
        else
            sweepWithShift(s, shift, c0, s0, c1, s1);
    }

    /** 0 where a shift would spoil the small values, or is not needed. */
    static double shiftOf(const Stretch &s) noexcept
    {
        double least = std::fabs(s.diagonal(0)), most = least;
        for (int32_t i = 1; i <= s.last; ++i) {
            const double size = std::fabs(s.diagonal(i));
            least = std::min(least, size);
            most = std::max({most, size, std::fabs(s.above(i - 1))});
        }
        if (least <= epsilon * most)
            return 0;
        const double shift = smallerValue(s.diagonal(s.last - 1), s.above(s.last - 1), s.diagonal(s.last));
        const double ratio = shift / s.diagonal(0);
        return ratio * ratio < epsilon ? 0 : shift;
    }

    static void sweepWithShift(const Stretch &s, double shift, double *c0, double *s0, double *c1,
                               double *s1) noexcept
    {
        const double top = s.diagonal(0);
        double f = (std::fabs(top) - shift) * (std::copysign(1.0, top) + shift / top), g = s.above(0);
        for (int32_t i = 0; i < s.last; ++i) {
            const Rotation r = rotation(f, g);
            c0[i] = r.cosine, s0[i] = r.sine;
            if (i > 0)
                s.above(i - 1) = r.length;
            const double d = s.diagonal(i), e = s.above(i), next = s.diagonal(i + 1);
            const double rest = r.cosine * e - r.sine * d;
            const Rotation l = rotation(r.cosine * d + r.sine * e, r.sine * next);
            c1[i] = l.cosine, s1[i] = l.sine;
            s.diagonal(i) = l.length;
            f = l.cosine * rest + l.sine * (r.cosine * next);
            s.diagonal(i + 1) = l.cosine * (r.cosine * next) - l.sine * rest;
            if (i + 1 < s.last) {
                g = l.sine * s.above(i + 1);
                s.above(i + 1) *= l.cosine;
            }
        }
        s.above(s.last - 1) = f;
    }

    static void sweepWithoutShift(const Stretch &s, double *c0, double *s0, double *c1, double *s1) noexcept
    {
        Rotation r{1, 0, 0}, l{1, 0, 0};
        for (int32_t i = 0; i < s.last; ++i) {
            r = rotation(s.diagonal(i) * r.cosine, s.above(i));
            if (i > 0)
                s.above(i - 1) = l.sine * r.length;
            l = rotation(l.cosine * r.length, s.diagonal(i + 1) * r.sine);
            s.diagonal(i) = l.length;
            c0[i] = r.cosine, s0[i] = r.sine;
            c1[i] = l.cosine, s1[i] = l.sine;
        }
        const double rest = s.diagonal(s.last) * r.cosine;
        s.diagonal(s.last) = rest * l.cosine;
        s.above(s.last - 1) = rest * l.sine;
    }

    void rotateVectors() noexcept
    {
        kernel_.rotateRows(right.row, right.columns, rightSweep_, sweeps_);
        kernel_.rotateRows(left.row, left.columns, leftSweep_, sweeps_);
        sweeps_ = used_ = 0;
    }

    const RowKernels &kernel_;
    int32_t rows_ = 0, columns_ = 0, leftVectors_ = 0;
    RowStore store_;
    Rows leftReflections_, rightReflections_;
    double *offDiagonal_ = nullptr, *leftBeta_ = nullptr, *rightBeta_ = nullptr;
    double *leftFactor_ = nullptr, *sum_ = nullptr, *nextSum_ = nullptr;
    double *rotation_[4]{};
    RotationSweep rightSweep_[mostSweeps]{}, leftSweep_[mostSweeps]{};
    int32_t sweeps_ = 0, used_ = 0;
};

/** The exponent that scales the largest element to between 1/2 and 1; false when one is not finite. */
bool scaleOf(const VxGenMat &a, int &exponent) noexcept
{
    double largest = 0, finite = 0;
    for (int32_t i = 0; i < a.rows; ++i)
        for (int32_t j = 0; j < a.columns; ++j) {
            largest = std::max(largest, std::fabs(a.row[i][j]));
            finite += a.row[i][j] * 0;
        }
    std::frexp(largest, &exponent);
    return finite == 0;
}

/** to(j, i) = factor * from(i, j), tile by tile, since one of the two walks down columns. */
template <typename Target>
void transpose(const double *const *from, int32_t rows, int32_t columns, Target to) noexcept
{
    constexpr int32_t tile = 8;
    for (int32_t top = 0; top < rows; top += tile)
        for (int32_t left = 0; left < columns; left += tile)
            for (int32_t j = left; j < std::min(left + tile, columns); ++j)
                for (int32_t i = top; i < std::min(top + tile, rows); ++i)
                    to(j, i) = from[i][j];
}

void copyIn(const VxGenMat &a, bool wide, int exponent, const Rows &to) noexcept
{
    // Two factors, since one alone may be out of range.
    const double half = std::ldexp(1.0, -exponent / 2), rest = std::ldexp(1.0, -exponent - -exponent / 2);
    auto scaled = [&](double value) { return value * half * rest; };
    for (int32_t i = 0; i < a.rows; ++i)
        for (int32_t j = 0; j < a.columns; ++j)
            (wide ? to.row[j][i] : to.row[i][j]) = scaled(a.row[i][j]);
}

/** Vectors into the columns of a matrix; columns without a vector become zero. */
void copyOut(double *const *vectors, int32_t count, const VxGenMat &to) noexcept
{
    transpose(vectors, count, to.rows, [&](int32_t j, int32_t i) -> double & { return to.row[j][i]; });
    for (int32_t j = 0; j < to.rows; ++j)
        std::fill(to.row[j] + count, to.row[j] + to.columns, 0.0);
}

/** Values from the largest down, none negative, and the vectors in step. */
void putInOrder(int32_t count, double *value, double **left, double **right, int32_t length) noexcept
{
    for (int32_t i = 0; i < count; ++i)
        if (value[i] < 0) {
            value[i] = -value[i];
            std::transform(right[i], right[i] + length, right[i], std::negate<>());
        }
    for (int32_t i = 0; i + 1 < count; ++i) {
        const auto largest = std::max_element(value + i, value + count) - value;
        std::swap(value[i], value[largest]);
        std::swap(left[i], left[largest]);
        std::swap(right[i], right[largest]);
    }
}

}

uint32_t decompose(const RowKernels &kernel, const VxGenMat &a, double *w, const VxGenMat &v)
{
    const bool wide = a.rows < a.columns;
    const int32_t tall = std::max(a.rows, a.columns), narrow = std::min(a.rows, a.columns);
    int exponent = 0;
    Decomposition decomposition(kernel);
    if (!scaleOf(a, exponent) || !decomposition.prepare(tall, narrow, wide ? tall : narrow))
        return 1;
    copyIn(a, wide, exponent, decomposition.a);
    if (!decomposition.run())
        return 1;
    double **left = decomposition.left.row, **right = decomposition.right.row;
    putInOrder(narrow, decomposition.value, left, right, narrow);
    for (int32_t i = 0; i < a.columns; ++i)
        w[i] = i < narrow ? std::ldexp(decomposition.value[i], exponent) : 0;
    copyOut(wide ? right : left, narrow, a);
    copyOut(wide ? left : right, a.columns, v);
    return 0;
}

}

using namespace vx::numerics;

uint32_t VxMatSvd(VxGenMat *a, double *w, VxGenMat *v)
{
    if (!usable(a) || !w || !v)
        return 1;
    const int32_t n = a->columns;
    if (v->row)
        return isSquare(v, n) ? decompose(widestRowKernels(), *a, w, *v) : 1;
    if (VxGenMatAlloc(n, n, v))
        return 1;
    if (decompose(widestRowKernels(), *a, w, *v) == 0)
        return 0;
    VxGenMatFree(v);
    return 1;
}

uint32_t VxMatSvdFBS(const VxGenMat *u, const double *w, const VxGenMat *v, const double *b, double *x)
{
    if (!usable(u) || !w || !isSquare(v, u->columns) || !b || !x)
        return 1;
    const int32_t n = u->columns;
    Block<double> part = allocate<double>(n);
    if (!part)
        return 1;
    double *c = part.get();
    std::fill_n(c, n, 0.0);
    for (int32_t i = 0; i < u->rows; ++i)
        for (int32_t j = 0; j < n; ++j)
            c[j] += u->row[i][j] * b[i];
    const double least = negligible * *std::max_element(w, w + n);
    for (int32_t j = 0; j < n; ++j)
        c[j] = w[j] > least ? c[j] / w[j] : 0;
    for (int32_t i = 0; i < n; ++i)
        x[i] = std::inner_product(c, c + n, v->row[i], 0.0);
    return 0;
}
