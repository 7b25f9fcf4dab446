#ifndef VX_EVAL_HPP
#define VX_EVAL_HPP

/**
 * @file
 * The value-typed evaluation of formula trees.
 */

#include "vx/eval.h"
#include "vx/value.hpp"

VX_API uint32_t VxGenExEval(const VsCnsGenOp *tree, VxDimNum *number,
                            HESKET::Talm::Tool::Evaluation::VxEvalValue *value);

#endif
