// A plugin as an application would ship one: its own shared object, built with hidden
// visibility, deriving from the library's polymorphic classes and handing its objects
// to the host through factory functions. Only what the host needs is made visible.
#pragma once

#include <typeinfo>

#include "zefcore/base/MultiRefObject.h"
#include "zefcore/base/ZEFActivityMgr.h"
#include "zefcore/geometry/PlaneProjector.h"
#include "zefcore/kernel/EnhancedMathFunctions.h"

#define PLUGIN_API __attribute__((visibility("default")))

// Counts the matrix products it carries out, then computes them as the base kernel.
class PLUGIN_API PluginKernel : public EnhancedMathFunctions {
public:
    void multMatrices(float *const out, float const *const a, float const *const b) const override;
    int products() const { return m_products; }

protected:
    ~PluginKernel() override;

private:
    mutable int m_products = 0;
};

class PLUGIN_API PluginActivityMgr : public ZEFActivityMgr {
public:
    PluginActivityMgr();
    ~PluginActivityMgr() override;

protected:
    void onStart() override;
};

// Counts the live objects of this class.
class PLUGIN_API PluginObject : public MultiRefObject {
public:
    PluginObject();
    ~PluginObject() override;
    static int alive();
};

// Counts its projections, then projects as the base class.
class PLUGIN_API PluginProjector : public PlaneProjector {
public:
    bool project(Vector3f &out, const ZEFLine &line) override;
    int projections() const { return m_projections; }

private:
    int m_projections = 0;
};

// Factories: the host sees only the library's base classes.
PLUGIN_API EnhancedMathFunctions *createPluginKernel();
PLUGIN_API ZEFActivityMgr *createPluginActivityMgr();
PLUGIN_API void destroyPluginActivityMgr(ZEFActivityMgr *manager);
PLUGIN_API MultiRefObject *createPluginObject();
PLUGIN_API PlaneProjector *createPluginProjector();

// The base classes' type information as the plugin sees it: 0 kernel, 1 activity
// manager, 2 reference-counted object, 3 projector.
PLUGIN_API const std::type_info &baseTypeSeenByPlugin(int which);
// Returns true if the plugin recognises kernel as one of its own.
PLUGIN_API bool pluginOwnsKernel(const EnhancedMathFunctions *kernel);
