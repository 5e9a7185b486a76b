/// \file
/// The library's default tolerance and the tolerant tests on floats built on it.
/// The bound itself counts as zero (or as equal). Vector forms stand beside
/// Vector3f. Precision: absolute values and differences are rounded to float
/// before the comparison; the default bound is compared as a double.
#pragma once

#include "zefcore/ZEFExport.h"

/// The default tolerance, a double: 0.0001. Compared with a float without
/// narrowing, so the float nearest to 0.0001 (just below it) counts as zero and
/// the next float above does not.
constexpr double ZEF_DEFAULT_TOLERANCE = 0.0001;

/// Returns |x| <= 0.0001. Degenerate: false for not-a-number.
ZEFCORE_API bool isZero(float x);
/// Returns |x| <= eps, compared in float. Degenerate: false for not-a-number; eps 0 admits only zero.
ZEFCORE_API bool isZero(float x, float eps);
/// Returns |a - b| <= 0.0001. Precision: a - b is rounded to float before its absolute value.
ZEFCORE_API bool areEqual(float a, float b);
/// Returns |a - b| <= eps. Precision: a - b is rounded to float before its absolute value.
ZEFCORE_API bool areEqual(float a, float b, float eps);
