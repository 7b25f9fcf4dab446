#include <map>

#include "numerics/solve.h"
#include "tests/numerics/matrices.h"

namespace {

using namespace vx;
using namespace vx::test;
using numerics::OwnBndMat;
using numerics::Way;

Way way(const VxGenMat &m)
{
    int32_t semi = 0;
    return numerics::wayToSolve(0, m.rows, &m, semi);
}

Way wayOfBand(int32_t n, int32_t semi)
{
    OwnBndMat band;
    EXPECT_EQ(VxBndMatAlloc(n, semi + 1, &band), 0u);
    int32_t found = -1;
    Way way = numerics::wayToSolve(1, n, &band, found);
    EXPECT_EQ(found, semi);
    return way;
}

TEST(WayToSolve, IsTheSameForEveryBandInBothForms)
{
    std::map<Way, int32_t> count;
    for (int32_t n = 1; n <= 14; ++n)
        for (int32_t semi = 0; semi < n; ++semi) {
            Way expected = n <= 4 ? Way::inverse : 1 + 3 * semi >= n ? Way::dense : Way::band;
            EXPECT_EQ(way(bandMatrix(n, semi)), expected) << n << ", " << semi;
            EXPECT_EQ(wayOfBand(n, semi), expected) << n << ", " << semi;
            ++count[expected];
        }
    EXPECT_EQ(count, (std::map<Way, int32_t>{{Way::inverse, 1 + 2 + 3 + 4},
                                             {Way::band, 2 + 2 + 2 + 3 + 3 + 3 + 4 + 4 + 4 + 5},
                                             {Way::dense, 105 - 10 - 32}}));
}

TEST(WayToSolve, SymmetryIsBrokenByMoreThanTheTolerance)
{
    for (auto [by, expected] : {std::pair{1.01e-12, Way::dense}, std::pair{0.99e-12, Way::band}}) {
        Matrix m = bandMatrix(10, 1);
        m.row[3][4] = 0;
        m.row[4][3] = by;
        m.row[0][1] += 0.5e-12;
        EXPECT_EQ(way(m), expected) << by;
    }
}

TEST(Solve, EveryWayFindsTheSolutions)
{
    Random random(77);
    for (int32_t n : {1, 2, 4, 5, 8, 16, 17, 64, 70, 150}) {
        for (int32_t count : {1, 3, 4, 300}) {
            SCOPED_TRACE(testing::Message() << "order " << n << ", " << count << " right-hand sides");
            Matrix m = randomMatrix(random, n);
            for (int32_t i = 0; i < n; ++i)
                m.row[i][i] += 3;
            Problem general(random, m, count);
            EXPECT_EQ(general.solve(0, &m), 0u);
            EXPECT_LT(general.error(), 1e-11);
            EXPECT_EQ(VxSolveGenMat(&m, count, general.rhs.data(), general.rhs.data()), 0u);
            EXPECT_EQ(general.right, general.found) << "written over the right-hand sides";

            const int32_t semi = n / 5;
            Matrix symmetric = bandMatrix(n, semi);
            OwnBndMat band;
            ASSERT_EQ(Full2SymBndMat(&symmetric, n, semi, &band), 0u);
            Problem both(random, symmetric, count);
            EXPECT_EQ(both.solve(0, &symmetric), 0u);
            EXPECT_LT(both.error(), 1e-11);
            std::vector<std::vector<double>> first = both.found;
            EXPECT_EQ(both.solve(1, &band), 0u);
            EXPECT_EQ(both.found, first) << "the forms differ";
        }
    }
}

TEST(Solve, MismatchesAndMissingVectorsAreRefused)
{
    Matrix m = bandMatrix(6, 1);
    std::vector<double> b(6, 1.0), x(6);
    double *rhs[] = {b.data(), nullptr};
    double *solutions[] = {x.data(), x.data()};
    EXPECT_EQ(SolvLinSystem(0, 6, &m, 1, rhs, solutions), 0u);
    for (auto [form, order, count] : {std::tuple{2u, 6, 1}, {0u, 5, 1}, {0u, 6, 0}, {0u, 6, 2}})
        EXPECT_EQ(SolvLinSystem(form, order, &m, count, rhs, solutions), 1u) << form << order << count;
    EXPECT_EQ(SolvLinSystem(0, 6, nullptr, 1, rhs, solutions), 1u);
}

TEST(Solve, SingularMatricesAreRefusedInEverySize)
{
    for (int32_t n : {2, 4, 5, 16, 17, 64, 65, 130}) {
        std::vector<double> b(static_cast<size_t>(n), 1.0), x(b);
        Matrix m(n, n, [n](int32_t i, int32_t j) { return i == n - 1 ? 0 : i == j ? 2 : 1; });
        EXPECT_EQ(VxMatSolv(&m, b.data(), x.data()), 1u) << n;
        Matrix equal(n, n, [](int32_t, int32_t j) { return 1 + j; });
        EXPECT_EQ(VxMatSolv(&equal, b.data(), x.data()), 1u) << n;
    }
}

TEST(Solve, RefusedMemoryGivesFailureAndLeavesNothing)
{
    Random random(11);
    for (int32_t n : {40, 90}) {
        Matrix general = randomMatrix(random, n);
        Matrix symmetric = bandMatrix(n, 2);
        OwnBndMat narrow, wide;
        Matrix wideSymmetric = bandMatrix(n, n / 2);
        ASSERT_EQ(Full2SymBndMat(&symmetric, n, 2, &narrow), 0u);
        ASSERT_EQ(Full2SymBndMat(&wideSymmetric, n, n / 2, &wide), 0u);
        const std::pair<uint32_t, const void *> forms[] = {
            {0, &general}, {0, &symmetric}, {1, &narrow}, {1, &wide}};
        for (const auto &form : forms)
            for (int32_t count : {1, 5}) {
                Problem problem(random, general, count);
                failsWhenRefused(fault::Kind::allocation,
                                 [&] { return problem.solve(form.first, form.second); });
            }
    }
}

}
