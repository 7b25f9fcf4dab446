// Neighbouring elements of rows, eight at a time in every variant. A part of
// numerics/kernel_code.h, whose vectors it uses.

#include "numerics/row_kernels.h"

namespace vx::numerics {

namespace {

/** Neighbouring elements. */
template <size_t vectors> struct Elements {
    Vec part[vectors];
};

constexpr int32_t parts = rowStep / lanes;
using Eight = Elements<parts>;

inline Eight loadEight(const double *p)
{
    Eight v;
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] = load(p + i * lanes);
    return v;
}

inline void storeEight(double *p, const Eight &v)
{
    for (int32_t i = 0; i < parts; ++i)
        store(p + i * lanes, v.part[i]);
}

/** v -= f * w */
template <size_t vectors> inline void subtract(Elements<vectors> &v, double f, const Elements<vectors> &w)
{
    for (size_t i = 0; i < vectors; ++i)
        v.part[i] -= f * w.part[i];
}

inline void addEight(Eight &v, double f, const Eight &w)
{
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] += f * w.part[i];
}

inline void addProducts(Eight &sum, const Eight &v, const Eight &w)
{
    for (int32_t i = 0; i < parts; ++i)
        sum.part[i] += v.part[i] * w.part[i];
}

/** Keep the first `count` elements and make the others zero. */
inline void keepFirst(Eight &v, int32_t count)
{
    static const int64_t kept[2 * rowStep] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
    const Eight mask = loadEight(reinterpret_cast<const double *>(kept + rowStep - count));
    for (int32_t i = 0; i < parts; ++i)
        v.part[i] =
            reinterpret_cast<Vec>(reinterpret_cast<Mask>(v.part[i]) & reinterpret_cast<Mask>(mask.part[i]));
}

inline double total(const Eight &v)
{
    alignas(VX_VECTOR_BYTES) double t[rowStep];
    storeEight(t, v);
    return ((t[0] + t[4]) + (t[2] + t[6])) + ((t[1] + t[5]) + (t[3] + t[7]));
}

}

}
