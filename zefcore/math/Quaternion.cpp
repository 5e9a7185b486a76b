// Quaternion: forwards to the current kernel, asked anew for each call. The
// in-place products hand the kernel a local copy of the four floats, so that a
// kernel (or an application's override) never writes an operand it still reads.
#include "zefcore/math/Quaternion.h"

#include <cmath>
#include <cstring>

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/MatRot4f.h"

namespace {

struct Copy4 {
    float v[4];
    explicit Copy4(const float *src) { std::memcpy(v, src, sizeof v); }
};

} // namespace

Quaternion::Quaternion(const MatRot4f &m) {
    setValue(m);
}

Quaternion::Quaternion(const Vector3f &axis, float angle) {
    EnhancedMathFunctions::getCurrent()->axisToQuaternionU(m_value, axis.getValue(), angle);
}

Quaternion::Quaternion(const Vector3f &from, const Vector3f &to) {
    setValue(from, to);
}

Quaternion::Quaternion(float x, float y, float z) {
    setValue(x, y, z);
}

void Quaternion::setValue(const MatRot4f &m) {
    EnhancedMathFunctions::getCurrent()->RotMatrixToQuaternion(m_value, m.getValue());
}

void Quaternion::setValue(float x, float y, float z) {
    float const angles[3] = {x, y, z};
    EnhancedMathFunctions::getCurrent()->eulerToQuaternion(m_value, angles);
}

void Quaternion::setValue(const Vector3f &from, const Vector3f &to) {
    // No branch for parallel vectors: their cross product is shorter than the
    // kernel's axis limit and gives the identity, opposite vectors included.
    Vector3f const axis = from.cross(to);
    float const angle = from.angle(to);
    EnhancedMathFunctions::getCurrent()->axisToQuaternionU(m_value, axis.getValue(), angle);
}

void Quaternion::getValue(float &x, float &y, float &z) const {
    float angles[3];
    EnhancedMathFunctions::getCurrent()->quaternionToEuler(angles, m_value);
    x = angles[0];
    y = angles[1];
    z = angles[2];
}

float Quaternion::norm() const {
    float const s = float(double(m_value[0]) * m_value[0] + double(m_value[1]) * m_value[1] +
                          double(m_value[2]) * m_value[2] + double(m_value[3]) * m_value[3]);
    return float(std::sqrt(double(s)));
}

float Quaternion::normalize() {
    float const n = norm();
    // No test for n == 0: the zero quaternion becomes four NaN.
    for (float &c : m_value)
        c = float(double(c) / double(n));
    return n;
}

float Quaternion::dot(const Quaternion &q) const {
    float result;
    EnhancedMathFunctions::getCurrent()->dotQuaternions(&result, m_value, q.m_value);
    return result;
}

void Quaternion::div(const Quaternion &q) {
    Copy4 const copy(m_value);
    const float *right = (&q == this) ? copy.v : q.m_value;
    EnhancedMathFunctions::getCurrent()->divQuaternionsU(m_value, copy.v, right);
}

Quaternion Quaternion::operator/(const Quaternion &q) const {
    Quaternion result;
    EnhancedMathFunctions::getCurrent()->divQuaternionsU(result.m_value, m_value, q.m_value);
    return result;
}

Quaternion Quaternion::operator+(const Quaternion &q) const {
    Quaternion result;
    EnhancedMathFunctions::getCurrent()->addQuaternions(result.m_value, m_value, q.m_value);
    return result;
}

Quaternion Quaternion::operator-(const Quaternion &q) const {
    Quaternion result;
    EnhancedMathFunctions::getCurrent()->subQuaternions(result.m_value, m_value, q.m_value);
    return result;
}

Quaternion &Quaternion::operator/=(const Quaternion &q) {
    div(q);
    return *this;
}
