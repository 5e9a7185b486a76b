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
bool sameBytes(const T *got, const T *want, int count) {
    return std::memcmp(got, want, sizeof(T) * std::size_t(count)) == 0;
}

// Independent single-plane elimination with the same pivot rule and rounding points.
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
void updateDouble(double &bi, double bk, double c) {
    bi -= c * bk;
}
void updatePoint(POINT3D &bi, const POINT3D &bk, double c) {
    bi = {float(bi.x - c * bk.x), float(bi.y - c * bk.y), float(bi.z - c * bk.z)};
}

std::vector<double> refSolve(const Mat &a, const std::vector<double> &b, int n) {
    std::vector<double> x(n);
    for (int i = n - 1; i >= 0; --i) {
        double s = 0.0;
        for (int j = i + 1; j < n; ++j)
            s += a[i * n + j] * x[j];
        x[i] = (b[i] - s) / a[i * n + i];
    }
    return x;
}

// floatSums: products and sums rounded to float; otherwise accumulated in double.
Points refSolvePoints(const Mat &a, const Points &b, int n, bool floatSums) {
    std::vector<float> xs(3 * n);
    for (int i = n - 1; i >= 0; --i) {
        const float bs[3] = {b[i].x, b[i].y, b[i].z};
        for (int c = 0; c < 3; ++c) {
            double s = 0.0;
            for (int j = i + 1; j < n; ++j)
                s = floatSums ? float(s + float(a[i * n + j] * xs[3 * j + c]))
                              : s + a[i * n + j] * xs[3 * j + c];
            xs[3 * i + c] = float((bs[c] - s) / a[i * n + i]);
        }
    }
    Points x(n);
    std::memcpy(x.data(), xs.data(), 12 * std::size_t(n));
    return x;
}

// Diagonally dominant (well conditioned), or with many elements below the pivot bound.
Mat randomSystem(std::mt19937 &rng, int n, bool smallElements = false) {
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    Mat a(std::size_t(n) * n);
    for (int q = 0; q < n * n; ++q)
        a[q] = smallElements && u(rng) < -0.4 ? 0.00005 * u(rng) : u(rng);
    for (int i = 0; i < n && !smallElements; ++i)
        a[i * n + i] += n + 1.0;
    return a;
}
std::vector<double> randomVector(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<double> u(-10.0, 10.0);
    std::vector<double> v(n);
    for (double &e : v)
        e = u(rng);
    return v;
}
Points randomPoints(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<float> u(-10.0f, 10.0f);
    Points p(n);
    for (POINT3D &e : p)
        e = {u(rng), u(rng), u(rng)};
    return p;
}

} // namespace

TEST(LUDecomp, PivotIsFirstRowLargeEnoughNotLargest) {
    Mat a = {0.00005, 1, 1, 1}; // refused: the rows are swapped
    std::vector<double> b = {1, 2};
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    EXPECT_TRUE(a == (Mat{1, 1, 0, 1 - 0.00005}) && b == (std::vector<double>{2, 1 - 0.00005 * 2}));
    a = {0.0002, 1, 1, 1}; // used, although 1 is larger
    b = {1, 2};
    ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    EXPECT_EQ(a, (Mat{0.0002, 1, 0, 1 - 1 / 0.0002}));
    // Corner 0, then a row just below the bound, then 0.5, then the largest, 9.
    a = {0, 1, 2, 3, kBelowPivot, 5, 1, 2, 0.5, 1, 7, 1, 9, 2, 1, 8};
    b = {1, 2, 3, 4};
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 4));
    EXPECT_TRUE(a[0] == 0.5 && b[0] == 3.0);
    a = {kPivotBound, 1, 1, 1}; // on the bound: used
    LUDecomp::Triangularise_matrice(a.data(), b.data(), 2);
    EXPECT_EQ(a[0], kPivotBound);
    a = {kBelowPivot, 1, kNaN, 1}; // a NaN counts as large enough
    b = {5, 6};
    LUDecomp::Triangularise_matrice(a.data(), b.data(), 2);
    EXPECT_TRUE(std::isnan(a[0]) && b[0] == 6.0 && a[2] == 0.0);

    // Random systems with many refused pivots: the same bits as the reference.
    std::mt19937 rng(11);
    for (int round = 0; round < 30; ++round) {
        const int n = 2 + round % 12;
        Mat ra = randomSystem(rng, n, true);
        std::vector<double> rb = randomVector(rng, n);
        a = ra;
        b = rb;
        EXPECT_EQ(LUDecomp::Triangularise_matrice(a.data(), b.data(), n),
                  refTriangularise(ra, rb, n, updateDouble));
        EXPECT_TRUE(sameBytes(a.data(), ra.data(), n * n) && sameBytes(b.data(), rb.data(), n));
    }
}

TEST(LUDecomp, FailurePathsOfEliminationAndSolvers) {
    Mat a = {1, 2, 2, 4}; // singular: last diagonal 0
    std::vector<double> b = {1, 1};
    EXPECT_FALSE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    // Column 0 has no usable pivot: dropped below the diagonal, nothing else changes.
    a = {0.00002, 1, 0, 0.00003, 2, 1, 0.00009, 1, 3};
    b = {1, 2, 3};
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 3));
    EXPECT_TRUE(a == (Mat{0.00002, 1, 0, 0, 2, 1, 0, 0, 2.5}) && b == (std::vector<double>{1, 2, 2}));
    // The final bound: equal passes, just below fails.
    a = {1, 0, 0, kFinalBound};
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));
    a = {1, 0, 0, -std::nextafter(kFinalBound, 0.0)};
    EXPECT_FALSE(LUDecomp::Triangularise_matrice(a.data(), b.data(), 2));

    // Diagonal (1, 0.00002): the last row has no test. (0.00002, 1): refused above it.
    bool ok = false;
    a = {1, 0, 0, 0.00002};
    b = {1, 1};
    const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok);
    EXPECT_TRUE(ok && x[1] == 1 / 0.00002);
    a = {0.00002, 0, 0, 1};
    LUDecomp::Resoud_matrice(a.data(), b.data(), 2, &ok);
    EXPECT_FALSE(ok);
    LUDecomp::Resoud_matrice(nullptr, nullptr, 0, &ok);
    EXPECT_FALSE(ok);

    // A refused row returns the rows solved below it; the bound itself is accepted.
    a = {1, 1, 1, 0, kBelowPivot, 1, 0, 0, 4};
    b = {3, 3, 3};
    x = LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok);
    EXPECT_TRUE(!ok && x[2] == 0.75);
    a[4] = -kPivotBound;
    x = LUDecomp::Resoud_matrice(a.data(), b.data(), 3, &ok);
    EXPECT_TRUE(ok && x[1] == (3 - 0.75) / -kPivotBound);

    // Points: last diagonal exactly zero gives all zeros; a small upper one, a partial result.
    Points p = {{1, 2, 3}, {4, 5, 6}};
    a = {1, 2, 0, 0};
    POINT3D *px = LUDecomp::Resoud_Pmatrice(a.data(), p.data(), 2, &ok);
    const POINT3D zeros[2] = {{0, 0, 0}, {0, 0, 0}}, partial[2] = {{0, 0, 0}, {1, 1.25f, 1.5f}};
    EXPECT_TRUE(!ok && sameBytes(px, zeros, 2));
    std::free(px);
    a = {kBelowPivot, 2, 0, 4};
    px = LUDecomp::Resoud_Pmatrice(a.data(), p.data(), 2, &ok);
    EXPECT_TRUE(!ok && sameBytes(px, partial, 2));
    std::free(px);
    a = {1, 0, 0, 0.00002}; // a small last diagonal is divided without test
    px = LUDecomp::Resoud_Pmatrice(a.data(), p.data(), 2, &ok);
    EXPECT_TRUE(ok && px[1].y == float(5 / 0.00002));
    std::free(px);
}

TEST(LUDecomp, RandomSystemsUpTo200MatchReferenceWithSmallResiduals) {
    std::mt19937 rng(20240611);
    for (int n : {1, 2, 3, 8, 17, 50, 200}) {
        const Mat a0 = randomSystem(rng, n);
        const std::vector<double> b0 = randomVector(rng, n);
        Mat a = a0, ra = a0;
        std::vector<double> b = b0, rb = b0;
        ASSERT_TRUE(LUDecomp::Triangularise_matrice(a.data(), b.data(), n));
        ASSERT_TRUE(refTriangularise(ra, rb, n, updateDouble));
        bool ok = false;
        const double *x = LUDecomp::Resoud_matrice(a.data(), b.data(), n, &ok);
        ASSERT_TRUE(ok);
        EXPECT_TRUE(sameBytes(x, refSolve(ra, rb, n).data(), n));
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
        Mat a = randomSystem(rng, n, round % 2 == 1), ra = a;
        Points b = randomPoints(rng, n), rb = b;
        LUDecomp::Triangularise_Pmatrice(a.data(), b.data(), n);
        const bool regular = refTriangularise(ra, rb, n, updatePoint);
        EXPECT_TRUE(sameBytes(a.data(), ra.data(), n * n) && sameBytes(b.data(), rb.data(), n));
        bool ok = false;
        POINT3D *x = LUDecomp::Resoud_Pmatrice(a.data(), b.data(), n, &ok);
        if (regular && ok) {
            const Points want = refSolvePoints(ra, rb, n, true);
            EXPECT_TRUE(sameBytes(x, want.data(), n));
            floatSumsMatter += std::memcmp(want.data(), refSolvePoints(ra, rb, n, false).data(), 12 * n) != 0;
        }
        std::free(x);
    }
    EXPECT_GT(floatSumsMatter, 0);
}

TEST(LUDecomp, SmallerCallAfterLargerGivesSameBitsAsFreshBuffers) {
    std::mt19937 rng(77);
    const Mat small = randomSystem(rng, 4, true), big = randomSystem(rng, 9, true);
    const std::vector<double> smallB = randomVector(rng, 4), bigB = randomVector(rng, 9);
    const Points smallP = randomPoints(rng, 4), bigP = randomPoints(rng, 9);
    // Returns the triangular forms and the solution of a system, all as doubles.
    auto run = [](Mat a, std::vector<double> b, Points pb, int n) {
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
    EXPECT_TRUE(reused.size() == fresh.size() && sameBytes(reused.data(), fresh.data(), int(fresh.size())));
}

TEST(LUDecomp, InverseByColumnPivots) {
    Mat p = {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1}; // inverse: its transpose
    double *inv = LUDecomp::Inverse_Matrix(p.data(), 4);
    ASSERT_NE(inv, nullptr);
    EXPECT_EQ(Mat(inv, inv + 16), (Mat{0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1}));
    delete[] inv;
    Mat a = {1e-7, 1, 1, 0}; // a tiny corner: the larger column is taken
    inv = LUDecomp::Inverse_Matrix(a.data(), 2);
    ASSERT_NE(inv, nullptr);
    EXPECT_EQ(Mat(inv, inv + 4), (Mat{0, 1, 1, -1e-7}));
    delete[] inv;

    // Row 1 reaches the bound only (column 0 is not searched): singular; just above: not.
    a = {1, 0, 0, 1, -kInverseBound, kInverseBound, 0, 0, 1};
    EXPECT_EQ(LUDecomp::Inverse_Matrix(a.data(), 3), nullptr);
    const double above = std::nextafter(kInverseBound, 1.0);
    a = {1, 0, 0, 0, above, 0, 0, 0, 1};
    inv = LUDecomp::Inverse_Matrix(a.data(), 3);
    ASSERT_NE(inv, nullptr);
    EXPECT_EQ(inv[4], 1 / above);
    delete[] inv;
    a = {kNaN, kNaN, 3, 4}; // NaN is never a pivot
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

    double a[4] = {2, 0, 0, 2};
    double b[2] = {1, 1};
    POINT3D pb[2] = {{1, 1, 1}, {1, 1, 1}};
    EXPECT_THROW(LUDecomp::Triangularise_matrice(a, b, INT_MAX), std::bad_alloc);
    EXPECT_THROW(LUDecomp::Triangularise_Pmatrice(a, pb, INT_MAX), std::bad_alloc);
    EXPECT_TRUE(LUDecomp::Triangularise_matrice(a, b, 2));
    bool ok = false;
    EXPECT_EQ(LUDecomp::Resoud_matrice(a, b, 2, &ok)[1], 0.5);
}
