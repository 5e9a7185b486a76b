#include "zefcore/base/Color.h"

#include <gtest/gtest.h>

#include <algorithm>
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
void hslToRgb(float *rgb, float h, float s, float l) {
    const float m2 = l < 0.5f ? float((s + 1.0) * l) : float(double(l) + s - double(l) * s),
                m1 = float(2.0 * l - m2);
    const float out[3] = {channel(float(h + kThird), m1, m2), channel(h, m1, m2),
                          channel(float(h - kThird), m1, m2)};
    std::copy(out, out + 3, rgb);
    if (s == 0.0f)
        std::fill(rgb, rgb + 3, l);
}
void rgbToHsl(float *hsl, float r, float g, float b) {
    const float max = std::max({r, g, b}), min = std::min({r, g, b}), l = float(0.5 * (double(max) + min));
    const float d = float(double(max) - min),
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
    EXPECT_TRUE(Color().getColor3f().equals(Color::WHITE) && Color().getAlpha() == 1.0f);
    EXPECT_TRUE(Color::NULL_COLOR.getColor3f().equals(Vector3f(-1, -1, -1)) &&
                Color::NULL_COLOR.getAlpha() == -1.0f);
}

// Both conversions bit for bit against the references, in place, on random channels
// with frequent ties and hues up to one and a half turns outside; round trips return.
TEST(Color, ConversionsMatchDoubleThenRoundAndRoundTrip) {
    std::mt19937 rng(31337);
    std::uniform_real_distribution<float> u(0.0f, 1.0f), hue(-1.5f, 2.5f);
    const float ties[4] = {0.0f, 0.5f, 1.0f, 0.25f};
    for (int i = 0; i < 20000; ++i) {
        float rgb[3], hsl[3], want[3];
        for (float &c : rgb)
            c = i % 3 ? u(rng) : ties[rng() % 4];
        float v[3] = {rgb[0], rgb[1], rgb[2]};
        Color::RGBtoHSL(v, v);
        rgbToHsl(want, rgb[0], rgb[1], rgb[2]);
        ASSERT_TRUE(same(v, want)) << rgb[0] << " " << rgb[1] << " " << rgb[2];
        Color::HSLtoRGB(v, v);
        for (int k = 0; k < 3; ++k)
            ASSERT_NEAR(v[k], rgb[k], kFewFloatSteps);
        hsl[0] = hue(rng), hsl[1] = i % 7 ? u(rng) : 0.0f, hsl[2] = u(rng);
        hslToRgb(want, hsl[0], hsl[1], hsl[2]);
        Color::HSLtoRGB(hsl, hsl);
        ASSERT_TRUE(same(hsl, want)) << i;
    }
}

TEST(Color, MixingAndScalingRoundOncePerChannel) {
    const Color c(0.1f, 0.7f, 0.3f, 0.9f), d(0.2f, 0.6f, 0.35f, 0.45f);
    const Color mixed = Color::getMixedColor(c, d, 0.3f, 0.7f);
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(mixed.getColor3f()[k],
                  float(double(c.getColor3f()[k]) * 0.3f + double(d.getColor3f()[k]) * 0.7f));
    EXPECT_EQ(mixed.getAlpha(), float(double(0.9f) * 0.3f + double(0.45f) * 0.7f));
    EXPECT_EQ(Color::getMixedColor(Color(0.75f, 1, 1, 1), Color(0.5f, 1, 1, 1), 1, 1).getColor3f().x(),
              1.25f); // not clamped

    const Color half = Color::getScaledTranspaColor(c, 0.3f);
    EXPECT_TRUE(half.getAlpha() == float(double(0.3f) * 0.9f) && half.getColor3f().equals(c.getColor3f()));
    // Saturation by the first factor, lightness by the second; hue and alpha kept.
    float hsl[3], rgb[3];
    Color::RGBtoHSL(hsl, c.getColor3f().getValue());
    hsl[1] = float(double(hsl[1]) * 0.6f), hsl[2] = float(double(hsl[2]) * 1.3f);
    Color::HSLtoRGB(rgb, hsl);
    const Color scaled = Color::getScaledSL(c, 0.6f, 1.3f);
    EXPECT_TRUE(same(scaled.getColor3f().getValue(), rgb) && scaled.getAlpha() == 0.9f);
}
