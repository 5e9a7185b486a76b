// The word-wise pieces behind ZEFBoolArray's searches, counts and index lists against a plain
// walk over the bits: BitMgr's counts and searches and the array's byte tables on every byte
// and half word and on words of mixed bytes; the array's searches, counts and lists on arrays
// whose spare bits and bytes hold anything (random, all clear, all set), from every start,
// for sizes around word and byte edges.
#include "zefcore/base/BitMgr.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

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

TEST(ZEFBoolArrayFastPath, SearchesCountsAndListsMatchPlainWalk) {
    std::mt19937 rng(23);
    for (int size : {1, 7, 8, 9, 63, 64, 65, 71, 72, 127, 128, 129, 200, 511})
        for (unsigned density : {0u, 1u, 500u, 999u, 1000u})      // per mille of set bits
            for (int n : {size, size - 1, size - 9, size - 70}) { // below 0: empty
                std::vector<char> bytes(std::size_t(size + 7) / 8, 0);
                for (std::size_t i = 0; i < bytes.size() * 8; ++i)
                    bytes[i / 8] = char(bytes[i / 8] | (rng() % 1000 < density) << (i & 7));
                ZEFBoolArray a;
                a.assign(size, bytes.data());
                n < size ? a.resize(n, rng() & 1) : void(); // spare bytes filled by resize
                std::vector<int> listed[2];
                for (int i = 0; i < n; ++i)
                    listed[a.getNoSizeTest(i)].push_back(i);
                for (bool v : {false, true}) {
                    for (int s = -2; s < 8 * int(bytes.size()) + 2; ++s) {
                        const auto &in = listed[v];
                        const auto after = std::lower_bound(in.begin(), in.end(), s);
                        const auto upTo = std::upper_bound(in.begin(), in.end(), s);
                        ASSERT_EQ(a.findFirst(v, s), after == in.end() ? -1 : *after) << size << " " << s;
                        ASSERT_EQ(a.findLast(v, s), upTo == in.begin() ? -1 : upTo[-1]) << size << " " << s;
                    }
                    ZEFArray<int> got;
                    got.assign(3);
                    ASSERT_EQ(v ? a.getIndexesSet(got) : a.getIndexesCleared(got), !listed[v].empty());
                    ASSERT_EQ(std::vector<int>(got.vbegin(), got.vbegin() + got.size()), listed[v]);
                    ASSERT_EQ(v ? a.getNumberOfBitSet() : a.getNumberOfBitCleared(), int(listed[v].size()));
                }
            }
}
