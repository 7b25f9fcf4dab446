// Dense systems beside LAPACK's dgesv of OpenBLAS, on one thread, and beside
// Eigen's partial pivoting, as the distribution compiles it and compiled for
// this machine. Then a table of how exact the solutions are.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "numerics_eigen.h"
#include "vx/matrix.h"

extern "C" {
void dgesv_(const int *n, const int *count, double *a, const int *lda, int *pivot, double *b, const int *ldb,
            int *info);
void openblas_set_num_threads(int threads);
}

namespace {

struct System {
    explicit System(int32_t order) : n(order), b(static_cast<size_t>(n), 1.0), x(b)
    {
        VxGenMatAlloc(n, n, &a);
        std::mt19937 random(1);
        std::uniform_real_distribution<double> value(-1, 1);
        for (int32_t i = 0; i < n; ++i)
            for (int32_t j = 0; j < n; ++j)
                a.row[i][j] = value(random);
        for (double &right : b)
            right = value(random);
    }
    ~System() { VxGenMatFree(&a); }
    System(const System &) = delete;
    System &operator=(const System &) = delete;

    uint32_t solve()
    {
        double *rhs = b.data();
        double *solution = x.data();
        return SolvLinSystem(0, n, &a, 1, &rhs, &solution);
    }

    int32_t n;
    VxGenMat a{};
    std::vector<double> b, x;
};

void ours(benchmark::State &state, int32_t n)
{
    System system(n);
    for (auto _ : state)
        if (system.solve())
            state.SkipWithError("not solved");
}

/** Column by column what are rows to us: the transposed system costs the same. */
void lapack(benchmark::State &state, int32_t n)
{
    System system(n);
    const size_t elements = static_cast<size_t>(n) * static_cast<size_t>(n);
    std::vector<double> a(elements);
    std::vector<int> pivot(static_cast<size_t>(n));
    const int one = 1;
    int info = 0;
    openblas_set_num_threads(1);
    for (auto _ : state) {
        std::copy_n(system.a.row[0], elements, a.data());
        std::copy(system.b.begin(), system.b.end(), system.x.begin());
        dgesv_(&n, &one, a.data(), &n, pivot.data(), system.x.data(), &n, &info);
    }
}

void eigen(benchmark::State &state, int32_t n, decltype(&solveWithEigen) solve)
{
    System system(n);
    for (auto _ : state)
        solve(n, system.a.row[0], system.b.data(), system.x.data());
}

// ---------------------------------------------------------------- how exact the solutions are

/** Sixteen digits and as many again. */
using Wide = __float128;

Wide magnitude(Wide v)
{
    return v < 0 ? -v : v;
}

using WideMatrix = std::vector<std::vector<Wide>>;

/** Gauss and Jordan in extended precision: the inverse. */
WideMatrix inverseOf(const VxGenMat &a)
{
    const size_t n = static_cast<size_t>(a.rows);
    WideMatrix m(n, std::vector<Wide>(2 * n));
    for (size_t i = 0; i < n; ++i) {
        std::copy_n(a.row[i], n, m[i].begin());
        m[i][n + i] = 1;
    }
    for (size_t k = 0; k < n; ++k) {
        auto larger = [k](const auto &p, const auto &q) { return magnitude(p[k]) < magnitude(q[k]); };
        std::swap(m[k], *std::max_element(m.begin() + static_cast<ptrdiff_t>(k), m.end(), larger));
        const Wide pivot = m[k][k];
        for (Wide &v : m[k])
            v /= pivot;
        for (size_t i = 0; i < n; ++i) {
            const Wide factor = m[i][k];
            for (size_t j = k; i != k && factor != 0 && j < 2 * n; ++j)
                m[i][j] -= factor * m[k][j];
        }
    }
    for (auto &row : m)
        row.erase(row.begin(), row.begin() + static_cast<ptrdiff_t>(n));
    return m;
}

template <typename Element> double infinityNorm(size_t n, Element element)
{
    Wide norm = 0;
    for (size_t i = 0; i < n; ++i) {
        Wide sum = 0;
        for (size_t j = 0; j < n; ++j)
            sum += magnitude(element(i, j));
        norm = std::max(norm, sum);
    }
    return static_cast<double>(norm);
}

struct Exactness {
    double condition, residual, error;
};

/** Of a solved system: the residual in units of eps |A| |x|, the error in units of eps cond(A) |x|. */
Exactness examine(const System &system)
{
    const size_t n = static_cast<size_t>(system.n);
    const double epsilon = std::numeric_limits<double>::epsilon();
    const WideMatrix inverse = inverseOf(system.a);
    const double norm = infinityNorm(n, [&](size_t i, size_t j) { return Wide(system.a.row[i][j]); });
    const double condition = norm * infinityNorm(n, [&](size_t i, size_t j) { return inverse[i][j]; });
    Wide residual = 0, error = 0, size = 0;
    for (size_t i = 0; i < n; ++i) {
        Wide difference = system.b[i];
        Wide exact = 0;
        for (size_t j = 0; j < n; ++j) {
            difference -= Wide(system.a.row[i][j]) * system.x[j];
            exact += inverse[i][j] * system.b[j];
        }
        residual = std::max(residual, magnitude(difference));
        error = std::max(error, magnitude(exact - system.x[i]));
        size = std::max(size, magnitude(exact));
    }
    return {condition, static_cast<double>(residual / size) / (epsilon * norm),
            static_cast<double>(error / size) / (epsilon * condition)};
}

/** Householder reflections of random vectors, one after the other. */
void makeOrthogonal(VxGenMat &a, std::mt19937 &random)
{
    const int32_t n = a.rows;
    std::normal_distribution<double> value;
    for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < n; ++j)
            a.row[i][j] = i == j;
    for (int32_t k = 0; k < n; ++k) {
        std::vector<double> v(static_cast<size_t>(n));
        double square = 0;
        for (double &element : v) {
            element = value(random);
            square += element * element;
        }
        for (int32_t i = 0; i < n; ++i) {
            double dot = 0;
            for (int32_t j = 0; j < n; ++j)
                dot += a.row[i][j] * v[static_cast<size_t>(j)];
            for (int32_t j = 0; j < n; ++j)
                a.row[i][j] -= 2 * dot / square * v[static_cast<size_t>(j)];
        }
    }
}

void fill(VxGenMat &a, const std::function<double(int32_t, int32_t)> &element)
{
    for (int32_t i = 0; i < a.rows; ++i)
        for (int32_t j = 0; j < a.columns; ++j)
            a.row[i][j] = element(i, j);
}

void printRow(const char *name, System &system)
{
    if (system.solve()) {
        std::fprintf(stderr, "%-22s %4d   refused as singular\n", name, system.n);
        return;
    }
    const Exactness found = examine(system);
    std::fprintf(stderr, "%-22s %4d %12.2e %12.2e %12.2e\n", name, system.n, found.condition, found.residual,
                 found.error);
}

void printExactness()
{
    std::fprintf(stderr, "%-22s %4s %12s %12s %12s\n", "matrix", "n", "condition", "residual", "error");
    std::fprintf(stderr, "%-22s %4s %12s %12s %12s\n", "", "", "", "eps |A| |x|", "eps cond |x|");
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(-1, 1);
    auto any = [&](int32_t, int32_t) { return value(random); };
    for (int32_t n : {6, 9, 12}) {
        System system(n);
        fill(system.a, [](int32_t i, int32_t j) { return 1.0 / (i + j + 1); });
        printRow("Hilbert", system);
        fill(system.a, [n](int32_t i, int32_t j) { return std::pow((i + 1.0) / n, j); });
        printRow("Vandermonde", system);
    }
    for (int32_t n : {50, 200}) {
        System system(n);
        fill(system.a, any);
        printRow("random", system);
        makeOrthogonal(system.a, random);
        printRow("random orthogonal", system);
        fill(system.a,
             [&](int32_t i, int32_t j) { return value(random) * std::pow(10.0, -8.0 * std::max(i, j) / n); });
        printRow("graded", system);
        fill(system.a,
             [&](int32_t i, int32_t j) { return (j == (7 * i + 3) % n ? 1 : 1e-3) * value(random); });
        printRow("permuted", system);
        fill(system.a,
             [&](int32_t i, int32_t j) { return value(random) * std::pow(10.0, (i * 5) % 9 - (j * 7) % 9); });
        printRow("badly scaled", system);
    }
}

void add(const std::string &work, const char *who, std::function<void(benchmark::State &)> body)
{
    benchmark::RegisterBenchmark((work + "/" + who).c_str(), std::move(body))->Unit(benchmark::kMicrosecond);
}

}

int main(int argc, char **argv)
{
    for (int32_t n : {8, 50, 200, 500, 1000, 2000}) {
        const std::string work = "solve dense " + std::to_string(n);
        add(work, "vx", [n](benchmark::State &state) { ours(state, n); });
        if (n > 8)
            add(work, "dgesv", [n](benchmark::State &state) { lapack(state, n); });
        if (n == 8)
            add(work, "Eigen", [n](benchmark::State &state) { eigen(state, n, solveWithEigen); });
        else if (n < 500)
            add(work, "Eigen native",
                [n](benchmark::State &state) { eigen(state, n, solveWithNativeEigen); });
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    printExactness();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
