// 4x4 matrices and quaternions: products, inverse, points through a projective
// matrix, quaternion product and quaternion to matrix, through the classes an
// application holds, beside the same work in GLM, Eigen and Imath on the same
// floats. Every peer result is checked against ours before timing.
#include "BenchSupport.h"

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"
#include "zefcore/math/Vector3f.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#if ZEF_BENCH_HAVE_GLM
#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/gtc/type_ptr.hpp>
#endif
#if ZEF_BENCH_HAVE_EIGEN
#include <Eigen/Dense>
#include <Eigen/Geometry>
#include <Eigen/StdVector>
#endif
#if ZEF_BENCH_HAVE_IMATH
#include <Imath/ImathMatrix.h>
#include <Imath/ImathQuat.h>
#include <Imath/ImathVec.h>
#endif

namespace {

using zefbench::agree;
using zefbench::perItem;

// Matrices and quaternions per batch: small enough to stay in the L2 cache, so
// the rows time arithmetic rather than memory.
constexpr int kBatch = 1024;
constexpr int kPoints = 1000000;

// Tolerances of the agreement checks: ours rounds each sum from double, the
// peers accumulate in float, so a few ulps of the largest term apart.
constexpr float kProductTolerance = 1e-5f;  // entries in [-1, 1], sums of four terms
constexpr float kInverseTolerance = 1e-4f;  // relative to 1 + |entry|
constexpr float kPointTolerance = 1e-5f;    // relative to 1 + |coordinate|
constexpr float kRotationTolerance = 1e-6f; // unit quaternions, entries in [-1, 1]

bool near(const float *a, const float *b, int count, float tolerance) {
    for (int i = 0; i < count; ++i)
        if (!(std::fabs(a[i] - b[i]) <= tolerance * (1.0f + std::fabs(b[i]))))
            return false;
    return true;
}

// ---- shared data: plain floats in the library's storage order ---------------
struct MatrixData {
    std::vector<float> a, b;    // kBatch products a[k] * b[k]
    std::vector<float> regular; // kBatch well-conditioned matrices to invert
    float projection[16];       // a perspective camera times a view: a full 4x4
    std::vector<float> points;  // kPoints points, x y z
    std::vector<float> q1, q2;  // kBatch unit quaternions each, w x y z
};

const MatrixData &data() {
    static const MatrixData d = [] {
        MatrixData m;
        std::mt19937 rng(zefbench::kSeed);
        std::uniform_real_distribution<float> unit(-1.0f, 1.0f);
        m.a.resize(16 * kBatch);
        m.b.resize(16 * kBatch);
        m.regular.resize(16 * kBatch);
        for (float &x : m.a)
            x = unit(rng);
        for (float &x : m.b)
            x = unit(rng);
        for (int k = 0; k < kBatch; ++k)
            for (int i = 0; i < 16; ++i)
                m.regular[16 * k + i] = unit(rng) + (i % 5 == 0 ? 4.0f : 0.0f); // dominant diagonal

        zefbench::cameraMatrix(m.projection);

        // Points on both sides of the camera, but none near its plane (|w| < 1),
        // where the divide magnifies the rounding of w and routes cannot agree.
        std::uniform_real_distribution<float> spread(-20.0f, 20.0f);
        const float *c = m.projection;
        while (m.points.size() < 3 * static_cast<std::size_t>(kPoints)) {
            const float x = spread(rng), y = spread(rng), z = spread(rng);
            const double w = double(c[3]) * x + double(c[7]) * y + double(c[11]) * z + c[15];
            if (std::fabs(w) >= 1.0)
                m.points.insert(m.points.end(), {x, y, z});
        }

        m.q1.resize(4 * kBatch);
        m.q2.resize(4 * kBatch);
        std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
        for (std::vector<float> *q : {&m.q1, &m.q2})
            for (int k = 0; k < kBatch; ++k) {
                const Quaternion r(Vector3f(unit(rng), unit(rng), unit(rng)), angle(rng));
                std::memcpy(q->data() + 4 * k, r.getValue(), 4 * sizeof(float));
            }
        return m;
    }();
    return d;
}

std::vector<Matrix4f> toMatrices(const std::vector<float> &v) {
    std::vector<Matrix4f> out;
    for (std::size_t i = 0; i < v.size(); i += 16)
        out.emplace_back(v.data() + i);
    return out;
}

std::vector<Vector3f> toPoints(const std::vector<float> &v) {
    std::vector<Vector3f> out;
    for (std::size_t i = 0; i < v.size(); i += 3)
        out.emplace_back(v[i], v[i + 1], v[i + 2]);
    return out;
}

std::vector<Quaternion> toQuaternions(const std::vector<float> &v) {
    // Quaternion has no constructor from four floats: it is a plain value of
    // four floats, written as bytes.
    std::vector<Quaternion> out(v.size() / 4);
    std::memcpy(static_cast<void *>(out.data()), v.data(), v.size() * sizeof(float));
    return out;
}

// ---- our reference results, computed once ------------------------------------
const std::vector<Matrix4f> &ourProducts() {
    static const std::vector<Matrix4f> r = [] {
        const std::vector<Matrix4f> a = toMatrices(data().a), b = toMatrices(data().b);
        std::vector<Matrix4f> out(kBatch);
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        return out;
    }();
    return r;
}

const std::vector<Matrix4f> &ourInverses() {
    static const std::vector<Matrix4f> r = [] {
        std::vector<Matrix4f> out = toMatrices(data().regular);
        bool ok = true;
        for (Matrix4f &m : out)
            m.inverse(ok);
        return out;
    }();
    return r;
}

const std::vector<Vector3f> &ourPoints() {
    static const std::vector<Vector3f> r = [] {
        const Matrix4f m(data().projection);
        const std::vector<Vector3f> in = toPoints(data().points);
        std::vector<Vector3f> out(in.size());
        for (std::size_t i = 0; i < in.size(); ++i)
            m.multRightVec3f(out[i], in[i]);
        return out;
    }();
    return r;
}

const std::vector<Quaternion> &ourQuatProducts() {
    static const std::vector<Quaternion> r = [] {
        const std::vector<Quaternion> a = toQuaternions(data().q1), b = toQuaternions(data().q2);
        std::vector<Quaternion> out(kBatch);
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        return out;
    }();
    return r;
}

const std::vector<MatRot4f> &ourRotations() {
    static const std::vector<MatRot4f> r = [] {
        const std::vector<Quaternion> q = toQuaternions(data().q1);
        std::vector<MatRot4f> out(kBatch);
        for (int k = 0; k < kBatch; ++k)
            q[k].getValue(out[k]);
        return out;
    }();
    return r;
}

// ---- the fixed cost of a route ---------------------------------------------------
// A kernel whose operations on these routes return at once: timed through the
// same routes, it gives what the calls cost without the arithmetic (the call
// into the kernel, its virtual dispatch, the copies the classes make), a floor
// no kernel can go under. Results are then meaningless and not checked.
class HollowKernel : public EnhancedMathFunctions {
public:
    void setIdentity(float *const) const override {}
    void copyVec3fTo(float *const, float const *const) const override {}
    void multMatrices(float *const, float const *const, float const *const) const override {}
    bool inverseMatrix(float *const, float const *const) const override { return true; }
    void multMatrixVec3f(float *const, float const *const, float const *const) const override {}
    void multQuaternions(float *const, float const *const, float const *const) const override {}
    void quaternionToMatrix(float *const, float const *const) const override {}
};

bool hollow = false; // true while a floor row runs: its results are not checked

// Runs the row route with a HollowKernel current, then makes a plain kernel
// current again.
template <void (*route)(benchmark::State &)>
void floorOf(benchmark::State &state) {
    data(); // built with the plain kernel
    (new HollowKernel)->setDefault();
    hollow = true;
    route(state);
    hollow = false;
    (new EnhancedMathFunctions)->setDefault();
}

// Checks count floats per element of results against ours.
template <class Ours, class Theirs, class Floats>
bool sameAs(const std::vector<Ours> &ours, const Theirs &theirs, int count, float tolerance, Floats floats) {
    for (std::size_t k = 0; k < ours.size(); ++k)
        if (!near(floats(theirs[k]), ours[k].getValue(), count, tolerance))
            return false;
    return true;
}

// ---- 4x4 product ---------------------------------------------------------------
void zefMultLeftBy(benchmark::State &state) {
    const std::vector<Matrix4f> a = toMatrices(data().a), b = toMatrices(data().b);
    std::vector<Matrix4f> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k) {
            out[k] = b[k];
            out[k].multLeftBy(a[k]);
        }
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          hollow || sameAs(ourProducts(), out, 16, 0.0f, [](const Matrix4f &m) { return m.getValue(); }),
          "multLeftBy differs from operator*");
    perItem(state, kBatch, "product");
}

void zefOperatorProduct(benchmark::State &state) {
    const std::vector<Matrix4f> a = toMatrices(data().a), b = toMatrices(data().b);
    std::vector<Matrix4f> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    perItem(state, kBatch, "product");
}

void zefKernelProduct(benchmark::State &state) {
    const std::vector<Matrix4f> a = toMatrices(data().a), b = toMatrices(data().b);
    std::vector<Matrix4f> out(kBatch);
    const EnhancedMathFunctions *kernel = EnhancedMathFunctions::getCurrent();
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            kernel->multMatrices(out[k].getValue(), a[k].getValue(), b[k].getValue());
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          hollow || sameAs(ourProducts(), out, 16, 0.0f, [](const Matrix4f &m) { return m.getValue(); }),
          "multMatrices differs from operator*");
    perItem(state, kBatch, "product");
}

// ---- 4x4 inverse -----------------------------------------------------------------
void zefInverse(benchmark::State &state) {
    const std::vector<Matrix4f> src = toMatrices(data().regular);
    std::vector<Matrix4f> out(kBatch);
    int failures = 0;
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k) {
            bool ok = false;
            out[k] = src[k];
            out[k].inverse(ok);
            failures += ok ? 0 : 1;
        }
        zefbench::consume(out.data());
        zefbench::consume(failures);
        benchmark::ClobberMemory();
    }
    agree(state, failures == 0, "a well-conditioned matrix was refused");
    perItem(state, kBatch, "inverse");
}

// Chained: each inverse is the next one's input, so the row times the latency
// of one inverse instead of the throughput of independent ones. Inverting twice
// gives back about the matrix, so the values stay where they started.
template <class M, class Invert>
void chainedInverse(benchmark::State &state, M m, Invert invert) {
    for (auto _ : state) {
        for (int k = 0; k < kBatch; ++k)
            m = invert(m);
        zefbench::consume(m);
    }
    perItem(state, kBatch, "inverse");
}

// ---- points through a projective matrix --------------------------------------------
void zefPoints(benchmark::State &state) {
    const Matrix4f m(data().projection);
    const std::vector<Vector3f> in = toPoints(data().points);
    std::vector<Vector3f> out(in.size());
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (std::size_t i = 0; i < in.size(); ++i)
            m.multRightVec3f(out[i], in[i]);
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    perItem(state, kPoints, "point");
}

// ---- quaternions ---------------------------------------------------------------------
void zefQuatProduct(benchmark::State &state) {
    const std::vector<Quaternion> a = toQuaternions(data().q1), b = toQuaternions(data().q2);
    std::vector<Quaternion> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    perItem(state, kBatch, "product");
}

void zefQuatToMatrix(benchmark::State &state) {
    const std::vector<Quaternion> q = toQuaternions(data().q1);
    std::vector<MatRot4f> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            q[k].getValue(out[k]);
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    perItem(state, kBatch, "conversion");
}

// ---- GLM ------------------------------------------------------------------------------
#if ZEF_BENCH_HAVE_GLM
std::vector<glm::mat4> glmMatrices(const std::vector<float> &v) {
    std::vector<glm::mat4> out;
    for (std::size_t i = 0; i < v.size(); i += 16)
        out.push_back(glm::make_mat4(v.data() + i)); // column after column, as ours
    return out;
}

std::vector<glm::quat> glmQuaternions(const std::vector<float> &v) {
    std::vector<glm::quat> out;
    for (std::size_t i = 0; i < v.size(); i += 4)
        out.emplace_back(v[i], v[i + 1], v[i + 2], v[i + 3]); // w, x, y, z
    return out;
}

void glmProduct(benchmark::State &state) {
    const std::vector<glm::mat4> a = glmMatrices(data().a), b = glmMatrices(data().b);
    std::vector<glm::mat4> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourProducts(), out, 16, kProductTolerance,
                 [](const glm::mat4 &m) { return glm::value_ptr(m); }),
          "GLM product differs from ours");
    perItem(state, kBatch, "product");
}

void glmInverse(benchmark::State &state) {
    const std::vector<glm::mat4> src = glmMatrices(data().regular);
    std::vector<glm::mat4> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = glm::inverse(src[k]);
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourInverses(), out, 16, kInverseTolerance,
                 [](const glm::mat4 &m) { return glm::value_ptr(m); }),
          "GLM inverse differs from ours");
    perItem(state, kBatch, "inverse");
}

void glmPoints(benchmark::State &state) {
    const glm::mat4 m = glm::make_mat4(data().projection);
    std::vector<glm::vec3> in;
    for (std::size_t i = 0; i < data().points.size(); i += 3)
        in.push_back(glm::make_vec3(data().points.data() + i));
    std::vector<glm::vec3> out(in.size());
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (std::size_t i = 0; i < in.size(); ++i) {
            const glm::vec4 r = m * glm::vec4(in[i], 1.0f);
            out[i] = glm::vec3(r) / r.w;
        }
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourPoints(), out, 3, kPointTolerance, [](const glm::vec3 &v) { return glm::value_ptr(v); }),
          "GLM points differ from ours");
    perItem(state, kPoints, "point");
}

void glmQuatProduct(benchmark::State &state) {
    const std::vector<glm::quat> a = glmQuaternions(data().q1), b = glmQuaternions(data().q2);
    std::vector<glm::quat> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourQuatProducts(), out, 4, kRotationTolerance,
                 [](const glm::quat &q) {
                     static thread_local float wxyz[4];
                     wxyz[0] = q.w, wxyz[1] = q.x, wxyz[2] = q.y, wxyz[3] = q.z;
                     return static_cast<const float *>(wxyz);
                 }),
          "GLM quaternion product differs from ours");
    perItem(state, kBatch, "product");
}

void glmQuatToMatrix(benchmark::State &state) {
    const std::vector<glm::quat> q = glmQuaternions(data().q1);
    std::vector<glm::mat4> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = glm::mat4_cast(q[k]);
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourRotations(), out, 16, kRotationTolerance,
                 [](const glm::mat4 &m) { return glm::value_ptr(m); }),
          "GLM rotation matrix differs from ours");
    perItem(state, kBatch, "conversion");
}
#endif

// ---- Eigen ----------------------------------------------------------------------------
#if ZEF_BENCH_HAVE_EIGEN
using EigenMatrices = std::vector<Eigen::Matrix4f, Eigen::aligned_allocator<Eigen::Matrix4f>>;
using EigenQuaternions = std::vector<Eigen::Quaternionf, Eigen::aligned_allocator<Eigen::Quaternionf>>;

EigenMatrices eigenMatrices(const std::vector<float> &v) {
    EigenMatrices out;
    for (std::size_t i = 0; i < v.size(); i += 16)
        out.push_back(Eigen::Map<const Eigen::Matrix4f>(v.data() + i)); // column-major, as ours
    return out;
}

EigenQuaternions eigenQuaternions(const std::vector<float> &v) {
    EigenQuaternions out;
    for (std::size_t i = 0; i < v.size(); i += 4)
        out.emplace_back(v[i], v[i + 1], v[i + 2], v[i + 3]); // w, x, y, z
    return out;
}

void eigenProduct(benchmark::State &state) {
    const EigenMatrices a = eigenMatrices(data().a), b = eigenMatrices(data().b);
    EigenMatrices out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k].noalias() = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(
        state,
        sameAs(ourProducts(), out, 16, kProductTolerance, [](const Eigen::Matrix4f &m) { return m.data(); }),
        "Eigen product differs from ours");
    perItem(state, kBatch, "product");
}

void eigenInverse(benchmark::State &state) {
    const EigenMatrices src = eigenMatrices(data().regular);
    EigenMatrices out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = src[k].inverse();
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(
        state,
        sameAs(ourInverses(), out, 16, kInverseTolerance, [](const Eigen::Matrix4f &m) { return m.data(); }),
        "Eigen inverse differs from ours");
    perItem(state, kBatch, "inverse");
}

void eigenPoints(benchmark::State &state) {
    const Eigen::Matrix4f m = Eigen::Map<const Eigen::Matrix4f>(data().projection);
    std::vector<Eigen::Vector3f> in;
    for (std::size_t i = 0; i < data().points.size(); i += 3)
        in.push_back(Eigen::Map<const Eigen::Vector3f>(data().points.data() + i));
    std::vector<Eigen::Vector3f> out(in.size());
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (std::size_t i = 0; i < in.size(); ++i)
            out[i] = (m * in[i].homogeneous()).hnormalized();
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourPoints(), out, 3, kPointTolerance, [](const Eigen::Vector3f &v) { return v.data(); }),
          "Eigen points differ from ours");
    perItem(state, kPoints, "point");
}

void eigenQuatProduct(benchmark::State &state) {
    const EigenQuaternions a = eigenQuaternions(data().q1), b = eigenQuaternions(data().q2);
    EigenQuaternions out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourQuatProducts(), out, 4, kRotationTolerance,
                 [](const Eigen::Quaternionf &q) {
                     static thread_local float wxyz[4];
                     wxyz[0] = q.w(), wxyz[1] = q.x(), wxyz[2] = q.y(), wxyz[3] = q.z();
                     return static_cast<const float *>(wxyz);
                 }),
          "Eigen quaternion product differs from ours");
    perItem(state, kBatch, "product");
}

void eigenQuatToMatrix(benchmark::State &state) {
    const EigenQuaternions q = eigenQuaternions(data().q1);
    EigenMatrices out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k) {
            out[k].setIdentity();
            out[k].topLeftCorner<3, 3>() = q[k].toRotationMatrix();
        }
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourRotations(), out, 16, kRotationTolerance,
                 [](const Eigen::Matrix4f &m) { return m.data(); }),
          "Eigen rotation matrix differs from ours");
    perItem(state, kBatch, "conversion");
}
#endif

// ---- Imath ----------------------------------------------------------------------------
#if ZEF_BENCH_HAVE_IMATH
// Imath multiplies row vectors from the left: its matrix holding our sixteen
// floats in the same memory is the same transform, and our a * b is its b * a.
std::vector<Imath::M44f> imathMatrices(const std::vector<float> &v) {
    std::vector<Imath::M44f> out(v.size() / 16);
    for (std::size_t k = 0; k < out.size(); ++k)
        std::memcpy(out[k].getValue(), v.data() + 16 * k, 16 * sizeof(float));
    return out;
}

std::vector<Imath::Quatf> imathQuaternions(const std::vector<float> &v) {
    std::vector<Imath::Quatf> out;
    for (std::size_t i = 0; i < v.size(); i += 4)
        out.emplace_back(v[i], v[i + 1], v[i + 2], v[i + 3]); // r, i, j, k
    return out;
}

void imathProduct(benchmark::State &state) {
    const std::vector<Imath::M44f> a = imathMatrices(data().a), b = imathMatrices(data().b);
    std::vector<Imath::M44f> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = b[k] * a[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(
        state,
        sameAs(ourProducts(), out, 16, kProductTolerance, [](const Imath::M44f &m) { return m.getValue(); }),
        "Imath product differs from ours");
    perItem(state, kBatch, "product");
}

template <bool GaussJordan>
void imathInverse(benchmark::State &state) {
    const std::vector<Imath::M44f> src = imathMatrices(data().regular);
    std::vector<Imath::M44f> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = GaussJordan ? src[k].gjInverse() : src[k].inverse();
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(
        state,
        sameAs(ourInverses(), out, 16, kInverseTolerance, [](const Imath::M44f &m) { return m.getValue(); }),
        "Imath inverse differs from ours");
    perItem(state, kBatch, "inverse");
}

void imathPoints(benchmark::State &state) {
    Imath::M44f m;
    std::memcpy(m.getValue(), data().projection, sizeof data().projection);
    std::vector<Imath::V3f> in;
    for (std::size_t i = 0; i < data().points.size(); i += 3)
        in.emplace_back(data().points[i], data().points[i + 1], data().points[i + 2]);
    std::vector<Imath::V3f> out(in.size());
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (std::size_t i = 0; i < in.size(); ++i)
            m.multVecMatrix(in[i], out[i]); // with the homogeneous divide
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourPoints(), out, 3, kPointTolerance, [](const Imath::V3f &v) { return v.getValue(); }),
          "Imath points differ from ours");
    perItem(state, kPoints, "point");
}

void imathQuatProduct(benchmark::State &state) {
    const std::vector<Imath::Quatf> a = imathQuaternions(data().q1), b = imathQuaternions(data().q2);
    std::vector<Imath::Quatf> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = a[k] * b[k];
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourQuatProducts(), out, 4, kRotationTolerance,
                 [](const Imath::Quatf &q) {
                     static thread_local float wxyz[4];
                     wxyz[0] = q.r, wxyz[1] = q.v.x, wxyz[2] = q.v.y, wxyz[3] = q.v.z;
                     return static_cast<const float *>(wxyz);
                 }),
          "Imath quaternion product differs from ours");
    perItem(state, kBatch, "product");
}

void imathQuatToMatrix(benchmark::State &state) {
    const std::vector<Imath::Quatf> q = imathQuaternions(data().q1);
    std::vector<Imath::M44f> out(kBatch);
    for (auto _ : state) {
        benchmark::ClobberMemory();
        for (int k = 0; k < kBatch; ++k)
            out[k] = q[k].toMatrix44();
        zefbench::consume(out.data());
        benchmark::ClobberMemory();
    }
    agree(state,
          sameAs(ourRotations(), out, 16, kRotationTolerance,
                 [](const Imath::M44f &m) { return m.getValue(); }),
          "Imath rotation matrix differs from ours");
    perItem(state, kBatch, "conversion");
}
#endif

const bool registered = [] {
    using zefbench::add;
    using zefbench::missing;
    add("mat4_product", "zef:Matrix4f::multLeftBy", zefMultLeftBy);
    add("mat4_product", "zef:operator*", zefOperatorProduct);
    add("mat4_product", "zef:kernel multMatrices", zefKernelProduct);
    add("mat4_inverse", "zef:Matrix4f::inverse", zefInverse);
    add("points_1M_projective", "zef:multRightVec3f", zefPoints)->Unit(benchmark::kMillisecond);
    add("quat_product", "zef:Quaternion::operator*", zefQuatProduct);
    add("quat_to_matrix", "zef:Quaternion::getValue(MatRot4f&)", zefQuatToMatrix);
    add("mat4_inverse_chained", "zef:Matrix4f::inverse", [](benchmark::State &state) {
        chainedInverse(state, Matrix4f(data().regular.data()), [](Matrix4f m) {
            bool ok = false;
            m.inverse(ok);
            return m;
        });
    });
    // The same routes with a kernel that does no arithmetic: the calls alone.
    add("mat4_product", "zef:floor of multLeftBy (calls only)", floorOf<zefMultLeftBy>);
    add("mat4_product", "zef:floor of operator* (calls only)", floorOf<zefOperatorProduct>);
    add("mat4_product", "zef:floor of multMatrices (call only)", floorOf<zefKernelProduct>);
    add("mat4_inverse", "zef:floor of inverse (call only)", floorOf<zefInverse>);
    add("points_1M_projective", "zef:floor of multRightVec3f (call only)", floorOf<zefPoints>)
        ->Unit(benchmark::kMillisecond);
    add("quat_product", "zef:floor of operator* (call only)", floorOf<zefQuatProduct>);
    add("quat_to_matrix", "zef:floor of getValue (calls only)", floorOf<zefQuatToMatrix>);
#if ZEF_BENCH_HAVE_GLM
    add("mat4_product", "glm:operator*", glmProduct);
    add("mat4_inverse", "glm:inverse", glmInverse);
    add("mat4_inverse_chained", "glm:inverse", [](benchmark::State &state) {
        chainedInverse(state, glm::make_mat4(data().regular.data()),
                       [](const glm::mat4 &m) { return glm::inverse(m); });
    });
    add("points_1M_projective", "glm:mat4*vec4,divide", glmPoints)->Unit(benchmark::kMillisecond);
    add("quat_product", "glm:operator*", glmQuatProduct);
    add("quat_to_matrix", "glm:mat4_cast", glmQuatToMatrix);
#else
    for (const char *c : {"mat4_product", "mat4_inverse", "mat4_inverse_chained", "points_1M_projective",
                          "quat_product", "quat_to_matrix"})
        missing(c, "glm", "GLM");
#endif
#if ZEF_BENCH_HAVE_EIGEN
    add("mat4_product", "eigen:Matrix4f*", eigenProduct);
    add("mat4_inverse", "eigen:Matrix4f::inverse", eigenInverse);
    add("mat4_inverse_chained", "eigen:Matrix4f::inverse", [](benchmark::State &state) {
        chainedInverse(state, Eigen::Matrix4f(Eigen::Map<const Eigen::Matrix4f>(data().regular.data())),
                       [](const Eigen::Matrix4f &m) -> Eigen::Matrix4f { return m.inverse(); });
    });
    add("points_1M_projective", "eigen:homogeneous,hnormalized", eigenPoints)->Unit(benchmark::kMillisecond);
    add("quat_product", "eigen:Quaternionf*", eigenQuatProduct);
    add("quat_to_matrix", "eigen:toRotationMatrix", eigenQuatToMatrix);
#else
    for (const char *c : {"mat4_product", "mat4_inverse", "mat4_inverse_chained", "points_1M_projective",
                          "quat_product", "quat_to_matrix"})
        missing(c, "eigen", "Eigen");
#endif
#if ZEF_BENCH_HAVE_IMATH
    add("mat4_product", "imath:M44f*", imathProduct);
    add("mat4_inverse", "imath:M44f::inverse", imathInverse<false>);
    add("mat4_inverse", "imath:M44f::gjInverse", imathInverse<true>);
    add("mat4_inverse_chained", "imath:M44f::inverse", [](benchmark::State &state) {
        Imath::M44f m;
        std::memcpy(m.getValue(), data().regular.data(), 16 * sizeof(float));
        chainedInverse(state, m, [](const Imath::M44f &x) { return x.inverse(); });
    });
    add("points_1M_projective", "imath:multVecMatrix", imathPoints)->Unit(benchmark::kMillisecond);
    add("quat_product", "imath:Quatf*", imathQuatProduct);
    add("quat_to_matrix", "imath:toMatrix44", imathQuatToMatrix);
#else
    for (const char *c : {"mat4_product", "mat4_inverse", "mat4_inverse_chained", "points_1M_projective",
                          "quat_product", "quat_to_matrix"})
        missing(c, "imath", "Imath");
#endif
    return true;
}();

} // namespace
