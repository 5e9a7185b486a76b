// Fuzz target: BinarySort over tables of up to 64 rows built from records
// (addItem) and single-byte columns (addColumn), checked against std::stable_sort
// of the row numbers by their row bytes, and getUniqueRows checked on the sorted
// order and on an arbitrary order. Every buffer has exactly the documented size,
// so that the address sanitizer sees a read or write beyond it.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "zefcore/base/BinarySort.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <vector>

namespace {

// Checks getUniqueRows on order against a comparison of adjacent rows.
void checkUnique(const BinarySort &sorter, const std::vector<std::vector<unsigned char>> &rows,
                 const std::vector<int> &order) {
    const int numRows = int(order.size());
    const size_t numBytes = size_t((numRows + 7) / 8);
    std::unique_ptr<unsigned char[]> flags(new unsigned char[numBytes == 0 ? 1 : numBytes]);
    std::fill(flags.get(), flags.get() + (numBytes == 0 ? 1 : numBytes), 0xA5);
    const int count = sorter.getUniqueRows(numRows, order.data(), flags.get());
    if (numRows == 0) {
        FUZZ_CHECK(count == 0 && flags[0] == 0xA5);
        return;
    }
    std::vector<unsigned char> want(numBytes, 0);
    int runs = 0;
    for (int i = 0; i < numRows; ++i)
        if (i == 0 || rows[size_t(order[size_t(i - 1)])] != rows[size_t(order[size_t(i)])]) {
            want[size_t(i / 8)] = static_cast<unsigned char>(want[size_t(i / 8)] | (1 << (i & 7)));
            ++runs;
        }
    FUZZ_CHECK(count == runs);
    FUZZ_CHECK(std::equal(want.begin(), want.end(), flags.get()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const int numRows = in.range(0, 64);
    // A small alphabet makes equal rows likely.
    const uint8_t mask = in.flag() ? 0x01 : in.flag() ? 0x83 : 0xFF;
    BinarySort sorter;
    std::vector<std::vector<unsigned char>> arrays; // the caller's row data
    std::vector<std::vector<unsigned char>> rows(static_cast<size_t>(numRows));
    const int numAdds = in.range(0, 5);
    for (int k = 0; k < numAdds; ++k) {
        const unsigned int record = in.flag() ? 1u : unsigned(in.range(1, 6));
        const bool asColumn = record == 1 && in.flag();
        arrays.emplace_back(size_t(numRows) * record);
        std::vector<unsigned char> &bytes = arrays.back();
        for (unsigned char &b : bytes)
            b = static_cast<unsigned char>(in.byte() & mask);
        if (asColumn)
            sorter.addColumn(bytes.data());
        else
            sorter.addItem(bytes.data(), record);
        for (int r = 0; r < numRows; ++r)
            for (unsigned int j = 0; j < record; ++j)
                rows[size_t(r)].push_back(bytes[size_t(r) * record + j]);
    }

    std::vector<int> order(size_t(numRows), -7);
    sorter.sort(numRows, order.data());
    std::vector<int> want(static_cast<size_t>(numRows));
    std::iota(want.begin(), want.end(), 0);
    std::stable_sort(want.begin(), want.end(),
                     [&](int a, int b) { return rows[size_t(a)] < rows[size_t(b)]; });
    FUZZ_CHECK(order == want);
    checkUnique(sorter, rows, order);

    // An arbitrary order: only adjacent rows are compared.
    std::vector<int> shuffled(static_cast<size_t>(numRows));
    for (int &r : shuffled)
        r = numRows > 0 ? in.range(0, numRows - 1) : 0;
    checkUnique(sorter, rows, shuffled);
    return 0;
}
