#include "zefcore/base/ZEFActivityMgr.h"

#include <gtest/gtest.h>

namespace {
class CountingMgr : public ZEFActivityMgr {
public:
    int calls = 0;
    void runBaseHooks() { ZEFActivityMgr::onStart(), ZEFActivityMgr::onEnd(), ZEFActivityMgr::onSignal(); }

protected:
    void onStart() override { ++calls; }
    void onEnd() override { ++calls; }
    void onSignal() override { ++calls; }
};
} // namespace

TEST(ZEFActivityMgr, HooksDoNotReachTheManagerAndNobodyListens) {
    CountingMgr manager;
    ZEFActivityMgr::setCurrentActivityManager(&manager);
    ZEFActivityMgr::start();
    ZEFActivityMgr::signal();
    ZEFActivityMgr::end();
    manager.runBaseHooks(); // the base hooks do not call back into an override either
    EXPECT_EQ(manager.calls, 0);
    EXPECT_FALSE(ZEFActivityMgr::isActivityMgrListening());
    // The class's type information comes from the library: derived casts work across it.
    ZEFActivityMgr *base = &manager;
    EXPECT_EQ(dynamic_cast<CountingMgr *>(base), &manager);
    ZEFActivityMgr::setCurrentActivityManager(nullptr);
}
