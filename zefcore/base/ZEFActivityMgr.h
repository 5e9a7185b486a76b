/// \file
/// ZEFActivityMgr: the hook point for an activity manager that the application
/// derives from this class and installs. Process-wide state, set at start.
#pragma once

#include "zefcore/ZEFExport.h"

/// The hook for the application's activity manager: derive from it, override, install.
class ZEFCORE_API ZEFActivityMgr {
public:
    /// Sets the current manager; null is allowed.
    static void setCurrentActivityManager(ZEFActivityMgr *manager);

    /// Returns true if somebody is listening (the activity counter is above 0).
    static bool isActivityMgrListening();

    ///@{
    /// No effect: they do not reach the current manager.
    static void start();
    static void end();
    static void signal();
    ///@}

protected:
    /// Both clear the current manager and the activity counter, whichever manager is
    /// made or destroyed: making a manager does not install it.
    ZEFActivityMgr();
    virtual ~ZEFActivityMgr();

    ///@{
    /// No effect in this class; a derived manager fills them.
    virtual void onStart();
    virtual void onEnd();
    virtual void onSignal();
    ///@}

private:
    static ZEFActivityMgr *m_activityMgr;
    static int m_activityCounter;
};
