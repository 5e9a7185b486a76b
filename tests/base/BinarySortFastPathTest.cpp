// BinarySort's split sort against the plain sort it replaces, a stable counting pass per
// column from the last: the same order for tables that take every route (insertion of
// small runs, columns holding one value, nested splits past the depth limit, several
// arrays at different strides, many equal rows).
#include "zefcore/base/BinarySort.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

namespace {
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

TEST(BinarySortFastPath, OrderMatchesPlainRadixSort) {
    std::mt19937 rng(41);
    // Byte j of each record draws from shape[j] values (1: a column holding one value).
    const std::vector<std::vector<int>> shapes = {std::vector<int>(12, 256), {3, 1, 256, 2, 1}, {1, 1, 1},
                                                  std::vector<int>(20, 2),   {256, 2, 256},     {2, 256}};
    for (const std::vector<int> &shape : shapes)
        for (int n : {1, 2, 31, 32, 33, 100, 3000, 70000}) {
            const unsigned width = unsigned(shape.size());
            std::vector<unsigned char> t(std::size_t(n) * width), extra(std::size_t(n), 0);
            for (std::size_t i = 0; i < t.size(); ++i)
                t[i] = static_cast<unsigned char>(7 + rng() % unsigned(shape[i % width]));
            for (unsigned char &c : extra)
                c = static_cast<unsigned char>(rng() % 3);
            BinarySort sorter;
            sorter.addColumn(extra.data());
            sorter.addItem(t.data(), width);
            std::vector<BinarySort::Column> columns = {{extra.data(), 1}};
            for (unsigned j = 0; j < width; ++j)
                columns.push_back({t.data() + j, width});
            std::vector<int> order(std::size_t(n) + 1, -9);
            sorter.sort(n, order.data());
            ASSERT_EQ(order.back(), -9);
            order.pop_back();
            ASSERT_EQ(order, plainSort(columns, n)) << "columns " << columns.size() << " rows " << n;
        }
}
