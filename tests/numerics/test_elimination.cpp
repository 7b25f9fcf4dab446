#include "numerics/dense.h"
#include "tests/numerics/matrices.h"

namespace {

using namespace vx;
using namespace vx::test;
using numerics::Outcome;

/** The column-wise loops that the blocked elimination has to agree with, bit for bit. */
Outcome plainElimination(VxGenMat &a, std::vector<int32_t> &pivot)
{
    const int32_t n = a.rows;
    std::vector<double> scale;
    for (int32_t i = 0; i < n; ++i) {
        pivot[static_cast<size_t>(i)] = i;
        double largest = 0;
        for (int32_t j = 0; j < n; ++j)
            largest = std::max(largest, std::fabs(a.row[i][j]));
        if (largest < 1e-12)
            return Outcome::singular;
        scale.push_back(1 / largest);
    }
    for (int32_t j = 0; j < n; ++j) {
        int32_t p = j;
        double best = 0;
        for (int32_t i = 0; i < n; ++i) {
            for (int32_t k = 0; k < std::min(i, j); ++k)
                if (a.row[i][k] != 0 && a.row[k][j] != 0)
                    a.row[i][j] -= a.row[i][k] * a.row[k][j];
            double candidate = i < j ? -1 : scale[static_cast<size_t>(i)] * std::fabs(a.row[i][j]);
            if (i >= j && candidate >= best) {
                best = candidate;
                p = i;
            }
        }
        if (p != j) {
            std::swap_ranges(a.row[p], a.row[p] + n, a.row[j]);
            std::swap(scale[static_cast<size_t>(p)], scale[static_cast<size_t>(j)]);
            std::swap(pivot[static_cast<size_t>(p)], pivot[static_cast<size_t>(j)]);
        }
        if (!(std::fabs(a.row[j][j]) >= 1e-12))
            return Outcome::singular;
        for (int32_t i = j + 1; i < n; ++i)
            a.row[i][j] *= 1 / a.row[j][j];
    }
    return Outcome::done;
}

bool same(const VxGenMat &a, const VxGenMat &b)
{
    return std::equal(a.row[0], a.row[0] + a.rows * a.columns, b.row[0],
                      [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

/** Every variant of the kernels against the plain loops. */
Outcome expectPlainResult(const Matrix &matrix)
{
    const int32_t n = matrix.rows;
    Matrix plain(matrix);
    std::vector<int32_t> plainPivot(static_cast<size_t>(n));
    const Outcome expected = plainElimination(plain, plainPivot);
    for (const numerics::Kernels *kernels : numerics::availableKernels()) {
        SCOPED_TRACE(testing::Message() << kernels->name << ", order " << n);
        Matrix lu(matrix);
        std::vector<int32_t> pivot(static_cast<size_t>(n));
        EXPECT_EQ(numerics::eliminate(*kernels, lu.row, n, 1e-12, pivot.data()), expected);
        if (expected != Outcome::done)
            continue;
        EXPECT_EQ(pivot, plainPivot);
        EXPECT_TRUE(same(lu, plain));
    }
    return expected;
}

/** Orders on both sides of every change of method and of every tile. */
std::vector<int32_t> orders()
{
    std::vector<int32_t> out(20);
    std::iota(out.begin(), out.end(), 1);
    out.insert(out.end(), {31, 63, 64, 65, 66, 71, 72, 73, 80, 95, 96, 97, 127, 128, 130, 161, 300});
    return out;
}

class Elimination : public testing::Test {
protected:
    double uniform() { return std::uniform_real_distribution<double>(-1, 1)(random); }
    int32_t below(int32_t n) { return std::uniform_int_distribution<int32_t>(0, n - 1)(random); }
    Random random{20261};
};

TEST_F(Elimination, IsThatOfThePlainLoops)
{
    for (int32_t n : orders()) {
        Matrix nearlySingular = randomMatrix(random, n);
        expectPlainResult(nearlySingular);
        for (int32_t j = 0; j < n && n > 2; ++j)
            nearlySingular.row[n - 1][j] =
                nearlySingular.row[0][j] - nearlySingular.row[n / 2][j] + 1e-11 * uniform();
        expectPlainResult(nearlySingular);
        // Small integers: ties between pivots, cancellation to exact zeros, and singular ones.
        for (int32_t spread : {1, 3})
            expectPlainResult(
                Matrix(n, n, [&](int32_t, int32_t) { return double(below(2 * spread + 1) - spread); }));
        // Graded ones.
        expectPlainResult(Matrix(n, n, [&](int32_t i, int32_t j) {
            return uniform() * std::pow(10, 20.0 * (i - j) / n) + (i == j ? 1e-3 : 0);
        }));
        // Sparse ones.
        for (int32_t perRow : {1, 4})
            expectPlainResult(Matrix(n, n, [&](int32_t i, int32_t j) {
                return i == (j * 7 + 3) % n || below(n) < perRow ? uniform() : 0;
            }));
    }
}

TEST_F(Elimination, KeepsInfinitiesFromExactZeros)
{
    int32_t solvable[2] = {};
    for (int32_t n : orders())
        for (double odd : {infinity, notANumber, 1e308})
            for (int32_t trial = 0; trial < (n < 170 ? 6 : 1); ++trial) {
                const int32_t sparsity = n < 30 ? 8 : 2 * n;
                Matrix m(n, n, [&](int32_t i, int32_t j) {
                    return i == j ? 2 : below(sparsity) == 0 ? uniform() : 0;
                });
                for (int32_t k = 0; k <= trial % 3; ++k)
                    m.row[below(n)][below(n)] = odd;
                solvable[n > numerics::smallOrder] += expectPlainResult(m) == Outcome::done;
            }
    EXPECT_GT(std::min(solvable[0], solvable[1]), 50);
}

TEST_F(Elimination, RefusesPivotsBelowTheToleranceOnly)
{
    std::vector<int32_t> pivot(6);
    for (auto [last, expected] : {std::pair{1.001e-12, 0u}, std::pair{0.999e-12, 1u}}) {
        Matrix m(6, 6, [l = last](int32_t i, int32_t j) {
            return i == j ? (i == 5 ? l : 1) : j == 5 ? 1 : 0;
        });
        EXPECT_EQ(VxMatFullLuD(&m, 6, pivot.data()), expected);
    }
}

TEST_F(Elimination, ManyRightHandSidesHaveTheBitsOfOne)
{
    for (int32_t n : {5, 8, 33, 64, 65, 129, 200})
        for (int32_t count : {1, 3, 16, 17, 300}) {
            SCOPED_TRACE(testing::Message() << "order " << n << ", " << count << " right-hand sides");
            Matrix lu = randomMatrix(random, n);
            const Matrix many = randomMatrix(random, n, count);
            Matrix expected(many);
            std::vector<int32_t> pivot(static_cast<size_t>(n));
            ASSERT_EQ(VxMatFullLuD(&lu, n, pivot.data()), 0u);
            std::iota(pivot.begin(), pivot.end(), 0);
            for (int32_t c = 0; c < count; ++c) {
                std::vector<double> b, x(static_cast<size_t>(n));
                for (int32_t i = 0; i < n; ++i)
                    b.push_back(many.row[i][c]);
                ASSERT_EQ(VxMatFullFBS(&lu, n, pivot.data(), b.data(), x.data()), 0u);
                for (int32_t i = 0; i < n; ++i)
                    expected.row[i][c] = x[static_cast<size_t>(i)];
            }
            for (const numerics::Kernels *kernels : numerics::availableKernels()) {
                Matrix together(many);
                ASSERT_EQ(numerics::substituteMany(*kernels, lu.row, n, together.row, count), Outcome::done);
                EXPECT_TRUE(same(together, expected)) << kernels->name;
            }
        }
}

TEST_F(Elimination, ProductsHaveTheBitsOfPlainSums)
{
    for (auto [m, k, n] : {std::tuple{1, 1, 1}, {3, 7, 5}, {8, 64, 16}, {70, 65, 33}, {20, 130, 300}}) {
        Matrix a = randomMatrix(random, m, k);
        Matrix b = randomMatrix(random, k, n);
        a.row[0][0] = 0;
        Matrix expected(m, n, [&](int32_t i, int32_t j) {
            double sum = 0;
            for (int32_t l = 0; l < a.columns; ++l)
                sum += a.row[i][l] * b.row[l][j];
            return sum;
        });
        for (const numerics::Kernels *kernels : numerics::availableKernels()) {
            Matrix product(m, n, [](int32_t, int32_t) { return 7; });
            ASSERT_EQ(numerics::multiply(*kernels, a, b, product), Outcome::done);
            EXPECT_TRUE(same(product, expected)) << kernels->name << ", " << m << " x " << n;
        }
    }
}

}
