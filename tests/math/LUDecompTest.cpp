// The dense solver's stated rules: the pivot is the first row large enough, the
// bounds of each stage, partial results on failure, rounding of point systems,
// and work buffers that give the same bits whatever ran before.
#include "zefcore/math/LUDecomp.h"

#include <gtest/gtest.h>

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
constexpr double kResidualTolerance = 1e-9;
constexpr double kInverseTolerance = 1e-10;
const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kBelowPivot = std::nextafter(kPivotBound, 0.0);

template <class T>
bool sameBytes(const T *got, const T *want, std::size_t count) {
    return std::memcmp(got, want, sizeof(T) * count) == 0;
}
// Equal values, a NaN matching a NaN.
bool sameValues(const double *got, const Mat &want) {
    for (std::size_t i = 0; i < want.size(); ++i)
        if (!(got[i] == want[i] || (std::isnan(got[i]) && std::isnan(want[i]))))
            return false;
    return true;
}

// Back substitution with sums in double (floatSums false) or each product and sum rounded to float.
template <class Rhs>
std::vector<Rhs> refSolve(const Mat &a, const std::vector<Rhs> &b, int n, bool floatSums) {
    constexpr int kWidth = sizeof(Rhs) / sizeof(float) == 3 ? 3 : 1;
    using Value = std::conditional_t<kWidth == 3, float, double>;
    std::vector<Rhs> x(n);
    Value *xs = reinterpret_cast<Value *>(x.data());
    const Value *bs = reinterpret_cast<const Value *>(b.data());
    for (int i = n - 1; i >= 0; --i)
        for (int c = 0; c < kWidth; ++c) {
            double s = 0.0;
            for (int j = i + 1; j < n; ++j)
                s = floatSums ? float(s + float(a[i * n + j] * xs[kWidth * j + c]))
                              : s + a[i * n + j] * xs[kWidth * j + c];
            xs[kWidth * i + c] = Value((bs[kWidth * i + c] - s) / a[i * n + i]);
        }
    return x;
}

// Diagonally dominant (well conditioned), or with many elements below the pivot bound.
Mat randomSystem(std::mt19937 &rng, int n, bool smallElements = false) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    Mat a(std::size_t(n) * n);
    for (int q = 0; q < n * n; ++q)
        a[q] = (smallElements && u(rng) < -0.4 ? 0.00005 * u(rng) : u(rng)) +
               (!smallElements && q % (n + 1) == 0 ? n + 1.0 : 0.0);
    return a;
}
Mat randomVector(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<double> u(-10.0, 10.0);
    Mat v(n);
    for (double &e : v)
        e = u(rng);
    return v;
}
Points randomPoints(std::mt19937 &rng, int n) {
    const Mat v = randomVector(rng, 3 * n);
    Points p(n);
    for (int i = 0; i < n; ++i)
        p[i] = {float(v[3 * i]), float(v[3 * i + 1]), float(v[3 * i + 2])};
    return p;
}

} // namespace

TEST(LUDecomp, EliminationTakesTheFirstRowLargeEnough) {
    // Expected results as written: in each column, c = a[i][k] / pivot, then a[i][j] - c * a[k][j].
    struct {
        Mat a, b;
        bool regular;
        Mat wantA, wantB; // a prefix of the results
    } const cases[] = {
        // Large enough though not the largest; on the bound; below it, the NaN of the next row.
        {{0.0002, 1, 1, 1}, {1, 2}, true, {0.0002, 1, 0, 1 - 1 / 0.0002}, {1, 2 - 1 / 0.0002}},
        {{kPivotBound, 1, 1, 1},
         {5, 6},
         true,
         {kPivotBound, 1, 0, 1 - 1 / kPivotBound},
         {5, 6 - (1 / kPivotBound) * 5}},
        {{kBelowPivot, 1, kNaN, 1}, {5, 6}, true, {kNaN, 1, 0, kNaN}, {6, kNaN}},
        // Singular: last diagonal 0. Column 0 without pivot: only zeroed below the diagonal.
        {{1, 2, 2, 4}, {1, 1}, false, {1, 2, 0, 0}, {1, -1}},
        {{0.00002, 1, 0, 0.00003, 2, 1, 0.00009, 1, 3},
         {1, 2, 3},
         true,
         {0.00002, 1, 0, 0, 2, 1, 0, 0, 2.5},
         {1, 2, 2}},
        // The final bound passes; the next double below it fails.
        {{1, 0, 0, kFinalBound}, {1, 1}, true, {1, 0, 0, kFinalBound}, {1, 1}},
        {{1, 0, 0, -std::nextafter(kFinalBound, 0.0)}, {1, 1}, false, {}, {}},
    };
    for (const auto &c : cases) {
        Mat a = c.a, b = c.b;
        const int n = int(b.size());
        EXPECT_EQ(LUDecomp::Triangularise_matrice(a.data(), b.data(), n), c.regular) << c.a[0];
        EXPECT_TRUE(sameValues(a.data(), c.wantA) && sameValues(b.data(), c.wantB)) << c.a[0] << " " << a[0];
    }
}

TEST(LUDecomp, BackSubstitutionFailuresReturnWhatWasSolved) {
    bool ok = false;
    Mat a = {1, 0, 0, 0.00002}, b = {1, 1}; // the last row is divided without test
    EXPECT_TRUE(LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok)[1] == 1 / 0.00002 && ok);
    a = {0.00002, 0, 0, 1};
    LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok);
    EXPECT_FALSE(ok);
    LUDecomp::Resoud_matrice(nullptr, nullptr, 0, &ok);
    EXPECT_FALSE(ok);
    // A refused row returns the rows solved below it; the bound itself is accepted.
    a = {1, 1, 1, 0, kBelowPivot, 1, 0, 0, 4};
    b = {3, 3, 3};
    EXPECT_TRUE(LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok)[2] == 0.75 && !ok);
    a[4] = -kPivotBound;
    EXPECT_TRUE(LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok)[1] == (3 - 0.75) / -kPivotBound && ok);

    // Points: last diagonal exactly zero gives all zeros; a small upper one, a partial result.
    const Points p = {{1, 2, 3}, {4, 5, 6}}, zeros = {{0, 0, 0}, {0, 0, 0}},
                 partial = {{0, 0, 0}, {1, 1.25f, 1.5f}};
    struct {
        Mat a;
        bool ok;
        Points want;
    } const cases[] = {{{1, 2, 0, 0}, false, zeros},
                       {{kBelowPivot, 2, 0, 4}, false, partial},
                       {{1, 0, 0, 0.00002},
                        true,
                        {{1, 2, 3}, {float(4 / 0.00002), float(5 / 0.00002), float(6 / 0.00002)}}}};
    for (const auto &c : cases) {
        POINT3D *x = LUDecomp::Resoud_Pmatrice(c.a.data(), p.data(), 2, &ok);
        EXPECT_TRUE(ok == c.ok && sameBytes(x, c.want.data(), 2)) << c.a[0];
        std::free(x);
    }
    EXPECT_EQ(LUDecomp::Resoud_Pmatrice(nullptr, nullptr, 0, &ok), nullptr);
}

TEST(LUDecomp, RandomSystemsMatchBackSubstitutionWithSmallResiduals) {
    std::mt19937 rng(20240611);
    for (int n : {1, 2, 3, 8, 17, 50, 200}) {
        const Mat a0 = randomSystem(rng, n), b0 = randomVector(rng, n);
        Mat a = a0, b = b0;
        ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), n));
        bool ok = false;
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        ASSERT_TRUE(ok && sameBytes(x, refSolve(a, b, n, false).data(), n));
        for (int i = 0; i < n; ++i) {
            double r = -b0[i];
            for (int j = 0; j < n; ++j)
                r += a0[i * n + j] * x[j];
            EXPECT_LT(std::fabs(r), kResidualTolerance) << "n " << n << " row " << i;
        }
    }
    // Point systems round to float at each step; double sums would give other bits.
    int floatSumsMatter = 0;
    for (int round = 0; round < 40; ++round) {
        const int n = 2 + round % 9;
        Mat a = randomSystem(rng, n, round % 2 == 1);
        Points b = randomPoints(rng, n);
        LUDecomp::Triangularise_Pmatrice(a.data(), b.data(), n);
        bool ok = false;
        POINT3D *x = LUDecomp::Resoud_Pmatrice(a.data(), b.data(), n, &ok);
        const Points want = refSolve(a, b, n, true);
        EXPECT_TRUE(!ok || sameBytes(x, want.data(), n)) << round;
        floatSumsMatter += ok && !sameBytes(want.data(), refSolve(a, b, n, false).data(), n);
        std::free(x);
    }
    EXPECT_GT(floatSumsMatter, 0);
}

TEST(LUDecomp, SmallerCallAfterLargerGivesSameBitsAsFreshBuffers) {
    std::mt19937 rng(77);
    const Mat small = randomSystem(rng, 4, true), big = randomSystem(rng, 9, true);
    const Mat smallB = randomVector(rng, 4), bigB = randomVector(rng, 9);
    const Points smallP = randomPoints(rng, 4), bigP = randomPoints(rng, 9);
    // Returns the triangular forms and the solution of a system, all as doubles.
    auto run = [](Mat a, Mat b, Points pb, int n) {
        Mat pa = a;
        bool ok = false;
        LUDecomp::Triangularise_matrice(a.data(), b.data(), n);
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        LUDecomp::Triangularise_Pmatrice(pa.data(), pb.data(), n);
        a.insert(a.end(), x, x + n);
        a.insert(a.end(), b.begin(), b.end());
        a.insert(a.end(), pa.begin(), pa.end());
        for (const POINT3D &p : pb)
            a.insert(a.end(), {p.x, p.y, p.z});
        return a;
    };
    LUDecomp::trashRESNUM();
    LUDecomp::trashRESNUM(); // twice: nothing left to release
    const Mat fresh = run(small, smallB, smallP, 4);
    LUDecomp::trashRESNUM();
    run(big, bigB, bigP, 9);
    const Mat reused = run(small, smallB, smallP, 4);
    EXPECT_TRUE(reused.size() == fresh.size() && sameBytes(reused.data(), fresh.data(), fresh.size()));
}

TEST(LUDecomp, InverseByColumnPivots) {
    const double above = std::nextafter(kInverseBound, 1.0);
    struct {
        Mat a, want; // empty want: singular
    } const cases[] = {
        {{0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1}, {0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1}},
        {{1e-7, 1, 1, 0}, {0, 1, 1, -1e-7}}, // a tiny corner: the larger column is taken
        // Row 1 reaches the bound only (column 0 is not searched): singular; just above: not.
        {{1, 0, 0, 1, -kInverseBound, kInverseBound, 0, 0, 1}, {}},
        {{1, 0, 0, 0, above, 0, 0, 0, 1}, {1, 0, 0, 0, 1 / above, 0, 0, 0, 1}},
        {{kNaN, kNaN, 3, 4}, {}}, // NaN is never a pivot
    };
    for (const auto &c : cases) {
        Mat a = c.a;
        double *inv = LUDecomp::Inverse_Matrix(a.data(), int(std::sqrt(double(a.size()))));
        EXPECT_TRUE(c.want.empty() ? inv == nullptr : inv != nullptr && Mat(inv, inv + a.size()) == c.want)
            << c.a[0];
        delete[] inv;
    }
    double *empty = LUDecomp::Inverse_Matrix(nullptr, 0);
    EXPECT_TRUE(empty != nullptr && LUDecomp::Inverse_Matrix(nullptr, -1) == nullptr);
    delete[] empty;

    std::mt19937 rng(99);
    for (int n : {3, 30}) {
        const Mat a0 = randomSystem(rng, n);
        Mat a = a0;
        double *inv = LUDecomp::Inverse_Matrix(a.data(), n);
        ASSERT_NE(inv, nullptr);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                double s = 0.0;
                for (int k = 0; k < n; ++k)
                    s += a0[i * n + k] * inv[k * n + j];
                EXPECT_NEAR(s, i == j ? 1.0 : 0.0, kInverseTolerance);
            }
        delete[] inv;
    }
}

TEST(LUDecomp, RowSwapsDiv3DAndImpossibleSizes) {
    Mat m = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    LUDecomp::Permut_lignes(m.data(), 0, 3, 0, 2, 1);
    EXPECT_EQ(m, (Mat{1, 8, 9, 4, 5, 6, 7, 2, 3})); // from column 1 on
    // Divided by the double itself and rounded once: 1/3 rounded to float first differs.
    const POINT3D q = {1.0f, -3.0f, 0.1f};
    const POINT3D r[2] = {Div3D(&q, 1.0 / 3.0), Div3D(&q, 2.0)};
    const POINT3D want[2] = {{float(1.0 / (1.0 / 3.0)), -9.0f, float(0.1f / (1.0 / 3.0))},
                             {0.5f, -1.5f, 0.05f}};
    EXPECT_TRUE(sameBytes(r, want, 2) && r[0].z != q.z / float(1.0 / 3.0));
    double a[4] = {2, 0, 0, 2}, b[2] = {1, 1};
    POINT3D pb[2] = {{1, 1, 1}, {1, 1, 1}};
    EXPECT_THROW(LUDecomp::Triangularise_matrice(a, b, INT_MAX), std::bad_alloc);
    EXPECT_THROW(LUDecomp::Triangularise_Pmatrice(a, pb, INT_MAX), std::bad_alloc);
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a, b, 2)); // buffers still usable
    bool ok = false;
    EXPECT_EQ(LUDecomp::Resoud_matrice(a, b, 2, &ok)[1], 0.5);
}
