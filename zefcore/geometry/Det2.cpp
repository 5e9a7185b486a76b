#include "zefcore/geometry/Det2.h"

float det2(float a, float b, float c, float d) {
    return static_cast<float>(double(a) * d - double(b) * c);
}
