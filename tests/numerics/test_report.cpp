#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/numerics/matrices.h"
#include "tests/support/faults.h"

namespace {

using namespace vx;
using test::Matrix;
using test::Problem;
using test::Random;

TEST(SolveReport, TellsConditionAndBackwardError)
{
    Random random(31);
    Matrix good = test::bandMatrix(60, 3);
    Problem problem(random, good, 3);
    VxSolveReport report{};
    ASSERT_EQ(VxMatSolvReport(&good, 3, problem.rhs.data(), problem.solutions.data(), &report, nullptr), 0u);
    EXPECT_LT(problem.error(), 1e-14);
    EXPECT_GT(report.reciprocalCondition, 0.1);
    EXPECT_LT(report.backwardError, 1e-15);
    EXPECT_EQ(report.rank, 60);

    // Hilbert's matrix of order 8: condition 3.4e10 in the 1-norm, somewhat less when balanced.
    Matrix hilbert(8, 8, [](int32_t i, int32_t j) { return 1.0 / (i + j + 1); });
    Problem hard(random, hilbert, 1);
    ASSERT_EQ(VxMatSolvReport(&hilbert, 1, hard.rhs.data(), hard.solutions.data(), &report, nullptr), 0u);
    EXPECT_GT(report.reciprocalCondition, 1e-11);
    EXPECT_LT(report.reciprocalCondition, 1e-9);
    EXPECT_LT(report.backwardError, 1e-15);
}

/** A matrix of random rows in which row 3 and row 7 depend on others. */
Matrix dependent(Random &random, double scale)
{
    Matrix m = test::randomMatrix(random, 9);
    for (int32_t j = 0; j < 9; ++j) {
        m.row[3][j] = 1e-3 * (m.row[0][j] + m.row[1][j]);
        m.row[7][j] = 2e-3 * m.row[2][j] - m.row[3][j];
    }
    std::for_each(m.row[0], m.row[0] + 81, [scale](double &element) { element *= scale; });
    return m;
}

TEST(SolveReport, VerdictDoesNotChangeWithTheUnits)
{
    std::vector<int32_t> first;
    for (double scale : {1.0, 1e9, 1e-9, 1e-200}) {
        SCOPED_TRACE(scale);
        Random random(32);
        Matrix m = dependent(random, scale);
        Problem problem(random, m, 1);
        VxSolveReport report{};
        int32_t rows[9];
        ASSERT_EQ(VxMatSolvReport(&m, 1, problem.rhs.data(), problem.solutions.data(), &report, rows), 2u);
        EXPECT_EQ(report.rank, 7);
        EXPECT_LT(report.reciprocalCondition, 1e-14);
        std::vector<int32_t> found(rows, rows + 2);
        if (first.empty())
            first = found;
        EXPECT_EQ(found, first);
        // Without the rows that it names, nothing depends any more.
        for (int32_t row : found)
            for (int32_t j = 0; j < 9; ++j)
                m.row[row][j] = 1e3 * scale * std::cos(row * 9 + j * j); // in other units than the rest
        EXPECT_EQ(VxMatSolvReport(&m, 1, problem.rhs.data(), problem.solutions.data(), &report, rows), 0u);
        EXPECT_GT(report.reciprocalCondition, 1e-5);
    }
}

TEST(SolveReport, ZerosAndNonNumbersHaveTheirVerdict)
{
    Matrix m(4, 4, [](int32_t, int32_t) { return 0; });
    std::vector<double> b(4, 1.0), x(4);
    double *rhs = b.data();
    double *solution = x.data();
    VxSolveReport report{};
    int32_t rows[4];
    EXPECT_EQ(VxMatSolvReport(&m, 1, &rhs, &solution, &report, rows), 2u);
    EXPECT_EQ(report.rank, 0);
    EXPECT_EQ(rows[3], 3);
    m.row[1][1] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(VxMatSolvReport(&m, 1, &rhs, &solution, &report, rows), 1u);
}

TEST(SolveReport, RefusedMemoryGivesFailure)
{
    Random random(34);
    Matrix m = test::randomMatrix(random, 70);
    Problem problem(random, m, 1);
    test::refusingEachAllocation([&] {
        VxSolveReport report{};
        uint32_t result =
            VxMatSolvReport(&m, 1, problem.rhs.data(), problem.solutions.data(), &report, nullptr);
        EXPECT_EQ(result, fault::refusals(fault::Kind::allocation) ? 1u : 0u);
    });
}

}
