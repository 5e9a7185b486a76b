// Walking and counting the set bits of 16M-bit arrays at 0.1% and 50% density:
// ZEFBoolArray's findFirst loop, getIndexesSet and getNumberOfBitSet, beside
// boost::dynamic_bitset's find_first/find_next and count, the last also built
// with the hardware population count. Both hold the same bits.
#include "BenchSupport.h"
#include "BitsetPopcount.h"

#include "zefcore/base/ZEFArray.h"
#include "zefcore/base/ZEFBoolArray.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#if ZEF_BENCH_HAVE_BOOST
#include <boost/dynamic_bitset.hpp>
#endif

namespace {

using zefbench::agree;
using zefbench::perItem;

constexpr int kBits = 1 << 24;
const char *const kPass = "pass over 16M bits";

// The bits of one density: 64-bit words, bit i in word i / 64 at bit i % 64,
// the same bytes as ZEFBoolArray's layout on a little-endian machine.
struct Bits {
    std::vector<std::uint64_t> words;
    std::vector<int> indexes; // the set bits, ascending
    long long indexSum = 0;
};

const Bits &bits(int perMille) {
    static Bits sparse, dense;
    Bits &b = perMille == 1 ? sparse : dense;
    if (b.words.empty()) {
        std::mt19937 rng(zefbench::kSeed + static_cast<std::uint32_t>(perMille));
        std::bernoulli_distribution on(perMille / 1000.0);
        b.words.assign(kBits / 64, 0);
        for (int i = 0; i < kBits; ++i)
            if (on(rng)) {
                b.words[i / 64] |= std::uint64_t(1) << (i % 64);
                b.indexes.push_back(i);
                b.indexSum += i;
            }
    }
    return b;
}

ZEFBoolArray makeOurs(const Bits &b) {
    ZEFBoolArray a;
    a.assign(kBits, reinterpret_cast<const char *>(b.words.data()));
    return a;
}

void zefFindFirst(benchmark::State &state, int perMille) {
    const ZEFBoolArray a = makeOurs(bits(perMille));
    long long sum = 0;
    for (auto _ : state) {
        sum = 0;
        for (int i = a.findFirst(true); i >= 0; i = a.findFirst(true, i + 1))
            sum += i;
        zefbench::consume(sum);
    }
    agree(state, sum == bits(perMille).indexSum, "findFirst walk misses bits");
    perItem(state, 1, kPass);
}

void zefIndexes(benchmark::State &state, int perMille) {
    const ZEFBoolArray a = makeOurs(bits(perMille));
    ZEFArray<int> indexes;
    for (auto _ : state) {
        a.getIndexesSet(indexes);
        zefbench::consume(indexes.data());
        benchmark::ClobberMemory();
    }
    const std::vector<int> &expected = bits(perMille).indexes;
    agree(state, static_cast<const std::vector<int> &>(indexes) == expected, "getIndexesSet differs");
    perItem(state, 1, kPass);
}

void zefCount(benchmark::State &state, int perMille) {
    const ZEFBoolArray a = makeOurs(bits(perMille));
    int count = 0;
    for (auto _ : state) {
        count = a.getNumberOfBitSet();
        zefbench::consume(count);
    }
    agree(state, count == static_cast<int>(bits(perMille).indexes.size()), "getNumberOfBitSet differs");
    perItem(state, 1, kPass);
}

#if ZEF_BENCH_HAVE_BOOST
boost::dynamic_bitset<> makeBoost(const Bits &b) {
    boost::dynamic_bitset<> d;
    d.append(b.words.begin(), b.words.end());
    d.resize(kBits);
    return d;
}

void boostFindNext(benchmark::State &state, int perMille) {
    const boost::dynamic_bitset<> d = makeBoost(bits(perMille));
    long long sum = 0;
    for (auto _ : state) {
        sum = 0;
        for (std::size_t i = d.find_first(); i != d.npos; i = d.find_next(i))
            sum += static_cast<long long>(i);
        zefbench::consume(sum);
    }
    agree(state, sum == bits(perMille).indexSum, "find_next walk misses bits");
    perItem(state, 1, kPass);
}

// The counterpart of getIndexesSet: the same walk into a reused vector.
void boostIndexes(benchmark::State &state, int perMille) {
    const boost::dynamic_bitset<> d = makeBoost(bits(perMille));
    std::vector<int> indexes;
    for (auto _ : state) {
        indexes.clear();
        for (std::size_t i = d.find_first(); i != d.npos; i = d.find_next(i))
            indexes.push_back(static_cast<int>(i));
        zefbench::consume(indexes.data());
        benchmark::ClobberMemory();
    }
    agree(state, indexes == bits(perMille).indexes, "find_next indexes differ");
    perItem(state, 1, kPass);
}

void boostCount(benchmark::State &state, int perMille) {
    const boost::dynamic_bitset<> d = makeBoost(bits(perMille));
    std::size_t count = 0;
    for (auto _ : state) {
        count = d.count();
        zefbench::consume(count);
    }
    agree(state, count == bits(perMille).indexes.size(), "count differs");
    perItem(state, 1, kPass);
}

void boostPopcntCount(benchmark::State &state, int perMille) {
    const Bits &b = bits(perMille);
    zefbench::PopcountBitset *d = zefbench::makePopcountBitset(b.words.data(), kBits);
    std::size_t count = 0;
    for (auto _ : state) {
        count = zefbench::popcountCount(d);
        zefbench::consume(count);
    }
    zefbench::freePopcountBitset(d);
    agree(state, count == b.indexes.size(), "count with popcnt differs");
    perItem(state, 1, kPass);
}
#endif

const bool registered = [] {
    using zefbench::add;
    for (int perMille : {1, 500}) {
        const std::string density = perMille == 1 ? "_0.1%" : "_50%";
        const auto reg = [&](const std::string &c, const char *route, void (*fn)(benchmark::State &, int)) {
            add(c + density, route, [fn, perMille](benchmark::State &s) {
                fn(s, perMille);
            })->Unit(benchmark::kMicrosecond);
        };
        reg("bits16M_walk", "zef:findFirst loop", zefFindFirst);
        reg("bits16M_indexes", "zef:getIndexesSet", zefIndexes);
        reg("bits16M_count", "zef:getNumberOfBitSet", zefCount);
#if ZEF_BENCH_HAVE_BOOST
        reg("bits16M_walk", "boost:find_first/find_next", boostFindNext);
        reg("bits16M_indexes", "boost:find_next into vector", boostIndexes);
        reg("bits16M_count", "boost:dynamic_bitset::count", boostCount);
        reg("bits16M_count", "boost:dynamic_bitset::count,-mpopcnt", boostPopcntCount);
#else
        for (const char *c : {"bits16M_walk", "bits16M_indexes", "bits16M_count"})
            zefbench::missing(c + density, "boost", "Boost");
#endif
    }
    return true;
}();

} // namespace
