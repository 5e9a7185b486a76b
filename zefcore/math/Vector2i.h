/// \file
/// Vector2i: a two-element vector of 32-bit signed ints, x, y and nothing else.
/// Addition, subtraction and scaling wrap silently at overflow, in the width of
/// the element; dot and norm2 are 32-bit sums that wrap and are read as int.
/// There is no division.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"

/// Two 32-bit signed ints x, y; the arithmetic wraps at overflow.
class ZEFCORE_API Vector2i {
public:
    /// (0, 0).
    static const Vector2i m_zero;

    // ---- construction and access -----------------------------------------
    /// Sets (0, 0).
    constexpr Vector2i() : m_v{0, 0} {}
    /// Sets a copy of v.
    constexpr Vector2i(const Vector2i &v) = default;
    /// Sets (x, y).
    constexpr Vector2i(int x, int y) : m_v{x, y} {}
    /// Sets p[0], p[1].
    Vector2i(const int *p) : m_v{p[0], p[1]} {}
    /// Sets this object to a copy of v; returns it.
    Vector2i &operator=(const Vector2i &v) = default;

    ///@{
    /// Returns one coordinate; the non-const forms return a reference to it.
    int x() const { return m_v[0]; }
    int y() const { return m_v[1]; }
    int &x() { return m_v[0]; }
    int &y() { return m_v[1]; }
    ///@}

    ///@{
    /// Returns a pointer to x; y follows.
    const int *getValue() const { return m_v; }
    int *getValue() { return m_v; }
    ///@}
    /// Sets x, y to the coordinates.
    void getValue(int &x, int &y) const {
        x = m_v[0];
        y = m_v[1];
    }
    /// Sets the coordinates to x, y.
    void setValue(int x, int y) {
        m_v[0] = x;
        m_v[1] = y;
    }
    /// Sets x, y from p[0], p[1].
    void setValue(const int *p) {
        m_v[0] = p[0];
        m_v[1] = p[1];
    }
    ///@{
    /// Returns element i; no bound test: i must be 0 or 1.
    int operator[](int i) const { return m_v[i]; }
    int &operator[](int i) { return m_v[i]; }
    ///@}

    // ---- arithmetic -------------------------------------------------------
    // Element by element, wrapping at overflow. Aliasing: out may be an operand.

    /// Sets out = a + b.
    static void add(Vector2i &out, const Vector2i &a, const Vector2i &b);
    /// Sets out = a - b.
    static void sub(Vector2i &out, const Vector2i &a, const Vector2i &b);
    /// Sets out = v * s.
    static void mult(Vector2i &out, const Vector2i &v, int s);

    /// Returns this + v, as add.
    Vector2i operator+(const Vector2i &v) const {
        Vector2i r;
        add(r, *this, v);
        return r;
    }
    /// Returns this - v, as sub.
    Vector2i operator-(const Vector2i &v) const {
        Vector2i r;
        sub(r, *this, v);
        return r;
    }
    /// Sets this = this + v, as add; returns this object.
    Vector2i &operator+=(const Vector2i &v) {
        add(*this, *this, v);
        return *this;
    }
    /// Sets this = this - v, as sub; returns this object.
    Vector2i &operator-=(const Vector2i &v) {
        sub(*this, *this, v);
        return *this;
    }
    /// Returns this * s, as mult.
    Vector2i operator*(int s) const {
        Vector2i r;
        mult(r, *this, s);
        return r;
    }
    /// Sets this = this * s, as mult; returns this object.
    Vector2i &operator*=(int s) {
        mult(*this, *this, s);
        return *this;
    }

    // ---- products and norms -----------------------------------------------
    ///@{
    /// Returns a.y*b.y + a.x*b.x in 32-bit arithmetic, wrapping.
    static int dot(const Vector2i &a, const Vector2i &b);
    int dot(const Vector2i &v) const { return dot(*this, v); }
    ///@}
    /// Returns x*x + y*y in 32-bit arithmetic, wrapping.
    int norm2() const;
    /// Returns the square root of norm2() read as a signed int, rounded to float.
    /// Degenerate: not a number where the 32-bit sum reads as negative.
    float norm() const;
    /// Sets each element to element / norm(), truncated towards zero (INT_MIN where the quotient is not a
    /// number or does not fit). Returns the norm. Degenerate: a norm of 0 leaves this unchanged and returns
    /// 0.
    float normalize();
    /// Sets each element to element / m, truncated towards zero, with m = norm() / k
    /// rounded to float. Returns m. Degenerate: a norm of 0 leaves this unchanged and returns 0.
    float normalize(int k);

    ///@{
    /// Returns true if both elements are exactly equal.
    bool operator==(const Vector2i &v) const { return m_v[0] == v.m_v[0] && m_v[1] == v.m_v[1]; }
    bool operator!=(const Vector2i &v) const { return !(*this == v); }
    ///@}

private:
    int m_v[2];
};

static_assert(sizeof(Vector2i) == 2 * sizeof(int), "Vector2i is two elements");
static_assert(std::is_standard_layout<Vector2i>::value, "Vector2i has standard layout");
static_assert(!std::is_polymorphic<Vector2i>::value, "Vector2i has no virtual operation");
static_assert(std::is_trivially_copyable<Vector2i>::value, "Vector2i copies as bytes");
