#include "zefcore/math/Vector2s.h"

#include <cmath>
#include <cstdint>

#include "zefcore/math/internal/IntegerConversion.h"

using zefcore_internal::truncToInt32;
using zefcore_internal::wrapToInt16;
using zefcore_internal::wrapToInt32;

// Constant-initialised (constexpr constructor): usable from any static initialiser.
const Vector2s Vector2s::m_zero(0, 0);

namespace {

// The 32-bit pattern of a short widened with its sign: all wrapping arithmetic goes through these.
inline std::uint32_t bits(short v) {
    return std::uint32_t(int(v));
}

} // namespace

void Vector2s::add(Vector2s &out, const Vector2s &a, const Vector2s &b) {
    out.m_v[0] = wrapToInt16(bits(a.m_v[0]) + bits(b.m_v[0]));
    out.m_v[1] = wrapToInt16(bits(a.m_v[1]) + bits(b.m_v[1]));
}

void Vector2s::sub(Vector2s &out, const Vector2s &a, const Vector2s &b) {
    out.m_v[0] = wrapToInt16(bits(a.m_v[0]) - bits(b.m_v[0]));
    out.m_v[1] = wrapToInt16(bits(a.m_v[1]) - bits(b.m_v[1]));
}

void Vector2s::mult(Vector2s &out, const Vector2s &v, short s) {
    out.m_v[0] = wrapToInt16(bits(v.m_v[0]) * bits(s));
    out.m_v[1] = wrapToInt16(bits(v.m_v[1]) * bits(s));
}

void Vector2s::div(Vector2s &out, const Vector2s &v, short s) {
    // A zero divisor is refused rather than trapped.
    if (s == 0)
        return;
    // In 32 bits even -32768 / -1 fits; the low 16 bits of 32768 are then stored.
    const int d = s;
    out.m_v[0] = wrapToInt16(std::uint32_t(int(v.m_v[0]) / d));
    out.m_v[1] = wrapToInt16(std::uint32_t(int(v.m_v[1]) / d));
}

int Vector2s::dot(const Vector2s &a, const Vector2s &b) {
    return wrapToInt32(bits(a.m_v[1]) * bits(b.m_v[1]) + bits(a.m_v[0]) * bits(b.m_v[0]));
}

int Vector2s::norm2() const {
    return wrapToInt32(bits(m_v[0]) * bits(m_v[0]) + bits(m_v[1]) * bits(m_v[1]));
}

float Vector2s::norm() const {
    const int n2 = norm2();
    return float(std::sqrt(double(n2)));
}

float Vector2s::normalize() {
    const float n = norm();
    if (n == 0.0f)
        return 0.0f;
    m_v[0] = wrapToInt16(std::uint32_t(truncToInt32(double(m_v[0]) / n)));
    m_v[1] = wrapToInt16(std::uint32_t(truncToInt32(double(m_v[1]) / n)));
    return n;
}

float Vector2s::normalize(int k) {
    const float n = norm();
    if (n == 0.0f)
        return 0.0f;
    const float m = float(double(n) / k);
    m_v[0] = wrapToInt16(std::uint32_t(truncToInt32(double(m_v[0]) / m)));
    m_v[1] = wrapToInt16(std::uint32_t(truncToInt32(double(m_v[1]) / m)));
    return m;
}
