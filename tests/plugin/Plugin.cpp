#include "Plugin.h"

namespace {
int s_alive = 0;
}

void PluginKernel::multMatrices(float *const out, float const *const a, float const *const b) const {
    ++m_products;
    EnhancedMathFunctions::multMatrices(out, a, b);
}

PluginKernel::~PluginKernel() = default;

PluginActivityMgr::PluginActivityMgr() = default;
PluginActivityMgr::~PluginActivityMgr() = default;
void PluginActivityMgr::onStart() {}

PluginObject::PluginObject() {
    ++s_alive;
}
PluginObject::~PluginObject() {
    --s_alive;
}
int PluginObject::alive() {
    return s_alive;
}

bool PluginProjector::project(Vector3f &out, const ZEFLine &line) {
    ++m_projections;
    return PlaneProjector::project(out, line);
}

EnhancedMathFunctions *createPluginKernel() {
    return new PluginKernel;
}
ZEFActivityMgr *createPluginActivityMgr() {
    return new PluginActivityMgr;
}
void destroyPluginActivityMgr(ZEFActivityMgr *manager) {
    delete dynamic_cast<PluginActivityMgr *>(manager);
}
MultiRefObject *createPluginObject() {
    return new PluginObject;
}
PlaneProjector *createPluginProjector() {
    return new PluginProjector;
}

const std::type_info &baseTypeSeenByPlugin(int which) {
    const std::type_info *const types[] = {&typeid(EnhancedMathFunctions), &typeid(ZEFActivityMgr),
                                           &typeid(MultiRefObject), &typeid(PlaneProjector)};
    return *types[which];
}

bool pluginOwnsKernel(const EnhancedMathFunctions *kernel) {
    return dynamic_cast<const PluginKernel *>(kernel) != nullptr;
}
