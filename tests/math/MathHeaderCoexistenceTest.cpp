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
    // <math.h> brings std's float overloads into the global namespace.
    const float root = sqrt(2.0f);
    EXPECT_EQ(root, float(std::sqrt(2.0)));
    Vector3f v(3.0f, 0.0f, 4.0f);
    EXPECT_EQ(v.normalize(), 5.0f);
    EXPECT_TRUE(isZero(Vector3f(1.0f, 2.0f, 3.0f) - Vector3f(1.0f, 2.0f, 3.0f)));
    EXPECT_TRUE(areEqual(1.0f, 1.00005f));
    EXPECT_EQ(Vector3f(1.0f, 0.0f, 0.0f).cos(Vector3f(0.0f, 1.0f, 0.0f)), 0.0);
    EXPECT_EQ(Vector2f(0.0f, 2.0f).norm(), 2.0f);
    EXPECT_EQ(Vector4f(Vector3f(1.0f, 2.0f, 3.0f)).w(), 1.0f);
    EXPECT_EQ(Vector2i(3, 4).norm(), 5.0f);
    EXPECT_EQ(Vector2s(3, 4).norm(), 5.0f);
    EXPECT_EQ(Vector2ui(3, 4).norm(), 5.0f);
    EXPECT_TRUE(testFiniteAndNAN(fabs(-1.0)));
}
