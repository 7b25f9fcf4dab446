#include "expr/unit_result.h"

#include "expr/units.h"

namespace vx::expr {

bool expectedIn(const char *unitName, VxDimNum &expected) noexcept
{
    expected = plainNumber(0.0);
    if (!unitName || !*unitName)
        return true;
    int32_t unitClass;
    if (UnitLookup(unitName, &expected.factor, &unitClass) == 0)
        return false;
    VxGenExEvalUnit(unitClass, &expected);
    return true;
}

bool evaluateInUnit(const VsCnsGenOp *tree, const char *unitName, void *ctx1, void *ctx2, double &result,
                    EvalFailure &failure) noexcept
{
    VxDimNum expected;
    if (!expectedIn(unitName, expected)) {
        failure.number = error::unitMismatch;
        failure.node = tree;
        return false;
    }
    VxDimNum number;
    if (!evaluate(tree, settingsFor(expected, ctx1, ctx2), number, failure))
        return false;
    // A plain number counts as given in the unit already.
    if (isDimensionless(number)) {
        result = number.factor == expected.factor ? number.value : magnitude(number);
        return true;
    }
    // Without a unit, all is given in base units.
    bool named = unitName && *unitName;
    if (named && !sameDimension(number, expected)) {
        failure.number = error::unitMismatch;
        failure.node = tree;
        failure.hasDimensions = true;
        failure.left = number;
        failure.right = expected;
        return false;
    }
    result = magnitude(number) / expected.factor;
    return true;
}

}
