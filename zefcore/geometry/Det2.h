/// \file
/// det2: the 2x2 determinant helper of the geometry layer.
#pragma once

#include "zefcore/ZEFExport.h"

/// Returns a*d - b*c for the matrix read row after row.
/// Precision: both products and the difference in double, rounded to float once.
ZEFCORE_API float det2(float a, float b, float c, float d);
