#pragma once

// Numbers and their units as texts.

#include <string>

#include "vx/eval.h"

namespace vxsh {

/** As "%.15g" under the C locale, whatever the process's locale is. */
std::string formatNumber(double number);

/** `count` with commas between the thousands. */
std::string formatCount(size_t count);

/**
 * The unit in base units of a quantity with these exponents: "mm", "kg/mm^3",
 * "kg*mm^2"; empty without dimension.
 */
std::string baseUnit(const VxDimNum &quantity);

}
