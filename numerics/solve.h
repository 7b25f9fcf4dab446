#pragma once

// How a system of equations is to be solved.

#include <cstdint>

#include "vx/matrix.h"

namespace vx::numerics {

enum class Way {
    none,    ///< the arguments do not fit
    inverse, ///< small: the inverse times each right-hand side
    dense,
    band
};

/** Orders below this are solved by the inverse. */
constexpr int32_t leastFactored = 5;

/** The way for a matrix of order n in the given form, and its semi-bandwidth where that was asked for. */
Way wayToSolve(uint32_t form, int32_t n, const void *matrix, int32_t &semi) noexcept;

/** Solve with a band matrix of size n as with the general one that it stands for. */
uint32_t solveExpanded(int32_t n, const VxBndMat &band, int32_t count, double **rhs, double **solutions);

}
