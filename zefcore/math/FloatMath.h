/// \file
/// Single-precision forms of the standard mathematical functions, in the global
/// namespace: each widens its argument to double, applies the standard double
/// function and rounds the result to float once.
/// This header cannot share a translation unit with <math.h> (whose using-
/// declarations bring std's float overloads into the global namespace): only the
/// umbrella header ZEFCore.h and the library's sources include it.
#pragma once

// <cmath> first: its std overloads must be declared before ours exist.
#include <cmath>

#include "zefcore/ZEFExport.h"

/// Returns |x|.
ZEFCORE_API float fabs(float x);
/// Returns the square root of x.
ZEFCORE_API float sqrt(float x);
/// Returns x to the power y.
ZEFCORE_API float pow(float x, float y);
/// Returns the sine of x, in radians.
ZEFCORE_API float sin(float x);
/// Returns the cosine of x, in radians.
ZEFCORE_API float cos(float x);
/// Returns the tangent of x, in radians.
ZEFCORE_API float tan(float x);
/// Returns the arc sine of x, in radians.
ZEFCORE_API float asin(float x);
/// Returns the arc cosine of x, in radians.
ZEFCORE_API float acos(float x);
/// Returns the arc tangent of x, in radians.
ZEFCORE_API float atan(float x);
/// Returns the angle of the point (x, y), in radians; y first, as the standard function.
ZEFCORE_API float atan2(float y, float x);
