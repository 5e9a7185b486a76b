#include "zefcore/base/BinarySort.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {
constexpr int kSentinel = -77;
constexpr unsigned char kFlagSentinel = 0xA5;
using Bytes = std::vector<unsigned char>;

// Sorts numRows rows; nothing past order may be written.
std::vector<int> sorted(BinarySort &sorter, int numRows) {
    std::vector<int> order(static_cast<std::size_t>(numRows) + 1, kSentinel);
    sorter.sort(numRows, order.data());
    EXPECT_EQ(order.back(), kSentinel);
    order.pop_back();
    return order;
}

// Returns the flags of getUniqueRows and sets count; the two bytes past the flags stay untouched.
Bytes uniqueFlags(const BinarySort &sorter, const std::vector<int> &order, int &count) {
    const std::size_t bytes = (order.size() + 7) / 8;
    Bytes flags(bytes + 2, kFlagSentinel);
    count = sorter.getUniqueRows(static_cast<int>(order.size()), order.data(), flags.data());
    EXPECT_TRUE(flags[bytes] == kFlagSentinel && flags[bytes + 1] == kFlagSentinel);
    flags.resize(bytes);
    return flags;
}
} // namespace

// Tables of one record array (0 to 5 bytes) and 0 to 2 single-byte columns, with few
// distinct rows, against std::stable_sort of the row bytes.
TEST(BinarySort, RandomTablesMatchStableSortOfRowBytes) {
    std::mt19937 rng(7u);
    for (int trial = 0; trial < 120; ++trial) {
        const int numRows = trial < 8 ? trial * trial : zeftest::pick(rng, 0, 600);
        const unsigned recordSize = unsigned(zeftest::pick(rng, 0, 5)),
                       extraColumns = unsigned(zeftest::pick(rng, 0, 2));
        const unsigned width = recordSize + extraColumns;
        std::vector<Bytes> pool(static_cast<std::size_t>(zeftest::pick(rng, 1, 12)), Bytes(width));
        std::vector<Bytes> rows(static_cast<std::size_t>(numRows));
        for (Bytes &row : pool)
            for (unsigned char &b : row) // mostly 254, 255, 0
                b = static_cast<unsigned char>(zeftest::pick(rng, 0, 3) ? zeftest::pick(rng, 254, 256)
                                                                        : zeftest::pick(rng, 0, 255));
        Bytes records(rows.size() * recordSize + 1);
        std::vector<Bytes> extras(extraColumns, Bytes(rows.size() + 1));
        for (std::size_t r = 0; r < rows.size(); ++r) {
            rows[r] = pool[std::size_t(zeftest::pick(rng, 0, int(pool.size()) - 1))];
            std::copy(rows[r].begin(), rows[r].begin() + recordSize, records.begin() + long(r * recordSize));
            for (unsigned c = 0; c < extraColumns; ++c)
                extras[c][r] = rows[r][recordSize + c];
        }
        BinarySort sorter;
        sorter.addItem(records.data(), recordSize);
        for (Bytes &column : extras)
            sorter.addColumn(column.data());
        std::vector<int> expected(rows.size());
        std::iota(expected.begin(), expected.end(), 0);
        std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) { return rows[a] < rows[b]; });
        SCOPED_TRACE(::testing::Message() << "trial " << trial << " rows " << numRows << " width " << width);
        const std::vector<int> order = sorted(sorter, numRows);
        ASSERT_EQ(order, expected);

        int count = -1, runs = 0;
        const Bytes flags = uniqueFlags(sorter, order, count);
        for (std::size_t i = 0; i < flags.size() * 8; ++i) {
            const bool starts = i < order.size() && (i == 0 || rows[order[i]] != rows[order[i - 1]]);
            runs += starts;
            ASSERT_EQ((flags[i / 8] >> (i & 7)) & 1, starts ? 1 : 0) << i;
        }
        EXPECT_EQ(count, runs);
    }
}

TEST(BinarySort, StatedExamplesAndNullRecords) {
    const unsigned char column[] = {3, 1, 2, 1};
    BinarySort one;
    one.addColumn(column);
    EXPECT_EQ(sorted(one, 4), (std::vector<int>{1, 3, 2, 0}));
    // Only adjacent entries are compared: an unsorted order counts more runs.
    int count = 0;
    EXPECT_EQ(uniqueFlags(one, {0, 1, 2, 3}, count), Bytes{0x0F});
    EXPECT_EQ(count, 4);

    // An empty record array may come as null: its columns must not offset it
    // (undefined behaviour, caught by the sanitizer build).
    BinarySort sorter;
    sorter.addItem(nullptr, 4);
    sorter.addColumn(nullptr);
    std::vector<int> untouched(2, kSentinel);
    sorter.sort(0, untouched.data());
    unsigned char flags = kFlagSentinel;
    EXPECT_EQ(sorter.getUniqueRows(0, untouched.data(), &flags), 0);
    EXPECT_TRUE(untouched == std::vector<int>(2, kSentinel) && flags == kFlagSentinel);
}
