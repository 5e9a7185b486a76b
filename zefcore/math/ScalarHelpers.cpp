#include "zefcore/math/ScalarHelpers.h"

#include <cmath>

bool testFiniteAndNAN(float x) {
    return testFiniteAndNAN(double(x));
}

bool testFiniteAndNAN(double x) {
    if (std::isnan(x))
        return false;
    return std::isfinite(x);
}

// A plain comparison keeps the sign of -0 and the payload of a not-a-number.
double absDouble(double x) {
    return x < 0.0 ? -x : x;
}

void swapPDouble(double *&a, double *&b) {
    double *const t = a;
    a = b;
    b = t;
}
