/// \file
/// Vector2ui: a two-element vector of 32-bit unsigned ints, x, y and nothing else.
/// Addition, subtraction and scaling wrap silently at overflow, in the width of
/// the element; dot and norm2 are 32-bit sums that wrap and are read as int.
#pragma once

#include <type_traits>

#include "zefcore/ZEFExport.h"

/// Two 32-bit unsigned ints x, y; the arithmetic wraps modulo 2^32.
class ZEFCORE_API Vector2ui {
public:
    /// (0, 0).
    static const Vector2ui m_zero;

    // ---- construction and access -----------------------------------------
    /// Sets (0, 0).
    constexpr Vector2ui() : m_v{0, 0} {}
    /// Sets a copy of v.
    constexpr Vector2ui(const Vector2ui &v) = default;
    /// Sets (x, y).
    constexpr Vector2ui(unsigned int x, unsigned int y) : m_v{x, y} {}
    /// Sets p[0], p[1].
    Vector2ui(const unsigned int *p) : m_v{p[0], p[1]} {}
    /// Sets this object to a copy of v; returns it.
    Vector2ui &operator=(const Vector2ui &v) = default;

    ///@{
    /// Returns one coordinate; the non-const forms return a reference to it.
    unsigned int x() const { return m_v[0]; }
    unsigned int y() const { return m_v[1]; }
    unsigned int &x() { return m_v[0]; }
    unsigned int &y() { return m_v[1]; }
    ///@}

    ///@{
    /// Returns a pointer to x; y follows.
    const unsigned int *getValue() const { return m_v; }
    unsigned int *getValue() { return m_v; }
    ///@}
    /// Sets x, y to the coordinates.
    void getValue(unsigned int &x, unsigned int &y) const {
        x = m_v[0];
        y = m_v[1];
    }
    /// Sets the coordinates to x, y.
    void setValue(unsigned int x, unsigned int y) {
        m_v[0] = x;
        m_v[1] = y;
    }
    /// Sets x, y from p[0], p[1].
    void setValue(const unsigned int *p) {
        m_v[0] = p[0];
        m_v[1] = p[1];
    }
    ///@{
    /// Returns element i; no bound test: i must be 0 or 1.
    unsigned int operator[](int i) const { return m_v[i]; }
    unsigned int &operator[](int i) { return m_v[i]; }
    ///@}

    // ---- arithmetic -------------------------------------------------------
    // Element by element, wrapping at overflow. Aliasing: out may be an operand.

    /// Sets out = a + b.
    static void add(Vector2ui &out, const Vector2ui &a, const Vector2ui &b);
    /// Sets out = a - b.
    static void sub(Vector2ui &out, const Vector2ui &a, const Vector2ui &b);
    /// Sets out = v * s.
    static void mult(Vector2ui &out, const Vector2ui &v, unsigned int s);
    /// Sets out = v / s, unsigned 32-bit division.
    /// Unchanged on failure: out is not touched if s == 0.
    static void div(Vector2ui &out, const Vector2ui &v, unsigned int s);

    /// Returns this + v, as add.
    Vector2ui operator+(const Vector2ui &v) const {
        Vector2ui r;
        add(r, *this, v);
        return r;
    }
    /// Returns this - v, as sub.
    Vector2ui operator-(const Vector2ui &v) const {
        Vector2ui r;
        sub(r, *this, v);
        return r;
    }
    /// Sets this = this + v, as add; returns this object.
    Vector2ui &operator+=(const Vector2ui &v) {
        add(*this, *this, v);
        return *this;
    }
    /// Sets this = this - v, as sub; returns this object.
    Vector2ui &operator-=(const Vector2ui &v) {
        sub(*this, *this, v);
        return *this;
    }
    /// Returns this * s, as mult.
    Vector2ui operator*(unsigned int s) const {
        Vector2ui r;
        mult(r, *this, s);
        return r;
    }
    /// Sets this = this * s, as mult; returns this object.
    Vector2ui &operator*=(unsigned int s) {
        mult(*this, *this, s);
        return *this;
    }
    /// Returns this / s. Degenerate: (0, 0) if s == 0.
    Vector2ui operator/(unsigned int s) const {
        Vector2ui r;
        div(r, *this, s);
        return r;
    }
    /// Sets this = this / s. Unchanged on failure: s == 0 leaves this as it was.
    Vector2ui &operator/=(unsigned int s) {
        div(*this, *this, s);
        return *this;
    }

    // ---- products and norms -----------------------------------------------
    ///@{
    /// Returns a.y*b.y + a.x*b.x in 32-bit arithmetic, wrapping (the bits read as int, which can be
    /// negative).
    static int dot(const Vector2ui &a, const Vector2ui &b);
    int dot(const Vector2ui &v) const { return dot(*this, v); }
    ///@}
    /// Returns x*x + y*y in 32-bit arithmetic, wrapping (the bits read as int, which can be negative).
    int norm2() const;
    /// Returns the square root of norm2() read as a signed int, rounded to float.
    /// Degenerate: not a number where the 32-bit sum reads as negative.
    float norm() const;
    /// Sets each element to element / norm(), truncated towards zero as a 64-bit integer, of which the low 32
    /// bits are stored (0 where the quotient is not a number or out of range). Returns the norm. Degenerate:
    /// a norm of 0 leaves this unchanged and returns 0.
    float normalize();
    /// Sets each element to element / m, truncated towards zero, with m = norm() / k
    /// rounded to float. Returns m. Degenerate: a norm of 0 leaves this unchanged and returns 0.
    float normalize(int k);

    ///@{
    /// Returns true if both elements are exactly equal.
    bool operator==(const Vector2ui &v) const { return m_v[0] == v.m_v[0] && m_v[1] == v.m_v[1]; }
    bool operator!=(const Vector2ui &v) const { return !(*this == v); }
    ///@}

private:
    unsigned int m_v[2];
};

static_assert(sizeof(Vector2ui) == 2 * sizeof(unsigned int), "Vector2ui is two elements");
static_assert(std::is_standard_layout<Vector2ui>::value, "Vector2ui has standard layout");
static_assert(!std::is_polymorphic<Vector2ui>::value, "Vector2ui has no virtual operation");
static_assert(std::is_trivially_copyable<Vector2ui>::value, "Vector2ui copies as bytes");
