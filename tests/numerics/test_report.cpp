#include "tests/numerics/matrices.h"

namespace {

using namespace vx;
using namespace vx::test;

TEST(SolveReport, TellsConditionAndBackwardError)
{
    Random random(31);
    Matrix good = bandMatrix(60, 3);
    Problem problem(random, good, 3);
    VxSolveReport report{};
    ASSERT_EQ(problem.report(good, report), 0u);
    EXPECT_TRUE(problem.error() < 1e-14 && report.backwardError < 1e-15);
    EXPECT_TRUE(report.reciprocalCondition > 0.1 && report.rank == 60);

    // Hilbert's matrix of order 8: condition 3.4e10 in the 1-norm, somewhat less when balanced.
    Matrix hilbert(8, 8, [](int32_t i, int32_t j) { return 1.0 / (i + j + 1); });
    Problem hard(random, hilbert, 1);
    ASSERT_EQ(hard.report(hilbert, report), 0u);
    EXPECT_NEAR(std::log10(report.reciprocalCondition), -10, 1);
    EXPECT_LT(report.backwardError, 1e-15);
}

/** A matrix of random rows in which row 3 and row 7 depend on others. */
Matrix dependent(Random &random, double scale)
{
    Matrix m = randomMatrix(random, 9);
    for (int32_t j = 0; j < 9; ++j) {
        m.row[3][j] = 1e-3 * (m.row[0][j] + m.row[1][j]);
        m.row[7][j] = 2e-3 * m.row[2][j] - m.row[3][j];
    }
    std::for_each(m.row[0], m.row[0] + 81, [scale](double &element) { element *= scale; });
    return m;
}

TEST(SolveReport, VerdictDoesNotChangeWithTheUnits)
{
    std::vector<std::vector<int32_t>> found;
    for (double scale : {1.0, 1e9, 1e-9, 1e-200}) {
        SCOPED_TRACE(scale);
        Random random(32);
        Matrix m = dependent(random, scale);
        Problem problem(random, m, 1);
        VxSolveReport report{};
        int32_t rows[9];
        ASSERT_EQ(problem.report(m, report, rows), 2u);
        EXPECT_TRUE(report.rank == 7 && report.reciprocalCondition < 1e-14);
        found.emplace_back(rows, rows + 2);
        EXPECT_EQ(found.back(), found.front());
        // Without the rows that it names, nothing depends any more.
        for (int32_t row : found[0])
            for (int32_t j = 0; j < 9; ++j)
                m.row[row][j] = 1e3 * scale * std::cos(row * 9 + j * j); // in other units than the rest
        EXPECT_EQ(problem.report(m, report, rows), 0u);
        EXPECT_GT(report.reciprocalCondition, 1e-5);
    }
}

TEST(SolveReport, ZerosAndNonNumbersHaveTheirVerdict)
{
    Random random(33);
    Matrix m(4, 4, [](int32_t, int32_t) { return 0; });
    Problem problem(random, m, 1);
    VxSolveReport report{};
    int32_t rows[4];
    EXPECT_EQ(problem.report(m, report, rows), 2u);
    EXPECT_EQ(std::pair(report.rank, rows[3]), std::pair(0, 3));
    m.row[1][1] = notANumber;
    EXPECT_EQ(problem.report(m, report, rows), 1u);
}

TEST(SolveReport, RefusedMemoryGivesFailure)
{
    Random random(34);
    Matrix m = randomMatrix(random, 70);
    Problem problem(random, m, 1);
    VxSolveReport report{};
    failsWhenRefused(fault::Kind::allocation, [&] { return problem.report(m, report); });
}

}
