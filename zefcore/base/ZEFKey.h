/// \file
/// ZEFKey: a small object identified by an int key number, the element of
/// ZEFKeyArray. A base class for keyed application objects; its destructor is not
/// virtual, so a key array deletes its keys as plain ZEFKey objects.
#pragma once

#include "zefcore/ZEFExport.h"

/// A small object identified by an int key number: the element of ZEFKeyArray.
class ZEFCORE_API ZEFKey {
public:
    /// Sets the key number to 0.
    ZEFKey();
    /// Sets the key number to key, not tested.
    explicit ZEFKey(int key);
    /// Sets the key number to other's.
    ZEFKey(const ZEFKey &other);
    /// Sets this object to a copy of other; returns it.
    ZEFKey &operator=(const ZEFKey &other) = default;
    /// Does nothing.
    ~ZEFKey();

    /// Returns the key number.
    int getKey() const;

protected:
    /// Sets the key number. A key already in a ZEFKeyArray is not re-filed: its
    /// number must stay fixed while it is in an array, or the array's lookup by
    /// number and its removal go wrong.
    void setKey(int key);

private:
    int m_key;
};
