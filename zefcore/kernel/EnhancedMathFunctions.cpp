// The kernel frame: the current instance, its ownership, and the copy, cross
// product and small determinant operations that every other family builds on.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cstring>

// Both statics are set during library load by the initialisers below; the
// functions that fill them also run lazily if another initialiser gets here first.
EnhancedMathFunctions *EnhancedMathFunctions::m_current = EnhancedMathFunctions::initDefaultMathFunctions();
unsigned char *EnhancedMathFunctions::m_invSqrtTable = EnhancedMathFunctions::initInvSqrtTable();

EnhancedMathFunctions::EnhancedMathFunctions() {
    initInvSqrtTable();
}

EnhancedMathFunctions::~EnhancedMathFunctions() = default;

EnhancedMathFunctions *EnhancedMathFunctions::initDefaultMathFunctions() {
    if (m_current)
        return m_current;
    EnhancedMathFunctions *created = new EnhancedMathFunctions;
    created->setDefault();
    return m_current;
}

void EnhancedMathFunctions::setDefault() const {
    EnhancedMathFunctions *self = const_cast<EnhancedMathFunctions *>(this);
    // The base unref() destroys its object: releasing the current kernel in
    // favour of itself would leave m_current dangling.
    if (m_current == self)
        return;
    self->ref();
    if (m_current)
        m_current->unref();
    m_current = self;
}

void EnhancedMathFunctions::ref() {}

void EnhancedMathFunctions::unref() {
    delete this;
}

float *EnhancedMathFunctions::getMat4fCopy(float const *const m) const {
    float *copy = new float[16];
    copyMat4fTo(copy, m);
    return copy;
}

void EnhancedMathFunctions::copyMat4fTo(float *const out, float const *const m) const {
    // As bytes: bit exact, NaN payloads included. All of m is read before out is
    // written, so the two may overlap in any way. (Fixed-size copies: inlined,
    // no call into the C library.)
    float copy[16];
    std::memcpy(copy, m, sizeof copy);
    std::memcpy(out, copy, sizeof copy);
}

void EnhancedMathFunctions::copyVec3fTo(float *const out, float const *const v) const {
    float copy[3];
    std::memcpy(copy, v, sizeof copy);
    std::memcpy(out, copy, sizeof copy);
}

void EnhancedMathFunctions::cross(float *const out, float const *a, float const *b) const {
    // out[0] is stored before a[0] and b[0] are read: out must be distinct from a and b.
    out[0] = float(double(a[1]) * b[2] - double(a[2]) * b[1]);
    out[1] = float(double(a[2]) * b[0] - double(a[0]) * b[2]);
    out[2] = float(double(a[0]) * b[1] - double(b[0]) * a[1]);
}

void EnhancedMathFunctions::setIdentity(float *const out) const {
    for (int i = 0; i < 16; ++i)
        out[i] = (i % 5 == 0) ? 1.0f : 0.0f;
}

void EnhancedMathFunctions::setZero(float *const out) const {
    for (int i = 0; i < 16; ++i)
        out[i] = 0.0f;
}

float EnhancedMathFunctions::det2(float a, float b, float c, float d) const {
    return float(double(a) * d - double(b) * c);
}

float EnhancedMathFunctions::dot3(float const *const a, float const *const b) const {
    return float((double(a[1]) * b[1] + double(a[0]) * b[0]) + double(a[2]) * b[2]);
}
