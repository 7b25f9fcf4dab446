#pragma once

// Which of the kernels run.

#include <vector>

#include "numerics/kernels.h"

namespace vx::numerics {

/** The quickest kernels for this processor. */
const Kernels &kernels() noexcept;

/** All that this processor has, the baseline first. */
std::vector<const Kernels *> availableKernels();

}
