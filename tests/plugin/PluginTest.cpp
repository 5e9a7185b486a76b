// Subclasses built in a separate hidden-visibility shared object must work across the
// boundary: type identity, dynamic_cast both ways, virtual calls into the plugin from
// library code, and deletion through the library's virtual destructors.
#include <gtest/gtest.h>

#include <cstring>
#include <typeinfo>

#include "plugin/Plugin.h"
#include "zefcore/geometry/Plane.h"
#include "zefcore/geometry/ZEFLine.h"
#include "zefcore/math/Matrix4f.h"

TEST(Plugin, KernelSubclassIsInstalledAndUsedByMatrixProducts) {
    EnhancedMathFunctions *builtIn = EnhancedMathFunctions::getCurrent();
    EXPECT_EQ(dynamic_cast<PluginKernel *>(builtIn), nullptr);
    EXPECT_FALSE(pluginOwnsKernel(builtIn));
    EXPECT_EQ(baseTypeSeenByPlugin(0), typeid(EnhancedMathFunctions));
    EXPECT_EQ(typeid(*builtIn), typeid(EnhancedMathFunctions));

    const Matrix4f a(1.5f, 0.25f, -2.0f, 0.0f, 0.1f, 3.0f, 0.7f, 0.0f, -0.3f, 0.9f, 1.1f, 0.0f, 4.0f, -5.0f,
                     6.0f, 1.0f);
    const Matrix4f b(0.3f, -1.0f, 0.2f, 0.0f, 2.0f, 0.5f, -0.6f, 0.0f, 0.1f, 0.4f, 0.8f, 0.0f, -1.0f, 2.0f,
                     0.5f, 1.0f);
    const Matrix4f expected = a * b;

    EnhancedMathFunctions *made = createPluginKernel();
    PluginKernel *plugin = dynamic_cast<PluginKernel *>(made);
    ASSERT_NE(plugin, nullptr);
    EXPECT_TRUE(pluginOwnsKernel(made));
    EXPECT_EQ(typeid(*made), typeid(PluginKernel));

    made->setDefault(); // destroys the built-in kernel
    ASSERT_EQ(EnhancedMathFunctions::getCurrent(), made);
    const Matrix4f product = a * b;
    EXPECT_EQ(plugin->products(), 1);
    EXPECT_EQ(std::memcmp(product.getValue(), expected.getValue(), sizeof(float) * 16), 0);

    // Replacing it destroys the plugin kernel through the library's virtual destructor.
    (new EnhancedMathFunctions)->setDefault();
    EXPECT_EQ(dynamic_cast<PluginKernel *>(EnhancedMathFunctions::getCurrent()), nullptr);
}

TEST(Plugin, OtherPolymorphicBasesCrossTheBoundary) {
    ZEFActivityMgr *manager = createPluginActivityMgr();
    EXPECT_NE(dynamic_cast<PluginActivityMgr *>(manager), nullptr);
    EXPECT_EQ(baseTypeSeenByPlugin(1), typeid(ZEFActivityMgr));
    EXPECT_EQ(typeid(*manager), typeid(PluginActivityMgr));
    destroyPluginActivityMgr(manager);

    // The library's unref deletes the plugin's object through the virtual destructor.
    MultiRefObject *object = createPluginObject();
    EXPECT_NE(dynamic_cast<PluginObject *>(object), nullptr);
    EXPECT_EQ(baseTypeSeenByPlugin(2), typeid(MultiRefObject));
    ASSERT_EQ(PluginObject::alive(), 1);
    object->ref();
    object->unref();
    EXPECT_EQ(PluginObject::alive(), 0);

    PlaneProjector *projector = createPluginProjector();
    PluginProjector *own = dynamic_cast<PluginProjector *>(projector);
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(baseTypeSeenByPlugin(3), typeid(PlaneProjector));
    const ZEFLine down(Vector3f(1.0f, 2.0f, 5.0f), Vector3f(0.0f, 0.0f, -1.0f), true);
    Vector3f hit(9.0f, 9.0f, 9.0f);
    EXPECT_TRUE(projector->project(hit, down));
    EXPECT_TRUE(own->projections() == 1 && hit.x() == 1.0f && hit.y() == 2.0f && hit.z() == 0.0f);
    delete projector;
}
