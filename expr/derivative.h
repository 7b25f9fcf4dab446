#pragma once

#include "expr/operations.h"

namespace vx::expr {

/**
 * The derivative of a tree by the variable of this number.
 *
 * @param failure  a failed evaluation of an operand; its number stays 0 when
 *                 an operation merely has no derivative there
 */
bool derive(const VsCnsGenOp *tree, int32_t variable, double &derivative, EvalFailure &failure) noexcept;

}
