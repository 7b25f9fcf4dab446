#pragma once

// Eigen's solve, twice: as the distribution's flags compile it, and for this
// machine. Each stands in a source of its own.

void solveWithEigen(int n, const double *a, const double *b, double *x);
void solveWithNativeEigen(int n, const double *a, const double *b, double *x);
