#ifndef VX_MATRIX_H
#define VX_MATRIX_H

/**
 * @file
 * Linear algebra: general, symmetric and band matrices, systems of equations,
 * factorisations, small geometric solves.
 */

#include "vx/tools.h"
#include "vx/types.h"

VX_C_BEGIN

typedef struct VxGenMat {
    int32_t rows;
    int32_t columns;
    double **row;
} VxGenMat;

typedef struct VxSymMat {
    int32_t size;
    double **row;
} VxSymMat;

typedef struct VxBndMat {
    int32_t size;
    int32_t width;
    double **row;
} VxBndMat;

/* ---------------------------------------------------------------- storage */

VX_API uint32_t VxGenMatAlloc(int32_t rows, int32_t columns, VxGenMat *m);
VX_API uint32_t VxGenMatFree(VxGenMat *m);
VX_API uint32_t VxGenMatCopy(const VxGenMat *from, VxGenMat *to);
VX_API uint32_t VxGenMatClear(VxGenMat *m);
VX_API uint32_t VxGenMatPrint(VxGenMat *m);
VX_API uint32_t VxSymMatAlloc(int32_t n, VxSymMat *m);
VX_API uint32_t VxSymMatFree(VxSymMat *m);
VX_API uint32_t VxSymMatCopy(const VxSymMat *from, VxSymMat *to);
VX_API uint32_t VxSymMatClear(VxSymMat *m);
VX_API uint32_t VxSymMatPrint(VxSymMat *m);
VX_API uint32_t VxBndMatAlloc(int32_t n, int32_t w, VxBndMat *m);
VX_API uint32_t VxBndMatFree(VxBndMat *m);
VX_API uint32_t VxBndMatCopy(const VxBndMat *from, VxBndMat *to);
VX_API uint32_t VxBndMatClear(VxBndMat *m);
VX_API uint32_t VxBndMatPrint(VxBndMat *m);
VX_API uint32_t SymBnd2FullMat(const VxBndMat *band, int32_t n, int32_t semi, VxGenMat *full);
VX_API uint32_t Full2SymBndMat(const VxGenMat *full, int32_t n, int32_t semi, VxBndMat *band);
VX_API uint32_t GetSemiBndWidth(const VxGenMat *m, int32_t n, int32_t *out);

/* ---------------------------------------------------------------- systems of equations */

VX_API uint32_t SolvLinSystem(uint32_t form, int32_t n, const void *matrix, int32_t count, double **rhs,
                              double **solutions);
VX_API uint32_t SolvFullMatSys(int32_t n, const VxGenMat *matrix, int32_t count, double **rhs,
                               double **solutions);
VX_API uint32_t SolvBandMatSys(int32_t n, int32_t semi, const VxBndMat *band, int32_t count, double **rhs,
                               double **solutions);
VX_API uint32_t VxSolveGenMat(const VxGenMat *a, int32_t count, double **rhs, double **solutions);
VX_API uint32_t VxMatSolv(const VxGenMat *a, const double *b, double *x);

/** What VxMatSolvReport found out about a system. */
typedef struct VxSolveReport {
    double reciprocalCondition; /**< 1 for a perfectly conditioned matrix, 0 for a singular one */
    double backwardError;       /**< relative change of the data that makes the solutions exact */
    int32_t rank;               /**< numerical rank: rows that do not depend on others */
} VxSolveReport;

VX_API uint32_t VxMatSolvReport(const VxGenMat *a, int32_t count, double **rhs, double **solutions,
                                VxSolveReport *report, int32_t *dependentRows VX_DEFAULT(0));

/* ---------------------------------------------------------------- dense factorisations */

VX_API uint32_t VxMatFullLuD(VxGenMat *a, int32_t n, int32_t *pivot);
VX_API uint32_t VxMatFullFBS(const VxGenMat *lu, int32_t n, const int32_t *pivot, const double *b,
                             double *x);
VX_API uint32_t VxMatFullPvtLuD(VxGenMat *a, int32_t n, int32_t *rowPivot, int32_t *colPivot);
VX_API uint32_t VxMatFullPvtFBS(const VxGenMat *lu, int32_t n, const int32_t *rowPivot,
                                const int32_t *colPivot, const double *b, double *x);
VX_API uint32_t VxMatLuD(VxGenMat *a, int32_t n, int32_t *pivot, int32_t *sign);
VX_API uint32_t VxMatGetInv(const VxGenMat *a, VxGenMat *inverse);
VX_API uint32_t VxMatGetDet(const VxGenMat *a, double *det);
VX_API uint32_t VxMatGetNullVec(const VxGenMat *a, double *vec);
VX_API uint32_t VxMatGetXpose(const VxGenMat *a, VxGenMat *transposed);
VX_API uint32_t VxMatMult(const VxGenMat *a, const VxGenMat *b, VxGenMat *product);

/* ---------------------------------------------------------------- band factorisations */

VX_API uint32_t VxMatBandGetLS(VxBndMat *band, int32_t n, int32_t semi);
VX_API uint32_t VxMatBandFBS(const VxBndMat *factor, int32_t n, int32_t semi, const double *b, double *x);
VX_API uint32_t VxMatBandMk(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper, VxGenMat *band);
VX_API uint32_t VxMatBandMkPvt(const VxGenMat *full, int32_t n, int32_t lower, int32_t upper,
                               VxGenMat *band, int32_t *pivot);
VX_API uint32_t VxMatBandGetPvt(const VxGenMat *band, int32_t n, int32_t column, int32_t lower,
                                int32_t *pivotRow);
VX_API uint32_t VxMatBandPvtLuD(VxGenMat *band, int32_t n, int32_t lower, int32_t upper, int32_t *pivot);
VX_API uint32_t VxMatBandPvtFBS(const VxGenMat *band, int32_t n, int32_t lower, int32_t upper,
                                const int32_t *pivot, const double *b, double *x);
VX_API uint32_t VxMatSolvTriDag(int32_t n, const double *lower, const double *diag, const double *upper,
                                const double *rhs, double *x);

/* ---------------------------------------------------------------- singular values */

VX_API uint32_t VxMatSvd(VxGenMat *a, double *w, VxGenMat *v);
VX_API uint32_t VxMatSvdFBS(const VxGenMat *u, const double *w, const VxGenMat *v, const double *b,
                            double *x);

/* ---------------------------------------------------------------- small systems and fits */

VX_API uint32_t VxMatSolv2D(const double a[4], const double b[2], double tolerance, double x[2]);
VX_API uint32_t VxMatSolv3D(const double a[9], const double b[3], double tolerance, double x[3]);
VX_API uint32_t VxLinLS2D(int32_t n, const double *x, const double *y, double *slope, double *intercept);
VX_API uint32_t VxTrigLS(int32_t n, const double *angle, const double *value, double coef[3]);
VX_API uint32_t SolvQfemLcnts(const double corner[4][2], const double point[2], double local[2]);

/* ---------------------------------------------------------------- rotations and transforms */

VX_API uint32_t VxMatAngAxis(const double rot[3][3], double *angle, double axis[3]);
VX_API uint32_t VxMatGetIncr(const VxMat3x4 *from, const VxMat3x4 *to, VxMat3x4 *increment);
VX_API uint32_t VxMatMkRot(const double axis[3], double angle, VxMat3x4 *out);
VX_API uint32_t VxMatMkXform(const double origin[3], const double xAxis[3], const double yAxis[3],
                             VxMat3x4 *out);
VX_API uint32_t VxMat3MkRot(const double axis[3], double angle, double rot[3][3]);

VX_C_END

#endif
