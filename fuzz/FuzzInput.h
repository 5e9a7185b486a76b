// FuzzInput: a small reader that turns the fuzzer's bytes into operations and
// arguments. It never fails: past the end every read gives zero, so any input,
// even empty, decodes to a valid sequence. Multi-byte values are little-endian.
#pragma once

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

class FuzzInput {
public:
    FuzzInput(const uint8_t *data, size_t size) : m_data(data), m_size(size), m_pos(0) {}

    // Returns true once every byte has been read.
    bool empty() const { return m_pos >= m_size; }

    uint8_t byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }
    bool flag() { return (byte() & 1) != 0; }
    uint32_t u32() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i)
            v |= uint32_t(byte()) << (8 * i);
        return v;
    }
    int32_t i32() {
        const uint32_t u = u32();
        int32_t v;
        std::memcpy(&v, &u, sizeof v);
        return v;
    }

    // Returns a value in [lo, hi], both included; lo when the input is exhausted.
    int range(int lo, int hi) {
        const uint64_t span = uint64_t(int64_t(hi) - int64_t(lo)) + 1;
        const uint64_t pick = span <= 256 ? byte() % span : u32() % span;
        return int(int64_t(lo) + int64_t(pick));
    }

    // Returns the float with the next four bytes as its bits: any NaN payload,
    // infinity, subnormal or negative zero.
    float rawFloat() {
        const uint32_t u = u32();
        float f;
        std::memcpy(&f, &u, sizeof f);
        return f;
    }

    // Returns a float drawn, by a leading byte, from raw bits, from a table of
    // special and boundary values, or from small fractions that meet each other
    // in geometry (n / 4 for n in [-128, 127]).
    float anyFloat() {
        const uint8_t kind = byte();
        if (kind < 80)
            return rawFloat();
        if (kind < 160) {
            static const float table[] = {0.0f,
                                          -0.0f,
                                          1.0f,
                                          -1.0f,
                                          0.5f,
                                          2.0f,
                                          0.0001f,
                                          -0.0001f,
                                          std::nextafter(0.0001f, 1.0f),
                                          std::nextafter(0.0001f, 0.0f),
                                          1e-7f,
                                          1e-8f,
                                          0.05f,
                                          0.01f,
                                          FLT_MAX,
                                          -FLT_MAX,
                                          FLT_MIN,
                                          std::numeric_limits<float>::denorm_min(),
                                          -std::numeric_limits<float>::denorm_min(),
                                          std::numeric_limits<float>::infinity(),
                                          -std::numeric_limits<float>::infinity(),
                                          std::numeric_limits<float>::quiet_NaN(),
                                          -std::numeric_limits<float>::quiet_NaN(),
                                          std::numeric_limits<float>::signaling_NaN(),
                                          1.5707964f,
                                          3.1415927f,
                                          1e30f,
                                          -1e30f,
                                          1.1920929e-7f,
                                          0.00001f,
                                          0.000001f,
                                          100.0f};
            return table[byte() % (sizeof table / sizeof table[0])];
        }
        return float(int8_t(byte())) / 4.0f;
    }

    // Returns a small fraction n / 4, n in [-128, 127]: values that make figures meet.
    float smallFloat() { return float(int8_t(byte())) / 4.0f; }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos;
};
