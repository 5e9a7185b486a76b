#include "zefcore/math/Vector2i.h"

#include <cmath>
#include <cstdint>

#include "zefcore/math/internal/IntegerConversion.h"

using zefcore_internal::truncToInt32;
using zefcore_internal::wrapToInt32;

// Constant-initialised (constexpr constructor): usable from any static initialiser.
const Vector2i Vector2i::m_zero(0, 0);

namespace {

// The bits of an int as unsigned: all wrapping arithmetic goes through these.
inline std::uint32_t bits(int v) {
    return std::uint32_t(v);
}

} // namespace

void Vector2i::add(Vector2i &out, const Vector2i &a, const Vector2i &b) {
    out.m_v[0] = wrapToInt32(bits(a.m_v[0]) + bits(b.m_v[0]));
    out.m_v[1] = wrapToInt32(bits(a.m_v[1]) + bits(b.m_v[1]));
}

void Vector2i::sub(Vector2i &out, const Vector2i &a, const Vector2i &b) {
    out.m_v[0] = wrapToInt32(bits(a.m_v[0]) - bits(b.m_v[0]));
    out.m_v[1] = wrapToInt32(bits(a.m_v[1]) - bits(b.m_v[1]));
}

void Vector2i::mult(Vector2i &out, const Vector2i &v, int s) {
    out.m_v[0] = wrapToInt32(bits(v.m_v[0]) * bits(s));
    out.m_v[1] = wrapToInt32(bits(v.m_v[1]) * bits(s));
}

int Vector2i::dot(const Vector2i &a, const Vector2i &b) {
    return wrapToInt32(bits(a.m_v[1]) * bits(b.m_v[1]) + bits(a.m_v[0]) * bits(b.m_v[0]));
}

int Vector2i::norm2() const {
    return wrapToInt32(bits(m_v[0]) * bits(m_v[0]) + bits(m_v[1]) * bits(m_v[1]));
}

float Vector2i::norm() const {
    const int n2 = norm2();
    return float(std::sqrt(double(n2)));
}

float Vector2i::normalize() {
    const float n = norm();
    if (n == 0.0f)
        return 0.0f;
    m_v[0] = truncToInt32(double(m_v[0]) / n);
    m_v[1] = truncToInt32(double(m_v[1]) / n);
    return n;
}

float Vector2i::normalize(int k) {
    const float n = norm();
    if (n == 0.0f)
        return 0.0f;
    const float m = float(double(n) / k);
    m_v[0] = truncToInt32(double(m_v[0]) / m);
    m_v[1] = truncToInt32(double(m_v[1]) / m);
    return m;
}
