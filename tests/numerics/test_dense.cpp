#include "tests/numerics/matrices.h"

namespace {

using namespace vx::test;
using vx::numerics::OwnGenMat;

TEST(Inverse, TimesItsMatrixIsTheIdentity)
{
    Random random(21);
    for (int32_t n : {1, 4, 16, 17, 65, 100}) {
        Matrix m = randomMatrix(random, n);
        OwnGenMat inverse, product, none;
        ASSERT_EQ(VxMatGetInv(&m, &inverse), 0u);
        ASSERT_EQ(VxMatMult(&m, &inverse, &product), 0u);
        for (int32_t i = 0; i < n; ++i)
            for (int32_t j = 0; j < n; ++j)
                EXPECT_NEAR(product.row[i][j], i == j, 1e-10);
        std::fill_n(m.row[n - 1], n, 0.0);
        EXPECT_EQ(VxMatGetInv(&m, &none), 1u);
        EXPECT_EQ(none.row, nullptr);
    }
}

TEST(Determinant, IsMultiplicativeAndZeroWhenSingular)
{
    Random random(22);
    for (int32_t n : {1, 2, 3, 7, 30, 40, 100}) {
        Matrix a = randomMatrix(random, n);
        Matrix b = randomMatrix(random, n);
        OwnGenMat product;
        ASSERT_EQ(VxMatMult(&a, &b, &product), 0u);
        auto determinant = [](const VxGenMat &m) {
            double value = -1;
            EXPECT_EQ(VxMatGetDet(&m, &value), 0u);
            return value;
        };
        EXPECT_NEAR(determinant(product) / (determinant(a) * determinant(b)), 1, 1e-9);
        std::fill_n(a.row[n - 1], n, 0.0);
        EXPECT_EQ(determinant(a), 0);
    }
}

TEST(NullVector, IsTakenToZero)
{
    Random random(23);
    for (auto [rows, columns, rank] :
         {std::tuple{3, 3, 2}, {3, 3, 0}, {6, 6, 3}, {2, 5, 2}, {5, 3, 2}, {40, 40, 39}}) {
        Matrix left = randomMatrix(random, rows, std::max(rank, 1));
        Matrix right = randomMatrix(random, std::max(rank, 1), columns);
        OwnGenMat m;
        ASSERT_EQ(VxMatMult(&left, &right, &m), 0u);
        if (rank == 0)
            VxGenMatClear(&m);
        std::vector<double> vec(static_cast<size_t>(columns)), zero(static_cast<size_t>(rows));
        ASSERT_EQ(VxMatGetNullVec(&m, vec.data()), 0u) << rows << " x " << columns;
        EXPECT_NEAR(std::inner_product(vec.begin(), vec.end(), vec.begin(), 0.0), 1, 1e-12);
        EXPECT_LT(largestDifference(times(m, vec), zero), 1e-12);
    }
    Matrix regular = bandMatrix(4, 1);
    double vec[4];
    EXPECT_EQ(VxMatGetNullVec(&regular, vec), 1u);
}

TEST(CompletePivoting, SolvesWithItsOwnSubstitution)
{
    Random random(24);
    for (int32_t n : {1, 3, 30}) {
        Matrix m = randomMatrix(random, n);
        Matrix lu(m);
        std::vector<int32_t> rowPivot(static_cast<size_t>(n)), columnPivot(rowPivot);
        ASSERT_EQ(VxMatFullPvtLuD(&lu, n, rowPivot.data(), columnPivot.data()), 0u);
        for (int32_t i = 1; i < n; ++i)
            for (int32_t j = 0; j < i; ++j)
                EXPECT_LE(std::fabs(lu.row[i][j]), 1);
        std::vector<double> x = randomVector(random, n), found(x.size());
        std::vector<double> b = times(m, x);
        ASSERT_EQ(VxMatFullPvtFBS(&lu, n, rowPivot.data(), columnPivot.data(), b.data(), found.data()), 0u);
        EXPECT_LT(largestDifference(x, found), 1e-11);
    }
}

TEST(Transpose, ExchangesRowsAndColumns)
{
    Random random(25);
    Matrix m = randomMatrix(random, 19, 34);
    OwnGenMat transposed;
    ASSERT_EQ(VxMatGetXpose(&m, &transposed), 0u);
    for (int32_t i = 0; i < 19; ++i)
        for (int32_t j = 0; j < 34; ++j)
            EXPECT_EQ(transposed.row[j][i], m.row[i][j]);
    EXPECT_EQ(VxMatGetXpose(&m, &m), 1u);
    EXPECT_EQ(VxMatMult(&m, &m, &transposed), 1u);
}

}
