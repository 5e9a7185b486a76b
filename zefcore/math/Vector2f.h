/// \file
/// Vector2f: a point or direction in a plane, two floats x, y and nothing else.
/// Unlike its sisters, division by a scalar divides directly and makes no zero
/// test: a zero divisor gives infinities or not-a-number elements. Precision:
/// double inside one expression, every stored float rounded (see EnhancedMathFunctions.h).
#pragma once

#include <cmath>
#include <type_traits>

#include "zefcore/ZEFExport.h"

/// A point or direction in a plane: two floats x, y.
class ZEFCORE_API Vector2f {
public:
    /// (0, 0).
    static const Vector2f m_zero;

    // ---- construction and access -----------------------------------------
    /// Sets (0, 0).
    constexpr Vector2f() : m_v{0.0f, 0.0f} {}
    /// Sets a copy of v.
    constexpr Vector2f(const Vector2f &v) = default;
    /// Sets b - a, the vector from a to b, rounded per element.
    Vector2f(const Vector2f &a, const Vector2f &b)
        : m_v{float(double(b.m_v[0]) - a.m_v[0]), float(double(b.m_v[1]) - a.m_v[1])} {}
    /// Sets (x, y).
    constexpr Vector2f(float x, float y) : m_v{x, y} {}
    /// Sets p[0], p[1].
    Vector2f(const float *p) : m_v{p[0], p[1]} {}
    /// Sets this object to a copy of v; returns it.
    Vector2f &operator=(const Vector2f &v) = default;

    ///@{
    /// Returns one coordinate; the non-const forms return a reference to it.
    float x() const { return m_v[0]; }
    float y() const { return m_v[1]; }
    float &x() { return m_v[0]; }
    float &y() { return m_v[1]; }
    ///@}

    ///@{
    /// Returns a pointer to x; y follows.
    const float *getValue() const { return m_v; }
    float *getValue() { return m_v; }
    ///@}
    /// Sets x, y to the coordinates.
    void getValue(float &x, float &y) const {
        x = m_v[0];
        y = m_v[1];
    }
    /// Sets the coordinates to x, y.
    void setValue(float x, float y) {
        m_v[0] = x;
        m_v[1] = y;
    }
    /// Sets x, y from p[0], p[1].
    void setValue(const float *p) {
        m_v[0] = p[0];
        m_v[1] = p[1];
    }
    ///@{
    /// Returns element i; no bound test: i must be 0 or 1.
    float operator[](int i) const { return m_v[i]; }
    float &operator[](int i) { return m_v[i]; }
    ///@}

    // ---- arithmetic -------------------------------------------------------
    // Element by element, each element rounded to float.
    // Aliasing: out may be the same object as any operand.

    /// Sets out = a + b.
    static void add(Vector2f &out, const Vector2f &a, const Vector2f &b) {
        out.m_v[0] = float(double(a.m_v[0]) + b.m_v[0]);
        out.m_v[1] = float(double(a.m_v[1]) + b.m_v[1]);
    }
    /// Sets out = a - b.
    static void sub(Vector2f &out, const Vector2f &a, const Vector2f &b) {
        out.m_v[0] = float(double(a.m_v[0]) - b.m_v[0]);
        out.m_v[1] = float(double(a.m_v[1]) - b.m_v[1]);
    }
    /// Sets out = v * s.
    static void mult(Vector2f &out, const Vector2f &v, float s) {
        out.m_v[0] = float(double(v.m_v[0]) * s);
        out.m_v[1] = float(double(v.m_v[1]) * s);
    }
    /// Sets out = (v.x / s, v.y / s) by direct division. Degenerate: no zero test.
    static void div(Vector2f &out, const Vector2f &v, float s) {
        out.m_v[0] = float(double(v.m_v[0]) / s);
        out.m_v[1] = float(double(v.m_v[1]) / s);
    }

    /// Returns this + v, as add.
    Vector2f operator+(const Vector2f &v) const {
        Vector2f r;
        add(r, *this, v);
        return r;
    }
    /// Returns this - v, as sub.
    Vector2f operator-(const Vector2f &v) const {
        Vector2f r;
        sub(r, *this, v);
        return r;
    }
    /// Sets this = this + v, as add; returns this object.
    Vector2f &operator+=(const Vector2f &v) {
        add(*this, *this, v);
        return *this;
    }
    /// Sets this = this - v, as sub; returns this object.
    Vector2f &operator-=(const Vector2f &v) {
        sub(*this, *this, v);
        return *this;
    }
    /// Returns this * s, as mult.
    Vector2f operator*(float s) const {
        Vector2f r;
        mult(r, *this, s);
        return r;
    }
    /// Sets this = this * s, as mult; returns this object.
    Vector2f &operator*=(float s) {
        mult(*this, *this, s);
        return *this;
    }
    /// Returns (x / s, y / s) by direct division. Degenerate: no zero test.
    Vector2f operator/(float s) const {
        Vector2f r;
        div(r, *this, s);
        return r;
    }
    /// Sets (x / s, y / s) by direct division. Degenerate: no zero test.
    Vector2f &operator/=(float s) {
        div(*this, *this, s);
        return *this;
    }

    // ---- products and norms -----------------------------------------------
    ///@{
    /// Returns a.y*b.y + a.x*b.x. Precision: summed in double, rounded once.
    static float dot(const Vector2f &a, const Vector2f &b) {
        return float(double(a.m_v[1]) * b.m_v[1] + double(a.m_v[0]) * b.m_v[0]);
    }
    float dot(const Vector2f &v) const { return dot(*this, v); }
    ///@}
    /// Returns v.y*x - y*v.x, rounded once: the z of the cross product in space,
    /// positive if v lies counter-clockwise of this.
    float cross(const Vector2f &v) const {
        return float(double(v.m_v[1]) * m_v[0] - double(m_v[1]) * v.m_v[0]);
    }
    /// Returns y*y + x*x. Precision: summed in double, rounded once.
    float norm2() const { return dot(*this, *this); }
    /// Returns the length. Precision: the square is rounded to float, then its root.
    float norm() const {
        const float n2 = norm2();
        return float(std::sqrt(double(n2)));
    }
    /// Sets (x / n, y / n) by direct division, n = norm(). Returns n.
    /// Degenerate: a length of exactly 0 leaves this unchanged and returns 0.
    float normalize() {
        const float n = norm();
        if (n == 0.0f)
            return 0.0f;
        div(*this, *this, n);
        return n;
    }
    /// Sets (x / m, y / m) by direct division, m = norm() / k rounded to float. Returns m.
    /// Degenerate: a length of exactly 0 leaves this unchanged and returns 0.
    float normalize(float k) {
        const float n = norm();
        if (n == 0.0f)
            return 0.0f;
        const float m = float(double(n) / k);
        div(*this, *this, m);
        return m;
    }

    // ---- angles and comparison --------------------------------------------
    /// Returns the direction of this in radians, in [0, 2 pi) by quadrant, from atan
    /// of y / x. Degenerate: x == 0 gives pi/2 for y >= 0 (the zero vector too) and
    /// -pi/2 for y < 0. Precision: the quotient, its atan and the sum are each
    /// rounded to float; pi and 2 pi are their float values.
    float angle() const;
    /// Returns the unsigned angle between this and v, 0 to pi (as float).
    /// Degenerate: 0 if either vector is zero. Precision: the norms, the dot and the
    /// cosine are floats; the product of the norms is not rounded.
    float angle(const Vector2f &v) const;
    /// Returns -1 if d < -eps, 1 if d > eps, else 0, with d = a - b rounded to float.
    /// Degenerate: 0 if d or eps is not a number.
    static int compFloat(float a, float b, float eps) {
        const float d = float(double(a) - b);
        if (d < -eps)
            return -1;
        if (d > eps)
            return 1;
        return 0;
    }

private:
    float m_v[2];
};

static_assert(sizeof(Vector2f) == 2 * sizeof(float), "Vector2f is two floats");
static_assert(std::is_standard_layout<Vector2f>::value, "Vector2f has standard layout");
static_assert(!std::is_polymorphic<Vector2f>::value, "Vector2f has no virtual operation");
static_assert(std::is_trivially_copyable<Vector2f>::value, "Vector2f copies as bytes");
