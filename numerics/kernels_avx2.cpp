// The kernels for vectors of 32 bytes.

#define VX_VECTOR_BYTES 32
#define VX_TILE_ROWS 4
#define VX_KERNELS avx2Kernels
#define VX_KERNELS_NAME "avx2"
#include "numerics/kernel_code.h"
