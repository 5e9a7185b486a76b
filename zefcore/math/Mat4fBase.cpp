// Mat4fBase: the identity constant, raw access and the reading operations.
#include "zefcore/math/Mat4fBase.h"

#include <cmath>

#include "zefcore/kernel/EnhancedMathFunctions.h"

// A constant expression through the constexpr constructor: constant
// initialisation, done before any dynamic initialiser of any library.
const Mat4fBase Mat4fBase::m_identity(1.0f, 0.0f, 0.0f, 0.0f, //
                                      0.0f, 1.0f, 0.0f, 0.0f, //
                                      0.0f, 0.0f, 1.0f, 0.0f, //
                                      0.0f, 0.0f, 0.0f, 1.0f);

void Mat4fBase::getValue(float &a0, float &a1, float &a2, float &a3, float &a4, float &a5, float &a6,
                         float &a7, float &a8, float &a9, float &a10, float &a11, float &a12, float &a13,
                         float &a14, float &a15) const {
    a0 = m_value[0];
    a1 = m_value[1];
    a2 = m_value[2];
    a3 = m_value[3];
    a4 = m_value[4];
    a5 = m_value[5];
    a6 = m_value[6];
    a7 = m_value[7];
    a8 = m_value[8];
    a9 = m_value[9];
    a10 = m_value[10];
    a11 = m_value[11];
    a12 = m_value[12];
    a13 = m_value[13];
    a14 = m_value[14];
    a15 = m_value[15];
}

void Mat4fBase::setValue(float a0, float a1, float a2, float a3, float a4, float a5, float a6, float a7,
                         float a8, float a9, float a10, float a11, float a12, float a13, float a14,
                         float a15) {
    m_value[0] = a0;
    m_value[1] = a1;
    m_value[2] = a2;
    m_value[3] = a3;
    m_value[4] = a4;
    m_value[5] = a5;
    m_value[6] = a6;
    m_value[7] = a7;
    m_value[8] = a8;
    m_value[9] = a9;
    m_value[10] = a10;
    m_value[11] = a11;
    m_value[12] = a12;
    m_value[13] = a13;
    m_value[14] = a14;
    m_value[15] = a15;
}

void Mat4fBase::getCopy(float *out) const {
    EnhancedMathFunctions::getCurrent()->copyMat4fTo(out, m_value);
}

bool Mat4fBase::equals(const Mat4fBase &other, float tolerance) const {
    for (int i = 0; i < 16; ++i) {
        float const d = float(double(m_value[i]) - other.m_value[i]);
        float const magnitude = std::fabs(d);
        // Only a true comparison fails the matrices: a NaN difference passes.
        if (magnitude > tolerance)
            return false;
    }
    return true;
}
