#pragma once

// What each operation does to dimensioned numbers, one node at a time.

#include <cstdint>

#include "expr/dimension.h"
#include "expr/tree.h"

namespace vx::expr {

/** Why an evaluation failed; pointers are into the tree. */
struct EvalFailure {
    int32_t number = 0; ///< 0 while nothing failed; 1 without memory, which the allocator has reported
    const VsCnsGenOp *node = nullptr;
    /** The operand that is at fault, -1 for the operation as a whole. */
    int32_t operand = -1;
    const char *name = nullptr; ///< of a variable that nobody supplied
    bool hasDimensions = false;
    VxDimNum left, right;                ///< when hasDimensions
    int32_t leftKind = 0, rightKind = 0; ///< of values that do not go together
};

namespace error {
enum EvalNumber : int32_t {
    noMemory = 1,
    notEvaluable = 50,
    unmatchedOperands = 80,
    undefinedVariable = 81,
    dimensions = 83,
    rightAngle = 186,
    arcArgument = 187,
    logarithmArgument = 188,
    rootArgument = 189,
    straightAngle = 190,
    zeroDivision = 191,
    unitMismatch = 219
};
}

struct Settings {
    VxDimNum expected; ///< dimension and display factor that the caller wants
    bool expectsDimension;
    bool radians; ///< arguments of trigonometric functions come in radians
    void *ctx1;   ///< passed on to variable look-ups
    void *ctx2;
};

/** The settings in force, for a result that is to be like `expected`. */
Settings settingsFor(const VxDimNum &expected, void *ctx1, void *ctx2) noexcept;

/** Each gives the error number, 0 for success; `x` and `l` receive the result. */
int32_t applyOne(const Settings &settings, int32_t code, VxDimNum &x) noexcept;
int32_t applyTwo(const Settings &settings, int32_t code, VxDimNum &l, const VxDimNum &r) noexcept;
int32_t applyUnit(const char *unit, VxDimNum &l, VxDimNum &unitDimension) noexcept;

/** `x` to the power `y`; the error number. */
int32_t raise(double x, double y, double &result) noexcept;

/** Halves away from zero. */
double roundHalfAway(double value) noexcept;

}
