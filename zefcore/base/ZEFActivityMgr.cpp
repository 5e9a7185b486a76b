// The activity manager hook. Virtuals are defined here so that the vtable and
// typeinfo are emitted once, in the library.
#include "zefcore/base/ZEFActivityMgr.h"

ZEFActivityMgr *ZEFActivityMgr::m_activityMgr = nullptr;
int ZEFActivityMgr::m_activityCounter = 0;

ZEFActivityMgr::ZEFActivityMgr() {
    m_activityMgr = nullptr;
    m_activityCounter = 0;
}

ZEFActivityMgr::~ZEFActivityMgr() {
    m_activityMgr = nullptr;
    m_activityCounter = 0;
}

void ZEFActivityMgr::setCurrentActivityManager(ZEFActivityMgr *manager) {
    m_activityMgr = manager;
}

bool ZEFActivityMgr::isActivityMgrListening() {
    return m_activityCounter > 0;
}

void ZEFActivityMgr::start() {}

void ZEFActivityMgr::end() {}

void ZEFActivityMgr::signal() {}

void ZEFActivityMgr::onStart() {}

void ZEFActivityMgr::onEnd() {}

void ZEFActivityMgr::onSignal() {}
