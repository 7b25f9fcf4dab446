#pragma once

// The singular value decomposition, with kernels of the caller's choice.

#include <cstdint>

#include "numerics/row_kernels.h"
#include "vx/matrix.h"

namespace vx::numerics {

/** As VxMatSvd, into a `v` that is there. */
uint32_t decompose(const RowKernels &kernel, const VxGenMat &a, double *w, const VxGenMat &v);

}
