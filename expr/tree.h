#pragma once

// The vocabulary of formula trees: operation codes and operand kinds as they
// stand in VsCnsGenOp records, and what several parts of this module need of
// a tree.

#include <cstdint>

#include "vx/eval.h"
#include "vx/parse.h"

namespace vx::expr {

namespace op {
enum Code : int32_t {
    leaf = 1,
    add = 2,
    subtract = 3,
    multiply = 4,
    divide = 5,
    sin = 6,
    cos = 7,
    tan = 8,
    sec = 9,
    csc = 10,
    cot = 11,
    sinh = 12,
    cosh = 13,
    tanh = 14,
    asin = 15,
    acos = 16,
    atan = 17,
    atan2 = 18,
    log = 19,
    ln = 20,
    exp = 21,
    power = 22,
    sqrt = 23,
    conditional = 24,
    less = 25,
    greater = 26,
    equal = 27,
    negate = 28,
    both = 29,
    either = 30,
    abs = 31,
    floor = 32,
    mod = 33,
    mod2 = 34,
    ceiling = 35,
    round = 36,
    max = 37,
    min = 38,
    dec = 39,
    deg = 40,
    rad = 41,
    unit = 42,
    num2str = 43,
    time = 44,
    date = 45,
    substr = 46,
    firstGeometric = 47,
    lastGeometric = 67,
    vector = 68,
    point = 69
};
}

namespace kind {
enum Kind : int32_t { none = 0, tree = 1, variable = 2, number = 6, text = 7, unit = 8 };
}

/** Bytes of every text buffer that a tree owns, terminator included. */
constexpr int32_t textBufferSize = 1024;

inline const VsCnsGenOp *childOf(const VsCnsGenSlot &slot) noexcept
{
    return static_cast<const VsCnsGenOp *>(slot.value.ptr);
}

inline const char *textOf(const VsCnsGenSlot &slot) noexcept
{
    return static_cast<const char *>(slot.value.ptr);
}

inline bool ownsText(const VsCnsGenSlot &slot) noexcept
{
    return slot.kind == kind::variable || slot.kind == kind::text || slot.kind == kind::unit;
}

/** The operation as formulas write it: "+", "then", "asin"; empty for a code that is none. */
const char *operationName(int32_t code) noexcept;

/** The operation as trees are printed; null for a code that is none. */
const char *printedName(int32_t code) noexcept;

}
