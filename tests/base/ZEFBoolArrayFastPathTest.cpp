// ZEFBoolArray's word-wise searches, counts and index lists against the plain
// byte-wise forms kept here, on arrays whose spare bits and spare bytes hold
// anything, at every start position, for sizes around word and byte edges.
#include "zefcore/base/ZEFBoolArray.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

// The data bytes of the whole capacity between two guards of value 1.
struct Plain {
    std::vector<unsigned char> g; // g[0] and g.back() are the guards
    int numBits;

    int at(int byte) const { return g[std::size_t(byte) + 1]; }

    int findFirst(bool value, int start) const {
        if (start >= numBits)
            return -1;
        if (start < 0)
            start = 0;
        int byte = start / 8;
        unsigned b = unsigned(at(byte));
        b = value ? (b & (0xFFu << (start & 7)) & 0xFFu) : (b | ((1u << (start & 7)) - 1u));
        while (b == (value ? 0x00u : 0xFFu))
            b = unsigned(at(++byte));
        int bit = 0;
        while (((b >> bit) & 1u) != (value ? 1u : 0u))
            ++bit;
        const long long candidate = 8LL * byte + bit;
        return candidate < numBits ? int(candidate) : -1;
    }

    int findLast(bool value, int start) const {
        if (start < 0 || numBits == 0)
            return -1;
        if (start >= numBits)
            start = numBits - 1;
        int byte = start / 8;
        const unsigned above = (0xFEu << (start & 7)) & 0xFFu;
        unsigned b = value ? (unsigned(at(byte)) & ~above) : (unsigned(at(byte)) | above);
        while (b == (value ? 0x00u : 0xFFu))
            b = unsigned(at(--byte)); // byte -1 is the lower guard
        if (byte < 0)
            return -1;
        int bit = 7;
        while (((b >> bit) & 1u) != (value ? 1u : 0u))
            --bit;
        return 8 * byte + bit;
    }

    std::vector<int> indexes(bool value) const {
        std::vector<int> out;
        for (int i = 0; i < numBits; ++i)
            if (((at(i / 8) >> (i & 7)) & 1) == (value ? 1 : 0))
                out.push_back(i);
        return out;
    }
};

} // namespace

TEST(ZEFBoolArrayFastPath, SearchesCountsAndListsMatchPlainByteWalk) {
    std::mt19937 rng(23);
    const int sizes[] = {1, 7, 8, 9, 63, 64, 65, 71, 72, 127, 128, 129, 200, 511};
    const unsigned densities[] = {0, 1, 500, 999, 1000}; // per mille of set bits
    for (int size : sizes) {
        for (unsigned density : densities) {
            for (int shrinkBy : {0, 1, 9, 70}) {
                if (shrinkBy >= size)
                    continue;
                const int capBytes = (size + 7) / 8;
                std::vector<char> bytes(static_cast<std::size_t>(capBytes), 0);
                for (int i = 0; i < 8 * capBytes; ++i)
                    if (rng() % 1000 < density)
                        bytes[std::size_t(i / 8)] = char(bytes[std::size_t(i / 8)] | (1 << (i & 7)));
                ZEFBoolArray a;
                a.assign(size, bytes.data());
                if (shrinkBy > 0) // spare bytes inside the capacity, filled by resize
                    a.resize(size - shrinkBy, (rng() & 1) != 0);

                Plain plain{std::vector<unsigned char>(std::size_t(capBytes) + 2, 1), size - shrinkBy};
                for (int i = 0; i < 8 * capBytes; ++i)
                    if (a.getNoSizeTest(i))
                        plain.g[std::size_t(i / 8) + 1] |= static_cast<unsigned char>(1 << (i & 7));
                    else
                        plain.g[std::size_t(i / 8) + 1] &= static_cast<unsigned char>(~(1 << (i & 7)));

                for (int start = -2; start < 8 * capBytes + 2; ++start) {
                    for (bool value : {true, false}) {
                        ASSERT_EQ(a.findFirst(value, start), plain.findFirst(value, start))
                            << "size " << size << " start " << start << " value " << value;
                        ASSERT_EQ(a.findLast(value, start), plain.findLast(value, start))
                            << "size " << size << " start " << start << " value " << value;
                    }
                }
                const std::vector<int> set = plain.indexes(true), cleared = plain.indexes(false);
                EXPECT_EQ(a.getNumberOfBitSet(), int(set.size()));
                ZEFArray<int> got;
                EXPECT_EQ(a.getIndexesSet(got), !set.empty());
                EXPECT_EQ(std::vector<int>(got.begin(), got.end()), set);
                EXPECT_EQ(a.getIndexesCleared(got), !cleared.empty());
                EXPECT_EQ(std::vector<int>(got.begin(), got.end()), cleared);
            }
        }
    }
}
