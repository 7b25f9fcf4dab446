#ifndef VX_MATRIX_H
#define VX_MATRIX_H

/**
 * @file
 * Linear algebra: general, symmetric and band matrices, systems of equations,
 * factorisations, small geometric solves.
 *
 *     VxGenMat a;
 *     if (VxGenMatAlloc(3, 3, &a))
 *         return 1;
 *     ...                                             // a.row[i][j] = ...
 *     double *rhs[1] = {b}, *solutions[1] = {x};
 *     uint32_t failed = SolvLinSystem(0, 3, &a, 1, rhs, solutions);
 *     VxGenMatFree(&a);
 *
 * Results      0, or 1 for a null argument, a size that does not fit or is
 *              below 1, a singular matrix, or no memory. Nothing is printed
 *              or filed for a singular matrix; refused memory is filed as
 *              VxMemAlloc does. After a failure outputs may hold anything,
 *              but a record that was to be allocated is as it was.
 * Matrices     Elements are reached through the row pointers only, so rows
 *              may lie anywhere and a caller may put together records of its
 *              own; only those that this header allocates go to its Free
 *              functions, with row[0] still in place. Blocks may be larger
 *              than INT32_MAX bytes.
 * Vectors      n doubles each. Several are passed as an array of pointers,
 *              one per right-hand side. A solution may be written over its
 *              right-hand side; other overlaps are not allowed.
 * Pivots       n entries, numbered from 0. A permutation p says that place i
 *              holds what stood at place p[i] of the original.
 * Tolerance    Elements, pivots and the largest elements of rows below 1e-12
 *              in magnitude count as zero, whatever the scale of the others.
 *              VxMatSolvReport judges by relative sizes instead.
 * Rounding     Every product, sum and quotient is rounded by itself to a
 *              double, and the order of the operations on an element is
 *              fixed: results are the same on every processor.
 * Threads      Any thread, also at the same time, as long as none writes
 *              what another uses.
 */

#include "vx/tools.h"
#include "vx/types.h"

VX_C_BEGIN

/** A general matrix: element (i, j) is row[i][j]. */
typedef struct VxGenMat {
    int32_t rows;
    int32_t columns;
    double **row; /**< `rows` pointers to `columns` elements each, in one block */
} VxGenMat;

/** A symmetric matrix, of which the lower triangle is stored: element (i, j) is row[max(i, j)][min(i, j)]. */
typedef struct VxSymMat {
    int32_t size;
    double **row; /**< `size` pointers; row i holds i + 1 elements, all rows in one block */
} VxSymMat;

/**
 * A symmetric band matrix, of which the diagonal and the band above it are
 * stored: element (i, j) is row[min(i, j)][|i - j|] where |i - j| < width, and
 * 0 elsewhere.
 */
typedef struct VxBndMat {
    int32_t size;
    int32_t width; /**< semi-bandwidth + 1, at most `size` */
    double **row;  /**< `size` pointers; row i holds min(width, size - i) elements, all rows in one block */
} VxBndMat;

/* ---------------------------------------------------------------- storage */

/** Allocate a matrix into `m`, whatever it holds; the elements are not set. */
VX_API uint32_t VxGenMatAlloc(int32_t rows, int32_t columns, VxGenMat *m);

/** Free the elements and row pointers, if there are any, and clear the record. */
VX_API uint32_t VxGenMatFree(VxGenMat *m);

/** Allocate `to` in the shape of `from`, and copy the elements. */
VX_API uint32_t VxGenMatCopy(const VxGenMat *from, VxGenMat *to);

/** Set every element to 0. */
VX_API uint32_t VxGenMatClear(VxGenMat *m);

/** Print each row on standard output: "row[%d]: ", each stored element as "%8.4f ", a line end. */
VX_API uint32_t VxGenMatPrint(VxGenMat *m);

/** The same for symmetric matrices; printed is the lower triangle, i + 1 elements in row i. */
VX_API uint32_t VxSymMatAlloc(int32_t n, VxSymMat *m);
VX_API uint32_t VxSymMatFree(VxSymMat *m);
VX_API uint32_t VxSymMatCopy(const VxSymMat *from, VxSymMat *to);
VX_API uint32_t VxSymMatClear(VxSymMat *m);
VX_API uint32_t VxSymMatPrint(VxSymMat *m);

/**
 * The same for band matrices; printed are, for row i, the elements from the
 * diagonal to column min(i + w, n) - 1.
 *
 * @param w  width: semi-bandwidth + 1, 1 to n
 */
VX_API uint32_t VxBndMatAlloc(int32_t n, int32_t w, VxBndMat *m);
VX_API uint32_t VxBndMatFree(VxBndMat *m);
VX_API uint32_t VxBndMatCopy(const VxBndMat *from, VxBndMat *to);
VX_API uint32_t VxBndMatClear(VxBndMat *m);
VX_API uint32_t VxBndMatPrint(VxBndMat *m);

/** Allocate `full` as n x n, with both triangles of `band`, whose size is n and whose width is semi + 1. */
VX_API uint32_t SymBnd2FullMat(const VxBndMat *band, int32_t n, int32_t semi, VxGenMat *full);

/** Allocate `band` with width semi + 1, from the upper triangle of `full`, which is n x n. */
VX_API uint32_t Full2SymBndMat(const VxGenMat *full, int32_t n, int32_t semi, VxBndMat *band);

/**
 * The semi-bandwidth of an n x n matrix: the largest distance from the
 * diagonal of an element of magnitude 1e-12 or more. A row without such an
 * element does not count.
 *
 * @param out  receives it, negative when an element differs from its mirror
 *             image by more than 1e-12
 */
VX_API uint32_t GetSemiBndWidth(const VxGenMat *m, int32_t n, int32_t *out);

/* ---------------------------------------------------------------- systems of equations */

/**
 * Solve A x = b for one or more right-hand sides by the way that fits:
 *
 *   n < 5                                  the inverse times each b
 *   not symmetric, or 1 + 3 semi >= n      SolvFullMatSys
 *   else                                   SolvBandMatSys
 *
 * where semi is the semi-bandwidth: GetSemiBndWidth of a general matrix,
 * width - 1 of a band matrix.
 *
 * @param form       0: `matrix` is a VxGenMat, n x n; 1: a VxBndMat of size n
 * @param count      right-hand sides, 1 or more
 * @param rhs        `count` vectors
 * @param solutions  `count` vectors, which may be those of `rhs`
 */
VX_API uint32_t SolvLinSystem(uint32_t form, int32_t n, const void *matrix, int32_t count, double **rhs,
                              double **solutions);

/**
 * Solve with a general n x n matrix, which stays as it is: by the inverse for
 * n < 5, else by VxMatFullLuD and VxMatFullFBS. Right-hand sides are worked on
 * together; each solution has the bits that it would have alone.
 */
VX_API uint32_t SolvFullMatSys(int32_t n, const VxGenMat *matrix, int32_t count, double **rhs,
                               double **solutions);

/**
 * Solve with a symmetric band matrix of semi-bandwidth band->width - 1, which
 * stays as it is: for n < 5 by the inverse of the full matrix, else by L D L'
 * without exchanges, as VxMatBandGetLS. Right-hand sides are worked on
 * together; each solution has the bits that it would have alone.
 */
VX_API uint32_t SolvBandMatSys(int32_t n, int32_t semi, const VxBndMat *band, int32_t count, double **rhs,
                               double **solutions);

/** SolvFullMatSys for a square matrix that tells its own size. */
VX_API uint32_t VxSolveGenMat(const VxGenMat *a, int32_t count, double **rhs, double **solutions);

/** The same for one right-hand side; x may be b. */
VX_API uint32_t VxMatSolv(const VxGenMat *a, const double *b, double *x);

/** What VxMatSolvReport found out about a system. */
typedef struct VxSolveReport {
    /**
     * 1 over the condition of the matrix in the 1-norm, with rows and columns
     * divided by their largest elements; an estimate, seldom more than three
     * times too large. About 1 is best; the solutions have lost as many digits
     * as it has zeros behind the point.
     */
    double reciprocalCondition;

    /**
     * The largest relative change of single elements of the matrix and of the
     * right-hand side that would make a computed solution exact; the worst of
     * all right-hand sides. About 1e-16 is best; 0 when nothing was solved.
     */
    double backwardError;

    int32_t rank; /**< rows that do not depend on others, within what rounding allows */
} VxSolveReport;

/**
 * Solve with a general matrix, and say how good the solutions are. Sizes are
 * judged relative to each other, so the verdict is the same in whatever units
 * equations and unknowns are. Each solution is refined once against residuals
 * in extended precision. Beside the plain solve this takes about a dozen
 * substitutions and three residuals; finding the rank of a singular matrix
 * takes complete pivoting.
 *
 * @param a              square, with finite elements
 * @param report         receives the verdict, also for a singular matrix
 * @param dependentRows  if not null, n entries, of which the first n - rank
 *                       receive the rows that depend on others, ascending;
 *                       without them the rest is independent
 * @return 0; 2 for a singular matrix, one whose reciprocal condition is below
 *         8 n 2^-52: there is a report, but no solution; 1 for everything else
 * @source N. J. Higham, "FORTRAN codes for estimating the one-norm of a real
 *         or complex matrix", ACM Transactions on Mathematical Software 14
 *         (1988); W. Oettli and W. Prager, "Compatibility of approximate
 *         solution of linear equations with given error bounds", Numerische
 *         Mathematik 6 (1964)
 */
VX_API uint32_t VxMatSolvReport(const VxGenMat *a, int32_t count, double **rhs, double **solutions,
                                VxSolveReport *report, int32_t *dependentRows VX_DEFAULT(0));

/* ---------------------------------------------------------------- dense factorisations */

/**
 * Factorise an n x n matrix in place, rows permuted: the unit lower factor
 * below the diagonal, the upper one on and above it.
 *
 * Pivots are chosen by size relative to the largest element that their row had
 * at the start; of equal ones the last. The factors have the bits of Crout's
 * column-wise loops, which take products off each element one by one, in the
 * order of the columns, and form no product with a factor that is exactly
 * zero; only the sign of a zero may differ.
 *
 * @param pivot  receives the permutation of the rows
 * @return 1 also when a row or a pivot is below 1e-12 in magnitude
 * @source W. H. Press and others, "Numerical Recipes", section 2.3, for the
 *         loops and the implicit scaling; S. Toledo, "Locality of Reference in
 *         LU Decomposition with Partial Pivoting", SIAM Journal on Matrix
 *         Analysis and Applications 18 (1997), for the panels
 */
VX_API uint32_t VxMatFullLuD(VxGenMat *a, int32_t n, int32_t *pivot);

/** Solve with the factors and the permutation of VxMatFullLuD; x may be b. */
VX_API uint32_t VxMatFullFBS(const VxGenMat *lu, int32_t n, const int32_t *pivot, const double *b,
                             double *x);

/**
 * Factorise an n x n matrix in place with complete pivoting: the pivot is the
 * largest of all elements that are left. Slower than VxMatFullLuD, for
 * matrices on which that loses too many digits.
 *
 * @param rowPivot, colPivot  receive the permutations of rows and columns
 */
VX_API uint32_t VxMatFullPvtLuD(VxGenMat *a, int32_t n, int32_t *rowPivot, int32_t *colPivot);

/** Solve with the factors and permutations of VxMatFullPvtLuD; x may be b. */
VX_API uint32_t VxMatFullPvtFBS(const VxGenMat *lu, int32_t n, const int32_t *rowPivot,
                                const int32_t *colPivot, const double *b, double *x);

/** VxMatFullLuD that also tells the sign of the permutation, 1 or -1. */
VX_API uint32_t VxMatLuD(VxGenMat *a, int32_t n, int32_t *pivot, int32_t *sign);

/** The inverse of a square matrix; allocated where inverse->row is null, else of its shape and not `a`. */
VX_API uint32_t VxMatGetInv(const VxGenMat *a, VxGenMat *inverse);

/** The determinant of a square matrix; 0 for a singular one, which is no failure. */
VX_API uint32_t VxMatGetDet(const VxGenMat *a, double *det);

/**
 * A vector of length 1 that the matrix, of any shape, takes to zero.
 *
 * @param vec  receives as many elements as `a` has columns
 * @return 1 also when the columns are independent, so that there is none
 */
VX_API uint32_t VxMatGetNullVec(const VxGenMat *a, double *vec);

/** The transpose; allocated where transposed->row is null, else it has the right shape and is not `a`. */
VX_API uint32_t VxMatGetXpose(const VxGenMat *a, VxGenMat *transposed);

/** The product a b; allocated where product->row is null, else of the right shape and neither operand. */
VX_API uint32_t VxMatMult(const VxGenMat *a, const VxGenMat *b, VxGenMat *product);

/* ---------------------------------------------------------------- band factorisations
 *
 * Two families. Symmetric bands are factorised as L D L' without exchanging
 * rows: quick, and stable for definite matrices and for those with a dominant
 * diagonal. Others may meet a small pivot and lose digits, or fail although
 * they are regular.
 *
 * General bands, with `lower` diagonals below the main one and `upper` above,
 * stand in a VxGenMat of n rows and lower + upper + 1 columns: element (i, j)
 * is row[i][lower + j - i]. Places outside the matrix hold 0. Elimination
 * exchanges rows, which brings in elements further right; it takes `lower`
 * more columns, all 0 at first.
 */

/**
 * Factorise a symmetric band matrix in place: row[i][0] becomes the pivot
 * D(i), row[i][k] the multiplier L(i + k, i). What SolvBandMatSys does first.
 */
VX_API uint32_t VxMatBandGetLS(VxBndMat *band, int32_t n, int32_t semi);

/** Solve with what VxMatBandGetLS left; x may be b. */
VX_API uint32_t VxMatBandFBS(const VxBndMat *factor, int32_t n, int32_t semi, const double *b, double *x);

/**
 * The band of a general matrix; elements outside it are dropped.
 *
 * @param lower, upper  0 to n - 1
 * @param band          allocated where band->row is null, else of the right shape
 */
VX_API uint32_t VxMatBandMk(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper, VxGenMat *band);

/**
 * VxMatBandMk with the room that VxMatBandPvtLuD needs: 2 lower + upper + 1
 * columns.
 *
 * @param pivot  receives 0 to n - 1: nothing exchanged
 */
VX_API uint32_t VxMatBandMkPvt(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper,
                               VxGenMat *band, int32_t *pivot);

/**
 * The row, from `column` down to `lower` below it, with the largest magnitude
 * in a column; the later of equal ones. 1 when even that counts as zero.
 */
VX_API uint32_t VxMatBandGetPvt(const VxGenMat *band, int32_t n, int32_t column, int32_t lower,
                                int32_t *pivotRow);

/**
 * Factorise in place what VxMatBandMkPvt made, with the pivots of
 * VxMatBandGetPvt. The upper factor, with up to lower + upper elements right
 * of the diagonal, takes its own place, the multipliers theirs left of it, not
 * moved by later exchanges.
 *
 * @param pivot  receives the row that each row in turn was exchanged with:
 *               other than elsewhere, not a permutation
 */
VX_API uint32_t VxMatBandPvtLuD(VxGenMat *band, int32_t n, int32_t lower, int32_t upper, int32_t *pivot);

/** Solve with what VxMatBandPvtLuD left; x may be b. */
VX_API uint32_t VxMatBandPvtFBS(const VxGenMat *band, int32_t n, int32_t lower, int32_t upper,
                                const int32_t *pivot, const double *b, double *x);

/**
 * Solve with three diagonals, without exchanging rows.
 *
 * @param lower  n elements: lower[i] stands left of diag[i]; lower[0] is not read
 * @param upper  n elements: upper[i] stands right of diag[i]; the last is not read
 * @param x      may be rhs
 * @return 1 too when a pivot, the first diagonal element to begin with, counts as zero
 */
VX_API uint32_t VxMatSolvTriDag(int32_t n, const double *lower, const double *diag, const double *upper,
                                const double *rhs, double *x);

/* ---------------------------------------------------------------- singular values */

/**
 * The singular value decomposition a = U W V', for any shape.
 *
 * Reflections make the matrix bidiagonal, with one pass through it for each
 * column (G. Howell, J. Demmel, C. Fulton, S. Hammarling, K. Marmol: Cache
 * efficient bidiagonalization using BLAS 2.5 operators). Implicit QR sweeps
 * make that diagonal (G. Golub, C. Reinsch: Singular value decomposition and
 * least squares solutions), without a shift where that would spoil small values
 * (J. Demmel, W. Kahan: Accurate singular values of bidiagonal matrices). An
 * element above the diagonal counts as zero when it is not larger than
 * 2.2e-16 times the sum of the two values beside it.
 *
 * @param a  m x n; becomes U, whose columns are orthonormal. For m < n the last
 *           n - m columns become 0.
 * @param w  receives n values, none negative, from the largest down; for m < n
 *           the last n - m are 0
 * @param v  receives V, n x n and orthogonal; allocated where v->row is null,
 *           else of the right shape
 * @return 0, or 1 also for an element that is infinite or not a number, and
 *         when the values do not settle in 30 sweeps for each
 */
VX_API uint32_t VxMatSvd(VxGenMat *a, double *w, VxGenMat *v);

/**
 * Solve with what VxMatSvd left. Of the x that make |a x - b| least, it is the
 * shortest: values up to 1e-12 times the largest count as zero, so a singular
 * or non-square matrix is no failure.
 *
 * @param b  m elements
 * @param x  n elements; may be b where there is room for both
 */
VX_API uint32_t VxMatSvdFBS(const VxGenMat *u, const double *w, const VxGenMat *v, const double *b,
                            double *x);

/* ---------------------------------------------------------------- small systems and fits */

/**
 * Solve two equations. The first is the pivot row when the magnitude of its
 * first coefficient is above the tolerance, else the second.
 *
 * @param a          coefficients, row after row
 * @param tolerance  magnitudes up to it count as zero
 * @param x          may be b
 */
VX_API uint32_t VxMatSolv2D(const double a[4], const double b[2], double tolerance, double x[2]);

/** Solve three equations, with the largest pivot of each column; otherwise as VxMatSolv2D. */
VX_API uint32_t VxMatSolv3D(const double a[9], const double b[3], double tolerance, double x[3]);

/**
 * The line y = slope x + intercept with the least sum of squared distances
 * in y.
 *
 * @param n  points, 2 or more
 * @return 1 also when all x agree to 12 digits
 * @source W. M. Gentleman, "Least Squares Computations by Givens
 *         Transformations Without Square Roots", IMA Journal of Applied
 *         Mathematics 12 (1973), for taking in one equation at a time
 */
VX_API uint32_t VxLinLS2D(int32_t n, const double *x, const double *y, double *slope, double *intercept);

/**
 * The least-squares fit coef[0] + coef[1] cos(angle) + coef[2] sin(angle), by
 * the same method.
 *
 * @param n      values, 3 or more
 * @param angle  radians
 * @return 1 also when the angles are fewer than three places on the circle
 */
VX_API uint32_t VxTrigLS(int32_t n, const double *angle, const double *value, double coef[3]);

/**
 * Local coordinates of a point in a quadrilateral element with bilinear shape
 * functions, found by Newton's method from the middle, to 1e-12, in at most 50
 * steps.
 *
 * @param corner  in order around the element; their local coordinates are
 *                (-1, -1), (1, -1), (1, 1), (-1, 1)
 * @param local   receives the coordinates, between -1 and 1 inside
 * @return 1 also when the element is degenerate on the way, or the steps do
 *         not settle, as they may for points far outside
 */
VX_API uint32_t SolvQfemLcnts(const double corner[4][2], const double point[2], double local[2]);

/* ---------------------------------------------------------------- rotations and transforms
 *
 * A rotation takes column vectors: v' = rot v. A transform takes points:
 * p' = m p + t, where t is the fourth column; its kind is set to 1 for the
 * identity, else to 0. Angles are radians, positive by the right-hand rule.
 * Axes need not be of length 1, but longer than 1e-12. Outputs may be inputs.
 */

/**
 * Angle and axis of a rotation.
 *
 * @param angle  receives 0 to pi
 * @param axis   receives a vector of length 1: (0, 0, 1) for the identity; for
 *               half a turn the one whose first component other than 0 is
 *               positive
 * @return 1 also when rows are not of length 1 and at right angles to within
 *         1e-6, or the matrix mirrors
 * @source S. W. Shepperd, "Quaternion from Rotation Matrix", Journal of
 *         Guidance and Control 1 (1978)
 */
VX_API uint32_t VxMatAngAxis(const double rot[3][3], double *angle, double axis[3]);

/** What takes the result of `from` to that of `to`: increment * from = to. 1 when `from` is singular. */
VX_API uint32_t VxMatGetIncr(const VxMat3x4 *from, const VxMat3x4 *to, VxMat3x4 *increment);

/** The rotation about an axis through the origin, as a transform. */
VX_API uint32_t VxMatMkRot(const double axis[3], double angle, VxMat3x4 *out);

/**
 * The transform from a frame's coordinates to the world's.
 *
 * @param xAxis  direction of the frame's first axis
 * @param yAxis  its second axis lies on this one's side, at right angles to
 *               the first; parallel axes fail
 */
VX_API uint32_t VxMatMkXform(const double origin[3], const double xAxis[3], const double yAxis[3],
                             VxMat3x4 *out);

/** The rotation about an axis through the origin. */
VX_API uint32_t VxMat3MkRot(const double axis[3], double angle, double rot[3][3]);

VX_C_END

#endif
