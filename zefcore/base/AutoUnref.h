/// \file
/// AutoUnref: adopts one reference to a MultiRefObject that the caller already
/// holds, and drops it at the end of the scope, deleting the object or not as its
/// mode says. It takes no reference of its own.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/MultiRefObject.h"

/// Drops, at the end of a scope, one reference to a MultiRefObject that the caller holds.
class ZEFCORE_API AutoUnref {
public:
    /// What the destructor does with the reference.
    enum e_deleteMode : int {
        e_noDelete = 0,  ///< the destructor drops the reference, never deletes
        e_delete = 1,    ///< the destructor drops the reference with unref()
        e_autoDelete = 2 ///< resolved at construction: e_delete if the count is
                         // not 0 then, e_noDelete if it is exactly 0
    };

    /// Sets m_object and m_mode; then, on a non-null object, resolves e_autoDelete
    /// from the count. The count is not changed.
    /// Degenerate: null object: nothing is resolved.
    AutoUnref(const MultiRefObject *object, e_deleteMode mode);
    /// Drops the adopted reference as m_mode says; a mode other than 0 or 1, or a
    /// null object: nothing.
    ~AutoUnref();

    AutoUnref(const AutoUnref &) = delete;
    AutoUnref &operator=(const AutoUnref &) = delete;

private:
    const MultiRefObject *m_object;
    e_deleteMode m_mode;
};
