// ZEFBoolArray's word-wise searches, counts and index lists against a plain walk over the
// bits, on arrays whose spare bits and spare bytes hold anything (random, all clear, all
// set), from every start, for sizes around word and byte edges.
#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

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
