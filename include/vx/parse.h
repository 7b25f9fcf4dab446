#ifndef VX_PARSE_H
#define VX_PARSE_H

/**
 * @file
 * Formula texts to trees.
 *
 * A formula is what a user types for a parameter:
 *
 *   2*(width + 3.cm) - sin(30)*radius
 *   [hole count] > 4 then 6.mm else 8.mm
 *   "M" + num2str(diameter)
 *
 * Operators, from the lowest precedence to the highest; all associate to the
 * left but "^", and at most one comparison stands at a level:
 *
 *   then else      conditional; without "else" the third value is 0
 *   & |            and, or: one level
 *   < > =          comparisons, 1 or 0
 *   + -
 *   * /
 *   .unit          a unit after any operand: 3.cm, (a+b).deg
 *   + - !          one sign before an operand; -2^2 is -4
 *   ^              to the right; its exponent takes no sign without parentheses
 *
 * Names        begin with a letter, "#", "$" or any character outside ASCII,
 *              go on to the next operator, and may hold blanks; in brackets,
 *              [my-name 2], they may hold anything. A point divides a name
 *              from a unit, but .x .y .z (and .e of numbers) never divide.
 *              "then" and "else" divide even inside a word. At most 1,023
 *              bytes count.
 * Functions    sin cos tan asin acos atan atan2 sec csc cot sinh cosh tanh
 *              abs log ln sqrt exp floor ceiling round mod mod2 max min dec
 *              rad deg num2str time date substr vector point, in any case,
 *              followed by "(" without a blank. The arguments of one call are
 *              at most 511 bytes.
 * Units        VxUnitTableGet lists them; the host may add its own. A name
 *              that is no unit is skipped after a point.
 * Depth        at most 1,000 groups, calls, powers and parts of conditionals
 *              may be open at once. Chains (1+1+1+...) have no limit.
 * Failure      A malformed formula gives 1 and no tree; the reason goes to the
 *              event log as the text of error 46 to 52, unless errors are
 *              switched off (VxErrDisable). An empty formula fails without a
 *              word. vx/diagnose.h tells the place too.
 * Threads      Any, all at once. The host's call-backs run in the caller's.
 */

#include "vx/types.h"

VX_C_BEGIN

/** One operand of a node. */
typedef struct VsCnsGenSlot {
    /** 0 unused, 1 sub-tree, 2 variable, 6 number, 7 text, 8 unit. */
    int32_t kind;
    union {
        double num; ///< kind 6
        void *ptr;  ///< kind 1: VsCnsGenOp *; 2, 7, 8: text in a block of 1024 bytes that the tree owns
    } value;
    int32_t unit; ///< -1 in a new leaf
    int32_t flag; ///< 0 in a new leaf; of a variable, the host's number for it (VxGenDrvEvlRcrs)
} VsCnsGenSlot;

/**
 * One node of a formula tree; VxGenExFree frees it.
 *
 * `op`: 1 a lone operand, 2 "+", 3 "-", 4 "*" (a sign too: -1 times), 5 "/",
 * 22 "^", 24 conditional, 25 "<", 26 ">", 27 "=", 28 "!", 29 "&", 30 "|",
 * 42 unit suffix, and for calls 6-21, 23, 31-41, 43-69. An operand that is no
 * operation stands in its slot: "a+2" is one node.
 */
typedef struct VsCnsGenOp {
    int32_t op;
    int32_t argc; ///< slots in use
    VsCnsGenSlot slot[3];
} VsCnsGenOp;

/**
 * Supplies a unit of the host.
 *
 * @param unit       its name as the formula writes it
 * @param factor     receives what turns a value in the unit into base units
 * @param unitClass  receives the class (VxGenExEvalUnit); may be null
 * @return 0 when the unit is known
 */
typedef uint32_t (*VxUnitConvFn)(const char *unit, double *factor, int32_t *unitClass);

/**
 * Parse a formula.
 *
 * @param constant  receives 1 when the tree holds neither a variable nor a
 *                  unit, else 0; 0 on failure; may be null
 * @param tree      receives the tree, the caller's; null on failure
 * @return 0 or 1
 */
VX_API uint32_t VxParseGeEx(const char *text, int32_t *constant, VsCnsGenOp **tree);

/**
 * As VxParseGeEx, with the geometric functions that hosts evaluate: Dist
 * ScreenDist Sign Ang DirXAng DirYAng Pnt Dir DirX DirY DirZ, ProfPnt and
 * ProfDir.., OffPnt and OffDir.., CenPnt CenDir ArcPnt. DirZ, ProfDirZ and
 * OffDirZ make the nodes of Dir, ProfDir and OffDir.
 */
VX_API uint32_t VxParseGeExExtended(const char *text, VsCnsGenOp **tree);

/**
 * Copy a formula with a name replaced wherever it stands as a whole word:
 * between operators, white space, commas or the ends. Case counts.
 *
 * @param out  receives the copy; large enough for it, which is not checked.
 *             Empty when `name` or `text` is null or empty
 * @return 0 when something was replaced, else 1
 */
VX_API uint32_t VxParseVarReplace(const char *name, const char *replacement, const char *text, char *out);

/**
 * The toolkit's units, one by one; names match in any case.
 *
 * Base units are millimetre, kilogram and degree. "dm" (100.4) and "rad"
 * (57.29) are what formulas have always been computed with.
 *
 * @param index  from 0; every out-pointer may be null
 * @return 1; 0 past the last
 */
VX_API int32_t VxUnitTableGet(int32_t index, const char **name, double *factor, int32_t *unitClass);

/** Have the host asked for units before the table; null for the table alone. Sets VgfGetUnitConv. */
VX_API void VxCbGetUnitConv(VxUnitConvFn fn);

VX_C_END

#endif
