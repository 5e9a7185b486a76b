#include "zefcore/math/Tolerance.h"

namespace {

// x if x > 0, else -x: the float absolute value of the tolerant tests.
inline float absFloat(float x) {
    return x > 0.0f ? x : -x;
}

} // namespace

bool isZero(float x) {
    const float ax = absFloat(x);
    // The double bound, not its float: the float nearest 0.0001 lies just below it.
    return double(ax) <= ZEF_DEFAULT_TOLERANCE;
}

bool isZero(float x, float eps) {
    return absFloat(x) <= eps;
}

bool areEqual(float a, float b) {
    const float d = float(double(a) - b);
    const float ad = absFloat(d);
    return double(ad) <= ZEF_DEFAULT_TOLERANCE;
}

bool areEqual(float a, float b, float eps) {
    const float d = float(double(a) - b);
    return absFloat(d) <= eps;
}
