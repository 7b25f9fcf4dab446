#pragma once

// Walks a tree and evaluates it as a dimensioned number.

#include "expr/operations.h"

namespace vx::expr {

/**
 * @param result  receives the number; as it was on failure
 * @param failure receives why and where; nothing is reported
 * @return whether there is a result
 */
bool evaluate(const VsCnsGenOp *tree, const Settings &settings, VxDimNum &result,
              EvalFailure &failure) noexcept;

/** The number in an operand slot, sub-trees included. */
bool evaluateSlot(const VsCnsGenOp *node, int32_t slot, const Settings &settings, VxDimNum &result,
                  EvalFailure &failure) noexcept;

/** A leaf's number. */
bool loadLeaf(const VsCnsGenOp *node, int32_t slot, const Settings &settings, VxDimNum &result,
              EvalFailure &failure) noexcept;

/** One node applied to its operands, as many as it has; `operands[0]` receives the result. */
bool applyNode(const VsCnsGenOp *node, const Settings &settings, VxDimNum *operands,
               EvalFailure &failure) noexcept;

/** A sum of plain numbers, when it is the result, is one in the expected unit. */
void adoptExpected(const VsCnsGenOp *last, const Settings &settings, VxDimNum &result) noexcept;

}
