#include "numerics/band.h"
#include "tests/numerics/matrices.h"

using namespace vx;
using namespace vx::numerics;
using namespace vx::test;

namespace {

/** A random symmetric band, with pivots of both signs. */
struct Band : OwnBndMat {
    Band(Random &random, int32_t n, int32_t semi)
    {
        if (VxBndMatAlloc(n, semi + 1, this))
            throw std::bad_alloc();
        std::uniform_real_distribution<double> value(-1, 1);
        for (int32_t i = 0; i < n; ++i)
            for (int32_t d = 0; d < storedInRow(*this, i); ++d)
                row[i][d] = d ? value(random) : (i % 3 ? 1 : -1) * (2.5 * semi + 1 + value(random));
    }

    Matrix full() const
    {
        return Matrix(size, size, [this](int32_t i, int32_t j) {
            int32_t distance = std::abs(i - j);
            return distance < width ? row[std::min(i, j)][distance] : 0;
        });
    }
};

using Vectors = std::vector<std::vector<double>>;

std::vector<double *> pointersTo(Vectors &vectors)
{
    std::vector<double *> pointers;
    for (std::vector<double> &vector : vectors)
        pointers.push_back(vector.data());
    return pointers;
}

/** L D L' by the plain loops, on the upper triangle of a full matrix. */
void factorisePlainly(Matrix &a)
{
    const int32_t n = a.rows;
    for (int32_t i = 0; i < n; ++i) {
        for (int32_t k = 0; k < i; ++k)
            for (int32_t j = i; j < n; ++j)
                a.row[i][j] -= a.row[k][i] * a.row[k][k] * a.row[k][j];
        const double reciprocal = 1 / a.row[i][i];
        for (int32_t j = i + 1; j < n; ++j)
            a.row[i][j] *= reciprocal;
    }
}

/** Solve with L and D, likewise. */
std::vector<double> forwardPlainly(const Matrix &a, std::vector<double> x)
{
    for (size_t i = 0; i < x.size(); ++i) {
        for (size_t j = i + 1; j < x.size(); ++j)
            x[j] -= x[i] * a.row[i][j];
        x[i] /= a.row[i][i];
    }
    return x;
}

/** The same band with rows of their own. */
struct Scattered : VxBndMat {
    explicit Scattered(const VxBndMat &band) : VxBndMat{band.size, band.width, nullptr}
    {
        for (int32_t i = 0; i < size; ++i)
            elements.emplace_back(band.row[i], band.row[i] + storedInRow(band, i));
        pointers = pointersTo(elements);
        row = pointers.data();
    }

    Vectors elements;
    std::vector<double *> pointers;
};

void expectBits(const VxBndMat &factor, const Matrix &plain)
{
    for (int32_t i = 0; i < factor.size; ++i)
        for (int32_t d = 0; d < storedInRow(factor, i); ++d)
            ASSERT_EQ(factor.row[i][d], plain.row[i][i + d]) << i << " " << d;
}

}

TEST(Band, FactorsHaveTheBitsOfThePlainLoopsWithEveryKernel)
{
    Random random(82);
    for (int32_t n : {1, 2, 5, 8, 9, 17, 40, 43, 150})
        for (int32_t semi : {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 12, 13, 16, 19, 20, 21, 39, 149}) {
            if (semi >= n)
                continue;
            Band band(random, n, semi);
            Matrix plain = band.full();
            const Problem problem(random, plain, 2);
            factorisePlainly(plain);
            const auto &[b0, b1] = std::tie(problem.right[0], problem.right[1]);
            for (const Kernels *kernels : availableKernels()) {
                SCOPED_TRACE(testing::Message() << kernels->name << ", " << n << ", " << semi);
                OwnBndMat factor;
                ASSERT_EQ(VxBndMatCopy(&band, &factor), 0u);
                Vectors x = problem.right;
                ASSERT_TRUE(factoriseBand(*kernels->rows, band, factor, 2, pointersTo(x).data()));
                expectBits(factor, plain);
                EXPECT_EQ(x, (Vectors{forwardPlainly(plain, b0), forwardPlainly(plain, b1)}));

                Scattered inPlace(band);
                ASSERT_TRUE(factoriseBand(*kernels->rows, inPlace, inPlace, 0, nullptr));
                expectBits(inPlace, plain);
            }
        }
}

TEST(Band, AFactorInPiecesIsTheSame)
{
    Random random(87);
    for (int32_t semi : {3, 30}) {
        Band band(random, 100, semi);
        Matrix plain = band.full();
        factorisePlainly(plain);
        for (int32_t pieces : {1, 2, 5, 100}) {
            const BandFactor factor(100, semi + 1, 100 * (semi + 1) * 8 / pieces);
            ASSERT_TRUE(factor.matrix().row);
            ASSERT_TRUE(factoriseBand(*kernels().rows, band, factor.matrix(), 0, nullptr));
            expectBits(factor.matrix(), plain);
        }
    }
}

TEST(Band, SubstitutionDoesNotDependOnTheKernel)
{
    Random random(83);
    for (int32_t semi : {1, 5, 8, 13, 30}) {
        Band factor(random, 60, semi);
        Problem problem(random, factor.full(), 3);
        std::vector<Vectors> results;
        for (const Kernels *kernels : availableKernels()) {
            Vectors &x = results.emplace_back(problem.right);
            kernels->rows->bandForward(factor.row, 60, semi, 0, 60, 3, pointersTo(x).data());
            kernels->rows->bandBackward(factor.row, 60, semi, 3, pointersTo(x).data());
            EXPECT_EQ(x, results[0]) << kernels->name;
        }
    }
}

TEST(Band, SystemsAreSolvedAndTheBandStays)
{
    Random random(84);
    for (int32_t n : {1, 3, 4, 5, 12, 64, 333})
        for (int32_t semi : {0, 1, 2, 3, 8, 11, 50}) {
            if (semi >= n)
                continue;
            SCOPED_TRACE(testing::Message() << n << ", " << semi);
            Band band(random, n, semi);
            Matrix full = band.full();
            Problem problem(random, full, 3);
            ASSERT_EQ(SolvBandMatSys(n, semi, &band, 3, problem.rhs.data(), problem.solutions.data()), 0u);
            EXPECT_LT(problem.error(), 1e-13 * (1 + semi));
            EXPECT_EQ(largestDifference(times(band.full(), problem.expected[0]), problem.right[0]), 0);

            // Alone, over the right-hand side, the bits are the same; in two steps the solution is.
            double *alone[] = {problem.right[1].data()};
            ASSERT_EQ(SolvBandMatSys(n, semi, &band, 1, alone, alone), 0u);
            EXPECT_EQ(problem.right[1], problem.found[1]);
            ASSERT_EQ(VxMatBandGetLS(&band, n, semi), 0u);
            ASSERT_EQ(VxMatBandFBS(&band, n, semi, problem.rhs[0], problem.solutions[0]), 0u);
            EXPECT_LT(problem.error(), 1e-13 * (1 + semi));
        }
}

TEST(Band, APivotBelowTheToleranceIsSingular)
{
    Random random(86);
    for (int32_t semi : {0, 1, 2, 9})
        for (int32_t place : {0, 7, 19})
            for (double pivot : {-1.1e-12, 0.9e-12, 0.0, notANumber}) {
                const Matrix full(20, 20, [=](int32_t i, int32_t j) {
                    return i != j ? 0 : i == place ? pivot : -1;
                });
                OwnBndMat band;
                ASSERT_EQ(Full2SymBndMat(&full, 20, semi, &band), 0u);
                Problem problem(random, full, 1);
                const uint32_t singular = !(std::fabs(pivot) > 1e-12);
                EXPECT_EQ(SolvBandMatSys(20, semi, &band, 1, problem.rhs.data(), problem.solutions.data()),
                          singular);
                EXPECT_EQ(VxMatBandGetLS(&band, 20, semi), singular);
            }
}

// ---------------------------------------------------------------- general bands

namespace {

/** A random band; if it has both triangles its leading diagonal is zero: nothing works without exchanges. */
Matrix generalBand(Random &random, int32_t n, int32_t lower, int32_t upper)
{
    std::uniform_real_distribution<double> value(-1, 1);
    return Matrix(n, n, [&](int32_t i, int32_t j) {
        if (i == j && lower * upper == 0)
            return 4 + value(random);
        const bool inside = i - j <= lower && j - i <= upper && (i != j || i >= n / 2);
        return inside ? value(random) : 0.0;
    });
}

}

TEST(PivotedBand, SolvesWhatTheDenseSolverSolves)
{
    Random random(89);
    for (int32_t n : {1, 2, 6, 25, 80})
        for (int32_t lower : {0, 1, 4, 24})
            for (int32_t upper : {0, 1, 3, 24}) {
                if (lower >= n || upper >= n)
                    continue;
                SCOPED_TRACE(testing::Message() << n << ", " << lower << ", " << upper);
                Matrix full = generalBand(random, n, lower, upper);
                Problem problem(random, full, 1);
                double *x = problem.solutions[0];
                OwnGenMat band;
                std::vector<int32_t> pivot(static_cast<size_t>(n), -1);
                ASSERT_EQ(VxMatBandMkPvt(&full, n, lower, upper, &band, pivot.data()), 0u);
                if (VxMatBandPvtLuD(&band, n, lower, upper, pivot.data()))
                    continue; // by chance singular: no more than the dense solver says of it
                ASSERT_EQ(VxMatBandPvtFBS(&band, n, lower, upper, pivot.data(), problem.rhs[0], x), 0u);
                EXPECT_LT(largestDifference(times(full, problem.found[0]), problem.right[0]),
                          1e-12 * (1 + largestDifference(problem.found[0], problem.right[0])));
            }
}

TEST(PivotedBand, ThePivotIsTheLargestAndTheLaterOfEqualOnes)
{
    const double first[] = {1, -3, 3, 9};
    Matrix full(4, 4, [&](int32_t i, int32_t j) { return j > 0 ? 1.0 : first[i]; });
    OwnGenMat band;
    ASSERT_EQ(VxMatBandMk(&full, 4, 2, 1, &band), 0u);
    EXPECT_EQ(band.row[0][2], 1) << "elements stand by their distance from the diagonal";
    EXPECT_EQ(band.row[1][1], -3);
    int32_t row = -1;
    EXPECT_EQ(VxMatBandGetPvt(&band, 4, 0, 2, &row), 0u);
    EXPECT_EQ(row, 2) << "row 3 lies outside the band";
}

TEST(PivotedBand, SingularOnesAndThoseWithoutMemoryAreRefused)
{
    Random random(90);
    Matrix full = generalBand(random, 12, 2, 3);
    std::fill_n(full.row[7], 12, 0.0);
    std::vector<int32_t> pivot(12);
    OwnGenMat band;
    auto make = [&] {
        VxGenMatFree(&band);
        return VxMatBandMkPvt(&full, 12, 2, 3, &band, pivot.data());
    };
    failsWhenRefused(fault::Kind::allocation, make, [&](bool refused) {
        EXPECT_EQ(band.row == nullptr, refused);
        EXPECT_EQ(VxMatBandPvtLuD(&band, 12, 2, 3, pivot.data()), 1u);
    });
}

TEST(ThreeDiagonals, AreSolvedInPlaceToo)
{
    Random random(91);
    for (int32_t n : {1, 2, 3, 50}) {
        std::vector<double> lower = randomVector(random, n), upper = randomVector(random, n),
                            diagonal(static_cast<size_t>(n), 3.0);
        Matrix full(n, n, [&](int32_t i, int32_t j) {
            auto at = static_cast<size_t>(i);
            return i == j ? diagonal[at] : j == i - 1 ? lower[at] : j == i + 1 ? upper[at] : 0;
        });
        Problem problem(random, full, 1);
        auto solve = [&](double *x) {
            return VxMatSolvTriDag(n, lower.data(), diagonal.data(), upper.data(), problem.rhs[0], x);
        };
        failsWhenRefused(fault::Kind::allocation, [&] { return solve(problem.solutions[0]); });
        EXPECT_EQ(solve(problem.rhs[0]), 0u);
        EXPECT_LT(largestDifference(problem.right[0], problem.expected[0]), 1e-14);
        diagonal[0] = -0.9e-12;
        EXPECT_EQ(solve(problem.rhs[0]), 1u);
    }
    double ones[] = {1, 1}, x[2];
    EXPECT_EQ(VxMatSolvTriDag(2, ones, ones, ones, ones, x), 1u) << "the second pivot vanishes";
}
