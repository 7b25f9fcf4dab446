// Band systems and singular values beside LAPACK, Debian's reference and
// OpenBLAS on one thread, and the assembly of a sparse matrix beside Eigen's.
// The two LAPACKs define the same names, so both are loaded at run time.

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <Eigen/Sparse>
#include <benchmark/benchmark.h>

#include "vx/coo.hpp"
#include "vx/matrix.h"

namespace {

using Dpbsv = void (*)(const char *upper, const int *n, const int *semi, const int *count, double *band,
                       const int *stride, double *x, const int *xStride, int *info, size_t);
using Dptsv = void (*)(const int *n, const int *count, double *d, double *e, double *x, const int *xStride,
                       int *info);
using Dgesdd = void (*)(const char *job, const int *m, const int *n, double *a, const int *aStride, double *w,
                        double *u, const int *uStride, double *v, const int *vStride, double *work,
                        const int *workSize, int *intWork, int *info, size_t);

class Lapack {
public:
    explicit Lapack(std::vector<std::string> libraries)
    {
        for (const std::string &name : libraries)
            handle_ = dlopen((VX_BENCH_LIBRARIES "/" + name).c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handle_)
            throw std::runtime_error(dlerror());
    }

    template <typename Function> Function function(const char *name) const
    {
        return reinterpret_cast<Function>(dlsym(handle_, name));
    }

private:
    void *handle_ = nullptr;
};

const Lapack &openBlas()
{
    static const Lapack lapack = [] {
        setenv("OPENBLAS_NUM_THREADS", "1", 1);
        return Lapack({"openblas-pthread/libopenblas.so.0"});
    }();
    return lapack;
}

/** With its own BLAS: the first library satisfies what the second one asks for. */
const Lapack &reference()
{
    static const Lapack lapack({"blas/libblas.so.3", "lapack/liblapack.so.3"});
    return lapack;
}

// ---------------------------------------------------------------- bands

constexpr int order = 100'000;

double element(std::mt19937 &random, int distance, int semi)
{
    return distance ? std::uniform_real_distribution<double>(-1, 1)(random) : 4.0 * semi;
}

void bandVx(benchmark::State &state, int semi)
{
    std::mt19937 random(1);
    VxBndMat band;
    if (VxBndMatAlloc(order, semi + 1, &band))
        return state.SkipWithError("no memory");
    for (int i = 0; i < order; ++i)
        for (int d = 0; d <= std::min(semi, order - 1 - i); ++d)
            band.row[i][d] = element(random, d, semi);
    std::vector<double> b(order, 1.0), x(order);
    double *rhs = b.data(), *solution = x.data();
    for (auto _ : state)
        if (SolvLinSystem(1, order, &band, 1, &rhs, &solution))
            state.SkipWithError("not solved");
    VxBndMatFree(&band);
}

/** Works in place, and so destroys the matrix: as above, that is to stay, so a copy of it is timed too. */
void bandLapack(benchmark::State &state, const Lapack &lapack, int semi)
{
    const auto solve = lapack.function<Dpbsv>("dpbsv_");
    std::mt19937 random(1);
    const int stride = semi + 1, one = 1;
    std::vector<double> band(static_cast<size_t>(order) * static_cast<size_t>(stride));
    for (int i = 0; i < order; ++i)
        for (int d = 0; d <= std::min(semi, order - 1 - i); ++d)
            band[static_cast<size_t>(i) * static_cast<size_t>(stride) + static_cast<size_t>(d)] =
                element(random, d, semi);
    std::vector<double> x;
    int info = 0;
    for (auto _ : state) {
        std::vector<double> work = band;
        x.assign(order, 1.0);
        solve("L", &order, &semi, &one, work.data(), &stride, x.data(), &order, &info, 1);
        if (info)
            state.SkipWithError("not solved");
    }
}

void threeDiagonalsLapack(benchmark::State &state)
{
    const auto solve = openBlas().function<Dptsv>("dptsv_");
    std::mt19937 random(1);
    std::vector<double> d(order), e(order), dWork, eWork, x;
    for (size_t i = 0; i < d.size(); ++i) {
        d[i] = element(random, 0, 1);
        e[i] = element(random, 1, 1);
    }
    const int one = 1;
    int info = 0;
    for (auto _ : state) {
        dWork = d;
        eWork = e;
        x.assign(order, 1.0);
        solve(&order, &one, dWork.data(), eWork.data(), x.data(), &order, &info);
        if (info)
            state.SkipWithError("not solved");
    }
}

// ---------------------------------------------------------------- singular values

std::vector<double> dense(int n)
{
    std::mt19937 random(2);
    std::normal_distribution<double> value;
    std::vector<double> a(static_cast<size_t>(n) * static_cast<size_t>(n));
    std::generate(a.begin(), a.end(), [&] { return value(random); });
    return a;
}

/** Both destroy the matrix, and both are timed with filling it. */
void svdVx(benchmark::State &state, int n)
{
    const std::vector<double> from = dense(n);
    VxGenMat a, v;
    if (VxGenMatAlloc(n, n, &a) || VxGenMatAlloc(n, n, &v))
        return state.SkipWithError("no memory");
    std::vector<double> w(static_cast<size_t>(n));
    for (auto _ : state) {
        std::copy(from.begin(), from.end(), a.row[0]);
        if (VxMatSvd(&a, w.data(), &v))
            state.SkipWithError("not decomposed");
    }
    VxGenMatFree(&a);
    VxGenMatFree(&v);
}

void svdLapack(benchmark::State &state, int n)
{
    const auto decompose = openBlas().function<Dgesdd>("dgesdd_");
    const std::vector<double> from = dense(n);
    std::vector<double> a = from, u = from, v = from, w(static_cast<size_t>(n));
    std::vector<double> work(from.size() * 10 + 1000);
    std::vector<int> intWork(static_cast<size_t>(n) * 8);
    const int size = static_cast<int>(work.size());
    int info = 0;
    for (auto _ : state) {
        std::copy(from.begin(), from.end(), a.begin());
        decompose("S", &n, &n, a.data(), &n, w.data(), u.data(), &n, v.data(), &n, work.data(), &size,
                  intWork.data(), &info, 1);
        if (info)
            state.SkipWithError("not decomposed");
    }
}

// ---------------------------------------------------------------- assembly

/** Contributions to the positions of a matrix with five in each column, at random rows. */
std::vector<VX::CooMatrixElement> contributions(int count)
{
    constexpr int32_t columns = 200'000, positions = 1'000'000;
    std::mt19937 random(3);
    std::uniform_int_distribution<int32_t> row(0, columns - 1), position(0, positions - 1);
    std::normal_distribution<double> value;
    std::vector<int32_t> rowOf(positions);
    std::generate(rowOf.begin(), rowOf.end(), [&] { return row(random); });
    std::vector<VX::CooMatrixElement> all(static_cast<size_t>(count));
    for (auto &e : all) {
        const int32_t at = position(random);
        e = {rowOf[static_cast<size_t>(at)], at / 5, value(random)};
    }
    return all;
}

void assemblyVx(benchmark::State &state, int count)
{
    const auto all = contributions(count);
    for (auto _ : state) {
        VX::CooMatrix matrix;
        for (const auto &e : all)
            matrix.Insert(e.row, e.column, e.value);
        benchmark::DoNotOptimize(matrix.Size());
    }
}

void assemblyEigen(benchmark::State &state, int count)
{
    const auto all = contributions(count);
    for (auto _ : state) {
        std::vector<Eigen::Triplet<double>> triplets;
        triplets.reserve(all.size());
        for (const auto &e : all)
            triplets.emplace_back(e.row, e.column, e.value);
        Eigen::SparseMatrix<double> matrix(200'000, 200'000);
        matrix.setFromTriplets(triplets.begin(), triplets.end());
        benchmark::DoNotOptimize(matrix.nonZeros());
    }
}

const bool registered = [] {
    auto add = [](const std::string &name, auto function, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), function, arguments...)->Unit(benchmark::kMicrosecond);
    };
    add("band 100000, semi-bandwidth 1/vx", bandVx, 1);
    add("band 100000, semi-bandwidth 1/dptsv", threeDiagonalsLapack);
    for (int semi : {10, 50}) {
        const std::string work = "band 100000, semi-bandwidth " + std::to_string(semi);
        add(work + "/vx", bandVx, semi);
        add(
            work + "/reference dpbsv", [](auto &state, int s) { bandLapack(state, reference(), s); }, semi);
        add(
            work + "/OpenBLAS dpbsv", [](auto &state, int s) { bandLapack(state, openBlas(), s); }, semi);
    }
    for (int n : {10, 50, 200}) {
        const std::string work = "singular values " + std::to_string(n);
        add(work + "/vx", svdVx, n);
        add(work + "/dgesdd", svdLapack, n);
    }
    for (int count : {100'000, 10'000'000}) {
        const std::string work = "assembly " + std::to_string(count);
        add(work + "/vx", assemblyVx, count);
        add(work + "/Eigen", assemblyEigen, count);
    }
    return true;
}();

}
