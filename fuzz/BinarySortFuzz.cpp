// Fuzz target: BinarySort over up to 64 rows built from records (addItem) and single-byte columns
// (addColumn), checked against std::stable_sort of the row numbers by their bytes; getUniqueRows on
// the sorted order and on an arbitrary one. Every buffer has exactly its documented size.
#include "FuzzInput.h"
#include "zefcore/base/BinarySort.h"

#include <algorithm>
#include <numeric>
#include <vector>

using Bytes = std::vector<unsigned char>;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    FuzzInput in(data, size);
    const int n = in.range(0, 64);
    const uint8_t mask = in.flag() ? 0x01 : in.flag() ? 0x83 : 0xFF; // small alphabets make equal rows likely
    BinarySort sorter;
    std::vector<Bytes> arrays(in.range(0, 5)), rows(n); // the caller's data; each row's bytes
    for (Bytes &bytes : arrays) {
        const int record = in.flag() ? 1 : in.range(1, 6);
        bytes.resize(n * record);
        for (unsigned char &b : bytes)
            b = static_cast<unsigned char>(in.byte() & mask);
        record == 1 && in.flag() ? sorter.addColumn(bytes.data())
                                 : sorter.addItem(bytes.data(), unsigned(record));
        for (int r = 0; r < n; ++r)
            rows[r].insert(rows[r].end(), bytes.begin() + r * record, bytes.begin() + (r + 1) * record);
    }
    std::vector<int> order(n, -7), want(n);
    sorter.sort(n, order.data());
    std::iota(want.begin(), want.end(), 0);
    std::stable_sort(want.begin(), want.end(), [&](int a, int b) { return rows[a] < rows[b]; });
    FUZZ_CHECK(order == want);
    for (int pass = 0; pass < 2; ++pass) { // only adjacent rows are compared
        Bytes flags(size_t(n + 7) / 8 + (n == 0), 0xA5), expect(flags.size(), n == 0 ? 0xA5 : 0);
        int runs = 0;
        for (int i = 0; i < n; ++i)
            if (i == 0 || rows[order[i - 1]] != rows[order[i]])
                expect[i / 8] = static_cast<unsigned char>(expect[i / 8] | 1 << (i & 7)), ++runs;
        FUZZ_CHECK(sorter.getUniqueRows(n, order.data(), flags.data()) == runs && flags == expect);
        for (int &r : order)
            r = in.range(0, n - 1);
    }
    return 0;
}
