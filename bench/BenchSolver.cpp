// Dense double-precision systems of size n = 16, 64, 256 and 512: solving
// A x = b by LUDecomp's elimination and back substitution, and inverting A,
// beside Eigen's PartialPivLU on the same matrix. Both routes copy A into their
// work storage inside the timed loop (LUDecomp overwrites its input; the LU
// object copies it), and neither allocates there but for what the call returns.
#include "BenchSupport.h"

#include "zefcore/math/LUDecomp.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if ZEF_BENCH_HAVE_EIGEN
#include <Eigen/Dense>
#endif

namespace {

using zefbench::agree;
using zefbench::perItem;

constexpr int kSizes[] = {16, 64, 256, 512};
// Agreement of the two routes: the matrices are diagonally dominant, so both
// solutions are accurate to far better than this, relative to 1 + |x|.
constexpr double kAgreement = 1e-9;

// A system of size n: A in row order (row i, column j at a[i * n + j]), with a
// dominant diagonal, and a right-hand side, both from the fixed seed.
struct System {
    std::vector<double> a;
    std::vector<double> b;
};

const System &systemOfSize(int n) {
    static std::map<int, std::unique_ptr<System>> cache;
    std::unique_ptr<System> &s = cache[n];
    if (!s) {
        s.reset(new System);
        std::mt19937 rng(zefbench::kSeed + static_cast<std::uint32_t>(n));
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        s->a.resize(static_cast<std::size_t>(n) * n);
        s->b.resize(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                s->a[static_cast<std::size_t>(i) * n + j] = unit(rng) + (i == j ? double(n) : 0.0);
        for (double &x : s->b)
            x = unit(rng);
    }
    return *s;
}

// Our solution and inverse of each system, computed once.
std::vector<double> ourSolution(int n) {
    std::vector<double> a = systemOfSize(n).a, b = systemOfSize(n).b;
    bool ok = LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
    const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
    return std::vector<double>(x, x + n);
}

std::vector<double> ourInverse(int n) {
    std::vector<double> a = systemOfSize(n).a;
    std::unique_ptr<double[]> inverse(LUDecomp::Inverse_Matrix(a.data(), n));
    return std::vector<double>(inverse.get(), inverse.get() + static_cast<std::size_t>(n) * n);
}

void zefSolve(benchmark::State &state, int n) {
    const System &s = systemOfSize(n);
    std::vector<double> a(s.a.size()), b(s.b.size());
    bool solved = true;
    for (auto _ : state) {
        std::copy(s.a.begin(), s.a.end(), a.begin());
        std::copy(s.b.begin(), s.b.end(), b.begin());
        bool ok = LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        solved = solved && ok;
        zefbench::consume(x);
        benchmark::ClobberMemory();
    }
    agree(state, solved, "a regular system was refused");
    perItem(state, 1, "system");
}

void zefInverse(benchmark::State &state, int n) {
    const System &s = systemOfSize(n);
    std::vector<double> a(s.a.size());
    bool inverted = true;
    for (auto _ : state) {
        std::copy(s.a.begin(), s.a.end(), a.begin());
        double *inverse = LUDecomp::Inverse_Matrix(a.data(), n);
        inverted = inverted && inverse != nullptr;
        zefbench::consume(inverse);
        benchmark::ClobberMemory();
        delete[] inverse;
    }
    agree(state, inverted, "a regular matrix was refused");
    perItem(state, 1, "inverse");
}

#if ZEF_BENCH_HAVE_EIGEN
Eigen::MatrixXd eigenMatrix(int n) {
    Eigen::MatrixXd m(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            m(i, j) = systemOfSize(n).a[static_cast<std::size_t>(i) * n + j];
    return m;
}

bool close(const double *x, const std::vector<double> &ours) {
    for (std::size_t i = 0; i < ours.size(); ++i)
        if (!(std::fabs(x[i] - ours[i]) <= kAgreement * (1.0 + std::fabs(ours[i]))))
            return false;
    return true;
}

void eigenSolve(benchmark::State &state, int n) {
    const Eigen::MatrixXd a = eigenMatrix(n);
    const Eigen::VectorXd b = Eigen::Map<const Eigen::VectorXd>(systemOfSize(n).b.data(), n);
    Eigen::PartialPivLU<Eigen::MatrixXd> lu(n);
    Eigen::VectorXd x(n);
    for (auto _ : state) {
        lu.compute(a);
        x = lu.solve(b);
        zefbench::consume(x.data());
        benchmark::ClobberMemory();
    }
    agree(state, close(x.data(), ourSolution(n)), "Eigen solution differs from ours");
    perItem(state, 1, "system");
}

void eigenInverse(benchmark::State &state, int n) {
    const Eigen::MatrixXd a = eigenMatrix(n);
    Eigen::PartialPivLU<Eigen::MatrixXd> lu(n);
    Eigen::MatrixXd inverse(n, n);
    for (auto _ : state) {
        lu.compute(a);
        inverse = lu.inverse();
        zefbench::consume(inverse.data());
        benchmark::ClobberMemory();
    }
    // Ours is in row order, Eigen's in column order: compare the transpose.
    const Eigen::MatrixXd rowOrder = inverse.transpose();
    agree(state, close(rowOrder.data(), ourInverse(n)), "Eigen inverse differs from ours");
    perItem(state, 1, "inverse");
}
#endif

const bool registered = [] {
    using zefbench::add;
    for (int n : kSizes) {
        const std::string suffix = "_n" + std::to_string(n);
        add("solve" + suffix, "zef:Triangularise_matrice+Resoud_matrice", [n](benchmark::State &s) {
            zefSolve(s, n);
        })->Unit(benchmark::kMicrosecond);
        add("invert" + suffix, "zef:Inverse_Matrix", [n](benchmark::State &s) {
            zefInverse(s, n);
        })->Unit(benchmark::kMicrosecond);
#if ZEF_BENCH_HAVE_EIGEN
        add("solve" + suffix, "eigen:PartialPivLU::solve", [n](benchmark::State &s) {
            eigenSolve(s, n);
        })->Unit(benchmark::kMicrosecond);
        add("invert" + suffix, "eigen:PartialPivLU::inverse", [n](benchmark::State &s) {
            eigenInverse(s, n);
        })->Unit(benchmark::kMicrosecond);
#else
        zefbench::missing("solve" + suffix, "eigen", "Eigen");
        zefbench::missing("invert" + suffix, "eigen", "Eigen");
#endif
    }
    return true;
}();

} // namespace
