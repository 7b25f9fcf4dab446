#ifndef VX_EVAL_H
#define VX_EVAL_H

/**
 * @file
 * Evaluating, deriving, printing and freeing formula trees.
 *
 * Dimensions   Every number carries exponents of length, angle and mass. "*"
 *              and "/" add and subtract them, "^" and sqrt multiply; "+",
 *              "-", "<", ">", max and min want them equal. Exponents and
 *              numbers below 1e-12 count as zero.
 * Expected     The caller says in the record which dimension it wants and by
 *              which factor it is shown (a length in centimetres: exponents
 *              1, 0, 0 and factor 10; anything: all 0 and factor 1). A plain
 *              number beside a quantity is read in that unit, provided that
 *              the quantity has the expected dimension or none is expected. A
 *              sum or difference of plain numbers that is the result comes
 *              with the expected dimension and factor.
 * Angles       are degrees. Arguments of trigonometric functions are degrees
 *              unless VgCdValIsRad is set; asin, acos, atan and atan2 give
 *              radians with the factor 57.29577951308232.
 * Rounding     floor, ceiling, round, mod and dec work on the number as shown
 *              in the expected unit, and give a plain one.
 * Variables    VgfVarGetVal(name, ctx1, ctx2, record) supplies them, 0 when
 *              it does; the record comes in as the expected one.
 * Failure      The result is left alone, 1 is returned, and the reason filed:
 *              50 operation that cannot be evaluated, 81 unknown variable, 83
 *              dimensions that do not agree; as text with the operation's
 *              name 186 tan, sec, csc at a right angle, 187 asin, acos beyond
 *              1, 188 logarithm of nothing, 189 root of a negative number,
 *              190 cot at a straight angle, 191 division by zero, 219 a
 *              dimension other than expected.
 * Depth        Neither long chains nor deep nests use the thread's stack.
 * Threads      Any, all at once, as far as the host's call-backs allow.
 */

#include "vx/types.h"
#include "vx/parse.h"

VX_C_BEGIN

/** A dimensioned number: factor times value is its magnitude in millimetres, degrees and kilograms. */
typedef struct VxDimNum {
    double value;
    double len_exp, ang_exp, mass_exp;
    double factor;
} VxDimNum;

/**
 * Evaluate a tree as a number.
 *
 * @param ctx1, ctx2  passed on to VgfVarGetVal
 * @param result      in: what is expected; out: the number
 * @return 0 or 1
 */
VX_API uint32_t VxGenExEvalRcrs(const VsCnsGenOp *tree, void *ctx1, void *ctx2, VxDimNum *result);

/**
 * Set the exponents of a record from a class of units: 2 length, 3 angle, 4
 * mass, 5 density, 6 area, 7 volume, 8 moment of inertia, any other none. The
 * value and the factor stay.
 *
 * @return 0
 */
VX_API uint32_t VxGenExEvalUnit(int32_t unitClass, VxDimNum *record);

/** Free a tree with all it owns and clear the pointer; needs no memory. @return 0, or 1 for a null address */
VX_API uint32_t VxGenExFree(VsCnsGenOp **tree);

/**
 * Print a tree to standard output: each operation with its operands, each
 * sub-tree on a line that begins with its depth in brackets.
 *
 * @return 0, or 1 without memory
 */
VX_API uint32_t VxGenExPrint(const VsCnsGenOp *tree);

/**
 * Parse a formula, evaluate it and give the result in a unit.
 *
 * The result is the magnitude divided by the unit's factor; a plain number
 * counts as given in the unit already: 1.in + 1.cm in "cm" is 3.54, 1.cm + 1
 * is 2, 3 is 3.
 *
 * @param unitName  null or "" for base units, whatever the dimension
 * @param constant  as of VxParseGeEx
 * @return 0 or 1; 219 is filed for another dimension and for an unknown unit
 */
VX_API uint32_t VxCharExprEval(const char *text, const char *unitName, int32_t *constant, double *result);

/**
 * The derivative of a tree by the variable whose slots carry `variable` as
 * their flag. Numbers are 0, other variables 0; angles are degrees and no
 * factor pi/180 appears. floor, round, deg and rad give their value.
 *
 * @return 0; 1 where there is no derivative (unreported) or an operand cannot
 *         be evaluated (reported)
 */
VX_API uint32_t VxGenDrvEvlRcrs(const VsCnsGenOp *tree, int32_t variable, double *derivative);

VX_C_END

#endif
