#pragma once

// Dimensions of quantities: exponents of length, angle and mass.

#include <cmath>

#include "vx/eval.h"

namespace vx::expr {

/** Below this, a number, an exponent and a difference count as zero. */
constexpr double tolerance = 1e-12;

constexpr double degreesPerRadian = 57.29577951308232;
constexpr double radiansPerDegree = 0.017453292519943295;
constexpr double pi = 3.14159265358979323846;

inline bool isZero(double value) noexcept
{
    return std::fabs(value) <= tolerance;
}

inline bool isDimensionless(const VxDimNum &number) noexcept
{
    return isZero(number.len_exp) && isZero(number.ang_exp) && isZero(number.mass_exp);
}

inline bool sameDimension(const VxDimNum &a, const VxDimNum &b) noexcept
{
    return isZero(a.len_exp - b.len_exp) && isZero(a.ang_exp - b.ang_exp) && isZero(a.mass_exp - b.mass_exp);
}

inline bool isAngle(const VxDimNum &number) noexcept
{
    return isZero(number.len_exp) && isZero(number.ang_exp - 1.0) && isZero(number.mass_exp);
}

inline void copyDimension(const VxDimNum &from, VxDimNum &to) noexcept
{
    to.len_exp = from.len_exp;
    to.ang_exp = from.ang_exp;
    to.mass_exp = from.mass_exp;
}

inline VxDimNum plainNumber(double value) noexcept
{
    return {value, 0.0, 0.0, 0.0, 1.0};
}

/** The magnitude in base units. */
inline double magnitude(const VxDimNum &number) noexcept
{
    return number.factor * number.value;
}

}
