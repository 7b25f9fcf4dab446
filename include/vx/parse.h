#ifndef VX_PARSE_H
#define VX_PARSE_H

/**
 * @file
 * Formula texts to trees.
 */

#include "vx/types.h"

VX_C_BEGIN

/** One operand slot of a node. */
typedef struct VsCnsGenSlot {
    int32_t kind;
    union {
        double num;
        void *ptr;
    } value;
    int32_t unit;
    int32_t flag;
} VsCnsGenSlot;

/** One node of a formula tree. */
typedef struct VsCnsGenOp {
    int32_t op;
    int32_t argc;
    VsCnsGenSlot slot[3];
} VsCnsGenOp;

/** Supplies a unit: 0 when `unit` is known; `unitClass` may be null. */
typedef uint32_t (*VxUnitConvFn)(const char *unit, double *factor, int32_t *unitClass);

VX_API uint32_t VxParseGeEx(const char *text, int32_t *constant, VsCnsGenOp **tree);
VX_API uint32_t VxParseGeExExtended(const char *text, VsCnsGenOp **tree);
VX_API uint32_t VxParseVarReplace(const char *name, const char *replacement, const char *text, char *out);
VX_API int32_t VxUnitTableGet(int32_t index, const char **name, double *factor, int32_t *unitClass);
VX_API void VxCbGetUnitConv(VxUnitConvFn fn);

VX_C_END

#endif
