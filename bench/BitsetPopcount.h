// A boost::dynamic_bitset compiled with the hardware population count
// (BitsetPopcount.cpp alone is built with -mpopcnt). Only plain types cross
// this interface, so no inline function is shared between translation units
// compiled with different instruction sets.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zefbench {

struct PopcountBitset;

// Returns a new bitset of numBits bits taken from words (bit i in word i / 64
// at bit i % 64); release it with freePopcountBitset.
PopcountBitset *makePopcountBitset(const std::uint64_t *words, std::size_t numBits);
// Returns the number of set bits: dynamic_bitset::count with the popcnt instruction.
std::size_t popcountCount(const PopcountBitset *bits);
void freePopcountBitset(PopcountBitset *bits);

} // namespace zefbench
