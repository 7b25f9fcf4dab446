// Rotations, and transforms of three rows and four columns.

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "numerics/storage.h"

namespace vx::numerics {

namespace {

struct Vector {
    double x, y, z;
};

Vector vectorOf(const double v[3]) noexcept
{
    return {v[0], v[1], v[2]};
}

Vector cross(Vector a, Vector b) noexcept
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/** Scale to length 1; false for a vector without direction. */
bool normalise(Vector &v) noexcept
{
    const double length = std::hypot(v.x, v.y, v.z);
    if (!(length > negligible) || !std::isfinite(length))
        return false;
    v = {v.x / length, v.y / length, v.z / length};
    return true;
}

void setKind(VxMat3x4 &m) noexcept
{
    m.kind = 1;
    for (int32_t i = 0; i < 3; ++i)
        for (int32_t j = 0; j < 4; ++j)
            if (m.m[i][j] != (i == j ? 1 : 0))
                m.kind = 0;
}

/** Whether rows are of length 1 and at right angles, and no mirror is in it. */
bool isRotation(const double r[3][3]) noexcept
{
    // Rotations that were read from files have lost digits.
    constexpr double loose = 1e-6;
    for (int32_t i = 0; i < 3; ++i) {
        for (int32_t j = i; j < 3; ++j) {
            const double dot = r[i][0] * r[j][0] + r[i][1] * r[j][1] + r[i][2] * r[j][2];
            if (!(std::fabs(dot - (i == j ? 1 : 0)) <= loose))
                return false;
        }
    }
    const Vector normal = cross(vectorOf(r[0]), vectorOf(r[1]));
    return normal.x * r[2][0] + normal.y * r[2][1] + normal.z * r[2][2] > 0;
}

struct Quaternion {
    double w;
    double v[3];
};

/** Starts from the largest of the four components, so that no digits cancel. */
Quaternion quaternionOf(const double r[3][3]) noexcept
{
    const double trace = r[0][0] + r[1][1] + r[2][2];
    const size_t i = r[1][1] > r[0][0] ? (r[2][2] > r[1][1] ? 2 : 1) : (r[2][2] > r[0][0] ? 2 : 0);
    const size_t j = (i + 1) % 3;
    const size_t k = (i + 2) % 3;
    Quaternion q{};
    if (trace >= r[i][i]) {
        q.w = 1 + trace;
        q.v[0] = r[2][1] - r[1][2];
        q.v[1] = r[0][2] - r[2][0];
        q.v[2] = r[1][0] - r[0][1];
        return q;
    }
    q.w = r[k][j] - r[j][k];
    q.v[i] = 1 + r[i][i] - r[j][j] - r[k][k];
    q.v[j] = r[j][i] + r[i][j];
    q.v[k] = r[k][i] + r[i][k];
    if (q.w < 0)
        q = {-q.w, {-q.v[0], -q.v[1], -q.v[2]}};
    return q;
}

/** Half a turn goes either way: the axis whose first component that is not zero is positive. */
void orientHalfTurn(Quaternion &q) noexcept
{
    const double *first = std::find_if(q.v, q.v + 3, [](double v) { return v != 0; });
    if (q.w == 0 && *first < 0)
        for (double &v : q.v)
            v = -v;
}

}

}

using namespace vx::numerics;

uint32_t VxMatAngAxis(const double rot[3][3], double *angle, double axis[3])
{
    if (!rot || !angle || !axis || !isRotation(rot))
        return 1;
    Quaternion q = quaternionOf(rot);
    const double length = std::hypot(q.v[0], q.v[1], q.v[2]);
    *angle = 2 * std::atan2(length, q.w);
    if (length == 0) {
        axis[0] = axis[1] = 0;
        axis[2] = 1;
        return 0;
    }
    orientHalfTurn(q);
    for (size_t i = 0; i < 3; ++i)
        axis[i] = q.v[i] / length;
    return 0;
}

uint32_t VxMatGetIncr(const VxMat3x4 *from, const VxMat3x4 *to, VxMat3x4 *increment)
{
    if (!from || !to || !increment)
        return 1;
    // increment * from = to; transposed, each row of the increment solves a system.
    double transposed[9];
    for (size_t i = 0; i < 3; ++i)
        for (size_t j = 0; j < 3; ++j)
            transposed[3 * i + j] = from->m[j][i];
    VxMat3x4 out{};
    for (size_t i = 0; i < 3; ++i) {
        if (VxMatSolv3D(transposed, to->m[i], negligible, out.m[i]))
            return 1;
        out.m[i][3] = to->m[i][3];
        for (size_t j = 0; j < 3; ++j)
            out.m[i][3] -= out.m[i][j] * from->m[j][3];
    }
    setKind(out);
    *increment = out;
    return 0;
}

uint32_t VxMatMkRot(const double axis[3], double angle, VxMat3x4 *out)
{
    double rot[3][3];
    if (!out || VxMat3MkRot(axis, angle, rot))
        return 1;
    for (size_t i = 0; i < 3; ++i) {
        std::copy_n(rot[i], 3, out->m[i]);
        out->m[i][3] = 0;
    }
    setKind(*out);
    return 0;
}

uint32_t VxMatMkXform(const double origin[3], const double xAxis[3], const double yAxis[3], VxMat3x4 *out)
{
    if (!origin || !xAxis || !yAxis || !out)
        return 1;
    Vector x = vectorOf(xAxis);
    Vector y = vectorOf(yAxis);
    if (!normalise(x) || !normalise(y))
        return 1;
    Vector z = cross(x, y);
    if (!normalise(z))
        return 1;
    y = cross(z, x);
    *out = {0, {{x.x, y.x, z.x, origin[0]}, {x.y, y.y, z.y, origin[1]}, {x.z, y.z, z.z, origin[2]}}};
    setKind(*out);
    return 0;
}

uint32_t VxMat3MkRot(const double axis[3], double angle, double rot[3][3])
{
    if (!axis || !rot || !std::isfinite(angle))
        return 1;
    Vector a = vectorOf(axis);
    if (!normalise(a))
        return 1;
    const double s = std::sin(angle);
    // 1 - cos, without the cancellation that small angles bring.
    const double half = std::sin(angle / 2);
    const double t = 2 * half * half;
    const double xx = a.x * a.x;
    const double yy = a.y * a.y;
    const double zz = a.z * a.z;
    const double made[3][3] = {{1 - t * (yy + zz), t * a.x * a.y - s * a.z, t * a.x * a.z + s * a.y},
                               {t * a.x * a.y + s * a.z, 1 - t * (xx + zz), t * a.y * a.z - s * a.x},
                               {t * a.x * a.z - s * a.y, t * a.y * a.z + s * a.x, 1 - t * (xx + yy)}};
    for (size_t i = 0; i < 3; ++i)
        std::copy_n(made[i], 3, rot[i]);
    return 0;
}
