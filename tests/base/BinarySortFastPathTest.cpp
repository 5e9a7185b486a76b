// BinarySort's split sort against two plain sorts, a stable counting pass per column from
// the last and std::stable_sort of the row bytes, on tables that take every route (insertion
// of small runs, columns holding one value, nested splits past the depth limit, arrays at
// different strides, many equal rows); the run flags against the rows. Nothing past the
// order or the flags is written.
#include "zefcore/base/BinarySort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {
using Bytes = std::vector<unsigned char>;

std::vector<int> plainSort(const std::vector<BinarySort::Column> &columns, int n) {
    std::vector<int> current(std::size_t(n), 0), other(current);
    std::iota(current.begin(), current.end(), 0);
    for (std::size_t c = columns.size(); c-- > 0;) {
        auto byte = [&](int row) { return columns[c].data[std::size_t(row) * columns[c].stride]; };
        int count[257] = {};
        for (int r = 0; r < n; ++r)
            ++count[byte(r) + 1];
        std::partial_sum(count, count + 257, count);
        for (int row : current)
            other[std::size_t(count[byte(row)]++)] = row;
        current.swap(other);
    }
    return current;
}
} // namespace

TEST(BinarySortFastPath, OrderAndRunsMatchPlainSorts) {
    std::mt19937 rng(41);
    // Byte j of each record draws from shape[j] values (1: a column holding one value).
    const std::vector<std::vector<int>> shapes = {std::vector<int>(12, 256), {3, 1, 256, 2, 1}, {1, 1, 1}, {},
                                                  std::vector<int>(20, 2),   {256, 2, 256},     {2, 256}};
    for (std::size_t s = 0; s < shapes.size(); ++s)
        for (int n : {0, 1, 2, 31, 32, 33, 100, 3000, 70000}) {
            const unsigned width = unsigned(shapes[s].size());
            const bool columnFirst = s % 2 == 0;
            Bytes t(std::size_t(n) * width + 1), extra(std::size_t(n) + 1),
                flags(std::size_t(n + 7) / 8 + 1, 0xA5);
            for (std::size_t i = 0; i + 1 < t.size(); ++i)
                t[i] = static_cast<unsigned char>(7 + rng() % unsigned(shapes[s][i % width]));
            for (unsigned char &c : extra)
                c = static_cast<unsigned char>(rng() % 3);
            std::vector<BinarySort::Column> columns;
            for (unsigned j = 0; j < width; ++j)
                columns.push_back({t.data() + j, width});
            columns.insert(columnFirst ? columns.begin() : columns.end(), {extra.data(), 1});
            BinarySort sorter;
            columnFirst ? sorter.addColumn(extra.data()) : void();
            sorter.addItem(t.data(), width);
            columnFirst ? void() : sorter.addColumn(extra.data());
            std::vector<Bytes> rows(static_cast<std::size_t>(n));
            for (int r = 0; r < n; ++r)
                for (const BinarySort::Column &c : columns)
                    rows[r].push_back(c.data[std::size_t(r) * c.stride]);
            std::vector<int> order(std::size_t(n) + 1, -9), stable(static_cast<std::size_t>(n));
            std::iota(stable.begin(), stable.end(), 0);
            std::stable_sort(stable.begin(), stable.end(), [&](int a, int b) { return rows[a] < rows[b]; });
            sorter.sort(n, order.data());
            ASSERT_EQ(order.back(), -9);
            order.pop_back();
            ASSERT_TRUE(order == plainSort(columns, n) && order == stable) << "shape " << s << " rows " << n;
            int runs = 0;
            const int count = sorter.getUniqueRows(n, order.data(), flags.data());
            for (int i = 0; i < int(flags.size() - 1) * 8; ++i) {
                const bool starts = i < n && (i == 0 || rows[order[i]] != rows[order[i - 1]]);
                runs += starts;
                ASSERT_EQ((flags[i / 8] >> (i & 7)) & 1, int(starts)) << s << " " << n << " " << i;
            }
            ASSERT_TRUE(count == runs && flags.back() == 0xA5) << s << " " << n;
        }
}

// A null record array (an empty table) must not be offset by its columns (undefined
// behaviour, caught by the sanitizer build). Only adjacent entries of an order are compared.
TEST(BinarySort, NullRecordsAndAdjacentRuns) {
    BinarySort empty, one;
    empty.addItem(nullptr, 4);
    int order[4] = {0, 1, 2, 3};
    unsigned char flags = 0xA5;
    empty.sort(0, order);
    EXPECT_TRUE(empty.getUniqueRows(0, order, &flags) == 0 && flags == 0xA5);
    const unsigned char column[] = {3, 1, 2, 1};
    one.addColumn(column);
    EXPECT_TRUE(one.getUniqueRows(4, order, &flags) == 4 && flags == 0x0F);
}
