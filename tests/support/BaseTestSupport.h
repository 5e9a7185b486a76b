// Helpers shared by the base and geometry tests: seeded random integers for the
// model-based operation sequences.
#pragma once

#include <random>

namespace zeftest {

// Returns an int drawn uniformly from lo to hi, both included.
inline int pick(std::mt19937 &rng, int lo, int hi) {
    return std::uniform_int_distribution<int>(lo, hi)(rng);
}

} // namespace zeftest
