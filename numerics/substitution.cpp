// What follows elimination: substitution for one or many right-hand sides,
// products, inverses. Many columns go through the panels of elimination: the
// factor's columns are packed like a panel, and the rows beside it are those
// of the right-hand sides.

#include <algorithm>
#include <array>
#include <cmath>

#include "numerics/dense.h"
#include "numerics/kernel_choice.h"

namespace vx::numerics {

namespace {

constexpr int32_t panelWidth = 64;

/** Fill a panel; `element(i, c)` is asked row after row. */
template <typename Element> void fill(Panel &panel, Element element)
{
    bool finite = true;
    for (int32_t i = 0; i < panel.rows; ++i) {
        for (int32_t c = 0; c < panel.width; ++c) {
            double v = element(i, c);
            finite &= std::isfinite(v);
            panel.column[c * panel.stride + i] = v;
        }
    }
    panel.finite = finite;
}

void updateAll(const Kernels &kernels, PackedPanel &packed, double *const *row, int32_t count, double *strip)
{
    kernels.pack(packed);
    for (int32_t at = 0; at < count; at += stripColumns)
        kernels.update(packed, row, at, std::min(at + stripColumns, count), strip);
}

void forwards(const Kernels &kernels, const double *const *lu, int32_t n, double *const *row, int32_t count,
              const PanelWorkspace &workspace)
{
    for (int32_t first = 0; first < n; first += panelWidth) {
        PackedPanel packed = workspace.panel(n - first, std::min(panelWidth, n - first), true);
        fill(packed.panel, [&](int32_t i, int32_t c) { return lu[first + i][first + c]; });
        updateAll(kernels, packed, row + first, count, workspace.strip());
    }
}

/** The upper factor, read from its last row and column back, is a lower one; `row` is in that order. */
void backwards(const Kernels &kernels, const double *const *lu, int32_t n, double *const *row, int32_t count,
               const PanelWorkspace &workspace)
{
    std::array<double, panelWidth> diagonal;
    for (int32_t first = 0; first < n; first += panelWidth) {
        const int32_t last = n - 1 - first;
        PackedPanel packed = workspace.panel(n - first, std::min(panelWidth, n - first), true);
        fill(packed.panel, [&](int32_t i, int32_t c) { return lu[last - i][last - c]; });
        for (int32_t i = 0; i < packed.panel.width; ++i)
            diagonal[static_cast<size_t>(i)] = 1 / lu[last - i][last - i];
        packed.diagonal = diagonal.data();
        updateAll(kernels, packed, row + first, count, workspace.strip());
    }
}

}

void substitute(const Kernels &kernels, const double *const *lu, int32_t n, const int32_t *pivot,
                const double *b, double *x)
{
    for (int32_t i = 0; i < n; ++i)
        x[i] = b[pivot[i]];
    kernels.substitute(lu, n, x);
}

Outcome substituteMany(const Kernels &kernels, const double *const *lu, int32_t n, double *const *row,
                       int32_t count)
{
    PanelWorkspace workspace;
    Block<double *> reversed = allocate<double *>(n);
    if (!reversed || !workspace.reserve(n, std::min(n, panelWidth)))
        return Outcome::noMemory;
    forwards(kernels, lu, n, row, count, workspace);
    std::reverse_copy(row, row + n, reversed.get());
    backwards(kernels, lu, n, reversed.get(), count, workspace);
    return Outcome::done;
}

Outcome multiply(const Kernels &kernels, const VxGenMat &a, const VxGenMat &b, const VxGenMat &product)
{
    PanelWorkspace workspace;
    if (!workspace.reserve(a.rows, std::min(a.columns, panelWidth)))
        return Outcome::noMemory;
    for (int32_t i = 0; i < product.rows; ++i)
        std::fill_n(product.row[i], product.columns, 0.0);
    for (int32_t first = 0; first < a.columns; first += panelWidth) {
        PackedPanel packed = workspace.panel(a.rows, std::min(panelWidth, a.columns - first), false);
        // The kernels subtract, which with the sign turned is exactly to add.
        fill(packed.panel, [&](int32_t i, int32_t c) { return -a.row[i][first + c]; });
        kernels.pack(packed);
        for (int32_t at = 0; at < b.columns; at += stripColumns)
            kernels.subtractProduct(packed, b.row + first, product.row, at,
                                    std::min(at + stripColumns, b.columns), workspace.strip());
    }
    return Outcome::done;
}

namespace {

/** Orders for which one column after the other is quicker than panels. */
constexpr int32_t tiny = 16;

Outcome invertTiny(const VxGenMat &a, const VxGenMat &inverse)
{
    const int32_t n = a.rows;
    double element[tiny * tiny], unit[tiny] = {}, column[tiny];
    double *row[tiny];
    int32_t pivot[tiny];
    for (int32_t i = 0; i < n; ++i)
        row[i] = element + i * n;
    Outcome outcome = eliminate(kernels(), a.row, row, n, negligible, pivot);
    for (int32_t j = 0; outcome == Outcome::done && j < n; ++j) {
        unit[j] = 1;
        substitute(kernels(), row, n, pivot, unit, column);
        unit[j] = 0;
        for (int32_t i = 0; i < n; ++i)
            inverse.row[i][j] = column[i];
    }
    return outcome;
}

}

Outcome invert(const VxGenMat &a, const VxGenMat &inverse)
{
    const int32_t n = a.rows;
    if (n <= tiny)
        return invertTiny(a, inverse);
    OwnGenMat lu;
    Block<int32_t> pivot = allocate<int32_t>(n);
    if (!pivot || VxGenMatAlloc(n, n, &lu))
        return Outcome::noMemory;
    Outcome outcome = eliminate(kernels(), a.row, lu.row, n, negligible, pivot.get());
    if (outcome != Outcome::done)
        return outcome;
    for (int32_t i = 0; i < n; ++i) {
        std::fill_n(inverse.row[i], n, 0.0);
        inverse.row[i][pivot.get()[i]] = 1;
    }
    return substituteMany(kernels(), lu.row, n, inverse.row, n);
}

}
