#include "zefcore/math/Vector4f.h"

// Constant-initialised (constexpr constructor): usable from any static initialiser.
const Vector4f Vector4f::m_zero(0.0f, 0.0f, 0.0f, 0.0f);
