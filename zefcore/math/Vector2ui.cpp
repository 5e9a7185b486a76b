#include "zefcore/math/Vector2ui.h"

#include <cmath>

#include "zefcore/math/internal/IntegerConversion.h"

using zefcore_internal::truncToInt64Low32;
using zefcore_internal::wrapToInt32;

// Constant-initialised (constexpr constructor): usable from any static initialiser.
const Vector2ui Vector2ui::m_zero(0u, 0u);

// Unsigned arithmetic wraps by itself.
void Vector2ui::add(Vector2ui &out, const Vector2ui &a, const Vector2ui &b) {
    out.m_v[0] = a.m_v[0] + b.m_v[0];
    out.m_v[1] = a.m_v[1] + b.m_v[1];
}

void Vector2ui::sub(Vector2ui &out, const Vector2ui &a, const Vector2ui &b) {
    out.m_v[0] = a.m_v[0] - b.m_v[0];
    out.m_v[1] = a.m_v[1] - b.m_v[1];
}

void Vector2ui::mult(Vector2ui &out, const Vector2ui &v, unsigned int s) {
    out.m_v[0] = v.m_v[0] * s;
    out.m_v[1] = v.m_v[1] * s;
}

void Vector2ui::div(Vector2ui &out, const Vector2ui &v, unsigned int s) {
    // A zero divisor is refused rather than trapped.
    if (s == 0u)
        return;
    out.m_v[0] = v.m_v[0] / s;
    out.m_v[1] = v.m_v[1] / s;
}

int Vector2ui::dot(const Vector2ui &a, const Vector2ui &b) {
    return wrapToInt32(a.m_v[1] * b.m_v[1] + a.m_v[0] * b.m_v[0]);
}

int Vector2ui::norm2() const {
    return wrapToInt32(m_v[0] * m_v[0] + m_v[1] * m_v[1]);
}

float Vector2ui::norm() const {
    // A sum of 2^31 or more reads as negative here: its root is not a number.
    const int n2 = norm2();
    return float(std::sqrt(double(n2)));
}

float Vector2ui::normalize() {
    const float n = norm();
    if (n == 0.0f)
        return 0.0f;
    m_v[0] = truncToInt64Low32(double(m_v[0]) / n);
    m_v[1] = truncToInt64Low32(double(m_v[1]) / n);
    return n;
}

float Vector2ui::normalize(int k) {
    const float n = norm();
    if (n == 0.0f)
        return 0.0f;
    const float m = float(double(n) / k);
    m_v[0] = truncToInt64Low32(double(m_v[0]) / m);
    m_v[1] = truncToInt64Low32(double(m_v[1]) / m);
    return m;
}
