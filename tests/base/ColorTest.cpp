#include "zefcore/base/Color.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {
constexpr double kThird = 0.3333333432674408, kTwoThirds = 0.6666666865348816; // the float thirds
constexpr float kFewFloatSteps = 1e-6f; // round trips and the trace of the float thirds

// Double-then-round references, rounded where a float is stored.
float channel(float h, float m1, float m2) {
    h = h < 0.0f ? float(h + 1.0) : h > 1.0f ? float(h - 1.0) : h; // one step only
    const double span = 6.0 * (double(m2) - m1);
    return h * 6.0 < 1.0   ? float(m1 + span * h)
           : h * 2.0 < 1.0 ? m2
           : h * 3.0 < 2.0 ? float(m1 + span * (kTwoThirds - h))
                           : m1;
}
void hslToRgb(float *rgb, const float *hsl) {
    const float h = hsl[0], s = hsl[1], l = hsl[2];
    const float m2 = l < 0.5f ? float((s + 1.0) * l) : float(double(l) + s - double(l) * s),
                m1 = float(2.0 * l - m2);
    const float out[3] = {channel(float(h + kThird), m1, m2), channel(h, m1, m2),
                          channel(float(h - kThird), m1, m2)};
    s == 0.0f ? void(std::fill(rgb, rgb + 3, l)) : void(std::copy(out, out + 3, rgb));
}
void rgbToHsl(float *hsl, const float *rgb) {
    const float r = rgb[0], g = rgb[1], b = rgb[2], max = std::max({r, g, b}), min = std::min({r, g, b});
    const float l = float(0.5 * (double(max) + min)), d = float(double(max) - min),
                s = l <= 0.5f ? float(d / (double(max) + min)) : float(d / (2.0 - max - min));
    const float h = r == max   ? float((double(g) - b) / d)
                    : g == max ? float(2.0 + (double(b) - r) / d)
                               : float(4.0 + (double(r) - g) / d);
    const float grey[3] = {0.0f, 0.0f, l}, out[3] = {float(h / 6.0), s, l};
    std::copy(max == min ? grey : out, (max == min ? grey : out) + 3, hsl);
}
bool same(const float *a, const float *b) {
    return std::equal(a, a + 3, b);
}
} // namespace

// Anchors for the references below.
TEST(Color, StatedValues) {
    const float reds[][3] = {{1, 0, 0}, {1, 0, 1}, {1, 0, 0.5f}},
                want[][3] = {{0, 1, 0.5f}, {float(-1.0 / 6), 1, 0.5f}, {float(-1.0 / 12), 1, 0.5f}};
    float out[3];
    for (int k = 0; k < 3; ++k) { // red largest, blue above green: the hue is negative
        Color::RGBtoHSL(out, reds[k]);
        EXPECT_TRUE(same(out, want[k])) << k << ": " << out[0];
    }
    const float grey[3] = {0.77f, 0.0f, 0.3f}, red[3] = {0.0f, 1.0f, 0.5f}, far[3] = {2.5f, 0.8f, 0.4f};
    Color::HSLtoRGB(out, grey);
    EXPECT_TRUE(out[0] == 0.3f && out[1] == 0.3f && out[2] == 0.3f);
    Color::HSLtoRGB(out, red); // the float thirds leave a trace in blue
    EXPECT_TRUE(out[0] == 1.0f && out[1] == 0.0f && out[2] > 0.0f && out[2] < kFewFloatSteps);
    Color::HSLtoRGB(out, far); // two and a half turns: still above 1 after one step
    EXPECT_EQ(out[1], float(2.0 * 0.4f - float((0.8f + 1.0) * 0.4f)));
    EXPECT_TRUE(Color::NULL_COLOR.getColor3f().equals(Vector3f(-1, -1, -1)) &&
                Color::NULL_COLOR.getAlpha() == -1);
}

// Conversions, mixing and scaling bit for bit against the references, the conversions in
// place, on random channels with frequent ties and hues up to one and a half turns
// outside; weights are not clamped. Round trips return.
TEST(Color, ConversionsAndMixingMatchDoubleThenRound) {
    std::mt19937 rng(31337);
    std::uniform_real_distribution<float> u(0.0f, 1.0f), hue(-1.5f, 2.5f), weight(-1.0f, 2.0f);
    const float ties[4] = {0.0f, 0.5f, 1.0f, 0.25f};
    for (int i = 0; i < 20000; ++i) {
        float rgb[3], hsl[3], v[3], want[3];
        for (float &c : rgb)
            c = i % 3 ? u(rng) : ties[rng() % 4];
        if (i % 5 == 1) // a lightness of 0.5 from a sum just above 1: the bound of the saturation rule
            rgb[2] = std::nextafter(1.0f - rgb[0], 2.0f);
        std::copy(rgb, rgb + 3, v);
        Color::RGBtoHSL(v, v);
        rgbToHsl(want, rgb);
        ASSERT_TRUE(same(v, want)) << rgb[0] << " " << rgb[1] << " " << rgb[2];
        Color::HSLtoRGB(v, v);
        for (int k = 0; k < 3; ++k)
            ASSERT_NEAR(v[k], rgb[k], kFewFloatSteps);
        hsl[0] = hue(rng), hsl[1] = i % 7 ? u(rng) : 0.0f, hsl[2] = u(rng);
        hslToRgb(want, hsl);
        Color::HSLtoRGB(hsl, hsl);
        ASSERT_TRUE(same(hsl, want)) << i;

        const Color c(rgb[0], rgb[1], rgb[2], u(rng)), d(hsl[0], hsl[1], hsl[2], u(rng));
        const float w1 = weight(rng), w2 = weight(rng), fs = weight(rng), fl = weight(rng);
        const Color mixed = Color::getMixedColor(c, d, w1, w2), half = Color::getScaledTranspaColor(c, w1);
        for (int k = 0; k < 3; ++k)
            ASSERT_EQ(mixed.getColor3f()[k], float(double(rgb[k]) * w1 + double(hsl[k]) * w2)) << i;
        ASSERT_EQ(mixed.getAlpha(), float(double(c.getAlpha()) * w1 + double(d.getAlpha()) * w2));
        ASSERT_TRUE(half.getAlpha() == float(double(w1) * c.getAlpha()) &&
                    half.getColor3f().equals(c.getColor3f()));
        // Saturation by the first factor, lightness by the second; alpha kept.
        rgbToHsl(v, rgb);
        v[1] = float(double(v[1]) * fs), v[2] = float(double(v[2]) * fl);
        hslToRgb(want, v);
        const Color scaled = Color::getScaledSL(c, fs, fl);
        ASSERT_TRUE(same(scaled.getColor3f().getValue(), want) && scaled.getAlpha() == c.getAlpha()) << i;
    }
}
