// Systems of two and three equations, fits with two and three coefficients,
// and local coordinates in a quadrilateral element.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "numerics/storage.h"

namespace vx::numerics {

namespace {

/** Eliminates with `pivot` as the pivot row, whose first element is not within the tolerance. */
uint32_t solve2D(const double pivot[2], double pivotRight, const double other[2], double otherRight,
                 double tolerance, double x[2])
{
    if (!(std::fabs(pivot[0]) > tolerance))
        return 1;
    const double m = other[0] / pivot[0];
    const double reduced = other[1] - pivot[1] * m;
    if (!(std::fabs(reduced) > tolerance))
        return 1;
    x[1] = (otherRight - pivotRight * m) / reduced;
    x[0] = (pivotRight - pivot[1] * x[1]) / pivot[0];
    return 0;
}

/**
 * A least-squares fit that takes in one equation after the other and keeps
 * only the triangle: equations in any number, without storage for them.
 */
template <size_t coefficients> class Fit {
public:
    void add(std::array<double, coefficients + 1> equation)
    {
        for (size_t k = 0; k < coefficients; ++k) {
            const double length = std::hypot(triangle_[k][k], equation[k]);
            if (length == 0)
                continue;
            const double c = triangle_[k][k] / length;
            const double s = equation[k] / length;
            for (size_t j = k; j <= coefficients; ++j) {
                const double above = triangle_[k][j];
                triangle_[k][j] = c * above + s * equation[j];
                equation[j] = c * equation[j] - s * above;
            }
        }
    }

    /** False when a column depends on those before it. */
    bool solve(std::array<double, coefficients> &out) const
    {
        for (size_t k = coefficients; k-- > 0;) {
            double length = 0;
            for (size_t i = 0; i <= k; ++i)
                length = std::hypot(length, triangle_[i][k]);
            if (!(std::fabs(triangle_[k][k]) > negligible * length))
                return false;
            double sum = triangle_[k][coefficients];
            for (size_t j = k + 1; j < coefficients; ++j)
                sum -= triangle_[k][j] * out[j];
            out[k] = sum / triangle_[k][k];
        }
        return true;
    }

private:
    double triangle_[coefficients][coefficients + 1] = {};
};

struct Point {
    double x, y;
};

/** A quadrilateral with its first corner at the origin, so that large coordinates cost no digits. */
class Quadrilateral {
public:
    explicit Quadrilateral(const double corner[4][2])
    {
        for (size_t i = 0; i < 4; ++i)
            corner_[i] = {corner[i][0] - corner[0][0], corner[i][1] - corner[0][1]};
    }

    /** One step towards the local coordinates of `target`; false where the map is degenerate. */
    bool step(Point target, Point &local, double &length) const
    {
        constexpr Point sign[4] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        double residual[2] = {target.x, target.y};
        double jacobian[4] = {};
        for (size_t i = 0; i < 4; ++i) {
            const double u = 1 + sign[i].x * local.x;
            const double v = 1 + sign[i].y * local.y;
            residual[0] -= u * v / 4 * corner_[i].x;
            residual[1] -= u * v / 4 * corner_[i].y;
            jacobian[0] += sign[i].x * v / 4 * corner_[i].x;
            jacobian[1] += sign[i].y * u / 4 * corner_[i].x;
            jacobian[2] += sign[i].x * v / 4 * corner_[i].y;
            jacobian[3] += sign[i].y * u / 4 * corner_[i].y;
        }
        double size = 0;
        for (double element : jacobian)
            size = std::max(size, std::fabs(element));
        double change[2];
        if (!(size > 0) || VxMatSolv2D(jacobian, residual, negligible * size, change))
            return false;
        local.x += change[0];
        local.y += change[1];
        length = std::max(std::fabs(change[0]), std::fabs(change[1]));
        return true;
    }

private:
    std::array<Point, 4> corner_;
};

}

}

using namespace vx::numerics;

uint32_t VxMatSolv2D(const double a[4], const double b[2], double tolerance, double x[2])
{
    if (!a || !b || !x)
        return 1;
    double found[2];
    const bool first = std::fabs(a[0]) > tolerance;
    if (first ? solve2D(a, b[0], a + 2, b[1], tolerance, found)
              : solve2D(a + 2, b[1], a, b[0], tolerance, found))
        return 1;
    std::copy_n(found, 2, x);
    return 0;
}

uint32_t VxMatSolv3D(const double a[9], const double b[3], double tolerance, double x[3])
{
    if (!a || !b || !x)
        return 1;
    std::array<std::array<double, 4>, 3> row;
    for (size_t i = 0; i < 3; ++i)
        row[i] = {a[3 * i], a[3 * i + 1], a[3 * i + 2], b[i]};
    for (size_t k = 0; k < 3; ++k) {
        const auto larger = [k](const auto &p, const auto &q) { return std::fabs(p[k]) < std::fabs(q[k]); };
        std::swap(row[k], *std::max_element(row.begin() + static_cast<ptrdiff_t>(k), row.end(), larger));
        if (!(std::fabs(row[k][k]) > tolerance))
            return 1;
        for (size_t i = k + 1; i < 3; ++i) {
            const double m = row[i][k] / row[k][k];
            for (size_t j = k + 1; j < 4; ++j)
                row[i][j] -= m * row[k][j];
        }
    }
    x[2] = row[2][3] / row[2][2];
    x[1] = (row[1][3] - row[1][2] * x[2]) / row[1][1];
    x[0] = (row[0][3] - row[0][1] * x[1] - row[0][2] * x[2]) / row[0][0];
    return 0;
}

uint32_t VxLinLS2D(int32_t n, const double *x, const double *y, double *slope, double *intercept)
{
    if (n < 2 || !x || !y || !slope || !intercept)
        return 1;
    Fit<2> fit;
    for (int32_t i = 0; i < n; ++i)
        fit.add({1, x[i], y[i]});
    std::array<double, 2> found;
    if (!fit.solve(found))
        return 1;
    *intercept = found[0];
    *slope = found[1];
    return 0;
}

uint32_t VxTrigLS(int32_t n, const double *angle, const double *value, double coef[3])
{
    if (n < 3 || !angle || !value || !coef)
        return 1;
    Fit<3> fit;
    for (int32_t i = 0; i < n; ++i)
        fit.add({1, std::cos(angle[i]), std::sin(angle[i]), value[i]});
    std::array<double, 3> found;
    if (!fit.solve(found))
        return 1;
    std::copy_n(found.begin(), 3, coef);
    return 0;
}

uint32_t SolvQfemLcnts(const double corner[4][2], const double point[2], double local[2])
{
    if (!corner || !point || !local)
        return 1;
    constexpr int32_t mostSteps = 50;
    const Quadrilateral quadrilateral(corner);
    const Point target{point[0] - corner[0][0], point[1] - corner[0][1]};
    Point found{0, 0};
    for (int32_t i = 0; i < mostSteps; ++i) {
        double length = 0;
        if (!quadrilateral.step(target, found, length))
            return 1;
        if (length > negligible * std::max({1.0, std::fabs(found.x), std::fabs(found.y)}))
            continue;
        local[0] = found.x;
        local[1] = found.y;
        return 0;
    }
    return 1;
}
