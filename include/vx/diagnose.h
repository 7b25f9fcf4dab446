#ifndef VX_DIAGNOSE_H
#define VX_DIAGNOSE_H

/**
 * @file
 * What is wrong with a formula, and where: for consoles and editors that show
 * the place.
 *
 * Each function parses a formula as VxParseGeEx does and, but for
 * VxExprDiagParse, evaluates it as its namesake does; beside the result it
 * fills a record that tells the failure. The record is cleared first; its
 * number is 0 when all went well.
 *
 * Quiet        With `quiet` not 0 nothing is put into the event log or filed
 *              in the error log; else exactly what VxParseGeEx, VxCharExprEval
 *              and VxGenExEvalRcrs report. What the host's call-backs report,
 *              and the allocator of a refused request, is theirs.
 * Threads      Any; the call-backs run in the caller's.
 *
 * Numbers of failures:
 *
 *   1            no memory
 *   46           malformed number; the token is the number
 *   47           an operator without an operand after it; the operator
 *   48           missing closing parenthesis: the open one, the function whose
 *                call it is, or the token that stands in its place
 *   49           an operand is expected: what stands there instead; an empty
 *                formula or argument too, which the flat functions refuse
 *                without a message
 *   51           more than 1,000 levels are open
 *   52           text after the end of the expression
 *   50           the operation cannot be evaluated with these operands
 *   80           the kinds `left` and `right` ("Vector", "String") do not go together
 *   81           `name` is not defined
 *   83           the dimensions `left` and `right` do not agree
 *   186 to 191   the operation is not defined for this argument
 *   219          the dimension `left` is not that of the expected unit, `right`;
 *                or, both being empty, `name` is no unit
 */

#include "vx/types.h"
#include "vx/eval.h"

VX_C_BEGIN

/** What is wrong with a formula. Texts that do not apply are empty; long ones are cut. */
typedef struct VxExprDiag {
    int32_t number;
    /** Bytes of the formula: the token, or in an evaluation the operator, function or operand at fault. */
    int32_t offset, length;
    /** The text there. */
    char token[256];
    /** Of an evaluation: the operation as formulas write it ("+", "then", "asin"), "unit" for a suffix. */
    char operation[32];
    /** Dimensions ("length", "length^2*mass", "dimensionless"), or for 80 kinds. */
    char left[96], right[96];
    /** Where in the formula the left and the right operand stand; length 0 where not known. */
    int32_t leftOffset, leftLength, rightOffset, rightLength;
    /** The variable or unit that nobody knows. */
    char name[1024];
} VxExprDiag;

/**
 * Parse a formula.
 *
 * @param extended  not 0 to recognise the geometric functions
 * @return 0 when the formula is well formed, else 1
 */
VX_API uint32_t VxExprDiagParse(const char *text, int32_t extended, int32_t quiet, VxExprDiag *diag);

/**
 * Evaluate a formula in a unit, as VxCharExprEval does.
 *
 * @param unitName    null or "" for base units
 * @param ctx1, ctx2  passed on to VgfVarGetVal
 * @param result      left alone on failure
 * @return 0 or 1
 */
VX_API uint32_t VxExprDiagEval(const char *text, const char *unitName, void *ctx1, void *ctx2, int32_t quiet,
                               double *result, VxExprDiag *diag);

/**
 * Evaluate a formula as a dimensioned number, as VxGenExEvalRcrs does.
 *
 * @param record  in: the expected dimension and display factor; out: the
 *                number, unless the evaluation fails
 * @return 0 or 1
 */
VX_API uint32_t VxExprDiagEvalRcrs(const char *text, void *ctx1, void *ctx2, int32_t quiet, VxDimNum *record,
                                   VxExprDiag *diag);

/**
 * The dimension of a number as text: "length", "length^-3*mass",
 * "dimensionless".
 *
 * @return 0; 1 when the text was cut
 */
VX_API uint32_t VxExprDimText(const VxDimNum *record, char *text, int32_t size);

VX_C_END

#endif
