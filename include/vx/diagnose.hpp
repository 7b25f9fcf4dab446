#ifndef VX_DIAGNOSE_HPP
#define VX_DIAGNOSE_HPP

/**
 * @file
 * The part of vx/diagnose.h that gives values.
 */

#include "vx/diagnose.h"
#include "vx/value.hpp"

/**
 * Evaluate a formula as a value, as VxGenExEval does.
 *
 * @param number  in: the expected dimension and display factor; out: the
 *                number, or value 1.0 beside any other kind
 * @param value   left alone on failure
 * @return 0 or 1
 */
VX_API uint32_t VxExprDiagEvalValue(const char *text, void *ctx1, void *ctx2, int32_t quiet, VxDimNum *number,
                                    HESKET::Talm::Tool::Evaluation::VxEvalValue *value, VxExprDiag *diag);

#endif
