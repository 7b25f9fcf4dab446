#pragma once

// Decimal integers in texts. Digits and signs are never part of a longer
// character in any code page, so plain bytes are looked at.

#include <cstdint>
#include <limits>

namespace vx::text {

inline bool isDecimalDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

/** Whether digits stand at `p`, perhaps behind a sign. */
inline bool beginsInteger(const char *p) noexcept
{
    bool sign = *p == '-' || *p == '+';
    return isDecimalDigit(p[sign]);
}

struct Integer {
    int32_t value; ///< the nearest one when the number has no place in 32 bits
    bool fits;
};

/** Reads the integer at `p`, where beginsInteger() holds, and moves `p` behind its last digit. */
inline Integer readInteger(const char *&p) noexcept
{
    using Limits = std::numeric_limits<int32_t>;
    const bool negative = *p == '-';
    const int64_t bound = negative ? -static_cast<int64_t>(Limits::min()) : Limits::max();
    p += *p == '-' || *p == '+';
    int64_t value = 0;
    bool fits = true;
    for (; isDecimalDigit(*p); ++p) {
        value = value * 10 + (*p - '0');
        if (value > bound) {
            value = bound;
            fits = false;
        }
    }
    return {static_cast<int32_t>(negative ? -value : value), fits};
}

}
