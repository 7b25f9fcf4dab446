// The three forms of storage, and the ways from one to another.

#include "numerics/storage.h"

#include <algorithm>

#include "vx/str.h"

namespace vx::numerics {

namespace {

/** Row pointers and elements for rows of the lengths that `length` tells; null when they cannot be had. */
template <typename Length> double **allocateRows(int32_t rows, int64_t elements, Length length)
{
    Block<double *> pointers = allocate<double *>(rows);
    if (!pointers)
        return nullptr;
    double *next = allocate<double>(elements).release();
    if (!next)
        return nullptr;
    double **row = pointers.release();
    for (int32_t i = 0; i < rows; ++i) {
        row[i] = next;
        next += length(i);
    }
    return row;
}

/** The first row begins where the block does. */
void freeRows(double **&row) noexcept
{
    void *block = row ? row[0] : nullptr;
    VxMemFree(&block);
    void *pointers = row;
    VxMemFree(&pointers);
    row = nullptr;
}

int32_t stored(const VxGenMat &m, int32_t) noexcept
{
    return m.columns;
}

int32_t stored(const VxSymMat &, int32_t i) noexcept
{
    return i + 1;
}

int32_t stored(const VxBndMat &m, int32_t i) noexcept
{
    return storedInRow(m, i);
}

int32_t rowsOf(const VxGenMat &m) noexcept
{
    return m.rows;
}

template <typename Matrix> int32_t rowsOf(const Matrix &m) noexcept
{
    return m.size;
}

template <typename Matrix> void copyRows(const Matrix &from, Matrix &to) noexcept
{
    for (int32_t i = 0; i < rowsOf(from); ++i)
        std::copy_n(from.row[i], stored(from, i), to.row[i]);
}

template <typename Matrix> uint32_t clear(Matrix *m) noexcept
{
    if (!usable(m))
        return 1;
    for (int32_t i = 0; i < rowsOf(*m); ++i)
        std::fill_n(m->row[i], stored(*m, i), 0.0);
    return 0;
}

template <typename Matrix> uint32_t print(const Matrix *m)
{
    if (!usable(m))
        return 1;
    for (int32_t i = 0; i < rowsOf(*m); ++i) {
        if (VxPrintf("row[%d]: ", i))
            return 1;
        for (int32_t j = 0; j < stored(*m, i); ++j)
            if (VxPrintf("%8.4f ", m->row[i][j]))
                return 1;
        if (VxPrintf("\n"))
            return 1;
    }
    return 0;
}

/** Whether no element differs from its mirror image; by tiles, since one of the two walks down columns. */
bool isSymmetric(const VxGenMat &m, int32_t n) noexcept
{
    constexpr int32_t tile = 32;
    for (int32_t top = 0; top < n; top += tile) {
        int32_t bottom = std::min(top + tile, n);
        for (int32_t left = top; left < n; left += tile) {
            int32_t right = std::min(left + tile, n);
            for (int32_t i = top; i < bottom; ++i)
                for (int32_t j = std::max(left, i + 1); j < right; ++j)
                    if (std::fabs(m.row[i][j] - m.row[j][i]) > negligible)
                        return false;
        }
    }
    return true;
}

/** How far row `i` reaches to either side of the diagonal; negative for a row of zeros. */
int32_t reach(const double *row, int32_t i, int32_t n) noexcept
{
    int32_t first = 0;
    while (first < n && std::fabs(row[first]) < negligible)
        ++first;
    int32_t last = n - 1;
    while (last >= 0 && std::fabs(row[last]) < negligible)
        --last;
    return std::max(last - i, i - first);
}

}

}

using namespace vx::numerics;

uint32_t VxGenMatAlloc(int32_t rows, int32_t columns, VxGenMat *m)
{
    if (!m || rows < 1 || columns < 1)
        return 1;
    double **row = allocateRows(rows, int64_t{rows} * columns, [columns](int32_t) { return columns; });
    if (!row)
        return 1;
    *m = {rows, columns, row};
    return 0;
}

uint32_t VxGenMatFree(VxGenMat *m)
{
    if (!m)
        return 1;
    freeRows(m->row);
    *m = {};
    return 0;
}

uint32_t VxGenMatCopy(const VxGenMat *from, VxGenMat *to)
{
    if (!usable(from) || VxGenMatAlloc(from->rows, from->columns, to))
        return 1;
    copyRows(*from, *to);
    return 0;
}

uint32_t VxGenMatClear(VxGenMat *m)
{
    return clear(m);
}

uint32_t VxGenMatPrint(VxGenMat *m)
{
    return print(m);
}

uint32_t VxSymMatAlloc(int32_t n, VxSymMat *m)
{
    if (!m || n < 1)
        return 1;
    double **row = allocateRows(n, int64_t{n} * (int64_t{n} + 1) / 2, [](int32_t i) { return i + 1; });
    if (!row)
        return 1;
    *m = {n, row};
    return 0;
}

uint32_t VxSymMatFree(VxSymMat *m)
{
    if (!m)
        return 1;
    freeRows(m->row);
    *m = {};
    return 0;
}

uint32_t VxSymMatCopy(const VxSymMat *from, VxSymMat *to)
{
    if (!usable(from) || VxSymMatAlloc(from->size, to))
        return 1;
    copyRows(*from, *to);
    return 0;
}

uint32_t VxSymMatClear(VxSymMat *m)
{
    return clear(m);
}

uint32_t VxSymMatPrint(VxSymMat *m)
{
    return print(m);
}

uint32_t VxBndMatAlloc(int32_t n, int32_t w, VxBndMat *m)
{
    if (!m || n < 1 || w < 1 || w > n)
        return 1;
    int64_t elements = int64_t{w} * (int64_t{w} + 1) / 2 + int64_t{n - w} * w;
    double **row = allocateRows(n, elements, [n, w](int32_t i) { return std::min(w, n - i); });
    if (!row)
        return 1;
    *m = {n, w, row};
    return 0;
}

uint32_t VxBndMatFree(VxBndMat *m)
{
    if (!m)
        return 1;
    freeRows(m->row);
    *m = {};
    return 0;
}

uint32_t VxBndMatCopy(const VxBndMat *from, VxBndMat *to)
{
    if (!usable(from) || VxBndMatAlloc(from->size, from->width, to))
        return 1;
    copyRows(*from, *to);
    return 0;
}

uint32_t VxBndMatClear(VxBndMat *m)
{
    return clear(m);
}

uint32_t VxBndMatPrint(VxBndMat *m)
{
    return print(m);
}

uint32_t SymBnd2FullMat(const VxBndMat *band, int32_t n, int32_t semi, VxGenMat *full)
{
    if (!usable(band) || band->size != n || band->width - 1 != semi)
        return 1;
    if (VxGenMatAlloc(n, n, full))
        return 1;
    clear(full);
    for (int32_t i = 0; i < n; ++i)
        for (int32_t d = 0; d < storedInRow(*band, i); ++d)
            full->row[i][i + d] = full->row[i + d][i] = band->row[i][d];
    return 0;
}

uint32_t Full2SymBndMat(const VxGenMat *full, int32_t n, int32_t semi, VxBndMat *band)
{
    if (!isSquare(full, n) || semi < 0 || semi >= n || VxBndMatAlloc(n, semi + 1, band))
        return 1;
    for (int32_t i = 0; i < n; ++i)
        std::copy_n(full->row[i] + i, storedInRow(*band, i), band->row[i]);
    return 0;
}

uint32_t GetSemiBndWidth(const VxGenMat *m, int32_t n, int32_t *out)
{
    if (!isSquare(m, n) || !out)
        return 1;
    int32_t widest = 0;
    for (int32_t i = 0; i < n; ++i)
        widest = std::max(widest, reach(m->row[i], i, n));
    *out = isSymmetric(*m, n) ? widest : -widest;
    return 0;
}
