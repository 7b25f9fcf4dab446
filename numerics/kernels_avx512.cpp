// The kernels for vectors of 64 bytes.

#define VX_VECTOR_BYTES 64
#define VX_TILE_ROWS 8
#define VX_KERNELS avx512Kernels
#define VX_KERNELS_NAME "avx512"
#include "numerics/kernel_code.h"
