#pragma once

// The functions that formulas may call.

#include <cstdint>
#include <string_view>

namespace vx::expr {

struct Function {
    const char *name;
    int32_t number; ///< the token's subtype
    int32_t op;     ///< of the node that a call makes
    int32_t argc;
};

/** The function of this name, case ignored; null for none. The geometric ones only when `extended`. */
const Function *findFunction(std::string_view name, bool extended) noexcept;

/** The name under which an operation is called; null when no function makes it. */
const char *functionName(int32_t op) noexcept;

}
