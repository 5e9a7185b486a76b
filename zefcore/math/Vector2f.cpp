#include "zefcore/math/Vector2f.h"

#include <cmath>

// Constant-initialised (constexpr constructor): usable from any static initialiser.
const Vector2f Vector2f::m_zero(0.0f, 0.0f);

namespace {

// The float values of pi/2, pi and 2 pi, held as doubles.
constexpr double kFloatHalfPi = 1.5707963705062866;
constexpr double kFloatPi = 3.1415927410125732;
constexpr double kFloatTwoPi = 6.2831854820251465;

} // namespace

float Vector2f::angle() const {
    const float x = m_v[0];
    const float y = m_v[1];
    // Exact zero test: the quotient below needs a nonzero x.
    if (x == 0.0f)
        return y >= 0.0f ? float(kFloatHalfPi) : float(-kFloatHalfPi);
    const float q = float(double(y) / x);
    const float a = float(std::atan(double(q)));
    if (x < 0.0f)
        return float(double(a) + kFloatPi);
    if (y >= 0.0f)
        return a;
    return float(double(a) + kFloatTwoPi);
}

float Vector2f::angle(const Vector2f &v) const {
    const float a = norm();
    const float b = v.norm();
    const double d = double(a) * b;
    if (d == 0.0)
        return 0.0f;
    const float e = dot(*this, v);
    const float c = float(double(e) / d);
    if (c <= -1.0f)
        return float(kFloatPi);
    if (c >= 1.0f)
        return 0.0f;
    return float(std::acos(double(c)));
}
