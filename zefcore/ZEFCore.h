// ZEFCore: the whole public interface in one include.
// This header also brings the library's float wrappers of the standard math
// functions (float sqrt(float), sin, pow, ...) into the global namespace; they
// cannot share a translation unit with <math.h>. Include the class headers
// instead where <math.h> is needed.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/ZEFVersion.h"

// ---- kernel
#include "zefcore/kernel/EnhancedMathFunctions.h"

// ---- scalars and vectors

// ---- matrix and rotation classes

// ---- dense solver

// ---- geometry

// ---- lifetime, identity, containers and sorting
#include "zefcore/base/ZEFArray.h"

// ---- runtime services and colour
