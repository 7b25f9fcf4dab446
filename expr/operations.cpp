#include "expr/operations.h"

#include <algorithm>
#include <cmath>

#include "expr/units.h"
#include "vx/tools.h"

namespace vx::expr {

namespace {

constexpr int32_t ok = 0;

int32_t give(VxDimNum &result, double value) noexcept
{
    result = plainNumber(value);
    return ok;
}

int32_t giveAngle(VxDimNum &result, double radians) noexcept
{
    result = {radians, 0.0, 1.0, 0.0, degreesPerRadian};
    return ok;
}

/** Whether a ratio is a whole number, also when rounding left it just below one. */
bool isWhole(double ratio) noexcept
{
    double fraction = std::fabs(ratio - std::trunc(ratio));
    return fraction <= tolerance || fraction >= 1.0 - tolerance;
}

double trigonometricArgument(const Settings &settings, const VxDimNum &x) noexcept
{
    double value = settings.radians ? x.value : x.value * radiansPerDegree;
    return x.factor * value;
}

int32_t applyTrigonometric(const Settings &settings, int32_t code, VxDimNum &result) noexcept
{
    double x = trigonometricArgument(settings, result);
    switch (code) {
    case op::sin: return give(result, std::sin(x));
    case op::cos: return give(result, std::cos(x));
    case op::cot: return isWhole(x / pi) ? error::straightAngle : give(result, 1.0 / std::tan(x));
    default: break;
    }
    // The cosecant is refused where the secant is: kept as formulas know it.
    if (isWhole((x - pi / 2) / pi))
        return error::rightAngle;
    switch (code) {
    case op::tan: return give(result, std::tan(x));
    case op::sec: return give(result, 1.0 / std::cos(x));
    default: return give(result, 1.0 / std::sin(x));
    }
}

int32_t squareRoot(VxDimNum &result) noexcept
{
    double x = magnitude(result);
    if (x < -tolerance)
        return error::rootArgument;
    result.value = x < tolerance ? 0.0 : std::sqrt(x);
    result.len_exp /= 2;
    result.ang_exp /= 2;
    result.mass_exp /= 2;
    result.factor = 1.0;
    return ok;
}

double fractionOf(double x) noexcept
{
    // Negative numbers give a negative fraction: so formulas rely on it.
    return x > 0 ? x - std::floor(x) : std::floor(x) - x;
}

/**
 * The number a user sees, in the unit that the result is shown in: what the
 * rounding operations work on. A plain number is read in that unit already.
 */
int32_t displayedValue(const Settings &settings, const VxDimNum &x, double &value) noexcept
{
    value = magnitude(x);
    if (isDimensionless(x))
        return ok;
    if (settings.expectsDimension && !sameDimension(x, settings.expected))
        return error::unitMismatch;
    if (!isZero(settings.expected.factor))
        value /= settings.expected.factor;
    return ok;
}

int32_t applyRounding(const Settings &settings, int32_t code, VxDimNum &result) noexcept
{
    double value;
    if (int32_t number = displayedValue(settings, result, value))
        return number;
    switch (code) {
    case op::floor: return give(result, std::floor(value));
    case op::ceiling: return give(result, std::ceil(value));
    case op::round: return give(result, roundHalfAway(value));
    default: return give(result, fractionOf(value));
    }
}

int32_t toDegrees(VxDimNum &result) noexcept
{
    return isAngle(result) ? ok : give(result, magnitude(result) * degreesPerRadian);
}

enum class Mixing { anywhere, towardsExpected };

/**
 * Bring two sides to one dimension: a plain side is read in the expected
 * display unit. `common` receives the dimension, with factor 1.
 */
int32_t bringTogether(const Settings &settings, Mixing mixing, const VxDimNum &left, const VxDimNum &right,
                      double &l, double &r, VxDimNum &common) noexcept
{
    l = magnitude(left);
    r = magnitude(right);
    common = plainNumber(0.0);
    bool leftPlain = isDimensionless(left), rightPlain = isDimensionless(right);
    if (leftPlain && rightPlain)
        return ok;
    copyDimension(leftPlain ? right : left, common);
    if (leftPlain == rightPlain)
        return sameDimension(left, right) ? ok : error::dimensions;
    if (mixing == Mixing::towardsExpected && settings.expectsDimension &&
        !sameDimension(common, settings.expected))
        return error::dimensions;
    double scale = isZero(settings.expected.factor) ? 1.0 : settings.expected.factor;
    (leftPlain ? l : r) *= scale;
    return ok;
}

int32_t applyAdditive(const Settings &settings, int32_t code, VxDimNum &left, const VxDimNum &right) noexcept
{
    double l, r;
    VxDimNum common;
    if (int32_t number = bringTogether(settings, Mixing::towardsExpected, left, right, l, r, common))
        return number;
    left = common;
    switch (code) {
    case op::add: left.value = l + r; break;
    case op::subtract: left.value = l - r; break;
    case op::max: left.value = l > r ? l : r; break;
    default: left.value = l < r ? l : r; break;
    }
    return ok;
}

int32_t applyOrder(const Settings &settings, int32_t code, VxDimNum &left, const VxDimNum &right) noexcept
{
    double l, r;
    VxDimNum common;
    if (int32_t number = bringTogether(settings, Mixing::anywhere, left, right, l, r, common))
        return number;
    return give(left, (code == op::less ? l < r : l > r) ? 1.0 : 0.0);
}

int32_t applyEqual(const Settings &settings, VxDimNum &left, const VxDimNum &right) noexcept
{
    double l, r;
    VxDimNum common;
    // Quantities of different dimensions are unequal, not wrong.
    bool comparable = bringTogether(settings, Mixing::anywhere, left, right, l, r, common) == ok;
    return give(left, comparable && std::fabs(l - r) <= tolerance ? 1.0 : 0.0);
}

int32_t multiply(VxDimNum &left, const VxDimNum &right) noexcept
{
    left = {magnitude(left) * magnitude(right), left.len_exp + right.len_exp, left.ang_exp + right.ang_exp,
            left.mass_exp + right.mass_exp, 1.0};
    return ok;
}

int32_t divide(int32_t code, VxDimNum &left, const VxDimNum &right) noexcept
{
    double l = magnitude(left), r = magnitude(right);
    if (isZero(r))
        return error::zeroDivision;
    left = {code == op::divide ? l / r : std::fmod(l, r), left.len_exp - right.len_exp,
            left.ang_exp - right.ang_exp, left.mass_exp - right.mass_exp, 1.0};
    return ok;
}

int32_t raiseQuantity(VxDimNum &left, const VxDimNum &right) noexcept
{
    double y = magnitude(right), value;
    if (int32_t number = raise(magnitude(left), y, value))
        return number;
    left = {value, left.len_exp * y, left.ang_exp * y, left.mass_exp * y, 1.0};
    return ok;
}

int32_t roundToDecimals(const Settings &settings, VxDimNum &left, const VxDimNum &right) noexcept
{
    double value;
    if (int32_t number = displayedValue(settings, left, value))
        return number;
    double p = std::pow(10.0, std::trunc(magnitude(right)));
    return give(left, std::floor(value * p + 0.5) / p);
}

}

int32_t raise(double x, double y, double &result) noexcept
{
    if (isZero(x)) {
        result = 0.0;
        return y < tolerance ? error::zeroDivision : ok;
    }
    if (isZero(y))
        result = 1.0;
    else if (y == 2.0)
        result = x * x; // what formulas raise to nearly always
    else if (x > 0)
        result = std::pow(x, y);
    else if (isWhole(y))
        result = std::pow(x, std::round(y));
    else
        // The real root of a negative base, as of (-8)^(1/3).
        result = -std::pow(-x, y);
    return ok;
}

double roundHalfAway(double value) noexcept
{
    return value > 0 ? std::floor(value + 0.5) : std::ceil(value - 0.5);
}

Settings settingsFor(const VxDimNum &expected, void *ctx1, void *ctx2) noexcept
{
    return {expected, !isDimensionless(expected), VgCdValIsRad != 0, ctx1, ctx2};
}

int32_t applyOne(const Settings &settings, int32_t code, VxDimNum &result) noexcept
{
    double x = magnitude(result);
    switch (code) {
    case op::sin:
    case op::cos:
    case op::tan:
    case op::sec:
    case op::csc:
    case op::cot: return applyTrigonometric(settings, code, result);
    case op::sinh: return give(result, std::sinh(result.value));
    case op::cosh: return give(result, std::cosh(result.value));
    case op::tanh: return give(result, std::tanh(result.value));
    case op::asin: return std::fabs(x) > 1.0 ? error::arcArgument : giveAngle(result, std::asin(x));
    case op::acos: return std::fabs(x) > 1.0 ? error::arcArgument : giveAngle(result, std::acos(x));
    case op::atan: return giveAngle(result, std::atan(x));
    case op::log: return x <= tolerance ? error::logarithmArgument : give(result, std::log10(x));
    case op::ln: return x <= tolerance ? error::logarithmArgument : give(result, std::log(x));
    case op::exp: return give(result, std::exp(x));
    case op::sqrt: return squareRoot(result);
    case op::negate: return give(result, isZero(x) ? 1.0 : 0.0);
    case op::abs:
        result.value = std::fabs(x);
        result.factor = 1.0;
        return ok;
    case op::floor:
    case op::mod:
    case op::ceiling:
    case op::round: return applyRounding(settings, code, result);
    case op::deg: return toDegrees(result);
    case op::rad: return give(result, settings.radians ? x : x * radiansPerDegree);
    case op::leaf: return ok;
    default: return error::notEvaluable;
    }
}

int32_t applyTwo(const Settings &settings, int32_t code, VxDimNum &l, const VxDimNum &r) noexcept
{
    switch (code) {
    case op::add:
    case op::subtract:
    case op::max:
    case op::min: return applyAdditive(settings, code, l, r);
    case op::multiply: return multiply(l, r);
    case op::divide:
    case op::mod2: return divide(code, l, r);
    case op::power: return raiseQuantity(l, r);
    case op::atan2: return giveAngle(l, std::atan2(magnitude(l), magnitude(r)));
    case op::less:
    case op::greater: return applyOrder(settings, code, l, r);
    case op::equal: return applyEqual(settings, l, r);
    case op::both: return give(l, !isZero(magnitude(l)) && !isZero(magnitude(r)) ? 1.0 : 0.0);
    case op::either: return give(l, !isZero(magnitude(l)) || !isZero(magnitude(r)) ? 1.0 : 0.0);
    case op::dec: return roundToDecimals(settings, l, r);
    default: return error::notEvaluable;
    }
}

int32_t applyUnit(const char *unit, VxDimNum &l, VxDimNum &unitDimension) noexcept
{
    double factor;
    int32_t unitClass;
    if (!unit || UnitLookup(unit, &factor, &unitClass) == 0)
        return error::notEvaluable;
    VxGenExEvalUnit(unitClass, &unitDimension);
    unitDimension.factor = factor;
    if (!isDimensionless(l) && !sameDimension(l, unitDimension))
        return error::dimensions;
    l.value = magnitude(l) * factor;
    l.factor = 1.0;
    copyDimension(unitDimension, l);
    return ok;
}

}
