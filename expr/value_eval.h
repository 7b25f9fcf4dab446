#pragma once

// Walks a tree and evaluates it as a number, vector, point or text.

#include "expr/operations.h"
#include "vx/value.hpp"

namespace vx::expr {

/**
 * @param number   in: what the caller expects; out: the number, or value 1 for any other kind
 * @param value    receives the value
 * @param failure  receives why there is none; nothing is reported
 * @throw Error, or what a derived class tells more closely
 * @throw std::bad_alloc
 */
void evaluateValue(const VsCnsGenOp *tree, void *ctx1, void *ctx2, VxDimNum &number,
                   HESKET::Talm::Tool::Evaluation::VxEvalValue &value, EvalFailure &failure);

}
