#include "zefcore/math/LUDecomp.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <vector>

namespace {

using Mat = std::vector<double>;

constexpr double kPivotBound = 0.0001;     // elimination pivot and back-substitution bound
constexpr double kFinalBound = 0.00001;    // diagonal test after elimination
constexpr double kInverseBound = 0.000001; // column pivot of the inverse
constexpr double kResidualTolerance = 1e-9;
constexpr double kInverseTolerance = 1e-10;

std::uint64_t bits(double v) {
    std::uint64_t u;
    std::memcpy(&u, &v, sizeof u);
    return u;
}
std::uint32_t bits(float v) {
    std::uint32_t u;
    std::memcpy(&u, &v, sizeof u);
    return u;
}

void expectSameBits(const double *got, const double *want, int count) {
    for (int q = 0; q < count; ++q)
        EXPECT_EQ(bits(got[q]), bits(want[q])) << "index " << q << ": " << got[q] << " vs " << want[q];
}
void expectSamePoints(const POINT3D *got, const POINT3D *want, int count) {
    for (int q = 0; q < count; ++q) {
        EXPECT_EQ(bits(got[q].x), bits(want[q].x)) << "x at " << q;
        EXPECT_EQ(bits(got[q].y), bits(want[q].y)) << "y at " << q;
        EXPECT_EQ(bits(got[q].z), bits(want[q].z)) << "z at " << q;
    }
}

// Independent in-place elimination with the same pivot rule (first row large enough).
template <class Rhs, class Update>
bool refTriangularise(Mat &a, std::vector<Rhs> &b, int n, Update update) {
    for (int k = 0; k + 1 < n; ++k) {
        bool usable = !(std::fabs(a[k * n + k]) < kPivotBound);
        for (int r = k + 1; !usable && r < n; ++r) {
            if (!(std::fabs(a[r * n + k]) < kPivotBound)) {
                for (int c = 0; c < n; ++c)
                    std::swap(a[k * n + c], a[r * n + c]);
                std::swap(b[k], b[r]);
                usable = true;
            }
        }
        for (int i = k + 1; i < n; ++i) {
            if (usable) {
                const double c = a[i * n + k] / a[k * n + k];
                for (int j = k + 1; j < n; ++j)
                    a[i * n + j] -= c * a[k * n + j];
                update(b[i], b[k], c);
            }
            a[i * n + k] = 0.0;
        }
    }
    for (int i = 0; i < n; ++i)
        if (std::fabs(a[i * n + i]) < kFinalBound)
            return false;
    return true;
}

void updateDouble(double &bi, double bk, double c) { bi -= c * bk; }
void updatePoint(POINT3D &bi, const POINT3D &bk, double c) {
    bi.x = float(bi.x - c * bk.x);
    bi.y = float(bi.y - c * bk.y);
    bi.z = float(bi.z - c * bk.z);
}

std::vector<double> refSolve(const Mat &a, const std::vector<double> &b, int n) {
    std::vector<double> x(n);
    x[n - 1] = b[n - 1] / a[n * n - 1];
    for (int i = n - 2; i >= 0; --i) {
        double s = 0.0;
        for (int j = i + 1; j < n; ++j)
            s += a[i * n + j] * x[j];
        x[i] = (b[i] - s) / a[i * n + i];
    }
    return x;
}

// floatSums selects the solver's float accumulation; false accumulates in double.
std::vector<POINT3D> refSolvePoints(const Mat &a, const std::vector<POINT3D> &b, int n, bool floatSums) {
    std::vector<POINT3D> x(n);
    const double last = a[n * n - 1];
    x[n - 1] = {float(b[n - 1].x / last), float(b[n - 1].y / last), float(b[n - 1].z / last)};
    for (int i = n - 2; i >= 0; --i) {
        double s[3] = {0, 0, 0};
        for (int j = i + 1; j < n; ++j) {
            const float xs[3] = {x[j].x, x[j].y, x[j].z};
            for (int c = 0; c < 3; ++c) {
                if (floatSums) {
                    const float product = float(a[i * n + j] * xs[c]);
                    s[c] = float(s[c] + product);
                } else {
                    s[c] += a[i * n + j] * xs[c];
                }
            }
        }
        const double d = a[i * n + i];
        x[i] = {float((double(b[i].x) - s[0]) / d), float((double(b[i].y) - s[1]) / d),
                float((double(b[i].z) - s[2]) / d)};
    }
    return x;
}

// A diagonally dominant random matrix: well conditioned at any size.
Mat randomSystem(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    Mat a(std::size_t(n) * n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            a[i * n + j] = i == j ? n + 1.0 + u(rng) : u(rng);
    return a;
}

std::vector<double> randomVector(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<double> u(-10.0, 10.0);
    std::vector<double> v(n);
    for (double &e : v)
        e = u(rng);
    return v;
}

std::vector<POINT3D> randomPoints(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<float> u(-10.0f, 10.0f);
    std::vector<POINT3D> v(n);
    for (POINT3D &p : v)
        p = {u(rng), u(rng), u(rng)};
    return v;
}

} // namespace

TEST(LUDecomp, IdentityAndOneByOne) {
    Mat a = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::vector<double> b = {3.5, -2.25, 7.0};
    const Mat a0 = a;
    const std::vector<double> b0 = b;
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 3));
    expectSameBits(a.data(), a0.data(), 9);
    expectSameBits(b.data(), b0.data(), 3);
    bool ok = false;
    const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok);
    EXPECT_TRUE(ok);
    expectSameBits(x, b0.data(), 3);

    double one[1] = {3.0};
    double rhs[1] = {1.0};
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(one, rhs, 1));
    x = LUDecomp::Resoud_matrice(one, rhs, 1, &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(bits(x[0]), bits(1.0 / 3.0));

    // The last row is divided without test: a zero there is an infinity, still ok.
    double zero[1] = {0.0};
    x = LUDecomp::Resoud_matrice(zero, rhs, 1, &ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(std::isinf(x[0]));

    EXPECT_TRUE(LUDecomp::Triangularise_matrice(nullptr, nullptr, 0));
}

TEST(LUDecomp, PivotIsFirstRowLargeEnoughNotLargest) {
    // 0.00005 is refused and the rows are swapped.
    Mat a = {0.00005, 1, 1, 1};
    std::vector<double> b = {1, 2};
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    EXPECT_EQ(a[0], 1.0);
    EXPECT_EQ(a[1], 1.0);
    EXPECT_EQ(a[2], 0.0);
    EXPECT_EQ(bits(a[3]), bits(1.0 - 0.00005 / 1.0 * 1.0));
    EXPECT_EQ(b[0], 2.0);

    // 0.0002 is used although 1 is larger.
    a = {0.0002, 1, 1, 1};
    b = {1, 2};
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    EXPECT_EQ(a[0], 0.0002);
    const double c = 1.0 / 0.0002;
    EXPECT_EQ(bits(a[3]), bits(1.0 - c * 1.0));
    EXPECT_EQ(bits(b[1]), bits(2.0 - c * 1.0));

    // Zero in the corner, the second row too small, the third usable, the fourth largest.
    const double below = std::nextafter(kPivotBound, 0.0);
    a = {0, 1, 2, 3, below, 5, 1, 2, 0.5, 1, 7, 1, 9, 2, 1, 8};
    b = {1, 2, 3, 4};
    Mat ra = a;
    std::vector<double> rb = b;
    const bool refOk = refTriangularise(ra, rb, 4, updateDouble);
    EXPECT_EQ(LUDecomp::Triangularise_matrice(a.data(), b.data(), 4), refOk);
    EXPECT_EQ(a[0], 0.5); // row 2 became the pivot row, not row 3 with 9
    EXPECT_EQ(b[0], 3.0);
    expectSameBits(a.data(), ra.data(), 16);
    expectSameBits(b.data(), rb.data(), 4);

    // A pivot exactly on the bound is used; a NaN below a small pivot counts as large enough.
    a = {kPivotBound, 1, 1, 1};
    b = {0, 0};
    LUDecomp::Triangularise_matrice(a.data(), b.data(), 2);
    EXPECT_EQ(a[0], kPivotBound);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    a = {below, 1, nan, 1};
    b = {5, 6};
    LUDecomp::Triangularise_matrice(a.data(), b.data(), 2);
    EXPECT_TRUE(std::isnan(a[0]));
    EXPECT_EQ(b[0], 6.0);
    EXPECT_EQ(a[2], 0.0);
}

TEST(LUDecomp, ColumnWithoutPivotAndFinalDiagonalTest) {
    // Singular: the last diagonal element is 0.
    Mat a = {1, 2, 2, 4};
    std::vector<double> b = {1, 1};
    EXPECT_FALSE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    EXPECT_EQ(a[3], 0.0);

    // Column 0 has no usable pivot: dropped below the diagonal, rows otherwise unchanged.
    a = {0.00002, 1, 0, 0.00003, 2, 1, 0.00009, 1, 3};
    b = {1, 2, 3};
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 3));
    EXPECT_EQ(a[3], 0.0);
    EXPECT_EQ(a[6], 0.0);
    EXPECT_EQ(a[0], 0.00002);
    EXPECT_EQ(a[4], 2.0);
    EXPECT_EQ(a[7], 0.0); // column 1 eliminated with pivot 2
    EXPECT_EQ(bits(a[8]), bits(3.0 - 0.5 * 1.0));
    EXPECT_EQ(bits(b[2]), bits(3.0 - 0.5 * 2.0));

    // The final bound: equal passes, the float below fails.
    const double under = std::nextafter(kFinalBound, 0.0);
    a = {1, 0, 0, kFinalBound};
    b = {1, 1};
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    a = {1, 0, 0, -under};
    EXPECT_FALSE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));

    // Diagonal (1, 0.00002): the last row has no test in the solver.
    a = {1, 0, 0, 0.00002};
    b = {1, 1};
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    bool ok = false;
    const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(bits(x[1]), bits(1.0 / 0.00002));
    // Diagonal (0.00002, 1): the upper row is refused by the solver.
    a = {0.00002, 0, 0, 1};
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok);
    EXPECT_FALSE(ok);
}

TEST(LUDecomp, SolverStopsAtSmallDiagonalKeepingLowerRows) {
    Mat a = {2, 0, 0, 0, 4, 0, 0, 0, 8};
    std::vector<double> b = {1, 1, 1};
    bool ok = false;
    const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok);
    ASSERT_TRUE(ok);
    EXPECT_EQ(x[0], 0.5);

    // Row 1 refused: row 2 is solved, row 0 keeps what the buffer held.
    const double below = std::nextafter(kPivotBound, 0.0);
    a = {1, 1, 1, 0, below, 1, 0, 0, 4};
    b = {3, 3, 3};
    x = LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(x[2], 0.75);
    EXPECT_EQ(x[0], 0.5);

    // On the bound the row is accepted.
    a[4] = -kPivotBound;
    x = LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(bits(x[1]), bits((3.0 - 0.75) / -kPivotBound));

    // n < 1 reads nothing and reports failure.
    ok = true;
    LUDecomp::Resoud_matrice(nullptr, nullptr, 0, &ok);
    EXPECT_FALSE(ok);
}

TEST(LUDecomp, RandomSystemsMatchReferenceAndHaveSmallResiduals) {
    std::mt19937 rng(20240611);
    for (int n : {1, 2, 3, 5, 8, 17, 50, 200}) {
        const Mat a0 = randomSystem(rng, n);
        const std::vector<double> b0 = randomVector(rng, n);
        Mat a = a0, ra = a0;
        std::vector<double> b = b0, rb = b0;
        ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), n)) << n;
        ASSERT_TRUE(refTriangularise(ra, rb, n, updateDouble));
        expectSameBits(a.data(), ra.data(), n * n);
        expectSameBits(b.data(), rb.data(), n);
        bool ok = false;
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        ASSERT_TRUE(ok);
        const std::vector<double> rx = refSolve(ra, rb, n);
        expectSameBits(x, rx.data(), n);
        for (int i = 0; i < n; ++i) {
            double r = -b0[i];
            for (int j = 0; j < n; ++j)
                r += a0[i * n + j] * x[j];
            EXPECT_LT(std::fabs(r), kResidualTolerance) << "n " << n << " row " << i;
        }
    }
}

TEST(LUDecomp, SmallerCallAfterLargerGivesSameBitsAsFreshBuffers) {
    std::mt19937 rng(77);
    const Mat big = randomSystem(rng, 9);
    const std::vector<double> bigB = randomVector(rng, 9);
    const std::vector<POINT3D> bigP = randomPoints(rng, 9);
    Mat small = randomSystem(rng, 4);
    small[0] = 0.0; // force a row swap through the shared row buffer
    const std::vector<double> smallB = randomVector(rng, 4);
    const std::vector<POINT3D> smallP = randomPoints(rng, 4);

    auto runSmall = [&](Mat &a, std::vector<double> &b, std::vector<double> &x, Mat &pa, std::vector<POINT3D> &pb,
                        std::vector<POINT3D> &px) {
        a = small;
        b = smallB;
        EXPECT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 4));
        bool ok = false;
        const double *sx = LUDecomp::Resoud_matrice(a.data(), b.data(), 4, &ok);
        EXPECT_TRUE(ok);
        x.assign(sx, sx + 4);
        pa = small;
        pb = smallP;
        LUDecomp::Triangularise_Pmatrice(pa.data(), pb.data(), 4);
        POINT3D *p = LUDecomp::Resoud_Pmatrice(pa.data(), pb.data(), 4, &ok);
        EXPECT_TRUE(ok);
        px.assign(p, p + 4);
        std::free(p);
    };

    LUDecomp::trashRESNUM();
    LUDecomp::trashRESNUM(); // twice: nothing left to release
    Mat freshA, freshPA;
    std::vector<double> freshB, freshX;
    std::vector<POINT3D> freshPB, freshPX;
    runSmall(freshA, freshB, freshX, freshPA, freshPB, freshPX);

    LUDecomp::trashRESNUM();
    Mat a = big, pa = big;
    std::vector<double> b = bigB;
    std::vector<POINT3D> pb = bigP;
    bool ok = false;
    LUDecomp::Triangularise_matrice(a.data(), b.data(), 9);
    LUDecomp::Resoud_matrice(a.data(), b.data(), 9, &ok);
    LUDecomp::Triangularise_Pmatrice(pa.data(), pb.data(), 9);
    std::vector<double> x;
    std::vector<POINT3D> px;
    runSmall(a, b, x, pa, pb, px);
    expectSameBits(a.data(), freshA.data(), 16);
    expectSameBits(b.data(), freshB.data(), 4);
    expectSameBits(x.data(), freshX.data(), 4);
    expectSameBits(pa.data(), freshPA.data(), 16);
    expectSamePoints(pb.data(), freshPB.data(), 4);
    expectSamePoints(px.data(), freshPX.data(), 4);
}

TEST(LUDecomp, PointSystemsRoundToFloatAtEachStep) {
    std::mt19937 rng(4242);
    int casesWhereFloatSumsMatter = 0;
    for (int round = 0; round < 40; ++round) {
        const int n = 2 + round % 9;
        const Mat a0 = randomSystem(rng, n);
        const std::vector<POINT3D> b0 = randomPoints(rng, n);
        Mat a = a0, ra = a0;
        std::vector<POINT3D> b = b0, rb = b0;
        LUDecomp::Triangularise_Pmatrice(a.data(), b.data(), n);
        refTriangularise(ra, rb, n, updatePoint);
        expectSameBits(a.data(), ra.data(), n * n);
        expectSamePoints(b.data(), rb.data(), n);
        bool ok = false;
        POINT3D *x = LUDecomp::Resoud_Pmatrice(a.data(), b.data(), n, &ok);
        EXPECT_TRUE(ok);
        const std::vector<POINT3D> want = refSolvePoints(ra, rb, n, true);
        expectSamePoints(x, want.data(), n);
        const std::vector<POINT3D> doubleSums = refSolvePoints(ra, rb, n, false);
        if (std::memcmp(want.data(), doubleSums.data(), sizeof(POINT3D) * n) != 0)
            ++casesWhereFloatSumsMatter;
        std::free(x);
    }
    EXPECT_GT(casesWhereFloatSumsMatter, 0); // the cases above do tell the two apart

    // Last diagonal exactly zero: all zero, not ok.
    Mat a = {1, 2, 0, 0};
    std::vector<POINT3D> b = {{1, 2, 3}, {4, 5, 6}};
    bool ok = true;
    POINT3D *x = LUDecomp::Resoud_Pmatrice(a.data(), b.data(), 2, &ok);
    EXPECT_FALSE(ok);
    const std::vector<POINT3D> zeros(2, POINT3D{0, 0, 0});
    expectSamePoints(x, zeros.data(), 2);
    std::free(x);

    // A small upper diagonal: the last row solved, the rest zero.
    a = {std::nextafter(kPivotBound, 0.0), 2, 0, 4};
    x = LUDecomp::Resoud_Pmatrice(a.data(), b.data(), 2, &ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(x[1].x, 1.0f);
    EXPECT_EQ(x[1].z, 1.5f);
    EXPECT_EQ(x[0].x, 0.0f);
    std::free(x);
}

TEST(LUDecomp, InverseByColumnPivots) {
    // A permutation matrix: its inverse is its transpose, exactly.
    Mat p = {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1};
    const Mat p0 = p;
    double *inv = LUDecomp::Inverse_Matrix(p.data(), 4);
    ASSERT_NE(inv, nullptr);
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(inv[i * 4 + j], p0[j * 4 + i]);
    delete[] inv;

    // A tiny corner element: the larger column is taken.
    Mat a = {1e-7, 1, 1, 0};
    inv = LUDecomp::Inverse_Matrix(a.data(), 2);
    ASSERT_NE(inv, nullptr);
    EXPECT_EQ(inv[0], 0.0);
    EXPECT_EQ(inv[1], 1.0);
    EXPECT_EQ(inv[2], 1.0);
    EXPECT_EQ(bits(inv[3]), bits(-1e-7));
    delete[] inv;

    // A row whose elements reach the bound only: singular. Just above it: invertible.
    a = {1, 0, 0, kInverseBound, -kInverseBound, kInverseBound, 0, 0, 1};
    EXPECT_EQ(LUDecomp::Inverse_Matrix(a.data(), 3), nullptr);
    const double above = std::nextafter(kInverseBound, 1.0);
    a = {1, 0, 0, 0, above, 0, 0, 0, 1};
    inv = LUDecomp::Inverse_Matrix(a.data(), 3);
    ASSERT_NE(inv, nullptr);
    EXPECT_EQ(bits(inv[4]), bits(1.0 / above));
    delete[] inv;

    // A zero row, and NaN elements that are never taken as pivots.
    a = {1, 2, 0, 0};
    EXPECT_EQ(LUDecomp::Inverse_Matrix(a.data(), 2), nullptr);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    a = {nan, nan, 3, 4};
    EXPECT_EQ(LUDecomp::Inverse_Matrix(a.data(), 2), nullptr);

    double *empty = LUDecomp::Inverse_Matrix(nullptr, 0);
    EXPECT_NE(empty, nullptr);
    delete[] empty;
    EXPECT_EQ(LUDecomp::Inverse_Matrix(nullptr, -1), nullptr);

    std::mt19937 rng(99);
    for (int n : {1, 3, 6, 30}) {
        const Mat a0 = randomSystem(rng, n);
        a = a0;
        inv = LUDecomp::Inverse_Matrix(a.data(), n);
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

TEST(LUDecomp, RowSwapsAndDiv3D) {
    Mat m = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    LUDecomp::Permut_lignes(m.data(), 3, 3, 0, 2, 1);
    EXPECT_EQ(m, (Mat{1, 8, 9, 4, 5, 6, 7, 2, 3}));
    LUDecomp::Permut_lignes(m.data(), 3, 3, 1, 1, 0);
    EXPECT_EQ(m, (Mat{1, 8, 9, 4, 5, 6, 7, 2, 3}));
    // A right-hand side is a matrix of one column.
    double v[3] = {10, 20, 30};
    LUDecomp::Permut_lignes(v, 3, 1, 0, 2, 0);
    EXPECT_EQ(v[0], 30.0);
    EXPECT_EQ(v[2], 10.0);

    POINT3D pts[3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    LUDecomp::Permut_POINT3D(pts, 0, 2);
    EXPECT_EQ(pts[0].x, 7.0f);
    EXPECT_EQ(pts[2].z, 3.0f);

    const POINT3D p = {1.0f, -3.0f, 0.1f};
    POINT3D half = Div3D(&p, 2.0);
    EXPECT_EQ(half.x, 0.5f);
    EXPECT_EQ(half.y, -1.5f);
    EXPECT_EQ(half.z, 0.05f);
    // Divided by the double itself, rounded once; a divisor rounded to float first differs.
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> u(0.1, 10.0);
    int divisorRoundingMatters = 0;
    for (int round = 0; round < 200; ++round) {
        const POINT3D q = {float(u(rng)), float(-u(rng)), float(u(rng))};
        const double d = u(rng);
        const POINT3D r = Div3D(&q, d);
        EXPECT_EQ(bits(r.x), bits(float(double(q.x) / d)));
        EXPECT_EQ(bits(r.y), bits(float(double(q.y) / d)));
        EXPECT_EQ(bits(r.z), bits(float(double(q.z) / d)));
        if (bits(r.x) != bits(q.x / float(d)))
            ++divisorRoundingMatters;
    }
    EXPECT_GT(divisorRoundingMatters, 0);
}

TEST(LUDecomp, ImpossibleSizeThrowsAndLeavesSolverUsable) {
    double a[4] = {2, 0, 0, 2};
    double b[2] = {1, 1};
    EXPECT_THROW(LUDecomp::Triangularise_matrice(a, b, INT_MAX), std::bad_alloc);
    POINT3D pb[2] = {{1, 1, 1}, {1, 1, 1}};
    EXPECT_THROW(LUDecomp::Triangularise_Pmatrice(a, pb, INT_MAX), std::bad_alloc);
    EXPECT_EQ(a[0], 2.0); // nothing read or written before the failure
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a, b, 2));
    bool ok = false;
    const double *x = LUDecomp::Resoud_matrice(a, b, 2, &ok);
    EXPECT_TRUE(ok);
    EXPECT_EQ(x[1], 0.5);
}
