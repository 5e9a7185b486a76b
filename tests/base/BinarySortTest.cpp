#include "zefcore/base/BinarySort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr int kSentinel = -77;
constexpr unsigned char kFlagSentinel = 0xA5;

// Sorts with the given number of rows and checks that nothing past order is written.
std::vector<int> sorted(BinarySort &sorter, int numRows) {
    std::vector<int> order(static_cast<std::size_t>(numRows) + 1, kSentinel);
    sorter.sort(numRows, order.data());
    EXPECT_EQ(order.back(), kSentinel);
    order.pop_back();
    return order;
}

// Returns the flags of getUniqueRows and its count; the bytes past the flags stay untouched.
std::vector<unsigned char> uniqueFlags(const BinarySort &sorter, const std::vector<int> &order, int &count) {
    const std::size_t bytes = (order.size() + 7) / 8;
    std::vector<unsigned char> flags(bytes + 2, kFlagSentinel);
    count = sorter.getUniqueRows(static_cast<int>(order.size()), order.data(), flags.data());
    EXPECT_EQ(flags[bytes], kFlagSentinel);
    EXPECT_EQ(flags[bytes + 1], kFlagSentinel);
    flags.resize(bytes);
    return flags;
}

} // namespace

TEST(BinarySort, RandomTablesMatchStableSortOfRowBytes) {
    std::mt19937 rng(7u);
    const int rowCounts[] = {0, 1, 2, 3, 9, 64, 257, 1000};
    for (int trial = 0; trial < 120; ++trial) {
        const int numRows = trial < 16 ? rowCounts[trial % 8] : static_cast<int>(rng() % 600);
        const unsigned recordSize = static_cast<unsigned>(rng() % 6); // 0: no record columns
        const int extraColumns = static_cast<int>(rng() % 3);
        const int distinct = 1 + static_cast<int>(rng() % 12); // few distinct rows: many duplicates
        const unsigned width = recordSize + static_cast<unsigned>(extraColumns);
        std::vector<std::vector<unsigned char>> pool(static_cast<std::size_t>(distinct), std::vector<unsigned char>(width));
        for (auto &row : pool)
            for (auto &b : row)
                b = static_cast<unsigned char>(rng() % 4 == 0 ? rng() : rng() % 3 + 254); // 254, 255, 0 and others
        std::vector<std::vector<unsigned char>> rows(static_cast<std::size_t>(numRows));
        for (auto &row : rows)
            row = pool[rng() % pool.size()];
        // The table in caller memory: one record array, then single-byte arrays.
        std::vector<unsigned char> records(rows.size() * recordSize + 1);
        std::vector<std::vector<unsigned char>> extras(static_cast<std::size_t>(extraColumns), std::vector<unsigned char>(rows.size() + 1));
        for (std::size_t r = 0; r < rows.size(); ++r) {
            for (unsigned j = 0; j < recordSize; ++j)
                records[r * recordSize + j] = rows[r][j];
            for (int c = 0; c < extraColumns; ++c)
                extras[c][r] = rows[r][recordSize + c];
        }
        BinarySort sorter;
        sorter.addItem(records.data(), recordSize);
        for (auto &column : extras)
            sorter.addColumn(column.data());

        std::vector<int> expected(rows.size());
        std::iota(expected.begin(), expected.end(), 0);
        std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) { return rows[a] < rows[b]; });
        SCOPED_TRACE(::testing::Message() << "trial " << trial << " rows " << numRows << " width " << width);
        const std::vector<int> order = sorted(sorter, numRows);
        ASSERT_EQ(order, expected);

        int count = 0;
        const std::vector<unsigned char> flags = uniqueFlags(sorter, order, count);
        if (numRows == 0) {
            EXPECT_EQ(count, 0);
            continue;
        }
        int runs = 0;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const bool starts = i == 0 || rows[order[i]] != rows[order[i - 1]];
            runs += starts;
            ASSERT_EQ(((flags[i / 8] >> (i & 7)) & 1) != 0, starts) << i;
        }
        for (std::size_t i = order.size(); i < flags.size() * 8; ++i)
            ASSERT_EQ((flags[i / 8] >> (i & 7)) & 1, 0);
        std::vector<std::vector<unsigned char>> unique(rows);
        std::sort(unique.begin(), unique.end());
        EXPECT_EQ(count, std::unique(unique.begin(), unique.end()) - unique.begin());
        EXPECT_EQ(count, runs);
    }
}

TEST(BinarySort, StatedExamples) {
    const unsigned char column[] = {3, 1, 2, 1};
    BinarySort one;
    one.addColumn(column);
    EXPECT_EQ(sorted(one, 4), (std::vector<int>{1, 3, 2, 0}));
    std::vector<int> untouched(3, kSentinel);
    one.sort(0, untouched.data());
    EXPECT_EQ(untouched, std::vector<int>(3, kSentinel));

    // Records order by their stored bytes, lowest address first.
    const unsigned char records[] = {0, 0, 1, 0, 0, 0, 0, 1};
    BinarySort items;
    items.addItem(records, 4);
    EXPECT_EQ(sorted(items, 2), (std::vector<int>{1, 0}));

    // Nine different rows fill bit 8, bit 0 of the second byte.
    const unsigned char all[9] = {8, 7, 6, 5, 4, 3, 2, 1, 0};
    BinarySort different;
    different.addColumn(all);
    int count = 0;
    EXPECT_EQ(uniqueFlags(different, sorted(different, 9), count), (std::vector<unsigned char>{0xFF, 1}));
    EXPECT_EQ(count, 9);

    // Only adjacent entries are compared: an unsorted order counts more runs.
    EXPECT_EQ(uniqueFlags(one, {0, 1, 2, 3}, count), (std::vector<unsigned char>{0x0F}));
    EXPECT_EQ(count, 4);
}

TEST(BinarySort, EmptyTableFromNullRecordsIsSafe) {
    // An empty record array may come as null: its columns must not offset it
    // (undefined behaviour, caught by the sanitizer build).
    BinarySort sorter;
    sorter.addItem(nullptr, 4);
    sorter.addColumn(nullptr);
    std::vector<int> untouched(2, kSentinel);
    sorter.sort(0, untouched.data());
    unsigned char flags = kFlagSentinel;
    EXPECT_EQ(sorter.getUniqueRows(0, untouched.data(), &flags), 0);
    EXPECT_EQ(untouched, std::vector<int>(2, kSentinel));
    EXPECT_EQ(flags, kFlagSentinel);
}
