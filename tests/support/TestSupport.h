// Helpers shared by the kernel and math tests: bit-exact comparison of floats,
// seeded random inputs with full mantissas, double-then-round references for the
// matrix and quaternion products, and a scoped installer of a kernel subclass.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <random>
#include <utility>

#include "zefcore/kernel/EnhancedMathFunctions.h"

namespace zeftest {

// Returns the current kernel.
inline EnhancedMathFunctions const &kernel() {
    return *EnhancedMathFunctions::getCurrent();
}

inline std::uint32_t bitsOf(float f) {
    std::uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

inline float floatOf(std::uint32_t b) {
    float f;
    std::memcpy(&f, &b, sizeof f);
    return f;
}

// True if a and b have the same bits: -0 differs from 0, a NaN equals its own bits.
inline bool sameBits(float a, float b) {
    return bitsOf(a) == bitsOf(b);
}

// Success if got[0 .. n) has the bits of want[0 .. n); otherwise names the first difference.
inline ::testing::AssertionResult sameBits(float const *got, float const *want, int n) {
    for (int i = 0; i < n; ++i) {
        if (!sameBits(got[i], want[i]))
            return ::testing::AssertionFailure() << "element " << i << ": " << got[i] << " vs " << want[i];
    }
    return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult sameBits(float const *got, std::initializer_list<float> want) {
    return sameBits(got, want.begin(), int(want.size()));
}

// Returns a float of either sign with a full random mantissa and a magnitude from
// 2^-spread to 2^spread: the order of terms and every rounding point show in its bits.
inline float randomFloat(std::mt19937 &rng, int spread = 8) {
    double const mantissa = double(std::int32_t(rng())) * 0x1p-31;
    return float(std::ldexp(mantissa, int(rng() % unsigned(2 * spread + 1)) - spread));
}

inline void randomFloats(std::mt19937 &rng, float *out, int n, int spread = 8) {
    for (int i = 0; i < n; ++i)
        out[i] = randomFloat(rng, spread);
}

// Sets q to a random unit quaternion with w >= 0, or w = 0 (a half turn) if halfTurn.
inline void randomUnitQuaternion(std::mt19937 &rng, float *q, bool halfTurn = false) {
    std::normal_distribution<double> n;
    double v[4] = {halfTurn ? 0.0 : std::fabs(n(rng)), n(rng), n(rng), n(rng)};
    double const len = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2] + v[3] * v[3]);
    for (int k = 0; k < 4; ++k)
        q[k] = float(v[k] / len);
}

// Sets out = a * b for 4x4 arrays in storage order (flat 4*c + r): each element a
// double sum over k = 0..3 in this order, rounded to float once. A and B may be
// double to stand for unrounded factors.
template <class A, class B>
void referenceProduct(float *out, A const *a, B const *b) {
    for (int i = 0; i < 16; ++i) {
        int const r = i % 4, c = i / 4;
        double s = double(a[r]) * double(b[4 * c]);
        for (int k = 1; k < 4; ++k)
            s += double(a[4 * k + r]) * double(b[4 * c + k]);
        out[i] = float(s);
    }
}

// Sets out = a * b (sign 1) or a * conjugate(b) (sign -1) for quaternions (w, x, y, z):
// each element one double expression in the kernel's order of terms, rounded once.
inline void referenceQuaternionProduct(float *out, float const *a, float const *b, double sign) {
    double const a0 = a[0], a1 = a[1], a2 = a[2], a3 = a[3];
    double const b0 = b[0], b1 = sign * b[1], b2 = sign * b[2], b3 = sign * b[3];
    out[0] = float(a0 * b0 - a1 * b1 - a2 * b2 - a3 * b3);
    out[1] = float(a0 * b1 + a1 * b0 + a2 * b3 - a3 * b2);
    out[2] = float(a0 * b2 + a2 * b0 + a3 * b1 - a1 * b3);
    out[3] = float(a0 * b3 + a3 * b0 + a1 * b2 - a2 * b1);
}

// Installs a new K as the current kernel; on destruction installs a fresh base
// kernel, which destroys the K (an installed kernel owns itself).
template <class K>
class ScopedKernel {
public:
    template <class... Args>
    explicit ScopedKernel(Args &&...args) : m_kernel(new K(std::forward<Args>(args)...)) {
        m_kernel->setDefault();
    }
    ~ScopedKernel() { (new EnhancedMathFunctions)->setDefault(); }
    ScopedKernel(const ScopedKernel &) = delete;
    ScopedKernel &operator=(const ScopedKernel &) = delete;
    K *operator->() const { return m_kernel; }

private:
    K *m_kernel;
};

} // namespace zeftest
