// The kernels for vectors of 16 bytes.

#define VX_VECTOR_BYTES 16
#define VX_TILE_ROWS 4
#define VX_KERNELS baselineKernels
#define VX_KERNELS_NAME "baseline"
#include "numerics/kernel_code.h"
