// The solver's blocked elimination and row-wise inverse against the plain
// stage-by-stage forms kept here: the same bytes on random and adversarial
// systems (small pivots and exchanges across block edges, columns without a
// pivot, NaN, infinities, subnormals, signed zeros).
#include "zefcore/math/LUDecomp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr double kPivotMin = 0.0001;
constexpr double kInversePivotMin = 0.000001;

// The plain elimination: two planes, the whole plane copied at every stage.
template <class Rhs, class Update>
void plainEliminate(std::vector<double> &a, std::vector<Rhs> &b, int n, Update update) {
    std::vector<double> pc = a, pn(a.size());
    std::vector<Rhs> fc = b, fn(b.size());
    for (int k = 0; k + 1 < n; ++k) {
        double p = pc[k * n + k];
        int r = 0;
        if (std::fabs(p) < kPivotMin) {
            r = k + 1;
            while (r < n && std::fabs(pc[r * n + k]) < kPivotMin)
                ++r;
            if (r < n) {
                for (int c = k; c < n; ++c)
                    std::swap(pc[k * n + c], pc[r * n + c]);
                std::swap(fc[k], fc[r]);
                p = pc[k * n + k];
            }
        }
        pn = pc;
        fn = fc;
        for (int i = k + 1; i < n; ++i) {
            if (r < n) {
                const double c = pc[i * n + k] / p;
                for (int j = k + 1; j < n; ++j)
                    pn[i * n + j] = pc[i * n + j] - c * pc[k * n + j];
                fn[i] = update(fc[i], fc[k], c);
            }
            pn[i * n + k] = 0.0;
        }
        std::swap(pc, pn);
        std::swap(fc, fn);
    }
    a = pc;
    b = fc;
}
double updateDouble(double fi, double fk, double c) {
    return fi - c * fk;
}
POINT3D updatePoint(const POINT3D &fi, const POINT3D &fk, double c) {
    const float x = float(double(fi.x) - c * double(fk.x));
    const float y = float(double(fi.y) - c * double(fk.y));
    const float z = float(double(fi.z) - c * double(fk.z));
    return POINT3D{x, y, z};
}

// The plain inverse: column operations, column by column. Empty result: singular.
std::vector<double> plainInverse(std::vector<double> a, int n) {
    std::vector<double> e(std::size_t(n) * n, 0.0);
    for (int i = 0; i < n; ++i)
        e[i * n + i] = 1.0;
    auto column = [n](std::vector<double> &m, int j, int k, double q) {
        for (int i = 0; i < n; ++i)
            m[i * n + j] -= m[i * n + k] * q;
    };
    for (int k = 0; k < n; ++k) {
        int pivot = -1;
        double best = kInversePivotMin;
        for (int c = k; c < n; ++c)
            if (std::fabs(a[k * n + c]) > best) {
                best = std::fabs(a[k * n + c]);
                pivot = c;
            }
        if (pivot < 0)
            return {};
        for (int i = 0; pivot != k && i < n; ++i) {
            std::swap(a[i * n + k], a[i * n + pivot]);
            std::swap(e[i * n + k], e[i * n + pivot]);
        }
        for (int j = k + 1; j < n; ++j) {
            const double q = a[k * n + j] / a[k * n + k];
            column(a, j, k, q);
            column(e, j, k, q);
        }
    }
    for (int k = n - 1; k >= 0; --k)
        for (int j = k - 1; j >= 0; --j) {
            const double q = a[k * n + j] / a[k * n + k];
            column(a, j, k, q);
            column(e, j, k, q);
        }
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            e[i * n + j] /= a[j * n + j];
    return e;
}

// Same bytes element by element, except that any two NaNs match: which operand's
// payload an instruction passes on depends on the operand order the compiler
// picks, in the plain code as much as in the fast one.
template <class T>
bool sameValue(T got, T want) {
    return std::memcmp(&got, &want, sizeof(T)) == 0 || (std::isnan(got) && std::isnan(want));
}
bool sameValue(const POINT3D &got, const POINT3D &want) {
    return sameValue(got.x, want.x) && sameValue(got.y, want.y) && sameValue(got.z, want.z);
}
template <class T>
bool sameBytes(const std::vector<T> &got, const std::vector<T> &want) {
    if (got.size() != want.size())
        return false;
    for (std::size_t i = 0; i < got.size(); ++i)
        if (!sameValue(got[i], want[i]))
            return false;
    return true;
}

// Kinds of systems: 0 regular, 1 many elements below the pivot bound (exchanges,
// columns without pivot), 2 as 1 with special values sprinkled in.
std::vector<double> makeSystem(std::mt19937 &rng, int n, int kind) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    const double specials[] = {std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               4.9e-324,
                               -0.0,
                               0.0,
                               kPivotMin,
                               std::nextafter(kPivotMin, 0.0)};
    std::vector<double> a(std::size_t(n) * n);
    for (double &x : a) {
        const double pick = u(rng);
        x = (kind > 0 && pick < -0.3) ? 0.00005 * u(rng) : u(rng);
        if (kind == 2 && pick > 0.97)
            x = specials[rng() % 8];
    }
    if (kind == 0)
        for (int i = 0; i < n; ++i)
            a[i * n + i] += 2.0;
    if (kind > 0 && n > 20)
        for (int i = 0; i < n; ++i) // a column with no pivot at a block edge
            a[i * n + 16] = i < 3 ? 1.0 : 0.00001;
    return a;
}

} // namespace

TEST(LUDecompFastPath, EliminationMatchesPlainBytes) {
    std::mt19937 rng(17);
    std::uniform_real_distribution<float> u(-10.0f, 10.0f);
    for (int n : {1, 2, 3, 5, 15, 16, 17, 31, 33, 40, 70}) {
        for (int kind = 0; kind < 3; ++kind) {
            for (int rep = 0; rep < 3; ++rep) {
                const std::vector<double> a0 = makeSystem(rng, n, kind);
                std::vector<double> b0(n);
                std::vector<POINT3D> p0(n);
                for (int i = 0; i < n; ++i) {
                    b0[i] = u(rng);
                    p0[i] = POINT3D{u(rng), u(rng), u(rng)};
                }
                std::vector<double> a = a0, b = b0, wantA = a0, wantB = b0;
                LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
                plainEliminate(wantA, wantB, n, updateDouble);
                EXPECT_TRUE(sameBytes(a, wantA) && sameBytes(b, wantB)) << "n " << n << " kind " << kind;

                std::vector<double> pa = a0, wantPa = a0;
                std::vector<POINT3D> p = p0, wantP = p0;
                LUDecomp::Triangularise_Pmatrice(pa.data(), p.data(), n);
                plainEliminate(wantPa, wantP, n, updatePoint);
                EXPECT_TRUE(sameBytes(pa, wantPa) && sameBytes(p, wantP))
                    << "points, n " << n << " kind " << kind;
            }
        }
    }
}

TEST(LUDecompFastPath, InverseMatchesPlainBytes) {
    std::mt19937 rng(29);
    for (int n : {1, 2, 4, 9, 33}) {
        for (int kind = 0; kind < 3; ++kind) {
            std::vector<double> a = makeSystem(rng, n, kind);
            const std::vector<double> want = plainInverse(a, n);
            double *got = LUDecomp::Inverse_Matrix(a.data(), n);
            ASSERT_EQ(got == nullptr, want.empty()) << "n " << n << " kind " << kind;
            if (got != nullptr) {
                EXPECT_TRUE(sameBytes(std::vector<double>(got, got + n * n), want))
                    << "n " << n << " kind " << kind;
            }
            delete[] got;
        }
    }
}
