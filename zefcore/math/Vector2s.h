/// \file
/// Vector2s: a two-element vector of 16-bit signed shorts, x, y and nothing else.
/// Addition, subtraction and scaling wrap silently at overflow, in the width of
/// the element; dot and norm2 are 32-bit sums that wrap and are read as int.
/// Shorts are widened with their sign to 32 bits before any product or quotient.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"

/// Two 16-bit signed ints x, y; the arithmetic wraps at overflow.
class ZEFCORE_API Vector2s {
public:
    /// (0, 0).
    static const Vector2s m_zero;

    // ---- construction and access -----------------------------------------
    /// Sets (0, 0).
    constexpr Vector2s() : m_v{0, 0} {}
    /// Sets a copy of v.
    constexpr Vector2s(const Vector2s &v) = default;
    /// Sets (x, y).
    constexpr Vector2s(short x, short y) : m_v{x, y} {}
    /// Sets p[0], p[1].
    Vector2s(const short *p) : m_v{p[0], p[1]} {}
    /// Sets this object to a copy of v; returns it.
    Vector2s &operator=(const Vector2s &v) = default;

    ///@{
    /// Returns one coordinate; the non-const forms return a reference to it.
    short x() const { return m_v[0]; }
    short y() const { return m_v[1]; }
    short &x() { return m_v[0]; }
    short &y() { return m_v[1]; }
    ///@}

    ///@{
    /// Returns a pointer to x; y follows.
    const short *getValue() const { return m_v; }
    short *getValue() { return m_v; }
    ///@}
    /// Sets x, y to the coordinates.
    void getValue(short &x, short &y) const {
        x = m_v[0];
        y = m_v[1];
    }
    /// Sets the coordinates to x, y.
    void setValue(short x, short y) {
        m_v[0] = x;
        m_v[1] = y;
    }
    /// Sets x, y from p[0], p[1].
    void setValue(const short *p) {
        m_v[0] = p[0];
        m_v[1] = p[1];
    }
    ///@{
    /// Returns element i; no bound test: i must be 0 or 1.
    short operator[](int i) const { return m_v[i]; }
    short &operator[](int i) { return m_v[i]; }
    ///@}

    // ---- arithmetic -------------------------------------------------------
    // Element by element, wrapping at overflow. Aliasing: out may be an operand.

    /// Sets out = a + b.
    static void add(Vector2s &out, const Vector2s &a, const Vector2s &b);
    /// Sets out = a - b.
    static void sub(Vector2s &out, const Vector2s &a, const Vector2s &b);
    /// Sets out = v * s.
    static void mult(Vector2s &out, const Vector2s &v, short s);
    /// Sets out = v / s, each element and s widened to 32 bits, the quotient truncated towards zero, its low
    /// 16 bits stored. Unchanged on failure: out is not touched if s == 0.
    static void div(Vector2s &out, const Vector2s &v, short s);

    /// Returns this + v, as add.
    Vector2s operator+(const Vector2s &v) const {
        Vector2s r;
        add(r, *this, v);
        return r;
    }
    /// Returns this - v, as sub.
    Vector2s operator-(const Vector2s &v) const {
        Vector2s r;
        sub(r, *this, v);
        return r;
    }
    /// Sets this = this + v, as add; returns this object.
    Vector2s &operator+=(const Vector2s &v) {
        add(*this, *this, v);
        return *this;
    }
    /// Sets this = this - v, as sub; returns this object.
    Vector2s &operator-=(const Vector2s &v) {
        sub(*this, *this, v);
        return *this;
    }
    /// Returns this * s, as mult.
    Vector2s operator*(short s) const {
        Vector2s r;
        mult(r, *this, s);
        return r;
    }
    /// Sets this = this * s, as mult; returns this object.
    Vector2s &operator*=(short s) {
        mult(*this, *this, s);
        return *this;
    }
    /// Returns this / s. Degenerate: (0, 0) if s == 0.
    Vector2s operator/(short s) const {
        Vector2s r;
        div(r, *this, s);
        return r;
    }
    /// Sets this = this / s. Unchanged on failure: s == 0 leaves this as it was.
    Vector2s &operator/=(short s) {
        div(*this, *this, s);
        return *this;
    }

    // ---- products and norms -----------------------------------------------
    ///@{
    /// Returns a.y*b.y + a.x*b.x in 32-bit arithmetic, wrapping (elements widened with their sign first).
    static int dot(const Vector2s &a, const Vector2s &b);
    int dot(const Vector2s &v) const { return dot(*this, v); }
    ///@}
    /// Returns x*x + y*y in 32-bit arithmetic, wrapping (elements widened with their sign first).
    int norm2() const;
    /// Returns the square root of norm2() read as a signed int, rounded to float.
    /// Degenerate: not a number where the 32-bit sum reads as negative.
    float norm() const;
    /// Sets each element to element / norm(), truncated towards zero as a 32-bit int (INT_MIN where not a
    /// number or out of range), of which the low 16 bits are stored. Returns the norm. Degenerate: a norm of
    /// 0 leaves this unchanged and returns 0.
    float normalize();
    /// Sets each element to element / m, truncated towards zero, with m = norm() / k
    /// rounded to float. Returns m. Degenerate: a norm of 0 leaves this unchanged and returns 0.
    float normalize(int k);

    ///@{
    /// Returns true if both elements are exactly equal.
    bool operator==(const Vector2s &v) const { return m_v[0] == v.m_v[0] && m_v[1] == v.m_v[1]; }
    bool operator!=(const Vector2s &v) const { return !(*this == v); }
    ///@}

private:
    short m_v[2];
};

static_assert(sizeof(Vector2s) == 2 * sizeof(short), "Vector2s is two elements");
static_assert(std::is_standard_layout<Vector2s>::value, "Vector2s has standard layout");
static_assert(!std::is_polymorphic<Vector2s>::value, "Vector2s has no virtual operation");
static_assert(std::is_trivially_copyable<Vector2s>::value, "Vector2s copies as bytes");
