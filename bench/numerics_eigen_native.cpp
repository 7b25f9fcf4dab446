// Compiled with -march=native. A name of its own for the library's namespace
// keeps the linker from mixing these functions with the plain ones.
#define Eigen EigenNative

#include "numerics_eigen.h"

#include <Eigen/Dense>

void solveWithNativeEigen(int n, const double *a, const double *b, double *x)
{
    Eigen::Map<const Eigen::MatrixXd> matrix(a, n, n);
    Eigen::Map<Eigen::VectorXd>(x, n) = matrix.partialPivLu().solve(Eigen::Map<const Eigen::VectorXd>(b, n));
}
