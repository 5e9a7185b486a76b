/// \file
/// Vector4f: homogeneous coordinates, four floats x, y, z, w and nothing else.
/// Built like Vector3f: division by a scalar multiplies by the reciprocal and
/// tests for an exact zero. Precision: double inside one expression, every stored
/// float rounded (see EnhancedMathFunctions.h).
#pragma once

#include <cmath>
#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Vector3f.h"

/// Four floats x, y, z, w: a homogeneous point or any four-element vector.
class ZEFCORE_API Vector4f {
public:
    /// (0, 0, 0, 0).
    static const Vector4f m_zero;

    // ---- construction and access -----------------------------------------
    /// Sets (0, 0, 0, 0).
    constexpr Vector4f() : m_v{0.0f, 0.0f, 0.0f, 0.0f} {}
    /// Sets a copy of v.
    constexpr Vector4f(const Vector4f &v) = default;
    /// Sets (x, y, z, w).
    constexpr Vector4f(float x, float y, float z, float w) : m_v{x, y, z, w} {}
    /// Sets (v.x, v.y, v.z, 1): a point. Build a direction with the four-float constructor.
    Vector4f(const Vector3f &v) : m_v{v.x(), v.y(), v.z(), 1.0f} {}
    /// Sets p[0], p[1], p[2], p[3].
    Vector4f(const float *p) : m_v{p[0], p[1], p[2], p[3]} {}
    /// Sets this object to a copy of v; returns it.
    Vector4f &operator=(const Vector4f &v) = default;

    ///@{
    /// Returns one coordinate; the non-const forms return a reference to it.
    float x() const { return m_v[0]; }
    float y() const { return m_v[1]; }
    float z() const { return m_v[2]; }
    float w() const { return m_v[3]; }
    float &x() { return m_v[0]; }
    float &y() { return m_v[1]; }
    float &z() { return m_v[2]; }
    float &w() { return m_v[3]; }
    ///@}

    ///@{
    /// Returns a pointer to x; y, z and w follow.
    const float *getValue() const { return m_v; }
    float *getValue() { return m_v; }
    ///@}
    /// Sets x, y, z, w to the coordinates.
    void getValue(float &x, float &y, float &z, float &w) const {
        x = m_v[0];
        y = m_v[1];
        z = m_v[2];
        w = m_v[3];
    }
    /// Sets the coordinates to x, y, z, w.
    void setValue(float x, float y, float z, float w) {
        m_v[0] = x;
        m_v[1] = y;
        m_v[2] = z;
        m_v[3] = w;
    }
    /// Sets x, y, z, w from p[0] to p[3].
    void setValue(const float *p) {
        for (int i = 0; i < 4; ++i)
            m_v[i] = p[i];
    }
    ///@{
    /// Returns element i; no bound test: i must be 0 to 3.
    float operator[](int i) const { return m_v[i]; }
    float &operator[](int i) { return m_v[i]; }
    ///@}

    // ---- arithmetic -------------------------------------------------------
    // Element by element, each element rounded to float.
    // Aliasing: out may be the same object as any operand.

    /// Sets out = a + b.
    static void add(Vector4f &out, const Vector4f &a, const Vector4f &b) {
        for (int i = 0; i < 4; ++i)
            out.m_v[i] = float(double(a.m_v[i]) + b.m_v[i]);
    }
    /// Sets out = a - b.
    static void sub(Vector4f &out, const Vector4f &a, const Vector4f &b) {
        for (int i = 0; i < 4; ++i)
            out.m_v[i] = float(double(a.m_v[i]) - b.m_v[i]);
    }
    /// Sets out = v * s.
    static void mult(Vector4f &out, const Vector4f &v, float s) {
        for (int i = 0; i < 4; ++i)
            out.m_v[i] = float(double(v.m_v[i]) * s);
    }
    /// Sets out = v * r with r = 1 / s rounded to float.
    /// Unchanged on failure: out is not touched if s == 0 (exact test).
    static void div(Vector4f &out, const Vector4f &v, float s) {
        if (s == 0.0f)
            return;
        const float r = float(1.0 / double(s));
        for (int i = 0; i < 4; ++i)
            out.m_v[i] = float(double(v.m_v[i]) * r);
    }
    /// Sets out = -v (negation, not a reciprocal).
    static void inverse(Vector4f &out, const Vector4f &v) {
        for (int i = 0; i < 4; ++i)
            out.m_v[i] = -v.m_v[i];
    }

    /// Returns this + v, as add.
    Vector4f operator+(const Vector4f &v) const {
        Vector4f r;
        add(r, *this, v);
        return r;
    }
    /// Returns this - v, as sub.
    Vector4f operator-(const Vector4f &v) const {
        Vector4f r;
        sub(r, *this, v);
        return r;
    }
    /// Sets this = this + v, as add; returns this object.
    Vector4f &operator+=(const Vector4f &v) {
        add(*this, *this, v);
        return *this;
    }
    /// Sets this = this - v, as sub; returns this object.
    Vector4f &operator-=(const Vector4f &v) {
        sub(*this, *this, v);
        return *this;
    }
    /// Returns this * s, as mult.
    Vector4f operator*(float s) const {
        Vector4f r;
        mult(r, *this, s);
        return r;
    }
    /// Sets this = this * s, as mult; returns this object.
    Vector4f &operator*=(float s) {
        mult(*this, *this, s);
        return *this;
    }
    /// Returns this * (1 / s). Degenerate: (0, 0, 0, 0) if s == 0.
    Vector4f operator/(float s) const {
        Vector4f r;
        div(r, *this, s);
        return r;
    }
    /// Sets this = this * (1 / s). Unchanged on failure: s == 0 leaves this as it was.
    Vector4f &operator/=(float s) {
        div(*this, *this, s);
        return *this;
    }

    // ---- products and norms -----------------------------------------------
    /// Returns ((a.y*b.y + a.x*b.x) + a.z*b.z) + a.w*b.w. Precision: summed in double, rounded once.
    static float dot(const Vector4f &a, const Vector4f &b) {
        return float(
            ((double(a.m_v[1]) * b.m_v[1] + double(a.m_v[0]) * b.m_v[0]) + double(a.m_v[2]) * b.m_v[2]) +
            double(a.m_v[3]) * b.m_v[3]);
    }
    /// Returns ((y*y + x*x) + z*z) + w*w. Precision: summed in double, rounded once.
    float norm2() const { return dot(*this, *this); }
    /// Returns the length. Precision: the square is rounded to float, then its root.
    float norm() const {
        const float n2 = norm2();
        return float(std::sqrt(double(n2)));
    }
    /// Sets this = div(this, norm()). Returns the length before.
    /// Degenerate: a length of exactly 0 leaves this unchanged and returns 0.
    float normalize() {
        const float n = norm();
        if (n == 0.0f)
            return 0.0f;
        div(*this, *this, n);
        return n;
    }
    /// Sets this = div(this, m) with m = norm() / k rounded to float; returns m.
    /// Degenerate: a length of 0 returns 0; a zero m leaves this unchanged (div's test).
    float normalize(float k) {
        const float n = norm();
        if (n == 0.0f)
            return 0.0f;
        const float m = float(double(n) / k);
        div(*this, *this, m);
        return m;
    }

private:
    float m_v[4];
};

static_assert(sizeof(Vector4f) == 4 * sizeof(float), "Vector4f is four floats");
static_assert(std::is_standard_layout<Vector4f>::value, "Vector4f has standard layout");
static_assert(!std::is_polymorphic<Vector4f>::value, "Vector4f has no virtual operation");
static_assert(std::is_trivially_copyable<Vector4f>::value, "Vector4f copies as bytes");
