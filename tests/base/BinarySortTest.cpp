#include "zefcore/base/BinarySort.h"

#include <gtest/gtest.h>

#include "support/BaseTestSupport.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {
using Bytes = std::vector<unsigned char>;
constexpr int kSentinel = -77;
constexpr unsigned char kFlagSentinel = 0xA5;
} // namespace

// Tables of one record array (0 to 5 bytes) and 0 to 2 single-byte columns, few distinct
// rows mostly of 254, 255 and 0, against std::stable_sort of the row bytes; the run flags
// against the rows. Nothing past order or the flags is written.
TEST(BinarySort, RandomTablesMatchStableSortOfRowBytes) {
    std::mt19937 rng(7u);
    for (int trial = 0; trial < 120; ++trial) {
        const int numRows = trial < 8 ? trial * trial : zeftest::pick(rng, 0, 600);
        const unsigned size = unsigned(zeftest::pick(rng, 0, 5)), extra = unsigned(zeftest::pick(rng, 0, 2));
        std::vector<Bytes> pool(std::size_t(zeftest::pick(rng, 1, 12)), Bytes(size + extra)), rows;
        for (Bytes &row : pool)
            for (unsigned char &b : row)
                b = static_cast<unsigned char>(zeftest::pick(rng, 0, 3) ? zeftest::pick(rng, 254, 256)
                                                                        : zeftest::pick(rng, 0, 255));
        Bytes records(std::size_t(numRows) * size + 1);
        std::vector<Bytes> columns(extra, Bytes(std::size_t(numRows) + 1));
        for (int r = 0; r < numRows; ++r) {
            rows.push_back(pool[std::size_t(zeftest::pick(rng, 0, int(pool.size()) - 1))]);
            for (unsigned j = 0; j < size + extra; ++j)
                (j < size ? records[r * size + j] : columns[j - size][r]) = rows[r][j];
        }
        BinarySort sorter;
        sorter.addItem(records.data(), size);
        for (Bytes &column : columns)
            sorter.addColumn(column.data());
        std::vector<int> expected(rows.size()), order(rows.size() + 1, kSentinel);
        std::iota(expected.begin(), expected.end(), 0);
        std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) { return rows[a] < rows[b]; });
        sorter.sort(numRows, order.data());
        ASSERT_EQ(order.back(), kSentinel) << trial;
        order.pop_back();
        ASSERT_EQ(order, expected) << trial;

        Bytes flags((rows.size() + 7) / 8 + 2, kFlagSentinel);
        const int count = sorter.getUniqueRows(numRows, order.data(), flags.data());
        int runs = 0;
        for (std::size_t i = 0; i < (flags.size() - 2) * 8; ++i) {
            const bool starts = i < rows.size() && (i == 0 || rows[order[i]] != rows[order[i - 1]]);
            runs += starts;
            ASSERT_EQ((flags[i / 8] >> (i & 7)) & 1, int(starts)) << trial << " " << i;
        }
        ASSERT_TRUE(count == runs && flags.end()[-2] == kFlagSentinel && flags.back() == kFlagSentinel);
    }
}

// A null record array (an empty table) must not be offset by its columns (undefined
// behaviour, caught by the sanitizer build); zero rows write nothing. The run flags
// compare adjacent entries only: an unsorted order counts more runs.
TEST(BinarySort, NullRecordsAndAdjacentRuns) {
    BinarySort empty, one;
    empty.addItem(nullptr, 4);
    empty.addColumn(nullptr);
    int order[4] = {kSentinel, 1, 2, 3};
    unsigned char flags = kFlagSentinel;
    empty.sort(0, order);
    EXPECT_TRUE(empty.getUniqueRows(0, order, &flags) == 0 && order[0] == kSentinel &&
                flags == kFlagSentinel);
    const unsigned char column[] = {3, 1, 2, 1};
    order[0] = 0;
    one.addColumn(column);
    EXPECT_TRUE(one.getUniqueRows(4, order, &flags) == 4 && flags == 0x0F);
}
