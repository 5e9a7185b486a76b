/// \file
/// ZEFExit: the functions to run at the application's orderly shutdown, called by
/// exit() in reverse order of registration. Process-wide state for the main thread.
#pragma once

#include "zefcore/ZEFExport.h"

/// The functions to run at the application's orderly shutdown, the last registered first.
class ZEFCORE_API ZEFExit {
public:
    ZEFExit() = delete;

    /// Adds function at the end of the list; the same function twice runs twice.
    /// Null, or a list already run by exit(), is refused: nothing changes.
    /// Unchanged on failure: an allocation failure throws and keeps the list.
    static void addExitFun(void (*function)());

    /// Runs the functions, the last registered first, each once; one registered by a
    /// running function runs next. Then closes the list. An empty or closed list:
    /// nothing. It does not end the process.
    static void exit();

private:
    static void (**m_exitFunctions)();
    static int m_numExitFunctions; ///< -1 once exit() has run a non-empty list
};
