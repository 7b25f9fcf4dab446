#pragma once

// The units that formulas may use.

#include <cstdint>

/**
 * Find a unit: the host is asked first, then the toolkit's table.
 *
 * @param factor     receives what turns a value in the unit into base units;
 *                   1.0 when the name is no unit
 * @param unitClass  receives the class of VxGenExEvalUnit; may be null
 * @return 1 when the name is a unit
 */
int32_t UnitLookup(const char *name, double *factor, int32_t *unitClass);

namespace vx::expr {

struct Unit {
    const char *name;
    double factor;
    int32_t unitClass;
};

/** The rows of the toolkit's table in order; null past the last. */
const Unit *unitAt(int32_t index) noexcept;

}
