#ifndef VX_EVAL_H
#define VX_EVAL_H

/**
 * @file
 * Evaluating, printing and freeing formula trees.
 */

#include "vx/types.h"
#include "vx/parse.h"

VX_C_BEGIN

/** A dimensioned number. */
typedef struct VxDimNum {
    double value;
    double len_exp, ang_exp, mass_exp;
    double factor;
} VxDimNum;

VX_API uint32_t VxGenExEvalRcrs(const VsCnsGenOp *tree, void *ctx1, void *ctx2, VxDimNum *result);
VX_API uint32_t VxGenExEvalUnit(int32_t unitClass, VxDimNum *record);
VX_API uint32_t VxGenExFree(VsCnsGenOp **tree);
VX_API uint32_t VxGenExPrint(const VsCnsGenOp *tree);
VX_API uint32_t VxCharExprEval(const char *text, const char *unitName, int32_t *constant, double *result);
VX_API uint32_t VxGenDrvEvlRcrs(const VsCnsGenOp *tree, int32_t variable, double *derivative);

VX_C_END

#endif
