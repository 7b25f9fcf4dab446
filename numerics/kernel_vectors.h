// Vectors of the variant that is being compiled, and what all kernels do with
// them. Included by kernel_code.h alone, like its other parts.

#include "numerics/kernels.h"

namespace vx::numerics {

namespace {

typedef double Vec __attribute__((vector_size(VX_VECTOR_BYTES)));
typedef int64_t Mask __attribute__((vector_size(VX_VECTOR_BYTES)));
typedef double Unaligned __attribute__((vector_size(VX_VECTOR_BYTES), aligned(8), may_alias));

constexpr int32_t lanes = VX_VECTOR_BYTES / 8;
constexpr int32_t tileRows = VX_TILE_ROWS;
constexpr int32_t tileColumns = 2 * lanes;
static_assert(tileRows <= mostTileRows && tileColumns <= mostTileColumns);
static_assert(stripColumns % tileColumns == 0);

#if VX_VECTOR_BYTES == 16
constexpr Mask laneNumbers = {0, 1};
#elif VX_VECTOR_BYTES == 32
constexpr Mask laneNumbers = {0, 1, 2, 3};
#else
constexpr Mask laneNumbers = {0, 1, 2, 3, 4, 5, 6, 7};
#endif

inline Vec load(const double *p)
{
    return *reinterpret_cast<const Unaligned *>(p);
}

inline void store(double *p, Vec v)
{
    *reinterpret_cast<Unaligned *>(p) = v;
}

inline Vec magnitude(Vec v)
{
    constexpr int64_t allButSign = 0x7fffffffffffffff;
    Mask bits = reinterpret_cast<Mask>(v) & allButSign;
    return reinterpret_cast<Vec>(bits);
}

inline bool isFinite(double v)
{
    return v - v == 0;
}

inline int32_t smaller(int32_t a, int32_t b)
{
    return a < b ? a : b;
}

inline void exchange(double &a, double &b)
{
    double kept = a;
    a = b;
    b = kept;
}

inline void exchange(int32_t &a, int32_t &b)
{
    int32_t kept = a;
    a = b;
    b = kept;
}

/** c -= l * u, without the products that have a zero factor. */
inline void subtractPlain(double &c, double l, double u)
{
    if (l != 0 && u != 0)
        c -= l * u;
}

/** The sum of v * 0 over `count` numbers: zero if all of them are finite. */
double finiteness(const double *v, int32_t count)
{
    Vec sum = {};
    int32_t i = 0;
    for (; i + lanes <= count; i += lanes)
        sum += load(v + i) * 0.0;
    double total = 0;
    for (int32_t lane = 0; lane < lanes; ++lane)
        total += sum[lane];
    for (; i < count; ++i)
        total += v[i] * 0.0;
    return total;
}

/**
 * Where scale * |value| is largest among `count` places, the later of equal
 * ones; places without a number are passed over. Vectors run over at most
 * panelPadding places behind the last.
 */
int32_t pivotPlace(const double *scale, const double *value, int32_t count)
{
    Vec best = {};
    for (int32_t i = 0; i < count; i += lanes) {
        Vec v = load(scale + i) * magnitude(load(value + i));
        best = v > best ? v : best;
    }
    double largest = 0;
    for (int32_t lane = 0; lane < lanes; ++lane)
        largest = best[lane] > largest ? best[lane] : largest;
    for (int32_t i = count - 1; i > 0; --i)
        if (scale[i] * __builtin_fabs(value[i]) == largest)
            return i;
    return 0;
}

double largestMagnitude(const double *v, int32_t count)
{
    Vec best[2] = {};
    int32_t i = 0;
    for (; i + 2 * lanes <= count; i += 2 * lanes) {
        for (int32_t k = 0; k < 2; ++k) {
            Vec size = magnitude(load(v + i + k * lanes));
            best[k] = size > best[k] ? size : best[k];
        }
    }
    best[0] = best[1] > best[0] ? best[1] : best[0];
    double largest = 0;
    for (int32_t lane = 0; lane < lanes; ++lane)
        largest = best[0][lane] > largest ? best[0][lane] : largest;
    for (; i < count; ++i)
        largest = __builtin_fabs(v[i]) > largest ? __builtin_fabs(v[i]) : largest;
    return largest;
}

}

}
