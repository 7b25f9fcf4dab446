#pragma once

#include <string_view>

namespace vx::expr {

/** The value of a number token, bit by bit that of strtod under the C locale. */
double numberValue(std::string_view token) noexcept;

}
