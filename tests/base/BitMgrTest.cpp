#include "zefcore/base/BitMgr.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

// Reference answers computed bit by bit over the low `width` bits of w.
struct Expected {
    int ones = 0, first1, first0, last1 = 8, last0 = 8;
};

Expected reference(std::uint32_t w, int width) {
    Expected e;
    e.first1 = e.first0 = width;
    for (int bit = 0; bit < width; ++bit) {
        const bool one = ((w >> bit) & 1u) != 0;
        e.ones += one;
        int &first = one ? e.first1 : e.first0;
        if (first == width)
            first = bit;
        (one ? e.last1 : e.last0) = bit;
    }
    return e;
}

template <class Word>
void expectWord(Word w, int width) {
    const Expected e = reference(static_cast<std::uint32_t>(w), width);
    ASSERT_EQ(BitMgr::getNumBits1(w), e.ones) << w;
    ASSERT_EQ(BitMgr::getNumBits0(w), width - e.ones) << w;
    ASSERT_EQ(BitMgr::getFirstBit1(w), e.first1) << w;
    ASSERT_EQ(BitMgr::getFirstBit0(w), e.first0) << w;
    ASSERT_EQ(BitMgr::getLastBit1(w), e.last1) << w;
    ASSERT_EQ(BitMgr::getLastBit0(w), e.last0) << w;
}

} // namespace

TEST(BitMgr, EveryByteAndEveryHalfWord) {
    for (unsigned w = 0; w < 256; ++w) {
        expectWord(static_cast<unsigned char>(w), 8);
        const Expected e = reference(w, 8); // the byte tables behind them
        const unsigned char b = static_cast<unsigned char>(w);
        ASSERT_EQ(ZEFBoolArray::getNumBitsAt1(b), e.ones);
        ASSERT_EQ(ZEFBoolArray::getNumBitsAt0(b), 8 - e.ones);
        ASSERT_EQ(ZEFBoolArray::getFirstBitAt1(b), e.first1);
        ASSERT_EQ(ZEFBoolArray::getFirstBitAt0(b), e.first0);
        ASSERT_EQ(ZEFBoolArray::getLastBitAt1(b), e.last1);
        ASSERT_EQ(ZEFBoolArray::getLastBitAt0(b), e.last0);
    }
    for (unsigned w = 0; w < 65536; ++w)
        expectWord(static_cast<unsigned short>(w), 16);
}

TEST(BitMgr, WordsOf32BitsInBothTypes) {
    std::vector<std::uint32_t> words = {0u, 0xFFFFFFFFu, 1u, 0x80000000u, 0x7FFFFFFFu, 0xFFFFFFFEu,
                                        0x00000100u, 0x00010000u, 0x01000000u, 0xFFFFFEFFu, 0xFF00FFFFu,
                                        0x00FF0000u, 0x0000FF00u, 0xFFFF00FFu, 0x00800000u};
    for (int bit = 0; bit < 32; ++bit) {
        words.push_back(1u << bit);
        words.push_back(~(1u << bit));
    }
    std::mt19937 rng(20240611u);
    for (int k = 0; k < 200000; ++k) { // bytes drawn from 0x00, 0xFF, one bit, one hole, any
        std::uint32_t w = 0;
        for (int byte = 0; byte < 4; ++byte) {
            const std::uint32_t r = static_cast<std::uint32_t>(rng());
            const std::uint32_t kinds[5] = {0x00u, 0xFFu, 1u << (r & 7), 0xFFu & ~(1u << (r & 7)), (r >> 8) & 0xFFu};
            w |= kinds[(r >> 16) % 5] << (8 * byte);
        }
        words.push_back(w);
    }
    for (std::uint32_t w : words) {
        expectWord(w, 32);
        expectWord(static_cast<unsigned long>(w), 32);
        // The unsigned long form looks at the low 32 bits only.
        expectWord(static_cast<unsigned long>(w) | ~static_cast<unsigned long>(0xFFFFFFFFu), 32);
    }
    // "None" is the width for the first bit, 8 for the last bit, in every width.
    EXPECT_EQ(BitMgr::getFirstBit1(static_cast<unsigned short>(0)), 16);
    EXPECT_EQ(BitMgr::getFirstBit1(0ul), 32);
    EXPECT_EQ(BitMgr::getLastBit1(0ul), 8);
    EXPECT_EQ(BitMgr::getLastBit0(static_cast<unsigned short>(0xFFFF)), 8);
    EXPECT_EQ(BitMgr::getBitOrdering(), 1);
    EXPECT_EQ(BitMgr::getBitOrdering(), BitMgr::e_lowBitFirst);
}
