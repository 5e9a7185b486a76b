// The dense solver against the plain stage-by-stage forms kept here, on hand systems at each bound
// and random adversarial ones; partial results on failure; rounding of point systems.
#include "zefcore/math/LUDecomp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <vector>

namespace {

using Mat = std::vector<double>;
using Points = std::vector<POINT3D>;

constexpr double kPivotBound = 0.0001;     // elimination pivot and back-substitution bound
constexpr double kFinalBound = 0.00001;    // diagonal test after elimination
constexpr double kInverseBound = 0.000001; // column pivot of the inverse
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kBelowPivot = std::nextafter(kPivotBound, 0.0);

// Same bytes, except that any two NaNs match: which operand's payload an instruction
// passes on depends on the operand order the compiler picks.
bool same(double got, double want) {
    return std::memcmp(&got, &want, sizeof got) == 0 || (std::isnan(got) && std::isnan(want));
}
bool same(const POINT3D &got, const POINT3D &want) {
    return same(got.x, want.x) && same(got.y, want.y) && same(got.z, want.z);
}
template <class T>
bool same(const T *got, const std::vector<T> &want) {
    for (std::size_t i = 0; i < want.size(); ++i)
        if (!same(got[i], want[i]))
            return false;
    return true;
}

double update(double fi, double fk, double c) {
    return fi - c * fk;
}
POINT3D update(const POINT3D &fi, const POINT3D &fk, double c) {
    return {float(fi.x - c * fk.x), float(fi.y - c * fk.y), float(fi.z - c * fk.z)};
}

// The plain elimination: the first row whose |element| >= kPivotBound is the pivot;
// each stage reads the whole previous plane and writes a new one.
template <class Rhs>
void plainEliminate(Mat &a, std::vector<Rhs> &b, int n) {
    for (int k = 0; k + 1 < n; ++k) {
        int r = k;
        while (r < n && std::fabs(a[r * n + k]) < kPivotBound)
            ++r;
        for (int c = k; r < n && r != k && c < n; ++c)
            std::swap(a[k * n + c], a[r * n + c]);
        if (r < n)
            std::swap(b[k], b[r]);
        Mat next = a;
        std::vector<Rhs> nextB = b;
        for (int i = k + 1; i < n; ++i) {
            next[i * n + k] = 0.0;
            const double c = r == n ? 0.0 : a[i * n + k] / a[k * n + k];
            for (int j = k + 1; r < n && j < n; ++j)
                next[i * n + j] = a[i * n + j] - c * a[k * n + j];
            nextB[i] = r < n ? update(b[i], b[k], c) : b[i];
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
        double best = kInverseBound;
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
    for (int i = 0; i < n * n; ++i)
        e[i] /= a[(i % n) * (n + 1)];
    return e;
}

// Back substitution with sums in double (floatSums false) or each product and sum rounded to float.
template <class Rhs>
std::vector<Rhs> refSolve(const Mat &a, const std::vector<Rhs> &b, int n, bool floatSums) {
    constexpr int kWidth = sizeof(Rhs) / sizeof(float) == 3 ? 3 : 1;
    using Value = std::conditional_t<kWidth == 3, float, double>;
    std::vector<Rhs> x(n);
    Value *xs = reinterpret_cast<Value *>(x.data());
    const Value *bs = reinterpret_cast<const Value *>(b.data());
    for (int i = n * kWidth - 1; i >= 0; --i) {
        const int r = i / kWidth, c = i % kWidth;
        double s = 0.0;
        for (int j = r + 1; j < n; ++j)
            s = floatSums ? float(s + float(a[r * n + j] * xs[kWidth * j + c]))
                          : s + a[r * n + j] * xs[kWidth * j + c];
        xs[i] = Value((bs[i] - s) / a[r * n + r]);
    }
    return x;
}

// Kinds: 0 diagonally dominant, 1 many elements below the pivot bound (exchanges, columns
// without pivot, one at a block edge), 2 as 1 with special values sprinkled in.
Mat makeSystem(std::mt19937 &rng, int n, int kind) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    const double specials[] = {kNaN, HUGE_VAL, -HUGE_VAL, 4.9e-324, -0.0, 0.0, kPivotBound, kBelowPivot};
    Mat a(std::size_t(n) * n);
    for (std::size_t q = 0; q < a.size(); ++q) {
        const double pick = u(rng);
        a[q] = (kind > 0 && pick < -0.3) ? 0.00005 * u(rng) : u(rng);
        if (kind == 2 && pick > 0.97)
            a[q] = specials[rng() % 8];
        if (kind == 0 && q % (n + 1) == 0)
            a[q] += n + 1.0;
        if (kind > 0 && n > 20 && q % n == 16)
            a[q] = q < std::size_t(3 * n) ? 1.0 : 0.00001;
    }
    return a;
}

} // namespace

// Hand systems on the pivot, final and inverse bounds and their neighbouring doubles, then random
// ones with sizes around the 16-stage blocks, each smaller one after a larger: stale buffers must not show.
TEST(LUDecompFastPath, EliminationSolveAndInverseMatchPlainForms) {
    const double aboveInverse = std::nextafter(kInverseBound, 1.0),
                 belowFinal = std::nextafter(kFinalBound, 0.0);
    std::vector<Mat> systems = {{kPivotBound, 1, 1, 1},
                                {kBelowPivot, 1, kNaN, 1}, // the next row, NaN, is taken
                                {1, 2, 2, 4},
                                {1, 0, 0, kFinalBound},
                                {1, 0, 0, -belowFinal},
                                {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1},
                                {1e-7, 1, 1, 0}, // the inverse takes the larger column
                                {1, 0, 0, 1, -kInverseBound, kInverseBound, 0, 0, 1},
                                {1, 0, 0, 0, aboveInverse, 0, 0, 0, 1},
                                {kNaN, kNaN, 3, 4}};         // NaN is never a pivot
    const bool handFlags[] = {1, 1, 0, 1, 0, 1, 1, 0, 1, 0}; // regular, then invertible
    std::mt19937 rng(17);
    for (int n : {70, 1, 17, 2, 33, 3, 16, 15, 40, 5, 31})
        for (int kind = 0; kind < 3; ++kind)
            systems.push_back(makeSystem(rng, n, kind));
    std::uniform_real_distribution<float> u(-10.0f, 10.0f);
    LUDecomp::trashRESNUM();
    LUDecomp::trashRESNUM(); // twice: nothing left to release
    int floatSumsMatter = 0;
    for (std::size_t k = 0; k < systems.size(); ++k) {
        const Mat &a0 = systems[k];
        const int n = int(std::sqrt(double(a0.size())));
        SCOPED_TRACE(testing::Message() << "system " << k << " n " << n);
        Mat a = a0, b(n), pa = a0, wantA = a0, wantPa = a0;
        Points p(n);
        for (int i = 0; i < n; ++i)
            b[i] = u(rng), p[i] = POINT3D{u(rng), u(rng), u(rng)};
        Mat wantB = b;
        Points wantP = p;
        const bool regular = LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
        plainEliminate(wantA, wantB, n);
        bool wantRegular = true;
        for (int i = 0; i < n; ++i)
            wantRegular = wantRegular && !(std::fabs(wantA[i * (n + 1)]) < kFinalBound);
        EXPECT_TRUE(same(a.data(), wantA) && same(b.data(), wantB) && regular == wantRegular);
        LUDecomp::Triangularise_Pmatrice(pa.data(), p.data(), n);
        plainEliminate(wantPa, wantP, n);
        EXPECT_TRUE(same(pa.data(), wantPa) && same(p.data(), wantP));
        bool ok = false;
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        EXPECT_TRUE(!ok || same(x, refSolve(a, b, n, false)));
        POINT3D *px = LUDecomp::Resoud_Pmatrice(pa.data(), p.data(), n, &ok);
        const Points want = refSolve(pa, p, n, true);
        EXPECT_TRUE(!ok || same(px, want));
        floatSumsMatter += ok && !same(want.data(), refSolve(pa, p, n, false));
        std::free(px);
        a = a0;
        const Mat wantInv = plainInverse(a0, n);
        double *inv = LUDecomp::Inverse_Matrix(a.data(), n);
        ASSERT_EQ(inv == nullptr, wantInv.empty());
        EXPECT_TRUE(inv == nullptr || same(inv, wantInv));
        EXPECT_TRUE(k >= 10 || (k < 5 ? regular : inv != nullptr) == handFlags[k]);
        delete[] inv;
    }
    EXPECT_GT(floatSumsMatter, 0); // double sums would give other bits
}

TEST(LUDecomp, BackSubstitutionFailuresReturnWhatWasSolved) {
    bool ok = false, ok2 = true, ok3 = true;
    Mat a = {1, 0, 0, 0.00002}, b = {1, 1}; // the last row is divided without test
    EXPECT_TRUE(LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok)[1] == 1 / 0.00002 && ok);
    a = {0.00002, 0, 0, 1};
    LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok2);
    LUDecomp::Resoud_matrice(nullptr, nullptr, 0, &ok3);
    EXPECT_FALSE(ok2 || ok3);
    // A refused row returns the rows solved below it; the bound itself is accepted.
    a = {1, 1, 1, 0, kBelowPivot, 1, 0, 0, 4};
    b = {3, 3, 3};
    EXPECT_TRUE(LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok)[2] == 0.75 && !ok);
    a[4] = -kPivotBound;
    EXPECT_TRUE(LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok)[1] == (3 - 0.75) / -kPivotBound && ok);
    // Points: last diagonal exactly zero gives all zeros; a small upper one, a partial result.
    const Points p = {{1, 2, 3}, {4, 5, 6}};
    struct {
        Mat a;
        bool ok;
        Points want;
    } const cases[] = {{{1, 2, 0, 0}, false, {{0, 0, 0}, {0, 0, 0}}},
                       {{kBelowPivot, 2, 0, 4}, false, {{0, 0, 0}, {1, 1.25f, 1.5f}}},
                       {{1, 0, 0, 0.00002},
                        true,
                        {{1, 2, 3}, {float(4 / 0.00002), float(5 / 0.00002), float(6 / 0.00002)}}}};
    for (const auto &c : cases) {
        POINT3D *x = LUDecomp::Resoud_Pmatrice(c.a.data(), p.data(), 2, &ok);
        EXPECT_TRUE(ok == c.ok && same(x, c.want)) << c.a[0];
        std::free(x);
    }
    EXPECT_EQ(LUDecomp::Resoud_Pmatrice(nullptr, nullptr, 0, &ok), nullptr);
}

TEST(LUDecomp, RowSwapsDiv3DAndImpossibleSizes) {
    Mat m = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    LUDecomp::Permut_lignes(m.data(), 0, 3, 0, 2, 1);
    EXPECT_EQ(m, (Mat{1, 8, 9, 4, 5, 6, 7, 2, 3})); // from column 1 on
    // Divided by the double itself and rounded once: 1/3 rounded to float first differs.
    const POINT3D q = {1.0f, -3.0f, 0.1f};
    const Points want = {{float(1.0 / (1.0 / 3.0)), -9.0f, float(0.1f / (1.0 / 3.0))}, {0.5f, -1.5f, 0.05f}};
    const POINT3D r[2] = {Div3D(&q, 1.0 / 3.0), Div3D(&q, 2.0)};
    EXPECT_TRUE(same(r, want) && r[0].z != q.z / float(1.0 / 3.0));
    double a[4] = {2, 0, 0, 2}, b[2] = {1, 1};
    POINT3D pb[2] = {{1, 1, 1}, {1, 1, 1}};
    EXPECT_THROW(LUDecomp::Triangularise_matrice(a, b, INT_MAX), std::bad_alloc);
    EXPECT_THROW(LUDecomp::Triangularise_Pmatrice(a, pb, INT_MAX), std::bad_alloc);
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a, b, 2)); // buffers still usable
    bool ok = false;
    EXPECT_EQ(LUDecomp::Resoud_matrice(a, b, 2, &ok)[1], 0.5);
    double *empty = LUDecomp::Inverse_Matrix(nullptr, 0);
    EXPECT_TRUE(empty != nullptr && LUDecomp::Inverse_Matrix(nullptr, -1) == nullptr);
    delete[] empty;
}
