#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/Mat4fBase.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"

namespace {

constexpr float kSentinel = 77.0f;
// Reconstruction error allowed for the factorisation of matrices with entries up to ~10.
constexpr double kReconstructionTolerance = 2e-4;
// Float error allowed after a rotation, a scale and the inverse rotation.
constexpr float kScaleAxisTolerance = 1e-5f;

bool sameBits(const Mat4fBase &a, const Mat4fBase &b) {
    return std::memcmp(a.getValue(), b.getValue(), 64) == 0;
}

float at(const Mat4fBase &m, int r, int c) {
    return m.getValue()[4 * c + r];
}

MatRot4f sentinelRot() {
    MatRot4f m;
    m.setValue(kSentinel, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return m;
}

// T(t) * Ra * diag(s) * Rb, with a random non-uniform scale that may mirror.
MatAff4f randomAffine(std::mt19937 &rng) {
    std::uniform_real_distribution<float> u(-1.0f, 1.0f), mag(0.5f, 3.0f);
    std::bernoulli_distribution flip(0.3);
    Vector3f s;
    for (int k = 0; k < 3; ++k)
        s[k] = flip(rng) ? -mag(rng) : mag(rng);
    MatAff4f m = MatAff4f::translate(Vector3f(5 * u(rng), 5 * u(rng), 5 * u(rng)));
    m *= MatRot4f(Vector3f(u(rng), u(rng), u(rng)), 3 * u(rng), Vector3f());
    m *= MatAff4f::scale(s);
    m *= MatRot4f(Vector3f(u(rng), u(rng), u(rng)), 3 * u(rng), Vector3f());
    return m;
}

// Checks that the 3x3 block of m is R * Q^T * S * Q, in double.
void expectReconstructs(const Mat4fBase &m, const MatRot4f &r, const Vector3f &s, const MatRot4f &q) {
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col) {
            double sum = 0.0;
            for (int i = 0; i < 3; ++i) {
                double qtsq = 0.0;
                for (int j = 0; j < 3; ++j)
                    qtsq += double(at(q, j, i)) * s[j] * at(q, j, col);
                sum += double(at(r, row, i)) * qtsq;
            }
            EXPECT_NEAR(sum, at(m, row, col), kReconstructionTolerance) << row << "," << col;
        }
}

int g_affineProducts = 0, g_jacobi = 0, g_axisQuaternions = 0, g_translates = 0;

// Counts a few operations and forwards them to the base class.
class CountingKernel : public EnhancedMathFunctions {
public:
    void multAffineMatrices(float *const o, float const *const a, float const *const b) const override {
        ++g_affineProducts, EnhancedMathFunctions::multAffineMatrices(o, a, b);
    }
    void jacobi3(float *const e, float (*const v)[3], int &rots, float const *const m) const override {
        ++g_jacobi, EnhancedMathFunctions::jacobi3(e, v, rots, m);
    }
    void axisToQuaternionU(float *const o, float const *const axis, float angle) const override {
        ++g_axisQuaternions, EnhancedMathFunctions::axisToQuaternionU(o, axis, angle);
    }
    void setTranslate(float *const o, float const *const t) const override {
        ++g_translates, EnhancedMathFunctions::setTranslate(o, t);
    }
};

} // namespace

TEST(Decomposition, GetTransformReconstructsRandomAffineMatrices) {
    std::mt19937 rng(1234);
    for (int k = 0; k < 300; ++k) {
        MatAff4f const m = randomAffine(rng);
        Vector3f t, s;
        MatRot4f r, q;
        m.getTransform(t, r, s, q, nullptr);
        SCOPED_TRACE(k);
        expectReconstructs(m, r, s, q);
        EXPECT_TRUE(t.equals(Vector3f(m.getValue() + 12)));
        // A centre of (0, 0, 0) gives the same bits as none.
        Vector3f t0, s0;
        Vector3f const origin;
        MatRot4f r0, q0;
        m.getTransform(t0, r0, s0, q0, &origin);
        ASSERT_TRUE(t0.equals(t) && s0.equals(s) && sameBits(r0, r) && sameBits(q0, q));
        // About a centre c: same block, translation M c + t - c.
        Vector3f const c(1.5f, -2.0f, 0.75f);
        m.getTransform(t0, r0, s0, q0, &c);
        expectReconstructs(m, r0, s0, q0);
        EXPECT_TRUE(t0.equalsEps(m * c - c, float(kReconstructionTolerance)));
    }
    // Nearly singular (det 1e-15): only the translation is written.
    MatAff4f m = MatAff4f::scale(Vector3f(1e-5f, 1e-5f, 1e-5f));
    m.multLeftByTranslate(Vector3f(1, 2, 3));
    MatRot4f r = sentinelRot(), q = sentinelRot();
    Vector3f s(kSentinel, kSentinel, kSentinel), t;
    m.getTransform(t, r, s, q, nullptr);
    EXPECT_TRUE(t.equals(Vector3f(1, 2, 3)) && s.equals(Vector3f(kSentinel, kSentinel, kSentinel)));
    EXPECT_TRUE(sameBits(r, sentinelRot()) && sameBits(q, sentinelRot()));
}

TEST(Decomposition, NormalizeAndOrthoNormalizeWriteOnlyWhatTheyMust) {
    MatAff4f m = MatAff4f::translate(Vector3f(7, 8, 9));
    m.multRightBy(MatAff4f::scale(Vector3f(2, 3, 0)));
    m.getValue()[7] = kSentinel;
    MatAff4f out;
    out.setValue(5, 5, 5, -1, 5, 5, 5, -2, 5, 5, 5, -3, 5, 5, 5, -4);
    Vector3f lengths;
    EXPECT_TRUE(m.normalizeMatrix(out, lengths) && lengths.equals(Vector3f(2, 3, 0)));
    EXPECT_TRUE(sameBits(out, Matrix4f(1, 0, 0, -1, 0, 1, 0, -2, 0, 0, 0, -3, 7, 8, 9, -4)));
    MatRot4f target = sentinelRot();
    EXPECT_TRUE(Matrix4f(0).orthoNormalizeMatrix(target) && m.orthoNormalizeMatrix(target));
    EXPECT_TRUE(sameBits(target, sentinelRot()));
    // In place: the same result, the bottom row left as it was.
    m.normalizeMatrix(m, lengths);
    EXPECT_TRUE(sameBits(m, Matrix4f(1, 0, 0, 0, 0, 1, 0, kSentinel, 0, 0, 0, 0, 7, 8, 9, 1)));
}

TEST(Decomposition, RSAndTRSDecompositionsTestOrthogonalityOnTheBound) {
    MatAff4f m = MatAff4f::translate(Vector3f(1, 2, 3));
    m.multRightBy(MatAff4f::scale(Vector3f(-2, 3, 4)));
    MatRot4f r;
    Vector3f s, t;
    EXPECT_TRUE(m.getRSDecomp(r, s) && s.equals(Vector3f(2, 3, 4)));
    EXPECT_TRUE(sameBits(r, Matrix4f(-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1)));
    EXPECT_TRUE(m.getTRSDecomp(t, r, s));
    EXPECT_TRUE(t.equals(Vector3f(1, 2, 3)) && Vector3f(r.getValue() + 12).equals(Vector3f()));

    // Unit columns (1, 0, 0) and (e, 1, 0) after normalisation: dot e. The
    // float nearest 0.0001 passes, the next one fails.
    float const e = 1e-4f;
    for (float d : {e, std::nextafter(e, 1.0f), 0.01f}) {
        MatAff4f shear;
        shear.setBase(Vector3f(3, 0, 0), Vector3f(d, 1, 0), Vector3f(0, 0, 2), Vector3f(4, 5, 6));
        bool const pass = d == e;
        r = sentinelRot(), t = Vector3f(kSentinel, 0, 0), s = Vector3f();
        EXPECT_EQ(shear.getTRSDecomp(t, r, s), pass) << d;
        float const yLength = float(std::sqrt(double(float(double(d) * d + 1.0))));
        EXPECT_TRUE(s.equals(Vector3f(3, yLength, 2))) << d; // written in every case
        EXPECT_TRUE(sameBits(r, sentinelRot()) != pass && t.equals(Vector3f(4, 5, 6)) == pass) << d;
    }

    // Random R * S: unit columns by the rounded reciprocal of the rounded length.
    std::mt19937 rng(77);
    std::uniform_real_distribution<float> u(-1.0f, 1.0f);
    for (int k = 0; k < 300; ++k) {
        MatAff4f a(MatRot4f(Vector3f(u(rng), u(rng), u(rng)), 3 * u(rng), Vector3f(u(rng), 0, 1)));
        a.multRightBy(MatAff4f::scale(Vector3f(4 * u(rng), 4 * u(rng), 4 * u(rng))));
        ASSERT_TRUE(a.getRSDecomp(r, s)) << k;
        for (int c = 0; c < 3; ++c) {
            const float *col = a.getValue() + 4 * c;
            float const sum =
                float(double(col[0]) * col[0] + double(col[1]) * col[1] + double(col[2]) * col[2]);
            float const len = float(std::sqrt(double(sum)));
            float const inv = float(1.0 / double(len));
            ASSERT_EQ(s[c], len);
            for (int row = 0; row < 3; ++row)
                ASSERT_EQ(at(r, row, c), float(double(col[row]) * inv)) << k;
        }
    }
    // A zero column passes and stays zero.
    EXPECT_TRUE(MatAff4f::scale(Vector3f(2, 0, 1)).getRSDecomp(r, s));
    EXPECT_TRUE(Vector3f(r.getValue() + 4).equals(Vector3f()) && s.equals(Vector3f(2, 0, 1)));
}

TEST(Decomposition, ScaleAlongAnAxisKeepsThePerpendicularPlane) {
    MatAff4f m;
    m.setScale(Vector3f(3, 0, 0), 2.5f);
    EXPECT_TRUE(m.equals(MatAff4f::scale(Vector3f(2.5f, 1, 1)), kScaleAxisTolerance));
    std::mt19937 rng(9);
    std::uniform_real_distribution<float> u(-1.0f, 1.0f);
    for (int k = 0; k < 100; ++k) {
        Vector3f axis(u(rng), u(rng), u(rng));
        Vector3f const perp = axis.cross(Vector3f(u(rng), u(rng), u(rng)));
        float const factor = 3 * u(rng);
        m.setScale(axis, factor);
        axis.normalize();
        ASSERT_TRUE((m * axis).equalsEps(axis * factor, kScaleAxisTolerance)) << k;
        ASSERT_TRUE((m * perp).equalsEps(perp, kScaleAxisTolerance)) << k; // the origin stays too
    }
}

TEST(Decomposition, EveryClassUsesTheInstalledKernel) {
    (new CountingKernel)->setDefault();
    g_affineProducts = g_jacobi = g_axisQuaternions = g_translates = 0;
    MatAff4f a;
    MatRot4f r(Vector3f(0, 0, 1), 0.5f, Vector3f());
    a *= a;
    r.multLeftBy(r);
    MatRot4f const q = r * r;
    EXPECT_TRUE((a * r).equalsAff(r, 0.0f));
    EXPECT_EQ(g_affineProducts, 4);
    Vector3f t, s;
    MatRot4f rot, so;
    q.getTransform(t, rot, s, so, nullptr);
    EXPECT_EQ(g_jacobi, 1);
    a.setScale(Vector3f(1, 1, 0), 2.0f); // rotation, scale, inverse rotation
    EXPECT_EQ(g_affineProducts, 5);

    // The parallel test of the direction form: |from x to|^2 >= 1e-8 (double) rotates.
    float y = 9.9e-5f;
    while (!(float(double(y) * y) >= 1e-8))
        y = std::nextafter(y, 1.0f);
    g_axisQuaternions = g_translates = 0;
    MatRot4f const above(Vector3f(1, 0, 0), Vector3f(1, y, 0), Vector3f());
    EXPECT_TRUE(g_axisQuaternions == 1 && g_translates == 0);
    MatRot4f const below(Vector3f(1, 0, 0), Vector3f(1, std::nextafter(y, 0.0f), 0), Vector3f());
    EXPECT_TRUE(g_axisQuaternions == 1 && g_translates == 1);
    (new EnhancedMathFunctions)->setDefault();
    a *= a;
    EXPECT_EQ(g_affineProducts, 5);
}
