#include <functional>

#include "numerics/svd.h"
#include "tests/numerics/matrices.h"

using namespace vx;
using namespace vx::numerics;
using namespace vx::test;

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

/** |a' a - I| over the first `count` columns. */
double lossOfOrthogonality(const VxGenMat &a, int32_t count)
{
    double worst = 0;
    for (int32_t i = 0; i < count; ++i)
        for (int32_t j = 0; j <= i; ++j) {
            double sum = i == j ? -1 : 0;
            for (int32_t k = 0; k < a.rows; ++k)
                sum += a.row[k][i] * a.row[k][j];
            worst = std::max(worst, std::fabs(sum));
        }
    return worst;
}

/** u w v' is `a`, the vectors are orthonormal and the values in order: then they are the right ones. */
void expectDecomposed(const Matrix &a)
{
    const int32_t m = a.rows, n = a.columns;
    Matrix u(a);
    OwnGenMat v;
    std::vector<double> w(static_cast<size_t>(n));
    EXPECT_EQ(VxMatSvd(&u, w.data(), &v), 0u);
    const double limit = 4 * epsilon * std::max(m, n);
    for (int32_t i = 0; i < m; ++i)
        for (int32_t j = 0; j < n; ++j) {
            double sum = 0;
            for (int32_t k = 0; k < n; ++k)
                sum += u.row[i][k] * w[static_cast<size_t>(k)] * v.row[j][k];
            EXPECT_LE(std::fabs(sum - a.row[i][j]), limit * w[0]) << i << " " << j;
        }
    EXPECT_LE(lossOfOrthogonality(u, std::min(m, n)), limit);
    EXPECT_LE(lossOfOrthogonality(v, n), limit);
    EXPECT_TRUE(std::is_sorted(w.rbegin(), w.rend()));
    EXPECT_GE(w.back(), 0);
    for (int32_t j = m; j < n; ++j) {
        EXPECT_EQ(w[static_cast<size_t>(j)], 0);
        for (int32_t i = 0; i < m; ++i)
            EXPECT_EQ(u.row[i][j], 0);
    }
}

}

TEST(Svd, EveryShapeIsDecomposed)
{
    Random random(92);
    for (int32_t m : {1, 2, 3, 7, 8, 9, 16, 33, 70})
        for (int32_t n : {1, 2, 3, 5, 8, 17, 40, 70}) {
            SCOPED_TRACE(testing::Message() << m << " x " << n);
            expectDecomposed(randomMatrix(random, m, n));
        }
}

TEST(Svd, DifficultMatricesAreDecomposed)
{
    Random random(93);
    const std::pair<const char *, double (*)(int32_t, int32_t)> cases[] = {
        {"zero", [](int32_t, int32_t) { return 0.0; }},
        {"unit", [](int32_t i, int32_t j) { return 1.0 * (i == j); }},
        {"ones", [](int32_t, int32_t) { return 1.0; }},
        {"Hilbert", [](int32_t i, int32_t j) { return 1.0 / (i + j + 1); }},
        {"Vandermonde", [](int32_t i, int32_t j) { return std::pow((i + 1) / 20.0, j); }},
        {"graded", [](int32_t i, int32_t j) { return std::pow(10.0, -i - j); }},
        {"graded upwards", [](int32_t i, int32_t j) { return std::pow(10.0, (i + j) / 2.0 - 19); }},
        {"Jordan block", [](int32_t i, int32_t j) { return 1.0 * (j == i + 1); }},
        {"bidiagonal with zeros", [](int32_t i, int32_t j) { return 1.0 * (i == j ? i % 3 : j == i + 1); }},
        {"triangle of ones", [](int32_t i, int32_t j) { return 1.0 * (i == j) - (j > i); }},
        {"tiny", [](int32_t i, int32_t j) { return 1e-300 * (i * j % 7 + 1); }},
        {"huge", [](int32_t i, int32_t j) { return 1e300 * (i * j % 7 - 3); }},
        {"one column", [](int32_t i, int32_t j) { return j == 4 ? i - 3.0 : 0.0; }},
    };
    for (const auto &[name, element] : cases)
        for (int32_t rows : {20, 23, 9}) {
            SCOPED_TRACE(testing::Message() << name << ", " << rows);
            expectDecomposed(Matrix(rows, 20, element));
        }
}

TEST(Svd, ResultsDoNotDependOnTheKernel)
{
    Random random(95);
    for (auto [m, n] : {std::pair{6, 6}, {50, 31}, {12, 40}}) {
        const Matrix a = randomMatrix(random, m, n), b = randomMatrix(random, n, n);
        std::vector<std::vector<double>> results;
        for (const Kernels *kernels : availableKernels()) {
            Matrix u(a), v(b);
            std::vector<double> result(static_cast<size_t>(n));
            ASSERT_EQ(decompose(*kernels->rows, u, result.data(), v), 0u);
            result.insert(result.end(), u.row[0], u.row[0] + m * n);
            result.insert(result.end(), v.row[0], v.row[0] + n * n);
            results.push_back(result);
            EXPECT_EQ(results.back(), results.front()) << kernels->name;
        }
    }
}

TEST(Svd, SubstitutionGivesTheShortestOfTheBestSolutions)
{
    Random random(96);
    // Columns 3 to 5 repeat columns 0 to 2: the best solutions share each value between the two.
    Matrix half = randomMatrix(random, 12, 3);
    Matrix a(12, 6, [&](int32_t i, int32_t j) { return half.row[i][j % 3]; });
    std::vector<double> x = randomVector(random, 3), w(6), found(6);
    x.insert(x.end(), x.begin(), x.begin() + 3);
    std::vector<double> b = times(a, x), off = randomVector(random, 12);
    Matrix u(a);
    OwnGenMat v;
    ASSERT_EQ(VxMatSvd(&u, w.data(), &v), 0u);
    // A part of b that no column reaches changes nothing.
    for (int32_t j = 0; j < 3; ++j) {
        double along = 0;
        for (int32_t i = 0; i < 12; ++i)
            along += u.row[i][j] * off[static_cast<size_t>(i)];
        for (int32_t i = 0; i < 12; ++i)
            off[static_cast<size_t>(i)] -= along * u.row[i][j];
    }
    for (size_t i = 0; i < 12; ++i)
        b[i] += off[i];
    ASSERT_EQ(VxMatSvdFBS(&u, w.data(), &v, b.data(), found.data()), 0u);
    EXPECT_LT(largestDifference(found, x), 1e-13);
}

TEST(Svd, WhatIsNoNumberOrDoesNotFitIsRefused)
{
    Random random(97);
    Matrix a = randomMatrix(random, 4, 3), wrong = randomMatrix(random, 4, 4);
    OwnGenMat v;
    std::vector<double> w(3);
    EXPECT_EQ(VxMatSvd(&a, w.data(), &wrong), 1u);
    for (double bad : {notANumber, infinity}) {
        a.row[2][1] = bad;
        EXPECT_EQ(VxMatSvd(&a, w.data(), &v), 1u);
        EXPECT_EQ(v.row, nullptr) << "nothing stays allocated";
    }
}

TEST(Svd, EveryRefusedAllocationIsAFailure)
{
    Random random(98);
    const Matrix a = randomMatrix(random, 6, 5);
    std::vector<double> w(5), b(6, 1.0), x(5);
    Matrix u(a);
    OwnGenMat v;
    auto decomposeAgain = [&] {
        VxGenMatFree(&v);
        std::copy_n(a.row[0], 30, u.row[0]);
        return VxMatSvd(&u, w.data(), &v);
    };
    failsWhenRefused(fault::Kind::allocation, decomposeAgain,
                     [&](bool refused) { EXPECT_EQ(v.row == nullptr, refused); });
    failsWhenRefused(fault::Kind::allocation,
                     [&] { return VxMatSvdFBS(&u, w.data(), &v, b.data(), x.data()); });
}
