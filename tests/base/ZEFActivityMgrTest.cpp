#include "zefcore/base/ZEFActivityMgr.h"

#include <gtest/gtest.h>

namespace {
class CountingMgr : public ZEFActivityMgr {
public:
    ~CountingMgr() override = default;
    int calls = 0;

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
    EXPECT_EQ(manager.calls, 0);
    EXPECT_FALSE(ZEFActivityMgr::isActivityMgrListening());
    { CountingMgr other; } // made and destroyed: clears the current manager
    EXPECT_FALSE(ZEFActivityMgr::isActivityMgrListening());
    // The class's type information comes from the library: derived casts work across it.
    ZEFActivityMgr *base = &manager;
    EXPECT_EQ(dynamic_cast<CountingMgr *>(base), &manager);
    ZEFActivityMgr::setCurrentActivityManager(nullptr);
}
