// FUZZ_CHECK: the one way a fuzz target reports a finding. It prints the
// condition and its place and aborts, which libFuzzer records as a crash and
// keeps the input, and which fails the replay program. Also the bit-level
// comparisons the targets share.
#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#define FUZZ_CHECK(cond)                                                                                     \
    do {                                                                                                     \
        if (!(cond)) {                                                                                       \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond);                    \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (0)

// Returns true if the n floats of a and b have the same bits.
inline bool sameBits(const float *a, const float *b, int n) {
    return std::memcmp(a, b, sizeof(float) * size_t(n)) == 0;
}

// Returns true if a and b have the same bits, or are both NaN: for results whose
// NaN payload depends on which operand an instruction happens to propagate.
inline bool sameValue(float a, float b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}
inline bool sameValue(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}
inline bool sameValues(const float *a, const float *b, int n) {
    for (int i = 0; i < n; ++i)
        if (!sameValue(a[i], b[i]))
            return false;
    return true;
}
