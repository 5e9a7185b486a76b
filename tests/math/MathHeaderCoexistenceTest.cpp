// An application that includes <math.h> first can still use every class header
// of the scalars and vectors (but not the float wrapper header).
#include <math.h>

#include "zefcore/math/ScalarHelpers.h"
#include "zefcore/math/Tolerance.h"
#include "zefcore/math/Vector2f.h"
#include "zefcore/math/Vector2i.h"
#include "zefcore/math/Vector2s.h"
#include "zefcore/math/Vector2ui.h"
#include "zefcore/math/Vector3f.h"
#include "zefcore/math/Vector4f.h"

#include <gtest/gtest.h>

TEST(MathHeaderCoexistence, ClassHeadersWorkBesideMathH) {
    Vector3f v(3.0f, 0.0f, 4.0f); // <math.h> brings std's float overloads into the global namespace
    EXPECT_TRUE(sqrt(2.0f) == float(std::sqrt(2.0)) && v.normalize() == 5.0f && testFiniteAndNAN(fabs(-1.0)));
    EXPECT_TRUE(areEqual(1.0f, 1.00005f) && isZero(Vector3f(1.0f, 2.0f, 3.0f) - Vector3f(1.0f, 2.0f, 3.0f)));
    EXPECT_EQ(Vector2f(0.0f, 2.0f).norm() + Vector4f(Vector3f(1.0f, 2.0f, 3.0f)).w(), 3.0f);
    EXPECT_EQ(Vector2i(3, 4).norm() + Vector2s(3, 4).norm() + Vector2ui(3, 4).norm(), 15.0f);
}
