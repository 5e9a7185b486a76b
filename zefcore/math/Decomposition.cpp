// The decompositions of Mat4fBase into rotations and scales. They stand apart
// from Mat4fBase.cpp because they name the derived classes MatRot4f and MatAff4f.
#include <cstring>

#include "zefcore/kernel/EnhancedMathFunctions.h"
#include "zefcore/math/Mat4fBase.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"

void Mat4fBase::getTransform(Vector3f &translation, MatRot4f &rotation, Vector3f &scaleFactor,
                             MatRot4f &scaleOrientation, const Vector3f *center) const {
    // Written by the kernel's factor and never read.
    Matrix4f proj;
    if (center == nullptr) {
        // factor reads its input before it writes rotation or scaleOrientation:
        // either may be this object.
        EnhancedMathFunctions::getCurrent()->factor(scaleOrientation.getValue(), scaleFactor.getValue(),
                                                    rotation.getValue(), translation.getValue(),
                                                    proj.getValue(), m_value);
        return;
    }
    Vector3f const back = -*center;
    Matrix4f toOrigin;
    EnhancedMathFunctions::getCurrent()->setTranslate(toOrigin.getValue(), back.getValue());
    Matrix4f fromOrigin;
    EnhancedMathFunctions::getCurrent()->setTranslate(fromOrigin.getValue(), center->getValue());
    // N = T(-center) * this * T(center): left product first, each on a copy.
    Matrix4f n(*this);
    n.multLeftBy(toOrigin);
    n.multRightBy(fromOrigin);
    EnhancedMathFunctions::getCurrent()->factor(scaleOrientation.getValue(), scaleFactor.getValue(),
                                                rotation.getValue(), translation.getValue(), proj.getValue(),
                                                n.getValue());
}

bool Mat4fBase::orthoNormalizeMatrix(MatRot4f &) const {
    return true;
}

bool Mat4fBase::normalizeMatrix(MatAff4f &out, Vector3f &lengths) const {
    // The bottom row is not read.
    Vector3f x(m_value);
    Vector3f y(m_value + 4);
    Vector3f z(m_value + 8);
    float const lx = x.normalize();
    float const ly = y.normalize();
    float const lz = z.normalize();
    lengths.setValue(lx, ly, lz);
    float *const o = out.getValue();
    std::memcpy(o, x.getValue(), 3 * sizeof(float));
    std::memcpy(o + 4, y.getValue(), 3 * sizeof(float));
    std::memcpy(o + 8, z.getValue(), 3 * sizeof(float));
    // Same object or not, 12..14 are read before being written.
    float const t[3] = {m_value[12], m_value[13], m_value[14]};
    std::memcpy(o + 12, t, sizeof t);
    return true;
}
