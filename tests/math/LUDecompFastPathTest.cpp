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

using Mat = std::vector<double>;
constexpr double kPivotMin = 0.0001;
constexpr double kInversePivotMin = 0.000001;

double update(double fi, double fk, double c) {
    return fi - c * fk;
}
POINT3D update(const POINT3D &fi, const POINT3D &fk, double c) {
    return {float(fi.x - c * fk.x), float(fi.y - c * fk.y), float(fi.z - c * fk.z)};
}

// The plain elimination: the first row whose |element| >= kPivotMin is the pivot;
// each stage reads the whole previous plane and writes a new one.
template <class Rhs>
void plainEliminate(Mat &a, std::vector<Rhs> &b, int n) {
    for (int k = 0; k + 1 < n; ++k) {
        int r = k;
        while (r < n && std::fabs(a[r * n + k]) < kPivotMin)
            ++r;
        if (r < n && r != k) {
            for (int c = k; c < n; ++c)
                std::swap(a[k * n + c], a[r * n + c]);
            std::swap(b[k], b[r]);
        }
        Mat next = a;
        std::vector<Rhs> nextB = b;
        for (int i = k + 1; i < n; ++i) {
            next[i * n + k] = 0.0;
            if (r == n)
                continue;
            const double c = a[i * n + k] / a[k * n + k];
            for (int j = k + 1; j < n; ++j)
                next[i * n + j] = a[i * n + j] - c * a[k * n + j];
            nextB[i] = update(b[i], b[k], c);
        }
        a.swap(next);
        b.swap(nextB);
    }
}

// The plain inverse: column operations, column by column. Empty result: singular.
Mat plainInverse(Mat a, int n) {
    Mat e(std::size_t(n) * n, 0.0);
    for (int i = 0; i < n; ++i)
        e[i * n + i] = 1.0;
    auto columns = [&](int j, int k) {
        const double q = a[k * n + j] / a[k * n + k];
        for (int i = 0; i < n; ++i)
            a[i * n + j] -= a[i * n + k] * q, e[i * n + j] -= e[i * n + k] * q;
    };
    for (int k = 0; k < n; ++k) {
        int pivot = -1;
        double best = kInversePivotMin;
        for (int c = k; c < n; ++c)
            if (std::fabs(a[k * n + c]) > best)
                best = std::fabs(a[k * n + c]), pivot = c;
        if (pivot < 0)
            return {};
        for (int i = 0; pivot != k && i < n; ++i)
            std::swap(a[i * n + k], a[i * n + pivot]), std::swap(e[i * n + k], e[i * n + pivot]);
        for (int j = k + 1; j < n; ++j)
            columns(j, k);
    }
    for (int k = n - 1; k >= 0; --k)
        for (int j = k - 1; j >= 0; --j)
            columns(j, k);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            e[i * n + j] /= a[j * n + j];
    return e;
}

// Same bytes, except that any two NaNs match: which operand's payload an
// instruction passes on depends on the operand order the compiler picks.
bool sameValue(double got, double want) {
    return std::memcmp(&got, &want, sizeof got) == 0 || (std::isnan(got) && std::isnan(want));
}
bool sameValue(const POINT3D &got, const POINT3D &want) {
    return sameValue(got.x, want.x) && sameValue(got.y, want.y) && sameValue(got.z, want.z);
}
template <class T>
bool sameBytes(const T *got, const std::vector<T> &want) {
    for (std::size_t i = 0; i < want.size(); ++i)
        if (!sameValue(got[i], want[i]))
            return false;
    return true;
}

// Kinds: 0 regular, 1 many elements below the pivot bound (exchanges, columns
// without pivot, one at a block edge), 2 as 1 with special values sprinkled in.
Mat makeSystem(std::mt19937 &rng, int n, int kind) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    const double specials[] = {std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               4.9e-324,
                               -0.0,
                               0.0,
                               kPivotMin,
                               std::nextafter(kPivotMin, 0.0)};
    Mat a(std::size_t(n) * n);
    for (std::size_t q = 0; q < a.size(); ++q) {
        const double pick = u(rng);
        a[q] = (kind > 0 && pick < -0.3) ? 0.00005 * u(rng) : u(rng);
        if (kind == 2 && pick > 0.97)
            a[q] = specials[rng() % 8];
        if (kind == 0 && q % (n + 1) == 0)
            a[q] += 2.0;
        if (kind > 0 && n > 20 && q % n == 16)
            a[q] = q < std::size_t(3 * n) ? 1.0 : 0.00001;
    }
    return a;
}

} // namespace

TEST(LUDecompFastPath, EliminationAndInverseMatchPlainBytes) {
    std::mt19937 rng(17);
    std::uniform_real_distribution<float> u(-10.0f, 10.0f);
    for (int n : {1, 2, 3, 5, 15, 16, 17, 31, 33, 40, 70}) {
        for (int kind = 0; kind < 3; ++kind) {
            SCOPED_TRACE(testing::Message() << "n " << n << " kind " << kind);
            const Mat a0 = makeSystem(rng, n, kind);
            Mat a = a0, b(n), wantA = a0, pa = a0, wantPa = a0;
            std::vector<POINT3D> p(n);
            for (int i = 0; i < n; ++i)
                b[i] = u(rng), p[i] = POINT3D{u(rng), u(rng), u(rng)};
            Mat wantB = b;
            std::vector<POINT3D> wantP = p;
            LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
            plainEliminate(wantA, wantB, n);
            EXPECT_TRUE(sameBytes(a.data(), wantA) && sameBytes(b.data(), wantB));
            LUDecomp::Triangularise_Pmatrice(pa.data(), p.data(), n);
            plainEliminate(wantPa, wantP, n);
            EXPECT_TRUE(sameBytes(pa.data(), wantPa) && sameBytes(p.data(), wantP));

            a = a0;
            const Mat want = plainInverse(a0, n);
            double *got = LUDecomp::Inverse_Matrix(a.data(), n);
            ASSERT_EQ(got == nullptr, want.empty());
            EXPECT_TRUE(got == nullptr || sameBytes(got, want));
            delete[] got;
        }
    }
}
