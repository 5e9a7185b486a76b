// The fuzz targets' shared parts. FuzzInput turns bytes into operations and arguments and never fails:
// past the end every read gives zero. FUZZ_CHECK prints the condition and aborts, which libFuzzer
// records as a crash (keeping the input) and which fails the replay program.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#define FUZZ_CHECK(cond)                                                                                     \
    ((cond) ? void(0)                                                                                        \
            : (std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond), std::abort()))

struct FuzzInput {
    FuzzInput(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}
    bool empty() const { return m_pos >= m_size; }
    uint8_t byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    bool flag() { return (byte() & 1) != 0; }
    uint32_t u32() { // little-endian
        uint32_t v = byte();
        for (int shift = 8; shift < 32; shift += 8)
            v |= uint32_t(byte()) << shift;
        return v;
    }
    // Returns a value in [lo, hi], both included; lo when the input is exhausted.
    int range(int lo, int hi) {
        const uint64_t span = uint64_t(int64_t(hi) - int64_t(lo)) + 1;
        return int(int64_t(lo) + int64_t(span <= 256 ? byte() % span : u32() % span));
    }
    // Returns, by a leading byte, a float of raw bits (any NaN payload, infinity, subnormal, -0),
    // a special or tolerance-bound value, or a small fraction n / 4 that makes figures meet.
    float anyFloat() {
        using L = std::numeric_limits<float>;
        constexpr float inf = L::infinity(), nan = L::quiet_NaN(), sNaN = L::signaling_NaN();
        constexpr float tiny = L::denorm_min(), above = 0x1.a36e3p-14f,
                        below = 0x1.a36e2cp-14f; // 0.0001f's neighbours
        static const float table[] = {
            0.0f,       -0.0f,      1.0f,  -1.0f,  0.5f,        2.0f,     0.0001f,   -0.0001f,
            above,      below,      1e-7f, 1e-8f,  0.05f,       0.01f,    FLT_MAX,   -FLT_MAX,
            FLT_MIN,    tiny,       -tiny, inf,    -inf,        nan,      -nan,      sNaN,
            1.5707964f, 3.1415927f, 1e30f, -1e30f, FLT_EPSILON, 0.00001f, 0.000001f, 100.0f};
        const uint8_t kind = byte();
        return kind < 80 ? bitCast<float>(u32()) : kind < 160 ? table[byte() % 32] : smallFloat();
    }
    float smallFloat() { return float(int8_t(byte())) / 4.0f; }
    template <class To, class From>
    static To bitCast(From from) {
        static_assert(sizeof(To) == sizeof(From), "same size");
        To to;
        std::memcpy(&to, &from, sizeof to);
        return to;
    }
    const uint8_t *m_data;
    size_t m_size, m_pos = 0;
};

// While input lasts, at most maxSteps times: step(in, object, model, other, its model), then check both.
template <class T, class M, class Step, class Check>
int runTwo(const uint8_t *data, size_t size, int maxSteps, Step step, Check check) {
    FuzzInput in(data, size);
    T objects[2];
    M models[2];
    for (int steps = 0; !in.empty() && steps < maxSteps; ++steps) {
        const int k = in.range(0, 1);
        step(in, objects[k], models[k], objects[1 - k], models[1 - k]);
        check(objects[0], models[0]), check(objects[1], models[1]);
    }
    return 0;
}

inline bool sameBits(float a, float b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}
inline bool sameBits(const float *a, const float *b, int n) {
    return n == 0 || std::memcmp(a, b, sizeof(float) * size_t(n)) == 0;
}
// Same bits, or both NaN: for results whose NaN payload depends on which operand an instruction
// happens to propagate.
template <class T>
bool sameValue(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}
inline bool sameValues(const float *a, const float *b, int n) {
    return std::equal(a, a + n, b, sameValue<float>);
}
