/// \file
/// Vector3f: a point or direction in space, three floats x, y, z and nothing
/// else, so that getValue() stands wherever the kernel takes three floats.
/// Precision: arithmetic inside one expression is double, every stored float is
/// rounded (see EnhancedMathFunctions.h); only the double results are unrounded.
/// The cross products go through the current kernel; all else is inline.
#pragma once

#include <cmath>
#include <type_traits>

#include "zefcore/ZEFExport.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

/// A point or direction in space: three floats x, y, z.
class ZEFCORE_API Vector3f {
public:
    /// (0, 0, 0).
    static const Vector3f m_zero;
    /// The six unit axes: +X, +Y, +Z, -X, -Y, -Z, in this order.
    static const Vector3f m_axis[6];

    // ---- construction and access -----------------------------------------
    /// Sets (0, 0, 0).
    constexpr Vector3f() : m_v{0.0f, 0.0f, 0.0f} {}
    /// Sets a copy of v.
    constexpr Vector3f(const Vector3f &v) = default;
    /// Sets b - a, the vector from a to b, rounded per element.
    Vector3f(const Vector3f &a, const Vector3f &b)
        : m_v{float(double(b.m_v[0]) - a.m_v[0]), float(double(b.m_v[1]) - a.m_v[1]),
              float(double(b.m_v[2]) - a.m_v[2])} {}
    /// Sets (x, y, z).
    constexpr Vector3f(float x, float y, float z) : m_v{x, y, z} {}
    /// Sets p[0], p[1], p[2].
    Vector3f(const float *p) : m_v{p[0], p[1], p[2]} {}
    /// Sets this object to a copy of v; returns it.
    Vector3f &operator=(const Vector3f &v) = default;

    ///@{
    /// Returns one coordinate; the non-const forms return a reference to it.
    float x() const { return m_v[0]; }
    float y() const { return m_v[1]; }
    float z() const { return m_v[2]; }
    float &x() { return m_v[0]; }
    float &y() { return m_v[1]; }
    float &z() { return m_v[2]; }
    ///@}

    ///@{
    /// Returns a pointer to x; y and z follow.
    const float *getValue() const { return m_v; }
    float *getValue() { return m_v; }
    ///@}
    /// Sets p[0], p[1], p[2] to x, y, z.
    void getValue(float *p) const {
        p[0] = m_v[0];
        p[1] = m_v[1];
        p[2] = m_v[2];
    }
    /// Sets x, y, z to the coordinates.
    void getValue(float &x, float &y, float &z) const {
        x = m_v[0];
        y = m_v[1];
        z = m_v[2];
    }
    /// Sets the coordinates to x, y, z.
    void setValue(float x, float y, float z) {
        m_v[0] = x;
        m_v[1] = y;
        m_v[2] = z;
    }
    /// Sets x, y, z from p[0], p[1], p[2].
    void setValue(const float *p) {
        m_v[0] = p[0];
        m_v[1] = p[1];
        m_v[2] = p[2];
    }
    ///@{
    /// Returns element i; no bound test: i must be 0, 1 or 2.
    float operator[](int i) const { return m_v[i]; }
    float &operator[](int i) { return m_v[i]; }
    ///@}
    /// Exchanges all three elements with v.
    void swap(Vector3f &v) {
        for (int i = 0; i < 3; ++i) {
            const float t = m_v[i];
            m_v[i] = v.m_v[i];
            v.m_v[i] = t;
        }
    }

    // ---- arithmetic -------------------------------------------------------
    // Element by element, each element rounded to float.
    // Aliasing: out may be the same object as any operand.

    /// Sets out = a + b.
    static void add(Vector3f &out, const Vector3f &a, const Vector3f &b) {
        for (int i = 0; i < 3; ++i)
            out.m_v[i] = float(double(a.m_v[i]) + b.m_v[i]);
    }
    /// Sets out = a - b.
    static void sub(Vector3f &out, const Vector3f &a, const Vector3f &b) {
        for (int i = 0; i < 3; ++i)
            out.m_v[i] = float(double(a.m_v[i]) - b.m_v[i]);
    }
    /// Sets out = v * s.
    static void mult(Vector3f &out, const Vector3f &v, float s) {
        for (int i = 0; i < 3; ++i)
            out.m_v[i] = float(double(v.m_v[i]) * s);
    }
    /// Sets out = v * r with r = 1 / s rounded to float.
    /// Unchanged on failure: out is not touched if s == 0 (exact test).
    static void div(Vector3f &out, const Vector3f &v, float s) {
        if (s == 0.0f)
            return;
        const float r = float(1.0 / double(s));
        for (int i = 0; i < 3; ++i)
            out.m_v[i] = float(double(v.m_v[i]) * r);
    }
    /// Sets out = -v (negation, not a reciprocal).
    static void inverse(Vector3f &out, const Vector3f &v) {
        for (int i = 0; i < 3; ++i)
            out.m_v[i] = -v.m_v[i];
    }

    /// Returns this + v, as add.
    Vector3f operator+(const Vector3f &v) const {
        Vector3f r;
        add(r, *this, v);
        return r;
    }
    /// Returns this - v, as sub.
    Vector3f operator-(const Vector3f &v) const {
        Vector3f r;
        sub(r, *this, v);
        return r;
    }
    /// Sets this = this + v, as add; returns this object.
    Vector3f &operator+=(const Vector3f &v) {
        add(*this, *this, v);
        return *this;
    }
    /// Sets this = this - v, as sub; returns this object.
    Vector3f &operator-=(const Vector3f &v) {
        sub(*this, *this, v);
        return *this;
    }
    /// Returns this * s, as mult.
    Vector3f operator*(float s) const {
        Vector3f r;
        mult(r, *this, s);
        return r;
    }
    /// Sets this = this * s, as mult; returns this object.
    Vector3f &operator*=(float s) {
        mult(*this, *this, s);
        return *this;
    }
    /// Returns this * (1 / s). Degenerate: (0, 0, 0) if s == 0.
    Vector3f operator/(float s) const {
        Vector3f r;
        div(r, *this, s);
        return r;
    }
    /// Sets this = this * (1 / s). Unchanged on failure: s == 0 leaves this as it was.
    Vector3f &operator/=(float s) {
        div(*this, *this, s);
        return *this;
    }
    /// Returns (x * v.x, y * v.y, z * v.z).
    Vector3f multCoords(const Vector3f &v) const {
        return Vector3f(float(double(m_v[0]) * v.m_v[0]), float(double(m_v[1]) * v.m_v[1]),
                        float(double(m_v[2]) * v.m_v[2]));
    }

    // ---- products and norms -----------------------------------------------
    ///@{
    /// Returns (a.y*b.y + a.x*b.x) + a.z*b.z. Precision: summed in double, rounded once.
    static float dot(const Vector3f &a, const Vector3f &b) { return float(dotD(a, b)); }
    float dot(const Vector3f &v) const { return dot(*this, v); }
    ///@}
    /// Returns dot(v).
    float operator*(const Vector3f &v) const { return dot(*this, v); }
    ///@{
    /// Returns the same sum as dot, unrounded.
    static double dotD(const Vector3f &a, const Vector3f &b) {
        return (double(a.m_v[1]) * b.m_v[1] + double(a.m_v[0]) * b.m_v[0]) + double(a.m_v[2]) * b.m_v[2];
    }
    double dotD(const Vector3f &v) const { return dotD(*this, v); }
    ///@}
    /// Returns (y*y + x*x) + z*z. Precision: summed in double, rounded once.
    float norm2() const { return float(norm2D()); }
    /// Returns the same sum as norm2, unrounded.
    double norm2D() const {
        return (double(m_v[1]) * m_v[1] + double(m_v[0]) * m_v[0]) + double(m_v[2]) * m_v[2];
    }
    /// Returns the length. Precision: the square is rounded to float, then its root.
    float norm() const {
        const float n2 = norm2();
        return float(std::sqrt(double(n2)));
    }
    /// Returns the square root of norm2D(), in double.
    double normD() const { return std::sqrt(norm2D()); }

    /// Sets this to unit length by the reciprocal of norm(), rounded to float.
    /// Returns the length before. Degenerate: a length of exactly 0 leaves this unchanged and returns 0.
    float normalize() {
        const float n = norm();
        if (n == 0.0f)
            return 0.0f;
        const float r = float(1.0 / double(n));
        mult(*this, *this, r);
        return n;
    }
    /// Sets the length to k by the reciprocal of m = norm() / k (m rounded to float).
    /// Returns m (not the old length). Degenerate: a length of 0 returns 0 and a
    /// zero m returns m; in both cases this is unchanged.
    float normalize(float k) {
        const float n = norm();
        if (n == 0.0f)
            return 0.0f;
        const float m = float(double(n) / k);
        if (m == 0.0f)
            return m;
        const float r = float(1.0 / double(m));
        mult(*this, *this, r);
        return m;
    }

    /// Sets out = a x b through the current kernel. Aliasing: out must be distinct from a and b.
    static void cross(Vector3f &out, const Vector3f &a, const Vector3f &b) {
        EnhancedMathFunctions::getCurrent()->cross(out.m_v, a.m_v, b.m_v);
    }
    /// Returns this x v through the current kernel.
    Vector3f cross(const Vector3f &v) const {
        Vector3f r;
        cross(r, *this, v);
        return r;
    }
    /// Returns cross(v): this x v through the current kernel.
    Vector3f operator^(const Vector3f &v) const { return cross(v); }
    /// Sets this = this x v: the kernel writes a temporary, which is then copied. Returns this.
    Vector3f &selfCross(const Vector3f &v) {
        Vector3f t;
        cross(t, *this, v);
        *this = t;
        return *this;
    }

    // ---- comparison -------------------------------------------------------
    /// Returns true if all three elements are exactly equal; a not-a-number element is never equal.
    bool equals(const Vector3f &v) const {
        return m_v[0] == v.m_v[0] && m_v[1] == v.m_v[1] && m_v[2] == v.m_v[2];
    }
    /// Returns true if compFloat(element, v's element, eps) is 0 for x, y, z in this
    /// order: a difference equal to eps counts as equal, a not-a-number difference too.
    bool equalsEps(const Vector3f &v, float eps) const {
        return compFloat(m_v[0], v.m_v[0], eps) == 0 && compFloat(m_v[1], v.m_v[1], eps) == 0 &&
               compFloat(m_v[2], v.m_v[2], eps) == 0;
    }
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

    // ---- angles and orthogonality -----------------------------------------
    /// Returns the unsigned angle between this and v in radians, 0 to pi, in double.
    /// Degenerate: 0 if either vector is zero; the cosine is clamped before acos.
    double angleD(const Vector3f &v) const {
        const double d = lengthProduct(v);
        if (d == 0.0)
            return 0.0;
        const double c = cosineNumerator(v) / d;
        if (c <= -1.0)
            return 3.141592653589793;
        if (c >= 1.0)
            return 0.0;
        return std::acos(c);
    }
    /// Returns angleD(v) rounded to float.
    float angle(const Vector3f &v) const { return float(angleD(v)); }
    /// Returns the cosine of the angle between this and v, clamped to [-1, 1], in double.
    /// Degenerate: 1 if either vector is zero.
    double cos(const Vector3f &v) const {
        const double d = lengthProduct(v);
        if (d == 0.0)
            return 1.0;
        const double c = cosineNumerator(v) / d;
        if (c > 1.0)
            return 1.0;
        if (c < -1.0)
            return -1.0;
        return c;
    }
    /// Returns the angle from this to v around ref, in (0, 2 pi], in double: angleD(v)
    /// if (this x v) . ref, rounded to float, is above 0, else 2 pi - angleD(v).
    /// Degenerate: parallel vectors give 2 pi, not 0.
    double angleOrientD(const Vector3f &v, const Vector3f &ref) const {
        Vector3f t;
        cross(t, *this, v);
        const double a = angleD(v);
        const float e = dot(t, ref);
        if (e > 0.0f)
            return a;
        return 6.283185307179586 - a;
    }
    /// Returns angleOrientD(v, ref) rounded to float.
    float angleOrient(const Vector3f &v, const Vector3f &ref) const { return float(angleOrientD(v, ref)); }
    /// Sets out = axis x this, where axis is the unit axis of the smallest absolute
    /// element (ties go to X before Y, Y before Z). Not normalised.
    /// Aliasing: out must be distinct from this.
    void findOrthogonalVector(Vector3f &out) const {
        const float a = std::fabs(m_v[0]);
        const float b = std::fabs(m_v[1]);
        const float c = std::fabs(m_v[2]);
        int axis;
        if (b < a)
            axis = (c < b) ? 2 : 1;
        else
            axis = (c < a) ? 2 : 0;
        const Vector3f unit(axis == 0 ? 1.0f : 0.0f, axis == 1 ? 1.0f : 0.0f, axis == 2 ? 1.0f : 0.0f);
        cross(out, unit, *this);
    }
    /// Sets this = this - n * e with e = this . n rounded to float and n * e rounded
    /// per element. Expects a unit n and does not test it. Returns true.
    bool makeOrthogonalTo(const Vector3f &n) {
        const float e = dot(*this, n);
        Vector3f p;
        mult(p, n, e);
        sub(*this, *this, p);
        return true;
    }

private:
    /// sqrt(x*x + y*y + z*z) * sqrt(v.x*v.x + v.y*v.y + v.z*v.z), all in double.
    double lengthProduct(const Vector3f &v) const {
        return std::sqrt(double(m_v[0]) * m_v[0] + double(m_v[1]) * m_v[1] + double(m_v[2]) * m_v[2]) *
               std::sqrt(double(v.m_v[0]) * v.m_v[0] + double(v.m_v[1]) * v.m_v[1] +
                         double(v.m_v[2]) * v.m_v[2]);
    }
    /// v.x*x + v.y*y + v.z*z in double.
    double cosineNumerator(const Vector3f &v) const {
        return double(v.m_v[0]) * m_v[0] + double(v.m_v[1]) * m_v[1] + double(v.m_v[2]) * m_v[2];
    }

    float m_v[3];
};

static_assert(sizeof(Vector3f) == 3 * sizeof(float), "Vector3f is three floats");
static_assert(std::is_standard_layout<Vector3f>::value, "Vector3f has standard layout");
static_assert(!std::is_polymorphic<Vector3f>::value, "Vector3f has no virtual operation");
static_assert(std::is_trivially_copyable<Vector3f>::value, "Vector3f copies as bytes");

/// Returns v * s.
inline Vector3f operator*(float s, const Vector3f &v) {
    return v * s;
}
/// Returns -v.
inline Vector3f operator-(const Vector3f &v) {
    Vector3f r;
    Vector3f::inverse(r, v);
    return r;
}

/// Returns true if each element passes isZero(float): a box around 0, not a sphere.
ZEFCORE_API bool isZero(const Vector3f &v);
/// Returns true if each element passes isZero(float, eps).
ZEFCORE_API bool isZero(const Vector3f &v, float eps);
/// Returns isZero(a - b), the difference rounded per element.
ZEFCORE_API bool areEqual(const Vector3f &a, const Vector3f &b);
