#include "zefcore/math/Vector3f.h"

#include "zefcore/math/Tolerance.h"

// Constant-initialised (constexpr constructors): usable from any static initialiser.
const Vector3f Vector3f::m_zero(0.0f, 0.0f, 0.0f);
const Vector3f Vector3f::m_axis[6] = {
    Vector3f(1.0f, 0.0f, 0.0f),  Vector3f(0.0f, 1.0f, 0.0f),  Vector3f(0.0f, 0.0f, 1.0f),
    Vector3f(-1.0f, 0.0f, 0.0f), Vector3f(0.0f, -1.0f, 0.0f), Vector3f(0.0f, 0.0f, -1.0f),
};

bool isZero(const Vector3f &v) {
    return isZero(v.x()) && isZero(v.y()) && isZero(v.z());
}

bool isZero(const Vector3f &v, float eps) {
    return isZero(v.x(), eps) && isZero(v.y(), eps) && isZero(v.z(), eps);
}

bool areEqual(const Vector3f &a, const Vector3f &b) {
    return isZero(a - b);
}
