// Fuzz target: BinarySort over up to 64 rows built from records (addItem) and
// single-byte columns (addColumn), checked against std::stable_sort of the row
// numbers by their bytes; getUniqueRows on the sorted order and on an arbitrary one.
// Every buffer has exactly its documented size, for the address sanitizer.
#include "FuzzInput.h"
#include "zefcore/base/BinarySort.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

using Rows = std::vector<std::vector<unsigned char>>;

void checkUnique(const BinarySort &sorter, const Rows &rows, const std::vector<int> &order) {
    const int n = int(order.size());
    std::vector<unsigned char> flags(size_t(n + 7) / 8 + (n == 0), 0xA5),
        want(flags.size(), n == 0 ? 0xA5 : 0);
    int runs = 0;
    for (int i = 0; i < n; ++i)
        if (i == 0 || rows[size_t(order[size_t(i - 1)])] != rows[size_t(order[size_t(i)])]) {
            want[size_t(i / 8)] = static_cast<unsigned char>(want[size_t(i / 8)] | (1 << (i & 7)));
            ++runs;
        }
    FUZZ_CHECK(sorter.getUniqueRows(n, order.data(), flags.data()) == runs && flags == want);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const int numRows = in.range(0, 64);
    const uint8_t mask = in.flag()   ? 0x01
                         : in.flag() ? 0x83
                                     : 0xFF; // a small alphabet makes equal rows likely
    BinarySort sorter;
    std::vector<std::vector<unsigned char>> arrays(size_t(in.range(0, 5))); // the caller's data
    Rows rows(static_cast<size_t>(numRows));
    for (std::vector<unsigned char> &bytes : arrays) {
        const unsigned int record = in.flag() ? 1u : unsigned(in.range(1, 6));
        bytes.resize(size_t(numRows) * record);
        for (unsigned char &b : bytes)
            b = static_cast<unsigned char>(in.byte() & mask);
        if (record == 1 && in.flag())
            sorter.addColumn(bytes.data());
        else
            sorter.addItem(bytes.data(), record);
        for (size_t r = 0; r < size_t(numRows); ++r)
            rows[r].insert(rows[r].end(), bytes.begin() + long(r * record),
                           bytes.begin() + long((r + 1) * record));
    }
    std::vector<int> order(size_t(numRows), -7), want(static_cast<size_t>(numRows));
    sorter.sort(numRows, order.data());
    std::iota(want.begin(), want.end(), 0);
    std::stable_sort(want.begin(), want.end(),
                     [&](int a, int b) { return rows[size_t(a)] < rows[size_t(b)]; });
    FUZZ_CHECK(order == want);
    checkUnique(sorter, rows, order);
    for (int &r : order) // only adjacent rows are compared
        r = in.range(0, numRows - 1);
    checkUnique(sorter, rows, order);
    return 0;
}
