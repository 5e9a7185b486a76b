/// \file
/// ZEFBoolArray: a resizable array of bits with set algebra, searches, bit
/// insertion and removal. Bit i lives in data byte i / 8 under the mask
/// 1 << (i & 7). The data bytes stand between two guard bytes of value 1, so the
/// searches run through the bytes without a bounds test and stop at a guard.
/// Bits at or above the size inside the last byte and the rest of the capacity
/// (spare bits) are not part of the value: only the unchecked operations see them.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/base/ZEFArray.h"

#include <cstddef>

/// A resizable array of bits with set algebra, searches, insertion and removal.
class ZEFCORE_API ZEFBoolArray {
public:
    /// Sets an empty array on the shared empty block; owns nothing.
    ZEFBoolArray();
    /// Sets an array of size bits, all equal to value (spare bits included).
    ZEFBoolArray(int size, bool value);
    /// Sets a copy of source; spare bits of the copy are clear.
    ZEFBoolArray(const ZEFBoolArray &source);
    /// Releases an owned block.
    ~ZEFBoolArray();

    /// Sets this array to copy(source, false), then returns a copy of this array
    /// by value (not a reference). Aliasing: source may be this array.
    const ZEFBoolArray operator=(const ZEFBoolArray &source);
    /// Sets this array to the bits of source. Spare bits of the last used byte and
    /// every byte behind it up to the capacity take fill. Storage is reused when
    /// large enough, else a block of exactly source's size replaces it.
    /// Unchanged on failure: the new block is allocated before the old one goes.
    /// Aliasing: source may be this array.
    void copy(const ZEFBoolArray &source, bool fill);
    /// Exchanges all fields with other.
    void swap(ZEFBoolArray &other);
    /// Releases an owned block and returns to the empty state.
    void clearArray();
    /// Returns true if the sizes are equal and all bits below the size are equal;
    /// spare bits do not count.
    bool operator==(const ZEFBoolArray &other) const;

    /// Sets the size to size and every byte of the capacity to 0xFF or 0x00,
    /// spare bits included. Storage grows to exactly size only if too small.
    /// Degenerate: a negative size counts as 0.
    /// Unchanged on failure: the new block is allocated before the old one goes.
    void assign(int size, bool value);
    /// Sets the size to size and copies (size + 7) / 8 raw bytes in the storage
    /// layout; spare bits of the last byte come from the source byte. Bytes behind
    /// them keep whatever they held. Degenerate: a negative size counts as 0.
    /// Unchanged on failure: the new block is allocated before the old one goes.
    void assign(int size, const char *bytes);
    /// size -1: exactly set(count, indexes). Otherwise assign(size, false), then the
    /// listed bits are set without a test: each must lie in 0 to size - 1.
    void assign(int count, const int *indexes, int size);
    /// Sets the size to size; bits from the old size up to the new one take value.
    /// Grows to a block of exactly size when the capacity is too small; otherwise in
    /// place: whole bytes from the smaller used byte count up to the capacity and the
    /// old last byte's spare bits take value; on a shrink the bits between the new
    /// size and the end of its last byte keep their contents.
    /// Degenerate: a negative size counts as 0.
    void resize(int size, bool value);

    ///@{
    /// Returns the bit, or false if index is outside 0 to size - 1.
    bool get(int index) const;
    bool operator[](int index) const { return get(index); }
    ///@}
    /// Returns the bit. Unchecked: 0 <= index < capacity is the caller's part.
    bool getNoSizeTest(int index) const;
    /// Returns the data byte ANDed with the bit's mask: 0 or 1 << (index & 7). Unchecked.
    int getAsMask(int index) const;
    ///@{
    /// Sets, clears, inverts the bit. Unchecked.
    void set(int index);
    void clear(int index);
    void toggle(int index);
    ///@}
    ///@{
    /// As set, clear, toggle, after resize(index + 1, false) if index >= size.
    /// Negative index: unchecked. Degenerate: index INT_MAX does nothing.
    void setAutoResize(int index);
    void clearAutoResize(int index);
    void toggleAutoResize(int index);
    ///@}
    ///@{
    /// Sets (clears) exactly the bits index to index + count - 1, growing the array
    /// with clear bits to index + count if needed (clear grows it too). A count below
    /// 1 counts as 1. Degenerate: a negative index, or a range reaching past INT_MAX
    /// bits, does nothing.
    void set(int index, int count);
    void clear(int index, int count);
    ///@}
    ///@{
    /// Sets (clears) the listed bits in order, after one resize to the largest entry
    /// plus 1 if it is at or above the size. Negative entries are skipped; a count
    /// below 1 does nothing. Degenerate: an entry INT_MAX makes the call do nothing.
    void set(int count, const int *indexes);
    void clear(int count, const int *indexes);
    ///@}
    /// Sets the bits listed in indexes; nothing for an empty list.
    void set(const ZEFArray<int> &indexes);
    ///@{
    /// Sets (clears) all bits below the size; spare bits are left as they are.
    void setAll();
    void clearAll();
    ///@}
    /// Inverts all bits below the size; spare bits are left as they are.
    void inverse();
    /// Inverts every data byte of the capacity, spare bits included; nothing if empty.
    void toggleAll();

    ///@{
    /// Sets this array to the bitwise OR with other; the size becomes the larger
    /// one. Spare bits of the shorter operand do not count. Nothing if other is
    /// empty. Aliasing: other may be this array. merge is set.
    void set(const ZEFBoolArray &other);
    void merge(const ZEFBoolArray &other) { set(other); }
    ///@}
    /// As set(other) with XOR.
    void toggle(const ZEFBoolArray &other);
    /// Clears every bit set in other, over the smaller size; the size is unchanged.
    void clear(const ZEFBoolArray &other);
    /// Sets this array to the bitwise AND with other; the size becomes the smaller
    /// one, the storage stays, and the byte behind the last used one takes 1 if it
    /// is inside the capacity. Degenerate: nothing if this array is empty; an empty
    /// other empties this array (byte 0 takes 1).
    void inter(const ZEFBoolArray &other);
    /// Returns true if this array and other have a set bit in common.
    bool hasInter(const ZEFBoolArray &other) const;
    /// Returns true if every bit set in other is set in this array; true if other
    /// has no set bit, whatever its size.
    bool bitTest(const ZEFBoolArray &other) const;

    ///@{
    /// Returns the number of set (clear) bits below the size.
    int getNumberOfBitSet() const;
    int getNumberOfBitCleared() const;
    ///@}
    ///@{
    /// Returns the lowest index at or above start holding value, or -1. A negative
    /// start counts as 0. The short form starts at 0.
    int findFirst(bool value, int start) const;
    int findFirst(bool value) const { return findFirst(value, 0); }
    ///@}
    ///@{
    /// Returns the highest index at or below start holding value, or -1. A start at
    /// or above the size counts as size - 1; a negative start gives -1. The short
    /// form starts at size - 1.
    int findLast(bool value, int start) const;
    int findLast(bool value) const { return findLast(value, m_numBits - 1); }
    ///@}
    ///@{
    /// Sets indexes to the ascending indexes of the set (clear) bits and returns
    /// true; with none, empties indexes and returns false.
    bool getIndexesSet(ZEFArray<int> &indexes) const;
    bool getIndexesCleared(ZEFArray<int> &indexes) const;
    ///@}
    /// Inserts value at index, moving the bits at and above it up by one.
    /// Degenerate: nothing unless 0 <= index < size (nothing at the end, nothing
    /// into an empty array).
    void insert(int index, bool value);
    /// Removes the bit at index, moving the bits above it down; the storage stays.
    /// Degenerate: nothing unless 0 <= index < size.
    void erase(int index);

    ///@{
    /// Byte functions, bit numbers from the least significant bit. Returns the
    /// number of set (clear) bits of b.
    static int getNumBitsAt1(unsigned char b);
    static int getNumBitsAt0(unsigned char b);
    ///@}
    ///@{
    /// Returns the lowest (highest) clear or set bit of b, or 8 if there is none.
    static int getFirstBitAt0(unsigned char b);
    static int getFirstBitAt1(unsigned char b);
    static int getLastBitAt0(unsigned char b);
    static int getLastBitAt1(unsigned char b);
    ///@}

protected:
    /// Releases an owned block and returns to the empty state.
    void freeData();

    unsigned char *m_block; ///< lower guard byte, start of the heap block
    unsigned char *m_begin; ///< first data byte, m_block + 1
    unsigned char *m_end;   ///< one past the last data byte: the upper guard
    int m_numBits;          ///< size in bits

private:
    template <class Op>
    void combine(const ZEFBoolArray &other, Op op);
    void setEmpty();
    void adopt(unsigned char *block, int numBits);
    bool owns() const { return m_end > m_begin; }
    long long capacityBits() const { return static_cast<long long>(m_end - m_begin) * 8; }
    void fillFrom(std::size_t firstByte, bool value);
    void makeRoomDropping(int size);
    void changeRange(int index, int count, bool value);
    void changeList(int count, const int *indexes, bool value);
};
