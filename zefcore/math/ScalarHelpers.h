/// \file
/// Small helpers on scalars: the finite test and two helpers on doubles.
/// They stand apart from the tolerant tests and use no tolerance.
#pragma once

#include "zefcore/ZEFExport.h"

/// Returns true if x is a finite number, false if it is infinite or not a number.
/// Precision: x is widened to double first.
ZEFCORE_API bool testFiniteAndNAN(float x);
/// Returns true if x is a finite number, false if it is infinite or not a number.
ZEFCORE_API bool testFiniteAndNAN(double x);

/// Returns -x if x < 0, else x. Negative zero and not-a-number pass through
/// unchanged (unlike fabs, which clears the sign).
ZEFCORE_API double absDouble(double x);

/// Exchanges the two pointers.
ZEFCORE_API void swapPDouble(double *&a, double *&b);
