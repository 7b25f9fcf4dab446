// Solving with a general matrix: by the inverse or by elimination.

#include "numerics/solve.h"

#include <algorithm>
#include <utility>

#include "numerics/dense.h"
#include "numerics/kernel_choice.h"

namespace vx::numerics {

namespace {

/** Orders whose temporaries live on the stack. */
constexpr int32_t onStack = 16;

/** Right-hand sides from which on they are solved together. */
constexpr int32_t many = 4;

uint32_t solveByInverse(int32_t n, const VxGenMat &matrix, int32_t count, double **rhs, double **solutions)
{
    double element[leastFactored * leastFactored];
    double *row[leastFactored];
    for (int32_t i = 0; i < n; ++i)
        row[i] = element + i * n;
    const VxGenMat inverse{n, n, row};
    if (invert(matrix, inverse) != Outcome::done)
        return 1;
    for (int32_t r = 0; r < count; ++r) {
        double b[leastFactored];
        std::copy_n(rhs[r], n, b);
        for (int32_t i = 0; i < n; ++i) {
            double sum = 0;
            for (int32_t j = 0; j < n; ++j)
                sum += row[i][j] * b[j];
            solutions[r][i] = sum;
        }
    }
    return 0;
}

uint32_t solveOnStack(int32_t n, const VxGenMat &matrix, int32_t count, double **rhs, double **solutions)
{
    double element[onStack * onStack], work[onStack];
    double *row[onStack];
    int32_t pivot[onStack];
    for (int32_t i = 0; i < n; ++i)
        row[i] = element + i * n;
    if (eliminate(kernels(), matrix.row, row, n, negligible, pivot) != Outcome::done)
        return 1;
    for (int32_t r = 0; r < count; ++r) {
        substitute(kernels(), row, n, pivot, rhs[r], work);
        std::copy_n(work, n, solutions[r]);
    }
    return 0;
}

/** The right-hand sides side by side, as many at a time as fit a strip. */
uint32_t substituteTogether(const VxGenMat &lu, const int32_t *pivot, int32_t count, double **rhs,
                            double **solutions)
{
    const int32_t n = lu.rows;
    OwnGenMat side;
    if (VxGenMatAlloc(n, std::min(count, stripColumns), &side))
        return 1;
    for (int32_t first = 0; first < count; first += stripColumns) {
        const int32_t columns = std::min(stripColumns, count - first);
        for (int32_t r = 0; r < columns; ++r)
            for (int32_t i = 0; i < n; ++i)
                side.row[i][r] = rhs[first + r][pivot[i]];
        if (substituteMany(kernels(), lu.row, n, side.row, columns) != Outcome::done)
            return 1;
        for (int32_t r = 0; r < columns; ++r)
            for (int32_t i = 0; i < n; ++i)
                solutions[first + r][i] = side.row[i][r];
    }
    return 0;
}

/**
 * Room for the factors of one solve. Up to a size a thread keeps it for its
 * next one: what the run-time heap gives back to the system and takes again
 * costs medium systems a third of their time.
 */
class FactorRoom {
public:
    explicit FactorRoom(int64_t elements) : elements_(std::exchange(kept_, {}))
    {
        if (elements_.count < elements)
            elements_ = {allocate<double>(elements), elements};
    }
    ~FactorRoom()
    {
        constexpr int64_t most = 1 << 17;
        if (elements_.block && elements_.count <= most)
            kept_ = std::move(elements_);
    }
    FactorRoom(const FactorRoom &) = delete;
    FactorRoom &operator=(const FactorRoom &) = delete;

    double *get() const noexcept { return elements_.block.get(); }

private:
    struct Elements {
        Block<double> block;
        int64_t count = 0;
    };
    static thread_local Elements kept_;
    Elements elements_;
};

thread_local FactorRoom::Elements FactorRoom::kept_;

uint32_t solveDense(int32_t n, const VxGenMat &matrix, int32_t count, double **rhs, double **solutions)
{
    FactorRoom factors(int64_t{n} * n);
    Block<double *> row = allocate<double *>(n);
    Block<int32_t> pivot = allocate<int32_t>(n);
    Block<double> work = allocate<double>(n);
    if (!factors.get() || !row || !pivot || !work)
        return 1;
    for (int32_t i = 0; i < n; ++i)
        row.get()[i] = factors.get() + int64_t{i} * n;
    const VxGenMat lu{n, n, row.get()};
    if (eliminate(kernels(), matrix.row, lu.row, n, negligible, pivot.get()) != Outcome::done)
        return 1;
    if (count >= many)
        return substituteTogether(lu, pivot.get(), count, rhs, solutions);
    for (int32_t r = 0; r < count; ++r) {
        substitute(kernels(), lu.row, n, pivot.get(), rhs[r], work.get());
        std::copy_n(work.get(), n, solutions[r]);
    }
    return 0;
}

}

uint32_t solveExpanded(int32_t n, const VxBndMat &band, int32_t count, double **rhs, double **solutions)
{
    OwnGenMat full;
    if (SymBnd2FullMat(&band, n, band.width - 1, &full))
        return 1;
    return SolvFullMatSys(n, &full, count, rhs, solutions);
}

}

using namespace vx::numerics;

uint32_t SolvFullMatSys(int32_t n, const VxGenMat *matrix, int32_t count, double **rhs, double **solutions)
{
    if (!isSquare(matrix, n) || !allThere(count, rhs) || !allThere(count, solutions))
        return 1;
    if (n < leastFactored)
        return solveByInverse(n, *matrix, count, rhs, solutions);
    if (n <= onStack)
        return solveOnStack(n, *matrix, count, rhs, solutions);
    return solveDense(n, *matrix, count, rhs, solutions);
}

uint32_t VxSolveGenMat(const VxGenMat *a, int32_t count, double **rhs, double **solutions)
{
    return a ? SolvFullMatSys(a->rows, a, count, rhs, solutions) : 1;
}

uint32_t VxMatSolv(const VxGenMat *a, const double *b, double *x)
{
    double *rhs = const_cast<double *>(b);
    return VxSolveGenMat(a, 1, &rhs, &x);
}
