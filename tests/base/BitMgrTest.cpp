// BitMgr's counts and searches, and ZEFBoolArray's byte tables behind them, against a
// bit-by-bit walk: every byte and half word, and words built of mixed bytes.
#include "zefcore/base/BitMgr.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {
// "None" is the width for a first bit and 8 for a last bit, in every width.
template <class Word>
void expectWord(Word w, int width) {
    int ones = 0, first[2] = {width, width}, last[2] = {8, 8};
    for (int bit = 0; bit < width; ++bit) {
        const int one = int((static_cast<std::uint32_t>(w) >> bit) & 1u);
        ones += one;
        first[one] = first[one] == width ? bit : first[one];
        last[one] = bit;
    }
    ASSERT_TRUE(BitMgr::getNumBits1(w) == ones && BitMgr::getNumBits0(w) == width - ones) << w;
    ASSERT_TRUE(BitMgr::getFirstBit1(w) == first[1] && BitMgr::getFirstBit0(w) == first[0]) << w;
    ASSERT_TRUE(BitMgr::getLastBit1(w) == last[1] && BitMgr::getLastBit0(w) == last[0]) << w;
    const unsigned char b = static_cast<unsigned char>(w);
    ASSERT_TRUE(width != 8 ||
                (ZEFBoolArray::getNumBitsAt1(b) == ones && ZEFBoolArray::getNumBitsAt0(b) == 8 - ones &&
                 ZEFBoolArray::getFirstBitAt1(b) == first[1] && ZEFBoolArray::getFirstBitAt0(b) == first[0] &&
                 ZEFBoolArray::getLastBitAt1(b) == last[1] && ZEFBoolArray::getLastBitAt0(b) == last[0]))
        << int(b);
}
} // namespace

TEST(BitMgr, EveryByteAndHalfWordAndWordsOfMixedBytes) {
    for (unsigned w = 0; w < 65536; ++w) {
        expectWord(static_cast<unsigned short>(w), 16);
        if (w < 256)
            expectWord(static_cast<unsigned char>(w), 8);
    }
    const std::uint32_t kinds[8] = {0x00, 0xFF, 0x01, 0x80, 0x10, 0xFE, 0x7F, 0xEF}; // lone bits and holes
    for (unsigned k = 0; k < 4096; ++k) {
        const std::uint32_t w =
            kinds[k & 7] | kinds[(k >> 3) & 7] << 8 | kinds[(k >> 6) & 7] << 16 | kinds[k >> 9] << 24;
        expectWord(w, 32);
        expectWord(static_cast<unsigned long>(w), 32);
        expectWord(static_cast<unsigned long>(w) | ~0xFFFFFFFFul, 32); // the low 32 bits only
    }
    EXPECT_EQ(BitMgr::getBitOrdering(), 1);
}
