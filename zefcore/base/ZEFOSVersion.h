/// \file
/// ZEFOSVersion: which operating system the application says it runs on. The
/// library does not look at the platform; the application calls init() at start.
#pragma once

#include "zefcore/ZEFExport.h"

/// The operating system the application says it runs on.
class ZEFCORE_API ZEFOSVersion {
public:
    /// Exclusive values, not a hierarchy.
    enum eZEFOSVersion {
        eZEFOSUnknown = 0, ///< not set, or none of the following
        eZEFOSX = 1,
        eZEFOSXJaguar = 2,
        eZEFOSXPanther = 3
    };

    /// No effect on the stored value.
    ZEFOSVersion();
    virtual ~ZEFOSVersion();

    /// Sets the stored value.
    static void init(eZEFOSVersion version);
    /// Returns the stored value; eZEFOSUnknown until init.
    static eZEFOSVersion getOSVersion();
    ///@{
    /// Return true if the stored value is exactly eZEFOSX, eZEFOSXJaguar, eZEFOSXPanther.
    static bool isOSX();
    static bool isOSXJaguar();
    static bool isOSXPanther();
    ///@}

protected:
    static eZEFOSVersion m_osVersion; ///< the value given to init; eZEFOSUnknown before
};
