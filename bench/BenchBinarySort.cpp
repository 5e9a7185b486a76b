// Ordering one million 12-byte records by their bytes: BinarySort beside
// std::stable_sort of row numbers with a memcmp comparator (the same order,
// ties by row number) and Boost's spreadsort string_sort on the same row
// numbers (the same sequence of records; ties in any order). Two tables: random
// bytes, and float triples with about four copies of each.
#include "BenchSupport.h"

#include "zefcore/base/BinarySort.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

#if ZEF_BENCH_HAVE_BOOST
#include <boost/sort/spreadsort/string_sort.hpp>
#endif

namespace {

using zefbench::agree;
using zefbench::perItem;

constexpr int kRows = 1000000;
constexpr unsigned kRecordSize = 12;

enum class Table { RandomBytes, FloatTriples };

// The records, kRecordSize bytes each, row after row.
const std::vector<unsigned char> &table(Table which) {
    static const std::vector<unsigned char> randomBytes = [] {
        std::vector<unsigned char> t(static_cast<std::size_t>(kRows) * kRecordSize);
        std::mt19937 rng(zefbench::kSeed);
        for (unsigned char &c : t)
            c = static_cast<unsigned char>(rng() >> 24);
        return t;
    }();
    static const std::vector<unsigned char> floatTriples = [] {
        // kRows / 4 distinct points, each written four times, then shuffled.
        std::mt19937 rng(zefbench::kSeed + 1u);
        std::uniform_real_distribution<float> coordinate(-100.0f, 100.0f);
        std::vector<float> points(3 * static_cast<std::size_t>(kRows / 4));
        for (float &x : points)
            x = coordinate(rng);
        std::vector<int> source(kRows);
        for (int r = 0; r < kRows; ++r)
            source[r] = r % (kRows / 4);
        std::shuffle(source.begin(), source.end(), rng);
        std::vector<unsigned char> t(static_cast<std::size_t>(kRows) * kRecordSize);
        for (int r = 0; r < kRows; ++r)
            std::memcpy(&t[static_cast<std::size_t>(r) * kRecordSize],
                        &points[3 * static_cast<std::size_t>(source[r])], kRecordSize);
        return t;
    }();
    return which == Table::RandomBytes ? randomBytes : floatTriples;
}

const unsigned char *row(const std::vector<unsigned char> &t, int r) {
    return t.data() + static_cast<std::size_t>(r) * kRecordSize;
}

// The order that BinarySort promises: ascending bytes, ties by row number.
const std::vector<int> &reference(Table which) {
    static std::vector<int> orders[2];
    std::vector<int> &order = orders[which == Table::RandomBytes ? 0 : 1];
    if (order.empty()) {
        const std::vector<unsigned char> &t = table(which);
        order.resize(kRows);
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(),
                         [&t](int a, int b) { return std::memcmp(row(t, a), row(t, b), kRecordSize) < 0; });
    }
    return order;
}

// Returns true if order lists the same sequence of records as the reference.
bool sameRecords(Table which, const std::vector<int> &order) {
    const std::vector<unsigned char> &t = table(which);
    const std::vector<int> &ref = reference(which);
    for (int i = 0; i < kRows; ++i)
        if (std::memcmp(row(t, order[i]), row(t, ref[i]), kRecordSize) != 0)
            return false;
    return true;
}

void zefSort(benchmark::State &state, Table which) {
    const std::vector<unsigned char> &t = table(which);
    std::vector<int> order(kRows);
    for (auto _ : state) {
        BinarySort sorter;
        sorter.addItem(t.data(), kRecordSize);
        sorter.sort(kRows, order.data());
        zefbench::consume(order.data());
        benchmark::ClobberMemory();
    }
    agree(state, order == reference(which), "BinarySort order differs from stable_sort");
    perItem(state, 1, "sort of 1M rows");
}

void stableSort(benchmark::State &state, Table which) {
    const std::vector<unsigned char> &t = table(which);
    std::vector<int> order(kRows);
    for (auto _ : state) {
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(),
                         [&t](int a, int b) { return std::memcmp(row(t, a), row(t, b), kRecordSize) < 0; });
        zefbench::consume(order.data());
        benchmark::ClobberMemory();
    }
    perItem(state, 1, "sort of 1M rows");
}

#if ZEF_BENCH_HAVE_BOOST
void spreadSort(benchmark::State &state, Table which) {
    const std::vector<unsigned char> &t = table(which);
    std::vector<int> order(kRows);
    for (auto _ : state) {
        std::iota(order.begin(), order.end(), 0);
        boost::sort::spreadsort::string_sort(
            order.begin(), order.end(), [&t](int r, std::size_t offset) { return row(t, r)[offset]; },
            [](int) { return std::size_t(kRecordSize); },
            [&t](int a, int b) { return std::memcmp(row(t, a), row(t, b), kRecordSize) < 0; });
        zefbench::consume(order.data());
        benchmark::ClobberMemory();
    }
    agree(state, sameRecords(which, order), "string_sort gives another sequence of records");
    perItem(state, 1, "sort of 1M rows");
}
#endif

const bool registered = [] {
    using zefbench::add;
    const struct {
        const char *name;
        Table table;
    } cases[] = {{"sort_1M_random_bytes", Table::RandomBytes},
                 {"sort_1M_float_triples_x4", Table::FloatTriples}};
    for (const auto &c : cases) {
        const Table which = c.table;
        add(c.name, "zef:BinarySort::sort", [which](benchmark::State &s) {
            zefSort(s, which);
        })->Unit(benchmark::kMillisecond);
        add(c.name, "std:stable_sort,memcmp", [which](benchmark::State &s) {
            stableSort(s, which);
        })->Unit(benchmark::kMillisecond);
#if ZEF_BENCH_HAVE_BOOST
        add(c.name, "boost:spreadsort::string_sort", [which](benchmark::State &s) {
            spreadSort(s, which);
        })->Unit(benchmark::kMillisecond);
#else
        zefbench::missing(c.name, "boost", "Boost");
#endif
    }
    return true;
}();

} // namespace
