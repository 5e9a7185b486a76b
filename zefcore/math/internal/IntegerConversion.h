// Conversions for the integer vectors, free of undefined behaviour: wrapping to
// a signed width through unsigned arithmetic, and the truncation of a double to
// an integer with the value x86-64's truncating conversion gives out of range.
#pragma once

#include <climits>
#include <cstdint>

namespace zefcore_internal {

// Returns the int whose two's complement bits are u.
inline int wrapToInt32(std::uint32_t u) {
    if (u <= std::uint32_t(INT_MAX))
        return int(u);
    // u - 2^32, formed without leaving the range of int.
    return -int(~u) - 1;
}

// Returns the short whose two's complement bits are the low 16 bits of u.
inline short wrapToInt16(std::uint32_t u) {
    const int low = int(u & 0xFFFFu);
    return short(low <= SHRT_MAX ? low : low - 0x10000);
}

// Returns d truncated towards zero as a 32-bit int; INT_MIN (0x80000000, the
// "integer indefinite") if d is not a number or its truncation does not fit.
inline int truncToInt32(double d) {
    if (d > -2147483649.0 && d < 2147483648.0)
        return int(d);
    return INT_MIN;
}

// Returns the low 32 bits of d truncated towards zero as a 64-bit integer; the
// 64-bit "integer indefinite" 0x8000000000000000 (low bits 0) if d is not a
// number or its truncation does not fit.
inline std::uint32_t truncToInt64Low32(double d) {
    if (d >= -9223372036854775808.0 && d < 9223372036854775808.0) {
        const std::int64_t t = std::int64_t(d);
        return std::uint32_t(std::uint64_t(t));
    }
    return std::uint32_t(UINT64_C(0x8000000000000000));
}

} // namespace zefcore_internal
