#include "zefcore/base/BitMgr.h"

#include "zefcore/base/ZEFBoolArray.h"

#include <type_traits>

static_assert(!std::is_same<std::uint32_t, unsigned long>::value,
              "the uint32_t and unsigned long forms must be distinct overloads");

namespace {

// Returns byte k (0 = least significant) of w.
inline unsigned char byteOf(std::uint32_t w, int k) {
    return static_cast<unsigned char>((w >> (8 * k)) & 0xFFu);
}

// Returns the first hit over numBytes bytes from low to high, each byte's hit
// plus 8 per byte below it; the width when no byte has one.
template <class ByteFn>
int firstOver(std::uint32_t w, int numBytes, ByteFn fn) {
    int k = 0;
    for (; k < numBytes - 1; ++k) {
        const int bit = fn(byteOf(w, k));
        if (bit != 8)
            return 8 * k + bit;
    }
    return 8 * k + fn(byteOf(w, k));
}

// Returns the last hit over numBytes bytes from high to low, each byte's hit
// plus 8 per byte below it; 8 (the low byte's "none") when no byte has one.
template <class ByteFn>
int lastOver(std::uint32_t w, int numBytes, ByteFn fn) {
    for (int k = numBytes - 1; k > 0; --k) {
        const int bit = fn(byteOf(w, k));
        if (bit != 8)
            return 8 * k + bit;
    }
    return fn(byteOf(w, 0));
}

int countOver(std::uint32_t w, int numBytes) {
    int count = 0;
    for (int k = 0; k < numBytes; ++k)
        count += ZEFBoolArray::getNumBitsAt1(byteOf(w, k));
    return count;
}

inline std::uint32_t low32(unsigned long w) {
    return static_cast<std::uint32_t>(w & 0xFFFFFFFFul);
}

} // namespace

int BitMgr::getNumBits1(unsigned char w) {
    return ZEFBoolArray::getNumBitsAt1(w);
}
int BitMgr::getNumBits1(unsigned short w) {
    return countOver(w, 2);
}
int BitMgr::getNumBits1(std::uint32_t w) {
    return countOver(w, 4);
}
int BitMgr::getNumBits1(unsigned long w) {
    return getNumBits1(low32(w));
}

int BitMgr::getNumBits0(unsigned char w) {
    return 8 - getNumBits1(w);
}
int BitMgr::getNumBits0(unsigned short w) {
    return 16 - getNumBits1(w);
}
int BitMgr::getNumBits0(std::uint32_t w) {
    return 32 - getNumBits1(w);
}
int BitMgr::getNumBits0(unsigned long w) {
    return getNumBits0(low32(w));
}

int BitMgr::getFirstBit1(unsigned char w) {
    return ZEFBoolArray::getFirstBitAt1(w);
}
int BitMgr::getFirstBit1(unsigned short w) {
    return firstOver(w, 2, ZEFBoolArray::getFirstBitAt1);
}
int BitMgr::getFirstBit1(std::uint32_t w) {
    return firstOver(w, 4, ZEFBoolArray::getFirstBitAt1);
}
int BitMgr::getFirstBit1(unsigned long w) {
    return getFirstBit1(low32(w));
}

int BitMgr::getFirstBit0(unsigned char w) {
    return ZEFBoolArray::getFirstBitAt0(w);
}
int BitMgr::getFirstBit0(unsigned short w) {
    return firstOver(w, 2, ZEFBoolArray::getFirstBitAt0);
}
int BitMgr::getFirstBit0(std::uint32_t w) {
    return firstOver(w, 4, ZEFBoolArray::getFirstBitAt0);
}
int BitMgr::getFirstBit0(unsigned long w) {
    return getFirstBit0(low32(w));
}

int BitMgr::getLastBit1(unsigned char w) {
    return ZEFBoolArray::getLastBitAt1(w);
}
int BitMgr::getLastBit1(unsigned short w) {
    return lastOver(w, 2, ZEFBoolArray::getLastBitAt1);
}
int BitMgr::getLastBit1(std::uint32_t w) {
    return lastOver(w, 4, ZEFBoolArray::getLastBitAt1);
}
int BitMgr::getLastBit1(unsigned long w) {
    return getLastBit1(low32(w));
}

int BitMgr::getLastBit0(unsigned char w) {
    return ZEFBoolArray::getLastBitAt0(w);
}
int BitMgr::getLastBit0(unsigned short w) {
    return lastOver(w, 2, ZEFBoolArray::getLastBitAt0);
}
int BitMgr::getLastBit0(std::uint32_t w) {
    return lastOver(w, 4, ZEFBoolArray::getLastBitAt0);
}
int BitMgr::getLastBit0(unsigned long w) {
    return getLastBit0(low32(w));
}

BitMgr::e_bitOrder BitMgr::getBitOrdering() {
    return e_lowBitFirst;
}
