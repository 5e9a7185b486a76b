/// \file
/// CountedPtrBase: the base of typed counted pointers to MultiRefObject. It holds
/// no pointer itself; the derived pointer class holds one and calls ref and unref
/// here when it takes and drops a reference.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/MultiRefObject.h"

/// The base of typed counted pointers: takes and drops references to a MultiRefObject.
class ZEFCORE_API CountedPtrBase {
protected:
    /// Adds 1 to the object's count. Degenerate: null: nothing.
    void ref(const MultiRefObject *object);
    /// Calls object->unref(), which deletes the object when its count reaches
    /// exactly 0. Degenerate: null: nothing.
    void unref(const MultiRefObject *object);
};
