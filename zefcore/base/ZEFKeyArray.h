/// \file
/// ZEFKeyArray: ZEFKey objects by position, in order of insertion, and by key
/// number in constant time through a direct index table as long as the largest key
/// number plus one. Key numbers are expected to be small and non-negative.
/// Ownership: the array deletes the keys it still holds in its destructor, and only
/// there; removal, clear, replacement and assignment never delete. Keys come from new.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/ZEFArray.h"
#include "zefcore/base/ZEFKey.h"

/// ZEFKey objects by position and by key number; deletes its keys when destroyed.
class ZEFCORE_API ZEFKeyArray {
public:
    /// Sets an empty array.
    ZEFKeyArray();
    /// Sets an empty array: other is not read, its keys are not shared.
    ZEFKeyArray(const ZEFKeyArray &other);
    /// Deletes every key still held, then releases both arrays.
    ~ZEFKeyArray();
    /// Sets both arrays to other's: the two now hold the same pointers, and one of
    /// them must be cleared before either is destroyed. Keys held before are dropped,
    /// not deleted. Returns this.
    const ZEFKeyArray &operator=(const ZEFKeyArray &other);

    /// Exchanges the contents of the two arrays.
    void swap(ZEFKeyArray &other);
    /// Empties the array and forgets every key number; the keys are not deleted.
    void clear();

    /// Returns the number of keys.
    int getNumKeys() const;
    /// Returns the key at position index, or null if index is outside [0, getNumKeys()).
    ZEFKey *getKey(int index) const;
    /// Returns the key with number key, or null. Constant time.
    ZEFKey *findKey(int key) const;

    /// Adds key at the end, or, if a key with the same number is held, puts key in
    /// its place (the previous object is not deleted and stays the caller's).
    /// Returns true on either. Unchanged on failure: a null key or a negative key
    /// number gives false.
    bool addKey(ZEFKey *key);
    /// Removes the key held under key's number (the number decides, not the pointer);
    /// later keys move down one position. The removed key is not deleted.
    /// Unchanged on failure: null, or no key with that number, gives false.
    bool removeKey(ZEFKey *key);

private:
    /// Returns the position of the key with number key, or -1 if there is none.
    int getKeyIndex(int key) const;
    /// Sets the table entry of key to index, growing the table with -1 entries as
    /// needed. Returns true. Unchanged on failure: a negative key gives false.
    bool setKeyIndex(int key, int index);

    ZEFArray<ZEFKey *> m_keys;
    ZEFArray<int> m_keyIndexes;
};
