#pragma once

// Which of the kernels run.

#include <vector>

#include "numerics/kernels.h"

namespace vx::numerics {

/** The quickest kernels for this processor. */
const Kernels &kernels() noexcept;

/** Those with the widest vectors, which long loops along rows were measured to profit from everywhere. */
const RowKernels &widestRowKernels() noexcept;

/** All that this processor has, the baseline first. */
std::vector<const Kernels *> availableKernels();

}
