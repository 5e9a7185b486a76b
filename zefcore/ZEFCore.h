/// \file
/// ZEFCore: the whole public interface in one include.
/// This header also brings the library's float wrappers of the standard math
/// functions (float sqrt(float), sin, pow, ...) into the global namespace; they
/// cannot share a translation unit with <math.h>. Include the class headers
/// instead where <math.h> is needed.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/ZEFVersion.h"

// ---- kernel
#include "zefcore/kernel/EnhancedMathFunctions.h"

// ---- scalars and vectors
#include "zefcore/math/FloatMath.h"
#include "zefcore/math/ScalarHelpers.h"
#include "zefcore/math/Tolerance.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector2i.h"
#include "zefcore/math/Vector2s.h"
#include "zefcore/math/Vector2ui.h"
#include "zefcore/math/Vector3f.h"
#include "zefcore/math/Vector4f.h"

// ---- matrix and rotation classes
#include "zefcore/math/Mat4fBase.h"
#include "zefcore/math/MatAff4f.h"
#include "zefcore/math/MatAff4fBase.h"
#include "zefcore/math/MatRot4f.h"
#include "zefcore/math/Matrix4f.h"
#include "zefcore/math/Quaternion.h"

// ---- dense solver
#include "zefcore/math/LUDecomp.h"

// ---- geometry
#include "zefcore/geometry/BoundingBox.h"
#include "zefcore/geometry/BoundingBox2D.h"
#include "zefcore/geometry/BoundingBoxAlgo.h"
#include "zefcore/geometry/Det2.h"
#include "zefcore/geometry/Distances.h"
#include "zefcore/geometry/GeomInfo.h"
#include "zefcore/geometry/GeometryTolerances.h"
#include "zefcore/geometry/Intersections.h"
#include "zefcore/geometry/Plane.h"
#include "zefcore/geometry/PlaneFigureQueries.h"
#include "zefcore/geometry/PlaneProjector.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/geometry/ZEFSegment.h"

// ---- lifetime, identity, containers and sorting
#include "zefcore/base/AutoRefUnref.h"
#include "zefcore/base/AutoUnref.h"
#include "zefcore/base/BinarySort.h"
#include "zefcore/base/BitMgr.h"
#include "zefcore/base/CountedPtrBase.h"
#include "zefcore/base/IDGenerator.h"
#include "zefcore/base/MultiRefObject.h"
#include "zefcore/base/ZEFArray.h"
#include "zefcore/base/ZEFBoolArray.h"
#include "zefcore/base/ZEFKey.h"
#include "zefcore/base/ZEFKeyArray.h"
#include "zefcore/base/ZEFPtrDList.h"

// ---- runtime services and colour
#include "zefcore/base/Color.h"
#include "zefcore/base/ZEFActivityMgr.h"
#include "zefcore/base/ZEFDebugFile.h"
#include "zefcore/base/ZEFExit.h"
#include "zefcore/base/ZEFOSVersion.h"
#include "zefcore/base/ZEFString.h"
#include "zefcore/base/ZEFTimer.h"
