/// \file
/// MultiRefObject: the root class of objects shared by several owners through an
/// intrusive reference count. A new object has count 0 and is owned by nobody until
/// its first ref(). The count is a plain int: no lock, no atomic operation.
/// Objects that may be deleted here must come from new.
#pragma once

#include "zefcore/ZEFExport.h"

class AutoRefUnref;
class AutoUnref;

/// The root class of objects shared through an intrusive reference count; a new object
/// has count 0.
class ZEFCORE_API MultiRefObject {
public:
    /// Holds one reference for the life of a scope: takes it at construction,
    /// drops it at destruction. Same contract as the top-level AutoRefUnref.
    class ZEFCORE_API AutoRefUnref {
    public:
        /// What the destructor does with the reference.
        enum e_deleteMode : int {
            e_noDelete = 0,  ///< the destructor drops the reference, never deletes
            e_delete = 1,    ///< the destructor drops the reference with unref()
            e_autoDelete = 2 ///< resolved at construction: e_delete if the count is
                             // not 0 then, e_noDelete if it is exactly 0
        };

        /// Sets m_object and m_mode; then, on a non-null object, resolves
        /// e_autoDelete from the count read first, and adds 1 to the count.
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

    /// Sets the new object's count to the source's count, not 0.
    MultiRefObject(const MultiRefObject &other);
    /// Sets this object's count to the source's count. Returns this object.
    MultiRefObject &operator=(const MultiRefObject &other);

    /// Adds 1 to the count.
    void ref() const;
    /// Subtracts 1; if the count is now exactly 0, destroys and frees the object
    /// through its virtual destructor. Degenerate: from 0 the count goes to -1, no delete.
    void unref() const;
    /// Subtracts 1 and never deletes.
    void unrefNoDelete() const;
    /// Destroys and frees the object if its count is exactly 0; the count is not changed.
    void deleteIfNotRef() const;

protected:
    /// Sets the count to 0.
    MultiRefObject();
    /// Does nothing of its own: it does not look at the count.
    virtual ~MultiRefObject();

    /// The number of owners. Changed by const operations. Arithmetic on it wraps.
    mutable int m_refCount;

private:
    // The holders read the count to resolve e_autoDelete.
    friend class ::AutoRefUnref;
    friend class ::AutoUnref;
};
