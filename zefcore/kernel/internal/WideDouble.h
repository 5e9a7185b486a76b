// Four doubles at a time for the kernel's fixed-size arithmetic: GCC vector
// types whose operations are the scalar ones lane by lane (same rounding, no
// contraction), built for the baseline instruction set and, for the functions
// marked ZEFWIDE_AVX2, for AVX2 with FMA, chosen at run time through
// hasAvx2Fma. A fused multiply-add is used only where the product is of two
// floats widened to double: such a product is exact, so the fused step rounds
// the same sum as the separate product and addition.
// Every helper here has internal linkage and is always inlined, so no function
// is ever compiled with two instruction sets under one name.
#pragma once

#include <cstdlib>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#define ZEFWIDE_X86 1
#include <immintrin.h>
#else
#define ZEFWIDE_X86 0
#endif

// The helpers pass 32-byte vectors by value; they are always inlined, so the
// calling convention for such values never applies. The warning about it stays
// off in the file that includes this one, where the helpers are inlined.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace zefwide {

typedef double Double4 __attribute__((vector_size(32)));
typedef float Float4 __attribute__((vector_size(16)));
typedef long long Long4 __attribute__((vector_size(32)));

#define ZEFWIDE_INLINE static inline __attribute__((always_inline))
#define ZEFWIDE_AVX2 __attribute__((target("avx2,fma"), noinline))

// True on a processor with AVX2 and FMA, from library load on; false before, which only
// selects the baseline path: both give the same bits. Also false when the
// environment variable ZEFCORE_KERNEL_BASELINE is set as the library loads: the
// tests run both paths that way. Only on x86, where the AVX2 functions exist.
#if ZEFWIDE_X86
static const bool hasAvx2Fma = [] {
    if (std::getenv("ZEFCORE_KERNEL_BASELINE") != nullptr)
        return false;
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0;
}();
#endif

// Returns the four floats at p (any alignment).
ZEFWIDE_INLINE Float4 load4(const float *p) {
    Float4 v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Sets the four floats at p (any alignment) to v.
ZEFWIDE_INLINE void store4(float *p, Float4 v) {
    std::memcpy(p, &v, sizeof v);
}

// Returns v widened to double, exactly.
ZEFWIDE_INLINE Double4 widen(Float4 v) {
    return __builtin_convertvector(v, Double4);
}

// Returns v rounded to float, lane by lane as a scalar conversion rounds.
ZEFWIDE_INLINE Float4 narrow(Double4 v) {
    return __builtin_convertvector(v, Float4);
}

// Sets p[0..2] (any alignment) to lanes 0..2 of v; p[3] is not touched.
ZEFWIDE_INLINE void store3(float *p, Float4 v) {
#if ZEFWIDE_X86
    _mm_storel_pi(reinterpret_cast<__m64 *>(p), (__m128)v);
    _mm_store_ss(p + 2, _mm_movehl_ps((__m128)v, (__m128)v));
#else
    std::memcpy(p, &v, 3 * sizeof(float));
#endif
}

// The immediate of _mm256_permute4x64_pd giving lane k the lane ik (constants).
#define ZEFWIDE_LANES(i0, i1, i2, i3) ((i0) | ((i1) << 2) | ((i2) << 4) | ((i3) << 6))

// Returns the vector whose lane k is lane ik of v (indices are constants).
#if defined(__clang__)
#define ZEFWIDE_PERMUTE(v, i0, i1, i2, i3) __builtin_shufflevector((v), (v), i0, i1, i2, i3)
#else
#define ZEFWIDE_PERMUTE(v, i0, i1, i2, i3) __builtin_shuffle((v), zefwide::Long4{i0, i1, i2, i3})
#endif

// Returns, lane by lane, a where mask is all ones and b where it is zero.
ZEFWIDE_INLINE Double4 select(Long4 mask, Double4 a, Double4 b) {
    return mask ? a : b;
}

// Returns |v| lane by lane (the sign bit cleared, NaN lanes included).
ZEFWIDE_INLINE Double4 magnitude(Double4 v) {
    return (Double4)((Long4)v & Long4{0x7FFFFFFFFFFFFFFFLL, 0x7FFFFFFFFFFFFFFFLL, 0x7FFFFFFFFFFFFFFFLL,
                                      0x7FFFFFFFFFFFFFFFLL});
}

// Returns all ones in every lane where a > b, zero elsewhere: false where either
// is NaN, as the scalar comparison.
ZEFWIDE_INLINE Long4 greater(Double4 a, Double4 b) {
    return (Long4)(a > b);
}

// Returns all ones in the lanes where v is not zero (either sign), zero in the
// others; a NaN lane is not zero.
ZEFWIDE_INLINE Long4 nonZero(Double4 v) {
    return (Long4)(v != Double4{0.0, 0.0, 0.0, 0.0});
}

} // namespace zefwide
