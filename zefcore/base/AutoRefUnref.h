/// \file
/// AutoRefUnref: holds one reference to a MultiRefObject for the life of a scope.
/// It takes the reference at construction and drops it at destruction, deleting
/// the object or not as its mode says. The object is shared, not owned by the holder.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/MultiRefObject.h"

/// Holds one reference to a MultiRefObject for the life of a scope.
class ZEFCORE_API AutoRefUnref {
public:
    /// What the destructor does with the reference.
    enum e_deleteMode : int {
        e_noDelete = 0,  ///< the destructor drops the reference, never deletes
        e_delete = 1,    ///< the destructor drops the reference with unref()
        e_autoDelete = 2 ///< resolved at construction: e_delete if the count is
                         // not 0 then, e_noDelete if it is exactly 0
    };

    /// Sets m_object and m_mode; then, on a non-null object, resolves e_autoDelete
    /// from the count read first, and adds 1 to the count.
    /// Degenerate: null object: nothing is resolved and nothing is counted.
    AutoRefUnref(const MultiRefObject *object, e_deleteMode mode);
    /// Drops the reference as m_mode says; a mode other than 0 or 1, or a null
    /// object: nothing.
    ~AutoRefUnref();

    AutoRefUnref(const AutoRefUnref &) = delete;
    AutoRefUnref &operator=(const AutoRefUnref &) = delete;

private:
    const MultiRefObject *m_object;
    e_deleteMode m_mode;
};
