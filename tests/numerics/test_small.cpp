#include <numbers>

#include "tests/numerics/matrices.h"

namespace {

using std::numbers::pi;
using vx::test::largestDifference;
using Triple = std::array<double, 3>;

class Small : public testing::Test {
protected:
    double uniform(double from = -1, double to = 1)
    {
        return std::uniform_real_distribution<double>(from, to)(random);
    }
    Triple triple() { return {uniform(), uniform(), uniform()}; }

    std::mt19937 random{4711};
};

TEST_F(Small, TwoEquationsTakeTheFirstRowUnlessItIsNegligible)
{
    double x[2];
    const double b[2] = {3, 4};
    // With the first row as pivot row nothing would be left of the second.
    const double tiny[4] = {1e-20, 1, 1, 1};
    EXPECT_EQ(VxMatSolv2D(tiny, b, 1e-12, x), 0u);
    EXPECT_EQ(std::pair(x[0], x[1]), std::pair(1.0, 3.0));
    EXPECT_EQ(VxMatSolv2D(tiny, b, 0, x), 0u);
    EXPECT_EQ(x[0], 0);
    const double close[4] = {1, 1, 1, 1.5};
    EXPECT_EQ(VxMatSolv2D(close, b, 0.49, x), 0u);
    EXPECT_EQ(VxMatSolv2D(close, b, 0.5, x), 1u);
}

TEST_F(Small, ThreeEquationsAreSolvedWhateverTheirOrder)
{
    std::array<std::array<double, 4>, 3> rows = {{{0, -4, 1, 11}, {0, 1e-9, 2, 6 - 2e-9}, {3, 1, 1, 4}}};
    do {
        double a[9], b[3], x[3];
        for (size_t i = 0; i < 3; ++i) {
            std::copy_n(rows[i].begin(), 3, a + 3 * i);
            b[i] = rows[i][3];
        }
        ASSERT_EQ(VxMatSolv3D(a, b, 1e-12, x), 0u);
        EXPECT_LT(largestDifference(x, Triple{1, -2, 3}), 1e-14);
        EXPECT_EQ(VxMatSolv3D(a, b, 2.0005, x), 1u);
    } while (std::ranges::next_permutation(rows).found);
}

TEST_F(Small, LineFitsDespiteLargeOffsets)
{
    double x[50], y[50], slope, intercept;
    for (int32_t i = 0; i < 50; ++i) {
        x[i] = 1e6 + 1e-3 * i;
        y[i] = 5 - 2 * (x[i] - 1e6) + (i % 2 ? 0.25 : -0.25);
    }
    ASSERT_EQ(VxLinLS2D(50, x, y, &slope, &intercept), 0u);
    // The residuals of a least-squares line are at right angles to 1 and to x.
    double sum = 0, moment = 0;
    for (int32_t i = 0; i < 50; ++i) {
        double residual = y[i] - (intercept + slope * x[i]);
        sum += residual;
        moment += residual * 1e3 * (x[i] - 1e6);
    }
    EXPECT_NEAR(sum, 0, 1e-4);
    EXPECT_NEAR(moment, 0, 1e-3);
}

TEST_F(Small, TrigonometricFitFindsItsCoefficients)
{
    double angle[40], value[40], coef[3];
    for (int32_t i = 0; i < 40; ++i) {
        angle[i] = uniform(0.3, 1.1);
        value[i] = 2 - 3 * std::cos(angle[i]) + 0.5 * std::sin(angle[i]);
    }
    ASSERT_EQ(VxTrigLS(40, angle, value, coef), 0u);
    EXPECT_LT(largestDifference(coef, Triple{2, -3, 0.5}), 1e-12);
    for (int32_t i = 0; i < 40; ++i)
        angle[i] = i % 2 ? 2 : 1 + 2 * pi * (i % 3);
    EXPECT_EQ(VxTrigLS(40, angle, value, coef), 1u) << "two places do not tell three coefficients apart";
}

TEST_F(Small, LocalCoordinatesLeadBackToTheirPoint)
{
    for (int32_t trial = 0; trial < 500; ++trial) {
        const double far = trial % 2 ? 1e6 : 0;
        double corner[4][2] = {{0, 0}, {4, 0}, {4, 3}, {0, 3}};
        for (auto &c : corner) {
            c[0] += far + uniform();
            c[1] += far + uniform();
        }
        const double place[2] = {uniform(), uniform()};
        double point[2] = {0, 0}, local[2];
        for (int32_t i = 0; i < 4; ++i) {
            const double u = i == 1 || i == 2 ? place[0] : -place[0], v = i < 2 ? -place[1] : place[1];
            point[0] += (1 + u) * (1 + v) / 4 * corner[i][0];
            point[1] += (1 + u) * (1 + v) / 4 * corner[i][1];
        }
        ASSERT_EQ(SolvQfemLcnts(corner, point, local), 0u) << trial;
        EXPECT_LT(largestDifference(local, place), far > 0 ? 1e-8 : 1e-12);
    }
}

// ---------------------------------------------------------------- rotations

TEST_F(Small, RotationsComeBackAsAngleAndAxis)
{
    for (double angle : {1e-9, 1e-3, 1.0, pi / 2, 3.0, pi - 1e-9, pi})
        for (int32_t trial = 0; trial < 50; ++trial) {
            Triple axis = trial == 0 ? Triple{2, 0, 0} : trial == 1 ? Triple{0, 2, 0} : triple();
            Triple found;
            double foundAngle, rot[3][3];
            ASSERT_EQ(VxMat3MkRot(axis.data(), angle, rot), 0u);
            ASSERT_EQ(VxMatAngAxis(rot, &foundAngle, found.data()), 0u);
            EXPECT_NEAR(foundAngle, angle, 1e-14);
            double length = std::hypot(axis[0], axis[1], axis[2]);
            if (angle == pi && std::inner_product(axis.begin(), axis.end(), found.begin(), 0.0) < 0)
                length = -length; // half a turn goes either way
            for (double &component : axis)
                component /= length;
            EXPECT_LT(largestDifference(found, axis), angle < 1e-6 ? 1e-6 : 1e-12);
        }
}

TEST_F(Small, OnlyRotationsHaveAngleAndAxis)
{
    double angle, axis[3];
    const double z[3] = {0, 0, 5};
    for (double last : {1.0, -1.0, 1.001}) {
        const double rot[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, last}};
        EXPECT_EQ(VxMatAngAxis(rot, &angle, axis), last == 1 ? 0u : 1u);
    }
    VxMat3x4 quarter{};
    ASSERT_EQ(VxMatMkRot(z, pi / 2, &quarter), 0u);
    EXPECT_NEAR(quarter.m[1][0], 1, 1e-15) << "x goes to y";
    EXPECT_EQ(quarter.kind, 0);
    ASSERT_EQ(VxMatMkRot(z, 0, &quarter), 0u);
    EXPECT_EQ(quarter.kind, 1);
}

TEST_F(Small, IncrementLeadsFromOneTransformToTheOther)
{
    for (int32_t trial = 0; trial < 50; ++trial) {
        const Triple x = triple(), y = triple(), origin = {uniform() * 100, uniform() * 100, uniform()};
        VxMat3x4 from{}, to{}, increment{};
        ASSERT_EQ(VxMatMkXform(origin.data(), x.data(), y.data(), &from), 0u);
        ASSERT_EQ(VxMatMkXform(x.data(), y.data(), origin.data(), &to), 0u);
        ASSERT_EQ(VxMatGetIncr(&from, &to, &increment), 0u);
        double angle = 0, axis[3], rot[3][3];
        for (int32_t i = 0; i < 3; ++i) {
            std::copy_n(from.m[i], 3, rot[i]);
            for (int32_t j = 0; j < 4; ++j) {
                double composed = j == 3 ? increment.m[i][3] : 0;
                for (int32_t k = 0; k < 3; ++k)
                    composed += increment.m[i][k] * from.m[k][j];
                EXPECT_NEAR(composed, to.m[i][j], 1e-12);
            }
        }
        EXPECT_EQ(VxMatAngAxis(rot, &angle, axis), 0u) << "the axes are no right-handed frame";
    }
}

}
