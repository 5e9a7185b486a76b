// BinarySort's split sort against the plain one-pass-per-column radix sort kept
// here: the same order for tables that take every route (insertion of small
// runs, columns holding one value, nested splits past the depth limit, several
// arrays at different strides, many equal rows).
#include "zefcore/base/BinarySort.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

struct PlainColumn {
    const unsigned char *data;
    unsigned stride;
};

// The plain sort: a stable counting pass per column, the last added first.
std::vector<int> plainSort(const std::vector<PlainColumn> &columns, int n) {
    std::vector<int> current(n), other(n);
    for (int r = 0; r < n; ++r)
        current[r] = r;
    for (std::size_t c = columns.size(); c-- > 0;) {
        int count[257] = {};
        for (int r = 0; r < n; ++r)
            ++count[columns[c].data[std::size_t(r) * columns[c].stride] + 1];
        for (int v = 2; v <= 256; ++v)
            count[v] += count[v - 1];
        for (int i = 0; i < n; ++i) {
            const int row = current[i];
            other[count[columns[c].data[std::size_t(row) * columns[c].stride]]++] = row;
        }
        current.swap(other);
    }
    return current;
}

// Returns n records of size bytes; byte j of each draws from `values[j]` values
// (1: a column holding one value).
std::vector<unsigned char> records(std::mt19937 &rng, int n, const std::vector<int> &values) {
    std::vector<unsigned char> t(std::size_t(n) * values.size());
    for (std::size_t i = 0; i < t.size(); ++i)
        t[i] = static_cast<unsigned char>(7 + rng() % unsigned(values[i % values.size()]));
    return t;
}

} // namespace

TEST(BinarySortFastPath, OrderMatchesPlainRadixSort) {
    std::mt19937 rng(41);
    const std::vector<std::vector<int>> shapes = {
        {256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256, 256}, // random 12-byte records
        {3, 1, 256, 2, 1},                                            // constant columns, few values
        {1, 1, 1},                                                    // every row equal
        std::vector<int>(20, 2),                                      // nests past the depth limit
        {256, 2, 256},                                                // odd count
        {2, 256},                                                     // even count
    };
    for (const std::vector<int> &shape : shapes) {
        for (int n : {1, 2, 31, 32, 33, 100, 3000, 70000}) {
            const std::vector<unsigned char> t = records(rng, n, shape);
            std::vector<unsigned char> extra(static_cast<std::size_t>(n));
            for (unsigned char &c : extra)
                c = static_cast<unsigned char>(rng() % 3);
            BinarySort sorter;
            sorter.addColumn(extra.data());
            sorter.addItem(t.data(), unsigned(shape.size()));
            std::vector<PlainColumn> columns = {{extra.data(), 1}};
            for (std::size_t j = 0; j < shape.size(); ++j)
                columns.push_back({t.data() + j, unsigned(shape.size())});

            std::vector<int> order(std::size_t(n) + 1, -9);
            sorter.sort(n, order.data());
            EXPECT_EQ(order.back(), -9);
            order.pop_back();
            EXPECT_EQ(order, plainSort(columns, n)) << "columns " << columns.size() << " rows " << n;
        }
    }
}
