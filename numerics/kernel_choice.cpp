#include "numerics/kernel_choice.h"

namespace vx::numerics {

namespace {

const Kernels &choose() noexcept
{
#ifdef VX_KERNELS_X86
    // Other makers' processors may work off such a vector in halves, which was measured to be slower.
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_is("intel"))
        return avx512Kernels;
    if (__builtin_cpu_supports("avx2"))
        return avx2Kernels;
#endif
    return baselineKernels;
}

}

const Kernels &kernels() noexcept
{
    static const Kernels &chosen = choose();
    return chosen;
}

const RowKernels &widestRowKernels() noexcept
{
#ifdef VX_KERNELS_X86
    if (__builtin_cpu_supports("avx512f"))
        return *avx512Kernels.rows;
#endif
    return *kernels().rows;
}

std::vector<const Kernels *> availableKernels()
{
    std::vector<const Kernels *> all{&baselineKernels};
#ifdef VX_KERNELS_X86
    if (__builtin_cpu_supports("avx2"))
        all.push_back(&avx2Kernels);
    if (__builtin_cpu_supports("avx512f"))
        all.push_back(&avx512Kernels);
#endif
    return all;
}

}
