#ifndef VX_EVAL_HPP
#define VX_EVAL_HPP

/**
 * @file
 * The value-typed evaluation of formula trees.
 */

#include "vx/eval.h"
#include "vx/value.hpp"

/**
 * Evaluate a tree as a number, vector, point or text.
 *
 * "+", "-", "*" and "/" combine values as vx/value.hpp tells; vector, point,
 * substr (characters counted from 0), num2str, time and date make values; all
 * else is a number as of VxGenExEvalRcrs. Variables are asked of
 * VgfVarGetValObj first, then of VgfVarGetVal; geometric calls of
 * VgfVarGetValObj by their text, "Dist(Pnt(edge))".
 *
 * @param number  in: what is expected; out: the number, or value 1.0 beside
 *                any other kind
 * @param value   left alone on failure
 * @return 0 or 1; beside the failures of numbers, 80 is filed for kinds that
 *         do not go together
 */
VX_API uint32_t VxGenExEval(const VsCnsGenOp *tree, VxDimNum *number,
                            HESKET::Talm::Tool::Evaluation::VxEvalValue *value);

#endif
