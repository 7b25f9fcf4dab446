#pragma once

// Results given in a unit that is named.

#include "expr/numeric.h"

namespace vx::expr {

/** The record that asks for a result in the unit; false for no unit's name. Null and "" ask for none. */
bool expectedIn(const char *unitName, VxDimNum &expected) noexcept;

/** Evaluate a tree and give the result in a unit. */
bool evaluateInUnit(const VsCnsGenOp *tree, const char *unitName, void *ctx1, void *ctx2, double &result,
                    EvalFailure &failure) noexcept;

}
