// The fast square roots: 1/sqrt(x) from a seed built on the bits of x and a
// 128-byte table, refined by Newton steps; sqrt(x) as its reciprocal.
// Relies on the IEEE 754 single layout: sign bit 31, exponent bits 23..30 with
// bias 127, 23 mantissa bits. Meaningful for positive normal floats only.
#include "zefcore/kernel/EnhancedMathFunctions.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

std::uint32_t bitsOf(float f) {
    std::uint32_t b;
    std::memcpy(&b, &f, sizeof b);
    return b;
}

float floatOf(std::uint32_t b) {
    float f;
    std::memcpy(&f, &b, sizeof f);
    return f;
}

// Returns the seed of 1/sqrt(x): the halved, negated exponent and the table
// entry as the eight highest mantissa bits. The sign of x is ignored.
float seedOf(unsigned char const *table, float x) {
    std::uint32_t const b = bitsOf(x);
    std::uint32_t const e = (b >> 23) & 0xFFu;
    std::uint32_t const i = (b >> 17) & 0x7Fu;
    // 0x17C - e >= 0x17C - 0xFF > 0: no wrap. The mask drops the bit that
    // would hold the parity of the halved exponent; the index carries it.
    std::uint32_t const seed = (((0x17Cu - e) << 22) & 0xFF800000u) | (std::uint32_t(table[i]) << 15);
    return floatOf(seed);
}

// Returns y after n Newton steps towards 1/sqrt(x), each evaluated in double
// and rounded to float; n <= 0 leaves y as it is.
float newtonSteps(float y, float x, int n) {
    for (int k = 0; k < n; ++k)
        y = float(double(y) * (3.0 - double(x) * y * y) * 0.5);
    return y;
}

} // namespace

unsigned char *EnhancedMathFunctions::initInvSqrtTable() {
    if (m_invSqrtTable)
        return m_invSqrtTable;
    // Filled before it is published: a failed allocation stores nothing.
    unsigned char *table = new unsigned char[128];
    for (std::uint32_t i = 0; i < 128; ++i) {
        float const x = floatOf((i | 0x1F80u) << 17);
        float const r = float(std::sqrt(double(x)));
        float const y = float(1.0 / r);
        table[i] = static_cast<unsigned char>(((bitsOf(y) + 0x2000u) >> 15) & 0xFFu);
    }
    // 1/sqrt(1) is exactly 1 and rounds to entry 0, which the seed's exponent
    // (values in [0.5, 1)) would read as 0.5: the largest entry gives just below 1.
    table[64] = 0xFF;
    m_invSqrtTable = table;
    return m_invSqrtTable;
}

float EnhancedMathFunctions::invSqrt(float x, int n) const {
    unsigned char const *table = initInvSqrtTable();
    return newtonSteps(seedOf(table, x), x, n);
}

float EnhancedMathFunctions::invSqrt(float x) const {
    unsigned char const *table = initInvSqrtTable();
    return newtonSteps(seedOf(table, x), x, 1);
}

float EnhancedMathFunctions::msqrt(float x, int n) const {
    unsigned char const *table = initInvSqrtTable();
    float const y = newtonSteps(seedOf(table, x), x, n);
    return float(1.0 / y);
}

float EnhancedMathFunctions::msqrt(float x) const {
    unsigned char const *table = initInvSqrtTable();
    float const y = newtonSteps(seedOf(table, x), x, 1);
    return float(1.0 / y);
}
