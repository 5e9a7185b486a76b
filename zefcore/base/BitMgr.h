/// \file
/// BitMgr: bit counts and bit searches on 8-, 16- and 32-bit words, on the byte
/// tables of ZEFBoolArray. Bit numbers count from the least significant bit.
/// The uint32_t forms do the 32-bit work; the unsigned long forms apply them to
/// the low 32 bits, so either type may be passed and gives the 32-bit answers.
#pragma once

#include "zefcore/ZEFExport.h"

#include <cstdint>

/// Bit counts and bit searches on 8-, 16- and 32-bit words; bit 0 is the least significant.
class ZEFCORE_API BitMgr {
public:
    /// The order of the bits in a word.
    enum e_bitOrder {
        e_lowBitFirst = 1, ///< bit 0 of a word is its least significant bit
        e_highBitFirst = 2 ///< bit 0 of a word is its most significant bit
    };

    ///@{
    /// Returns the number of set bits of w.
    static int getNumBits1(unsigned char w);
    static int getNumBits1(unsigned short w);
    static int getNumBits1(std::uint32_t w);
    static int getNumBits1(unsigned long w);
    ///@}
    ///@{
    /// Returns the number of clear bits of w: the width minus the set bits.
    static int getNumBits0(unsigned char w);
    static int getNumBits0(unsigned short w);
    static int getNumBits0(std::uint32_t w);
    static int getNumBits0(unsigned long w);
    ///@}

    ///@{
    /// Returns the lowest set (clear) bit of w, or the width (8, 16, 32) if there is none.
    static int getFirstBit1(unsigned char w);
    static int getFirstBit1(unsigned short w);
    static int getFirstBit1(std::uint32_t w);
    static int getFirstBit1(unsigned long w);
    ///@}
    ///@{
    /// Returns the lowest clear bit of w, or the width (8, 16, 32) if there is none.
    static int getFirstBit0(unsigned char w);
    static int getFirstBit0(unsigned short w);
    static int getFirstBit0(std::uint32_t w);
    static int getFirstBit0(unsigned long w);
    ///@}

    ///@{
    /// Returns the highest set (clear) bit of w, or 8 if there is none, in every width.
    static int getLastBit1(unsigned char w);
    static int getLastBit1(unsigned short w);
    static int getLastBit1(std::uint32_t w);
    static int getLastBit1(unsigned long w);
    ///@}
    ///@{
    /// Returns the highest clear bit of w, or 8 if there is none, in every width.
    static int getLastBit0(unsigned char w);
    static int getLastBit0(unsigned short w);
    static int getLastBit0(std::uint32_t w);
    static int getLastBit0(unsigned long w);
    ///@}

    /// Returns e_lowBitFirst, the order of this library.
    static e_bitOrder getBitOrdering();
};
