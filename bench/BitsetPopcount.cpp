// Compiled with -mpopcnt. The bitset's allocator is a type of this file alone,
// so every dynamic_bitset member instantiated here is distinct from those of
// the other files (compiled without popcnt) and the linker cannot swap them.
#include "BitsetPopcount.h"

#include <boost/dynamic_bitset.hpp>

#include <memory>

namespace {

template <class T>
struct LocalAllocator : std::allocator<T> {
    template <class U>
    struct rebind {
        using other = LocalAllocator<U>;
    };
    LocalAllocator() = default;
    template <class U>
    LocalAllocator(const LocalAllocator<U> &) {}
};

using Bits = boost::dynamic_bitset<unsigned long long, LocalAllocator<unsigned long long>>;

} // namespace

namespace zefbench {

struct PopcountBitset {
    Bits bits;
};

PopcountBitset *makePopcountBitset(const std::uint64_t *words, std::size_t numBits) {
    PopcountBitset *p = new PopcountBitset;
    p->bits.append(words, words + (numBits + 63) / 64);
    p->bits.resize(numBits);
    return p;
}

std::size_t popcountCount(const PopcountBitset *bits) {
    return bits->bits.count();
}

void freePopcountBitset(PopcountBitset *bits) {
    delete bits;
}

} // namespace zefbench
