#pragma once

// Matrices for the tests of numerics.

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "numerics/kernel_choice.h"
#include "numerics/storage.h"
#include "tests/support/faults.h"

namespace vx::test {

using Random = std::mt19937;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/** A general matrix that is made of `element(i, j)`. */
struct Matrix : numerics::OwnGenMat {
    template <typename Element> Matrix(int32_t order, int32_t width, Element element)
    {
        if (VxGenMatAlloc(order, width, this))
            throw std::bad_alloc();
        for (int32_t i = 0; i < order; ++i)
            for (int32_t j = 0; j < width; ++j)
                row[i][j] = element(i, j);
    }

    Matrix(const Matrix &other)
        : Matrix(other.rows, other.columns, [&](int32_t i, int32_t j) { return other.row[i][j]; })
    {
    }
};

inline Matrix randomMatrix(Random &random, int32_t n, int32_t width = 0)
{
    std::uniform_real_distribution<double> value(-1, 1);
    return Matrix(n, width ? width : n, [&](int32_t, int32_t) { return value(random); });
}

inline std::vector<double> randomVector(Random &random, int32_t n)
{
    std::uniform_real_distribution<double> value(-1, 1);
    std::vector<double> out(static_cast<size_t>(n));
    std::ranges::generate(out, [&] { return value(random); });
    return out;
}

/** a * x */
inline std::vector<double> times(const VxGenMat &a, const std::vector<double> &x)
{
    std::vector<double> out;
    for (int32_t i = 0; i < a.rows; ++i)
        out.push_back(std::inner_product(x.begin(), x.end(), a.row[i], 0.0));
    return out;
}

/** Over the elements of two vectors of any kind. */
template <typename A, typename B> double largestDifference(const A &a, const B &b)
{
    return std::transform_reduce(
        std::begin(a), std::end(a), std::begin(b), 0.0, [](double x, double y) { return std::max(x, y); },
        [](double x, double y) { return std::fabs(x - y); });
}

/** A symmetric matrix whose elements reach `semi` places from the diagonal. */
inline Matrix bandMatrix(int32_t n, int32_t semi)
{
    return Matrix(n, n, [semi](int32_t i, int32_t j) {
        int32_t distance = std::abs(i - j);
        return distance > semi ? 0 : distance == 0 ? 4 + 0.1 * i + semi : 1.0 / (1 + distance);
    });
}

/** A system, its known solutions, and room for those that are computed. */
struct Problem {
    Problem(Random &random, const VxGenMat &a, int32_t count)
    {
        for (int32_t r = 0; r < count; ++r) {
            expected.push_back(randomVector(random, a.columns));
            right.push_back(times(a, expected.back()));
            found.emplace_back(expected.back().size());
        }
        for (size_t r = 0; r < right.size(); ++r) {
            rhs.push_back(right[r].data());
            solutions.push_back(found[r].data());
        }
    }

    int32_t count() const { return static_cast<int32_t>(rhs.size()); }

    /** By the dispatcher, a full matrix (form 0) or a band (1). */
    uint32_t solve(uint32_t form, const void *matrix)
    {
        const auto order = static_cast<int32_t>(right[0].size());
        return SolvLinSystem(form, order, matrix, count(), rhs.data(), solutions.data());
    }

    uint32_t report(const VxGenMat &matrix, VxSolveReport &told, int32_t *rows = nullptr)
    {
        return VxMatSolvReport(&matrix, count(), rhs.data(), solutions.data(), &told, rows);
    }

    double error() const
    {
        double worst = 0;
        for (size_t r = 0; r < found.size(); ++r)
            worst = std::max(worst, largestDifference(found[r], expected[r]));
        return worst;
    }

    std::vector<std::vector<double>> expected, right, found;
    std::vector<double *> rhs, solutions;
};

}
