// MatAff4fBase and the free affine products.
#include "zefcore/math/MatAff4fBase.h"

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/ScalarHelpers.h"

MatAff4fBase::MatAff4fBase() : Mat4fBase() {
    EnhancedMathFunctions::getCurrent()->setIdentity(m_value);
}

MatAff4fBase::MatAff4fBase(const MatAff4fBase &m) : Mat4fBase() {
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(m_value, m.m_value);
}

void MatAff4fBase::multRightVec3f(Vector3f &out, const Vector3f &in) const {
    EnhancedMathFunctions::getCurrent()->multAffineMatrixVec3f(out.getValue(), m_value, in.getValue());
}

bool MatAff4fBase::equalsAff(const MatAff4fBase &other, float tolerance) const {
    static const int affineIndex[12] = {0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14};
    for (int i : affineIndex) {
        float const d = float(double(m_value[i]) - other.m_value[i]);
        // Signed difference against both bounds: only a true comparison fails.
        if (d > tolerance || d < -tolerance)
            return false;
    }
    return true;
}

bool MatAff4fBase::testFiniteAndNAN() {
    for (float const v : m_value) {
        if (!::testFiniteAndNAN(v))
            return false;
    }
    return true;
}

MatAff4fBase operator*(const MatAff4fBase &a, const MatAff4fBase &b) {
    MatAff4fBase result;
    EnhancedMathFunctions::getCurrent()->multAffineMatrices(result.getValue(), a.getValue(), b.getValue());
    return result;
}

MatAff4fBase operator*(float s, const MatAff4fBase &m) {
    MatAff4fBase result;
    EnhancedMathFunctions::getCurrent()->multMatrixScalar(result.getValue(), m.getValue(), s);
    return result;
}

Vector3f operator*(const MatAff4fBase &m, const Vector3f &v) {
    Vector3f result;
    EnhancedMathFunctions::getCurrent()->multAffineMatrixVec3f(result.getValue(), m.getValue(), v.getValue());
    return result;
}
