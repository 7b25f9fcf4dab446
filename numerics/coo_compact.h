#pragma once

// What a compaction of a coordinate matrix does to its elements.

#include <cstddef>

#include "vx/coo.hpp"

namespace vx::numerics {

/**
 * Sort elements by column, then row, and add up what shares a position, from
 * the smallest magnitude to the largest.
 *
 * @param sorted  so many in front are expected to be in order and without
 *                duplicates, and are only merged then
 * @return how many elements are left, in front
 */
size_t compactElements(VX::CooMatrixElement *elements, size_t count, size_t sorted) noexcept;

}
