#include "numerics_eigen.h"

#include <Eigen/Dense>

void solveWithEigen(int n, const double *a, const double *b, double *x)
{
    Eigen::Map<const Eigen::MatrixXd> matrix(a, n, n);
    Eigen::Map<Eigen::VectorXd>(x, n) = matrix.partialPivLu().solve(Eigen::Map<const Eigen::VectorXd>(b, n));
}
