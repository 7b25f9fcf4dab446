// A solve that says how good it was.
//
// Rows, then columns of the matrix are first divided by their largest element;
// what is then said of it does not change with the units of the equations and
// unknowns. Refinement against the matrix itself makes up for the rounding.

#include <algorithm>
#include <cmath>
#include <limits>

#include "numerics/dense.h"
#include "numerics/kernel_choice.h"

namespace vx::numerics {

namespace {

/**
 * Below this, relative to the largest element, a pivot or a reciprocal
 * condition may come from rounding the elements alone.
 */
double roundingLimit(int32_t n) noexcept
{
    return 8 * n * std::numeric_limits<double>::epsilon();
}

bool allFinite(const VxGenMat &a) noexcept
{
    for (int32_t i = 0; i < a.rows; ++i)
        if (!std::all_of(a.row[i], a.row[i] + a.columns, [](double v) { return std::isfinite(v); }))
            return false;
    return true;
}

/** 1 for a row of zeros, which no division changes. */
double largestMagnitude(const double *x, int32_t n) noexcept
{
    double largest = 0;
    for (int32_t i = 0; i < n; ++i)
        largest = std::max(largest, std::fabs(x[i]));
    return largest > 0 ? largest : 1;
}

double sumOfMagnitudes(const double *x, int32_t n) noexcept
{
    double sum = 0;
    for (int32_t i = 0; i < n; ++i)
        sum += std::fabs(x[i]);
    return sum;
}

/** Solve with the transposed factors, U' first; what comes out is still to be permuted. */
void substituteTransposed(const VxGenMat &lu, double *x) noexcept
{
    for (int32_t k = 0; k < lu.rows; ++k) {
        x[k] /= lu.row[k][k];
        for (int32_t j = k + 1; j < lu.rows; ++j)
            x[j] -= lu.row[k][j] * x[k];
    }
    for (int32_t k = lu.rows - 1; k >= 0; --k)
        for (int32_t j = 0; j < k; ++j)
            x[j] -= lu.row[k][j] * x[k];
}

/** A system with its scaled matrix, the factors of that, and room to work in. */
class System {
public:
    explicit System(const VxGenMat &a) : a_(a), n_(a.rows) {}

    /** False when there is no memory. */
    bool prepare();

    /** The estimate, 0 for a pivot of zero; negative when there is no memory. */
    double reciprocalCondition();

    /** The rank of a matrix that was found singular; instead of the factors. */
    int32_t rank();

    /** Rows of the matrix in the order in which rank() took them. */
    const int32_t *rowOrder() const noexcept { return pivot_.get(); }

    /** Solve for one right-hand side, with one step of refinement: the backward error. */
    double solve(const double *rhs, double *solution);

private:
    void balanceMatrix();
    void applyInverse(double *x);
    void applyTransposedInverse(double *x);
    double inverseNorm();
    double residual(const double *x, double *out) const;
    void addCorrection(const double *residual, double *x);

    const VxGenMat &a_;
    const int32_t n_;
    OwnGenMat scaled_, lu_;
    Block<int32_t> pivot_, columnPivot_;
    Block<double> rowFactor_, columnFactor_, vector_, work_, right_;
};

bool System::prepare()
{
    pivot_ = allocate<int32_t>(n_);
    columnPivot_ = allocate<int32_t>(n_);
    if (!pivot_ || !columnPivot_ || VxGenMatCopy(&a_, &scaled_))
        return false;
    for (Block<double> *block : {&rowFactor_, &columnFactor_, &vector_, &work_, &right_})
        if (!(*block = allocate<double>(n_)))
            return false;
    balanceMatrix();
    return VxGenMatCopy(&scaled_, &lu_) == 0;
}

void System::balanceMatrix()
{
    double *largest = columnFactor_.get();
    std::fill_n(largest, n_, 0.0);
    for (int32_t i = 0; i < n_; ++i) {
        double *row = scaled_.row[i];
        const double largestInRow = largestMagnitude(row, n_);
        rowFactor_.get()[i] = largestInRow;
        for (int32_t j = 0; j < n_; ++j) {
            row[j] /= largestInRow;
            largest[j] = std::max(largest[j], std::fabs(row[j]));
        }
    }
    std::replace(largest, largest + n_, 0.0, 1.0);
    for (int32_t i = 0; i < n_; ++i)
        for (int32_t j = 0; j < n_; ++j)
            scaled_.row[i][j] /= largest[j];
}

void System::applyInverse(double *x)
{
    substitute(kernels(), lu_.row, n_, pivot_.get(), x, work_.get());
    std::copy_n(work_.get(), n_, x);
}

void System::applyTransposedInverse(double *x)
{
    substituteTransposed(lu_, x);
    std::copy_n(x, n_, work_.get());
    for (int32_t i = 0; i < n_; ++i)
        x[pivot_.get()[i]] = work_.get()[i];
}

/** Estimates the 1-norm of the inverse from a few solves. */
double System::inverseNorm()
{
    constexpr int32_t mostRounds = 5;
    double *x = vector_.get();
    double estimate = 0;
    std::fill_n(x, n_, 1.0 / n_);
    for (int32_t round = 0; round < mostRounds; ++round) {
        applyInverse(x);
        const double norm = sumOfMagnitudes(x, n_);
        if (round > 0 && !(norm > estimate))
            break;
        estimate = norm;
        std::transform(x, x + n_, x, [](double v) { return std::copysign(1.0, v); });
        applyTransposedInverse(x);
        const auto larger = [](double p, double q) { return std::fabs(p) < std::fabs(q); };
        const auto place = std::max_element(x, x + n_, larger) - x;
        std::fill_n(x, n_, 0.0);
        x[place] = 1;
    }
    // Alternating signs, against matrices that mislead the search above.
    for (int32_t i = 0; i < n_; ++i)
        x[i] = (i % 2 ? -1 : 1) * (1 + (n_ > 1 ? double(i) / (n_ - 1) : 0));
    applyInverse(x);
    return std::max(estimate, 2 * sumOfMagnitudes(x, n_) / (3.0 * n_));
}

double System::reciprocalCondition()
{
    std::fill_n(work_.get(), n_, 0.0);
    for (int32_t i = 0; i < n_; ++i)
        for (int32_t j = 0; j < n_; ++j)
            work_.get()[j] += std::fabs(scaled_.row[i][j]);
    const double norm = *std::max_element(work_.get(), work_.get() + n_);
    const Outcome outcome =
        eliminate(kernels(), lu_.row, n_, std::numeric_limits<double>::min(), pivot_.get());
    if (outcome != Outcome::done)
        return outcome == Outcome::singular ? 0 : -1;
    const double condition = norm * inverseNorm();
    return std::isfinite(condition) ? 1 / condition : 0;
}

int32_t System::rank()
{
    for (int32_t i = 0; i < n_; ++i)
        std::copy_n(scaled_.row[i], n_, lu_.row[i]);
    const int32_t found =
        eliminateCompletely(lu_.row, n_, n_, roundingLimit(n_), pivot_.get(), columnPivot_.get());
    // The last pivot alone may look sound where the estimate saw that all together are not.
    return std::min(found, n_ - 1);
}

/** The right-hand side less a * x: the largest part of it that rounding the data of a row would explain. */
double System::residual(const double *x, double *out) const
{
    double worst = 0;
    for (int32_t i = 0; i < n_; ++i) {
        long double difference = right_.get()[i];
        double size = std::fabs(right_.get()[i]);
        for (int32_t j = 0; j < n_; ++j) {
            difference -= static_cast<long double>(a_.row[i][j]) * x[j];
            size += std::fabs(a_.row[i][j] * x[j]);
        }
        out[i] = static_cast<double>(difference);
        if (out[i] != 0)
            worst = std::max(worst, std::fabs(out[i]) / size);
    }
    return worst;
}

void System::addCorrection(const double *residual, double *x)
{
    double *right = vector_.get();
    for (int32_t i = 0; i < n_; ++i)
        right[i] = residual[i] / rowFactor_.get()[i];
    applyInverse(right);
    for (int32_t i = 0; i < n_; ++i)
        x[i] += right[i] / columnFactor_.get()[i];
}

double System::solve(const double *rhs, double *solution)
{
    std::copy_n(rhs, n_, right_.get());
    std::fill_n(solution, n_, 0.0);
    addCorrection(right_.get(), solution);
    residual(solution, vector_.get());
    addCorrection(vector_.get(), solution);
    return residual(solution, vector_.get());
}

/** What depends on others, in ascending order. */
void reportRank(System &system, int32_t n, VxSolveReport &report, int32_t *dependentRows)
{
    report.rank = system.rank();
    if (!dependentRows)
        return;
    std::copy(system.rowOrder() + report.rank, system.rowOrder() + n, dependentRows);
    std::sort(dependentRows, dependentRows + (n - report.rank));
}

}

}

using namespace vx::numerics;

uint32_t VxMatSolvReport(const VxGenMat *a, int32_t count, double **rhs, double **solutions,
                         VxSolveReport *report, int32_t *dependentRows)
{
    if (!usable(a) || a->rows != a->columns || !report || !allThere(count, rhs) ||
        !allThere(count, solutions) || !allFinite(*a))
        return 1;
    const int32_t n = a->rows;
    System system(*a);
    if (!system.prepare())
        return 1;
    const double reciprocal = system.reciprocalCondition();
    if (reciprocal < 0)
        return 1;
    *report = {reciprocal, 0, n};
    if (reciprocal < roundingLimit(n)) {
        reportRank(system, n, *report, dependentRows);
        return 2;
    }
    for (int32_t r = 0; r < count; ++r)
        report->backwardError = std::max(report->backwardError, system.solve(rhs[r], solutions[r]));
    return 0;
}
