#pragma once

// Elimination of three diagonals, which are reached through calls: lower(i)
// stands left of diagonal(i) in row i, upper(i) right of it.

#include <cmath>
#include <cstdint>

#include "numerics/storage.h"

namespace vx::numerics {

/**
 * Solve in place for `count` right-hand sides.
 * @param ratio  room for n numbers
 * @return false when a pivot is negligible
 */
template <typename Lower, typename Diagonal, typename Upper>
bool solveTridiagonal(int32_t n, Lower lower, Diagonal diagonal, Upper upper, double *ratio, int32_t count,
                      double *const *x)
{
    double pivot = diagonal(0);
    for (int32_t i = 0; i < n; ++i) {
        if (!(std::fabs(pivot) >= negligible))
            return false;
        const bool more = i + 1 < n;
        const double multiplier = more ? lower(i + 1) / pivot : 0;
        for (int32_t v = 0; v < count; ++v) {
            double *to = x[v] + i;
            if (more)
                to[1] -= multiplier * *to;
            *to /= pivot;
        }
        if (more) {
            ratio[i] = upper(i) / pivot;
            pivot = diagonal(i + 1) - multiplier * upper(i);
        }
    }
    for (int32_t i = n - 2; i >= 0; --i)
        for (int32_t v = 0; v < count; ++v)
            x[v][i] -= ratio[i] * x[v][i + 1];
    return true;
}

}
