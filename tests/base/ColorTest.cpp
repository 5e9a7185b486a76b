#include "zefcore/base/Color.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {
constexpr float kStatedHueTolerance = 1e-7f;  // hues stated as fractions, rounded to float
constexpr float kFewFloatSteps = 1e-6f;      // round trips and one-step hue wraps

void expectRgb(const float *rgb, float r, float g, float b, float tolerance) {
    EXPECT_NEAR(rgb[0], r, tolerance);
    EXPECT_NEAR(rgb[1], g, tolerance);
    EXPECT_NEAR(rgb[2], b, tolerance);
}

void hslOf(float r, float g, float b, float *hsl) {
    const float rgb[3] = {r, g, b};
    Color::RGBtoHSL(hsl, rgb);
}
} // namespace

TEST(Color, StatedHslValues) {
    float hsl[3];
    hslOf(1, 0, 0, hsl);
    expectRgb(hsl, 0.0f, 1.0f, 0.5f, 0.0f);
    const struct {
        float r, g, b;
        double hue;
    } hues[] = {{0, 1, 0, 1.0 / 3}, {0, 0, 1, 2.0 / 3}, {1, 1, 0, 1.0 / 6}, {0, 1, 1, 0.5},
                {1, 0, 1, -1.0 / 6}, {1, 0, 0.5f, -1.0 / 12}};
    for (const auto &c : hues) {
        hslOf(c.r, c.g, c.b, hsl);
        EXPECT_NEAR(hsl[0], c.hue, kStatedHueTolerance) << c.r << " " << c.g << " " << c.b;
        EXPECT_EQ(hsl[1], 1.0f);
    }
    hslOf(1, 1, 1, hsl);
    expectRgb(hsl, 0, 0, 1, 0.0f);
    hslOf(Color::GRAY.x(), Color::GRAY.y(), Color::GRAY.z(), hsl);
    expectRgb(hsl, 0, 0, 0.5f, 0.0f);
    // Lightness above one half takes the other saturation formula.
    hslOf(1.0f, 0.5f, 0.5f, hsl);
    EXPECT_EQ(hsl[2], 0.75f);
    EXPECT_EQ(hsl[1], float(0.5 / (2.0 - 1.0 - 0.5)));
}

TEST(Color, HslToRgbUsesSingleThirdsAndOneStepWrap) {
    float rgb[3];
    const float pureRed[3] = {0.0f, 1.0f, 0.5f};
    Color::HSLtoRGB(rgb, pureRed);
    // Blue keeps the trace of the float thirds: hue -1/3 in float, one turn up, rounded.
    const float wrapped = float(double(-(1.0f / 3.0f)) + 1.0);
    const float trace = float(6.0 * (double(2.0f / 3.0f) - double(wrapped)));
    EXPECT_EQ(rgb[0], 1.0f);
    EXPECT_EQ(rgb[1], 0.0f);
    EXPECT_EQ(rgb[2], trace);
    EXPECT_NE(trace, 0.0f);
    EXPECT_LT(trace, kFewFloatSteps);

    // A hue whose shift by the float third rounds to another float than by the double one.
    const float hue[3] = {0x1.94959p-3f, 1.0f, 0.5f};
    Color::HSLtoRGB(rgb, hue);
    const float shifted = float(double(hue[0]) + double(1.0f / 3.0f));
    EXPECT_EQ(rgb[0], float(6.0 * (double(2.0f / 3.0f) - shifted)));
    EXPECT_NE(shifted, float(double(hue[0]) + 1.0 / 3.0));

    const float grey[3] = {0.77f, 0.0f, 0.3f};
    Color::HSLtoRGB(rgb, grey);
    expectRgb(rgb, 0.3f, 0.3f, 0.3f, 0.0f);
    const float white[3] = {0.4f, 0.6f, 1.0f};
    Color::HSLtoRGB(rgb, white);
    expectRgb(rgb, 1, 1, 1, 0.0f);

    float quarter[3];
    const float hslQuarter[3] = {0.25f, 0.8f, 0.4f};
    Color::HSLtoRGB(quarter, hslQuarter);
    const float hslWrapped[3] = {1.25f, 0.8f, 0.4f};
    Color::HSLtoRGB(rgb, hslWrapped);
    expectRgb(rgb, quarter[0], quarter[1], quarter[2], kFewFloatSteps);
    // Two and a half turns: one step leaves 1.5, beyond every branch: m1.
    const float far[3] = {2.5f, 0.8f, 0.4f};
    Color::HSLtoRGB(rgb, far);
    const float m1 = float(2.0 * 0.4f - float((0.8 + 1.0) * double(0.4f)));
    EXPECT_EQ(rgb[1], m1);

}

TEST(Color, RandomRoundTripsReturnTheColour) {
    std::mt19937 rng(31337);
    std::uniform_real_distribution<float> u(0.0f, 1.0f);
    int negativeHues = 0;
    for (int i = 0; i < 2000; ++i) {
        const float rgb[3] = {u(rng), u(rng), u(rng)};
        float v[3] = {rgb[0], rgb[1], rgb[2]};
        Color::RGBtoHSL(v, v); // in place
        negativeHues += v[0] < 0.0f;
        Color::HSLtoRGB(v, v);
        expectRgb(v, rgb[0], rgb[1], rgb[2], kFewFloatSteps);
    }
    EXPECT_GT(negativeHues, 0);
}

TEST(Color, MixingAndScaling) {
    const Color a(1, 0, 0, 1);
    const Color b(0, 0, 1, 0);
    Color mixed = Color::getMixedColor(a, b, 0.5f, 0.5f);
    expectRgb(mixed.getColor3f().getValue(), 0.5f, 0.0f, 0.5f, 0.0f);
    EXPECT_EQ(mixed.getAlpha(), 0.5f);
    mixed = Color::getMixedColor(Color(0.75f, 1, 1, 1), Color(0.5f, 1, 1, 1), 1, 1);
    expectRgb(mixed.getColor3f().getValue(), 1.25f, 2.0f, 2.0f, 0.0f);
    EXPECT_EQ(mixed.getAlpha(), 2.0f);
    // Products and sum in double, rounded once per channel.
    const Color c(0.1f, 0.7f, 0.3f, 0.9f);
    const Color d(0.2f, 0.6f, 0.35f, 0.45f);
    mixed = Color::getMixedColor(c, d, 0.3f, 0.7f);
    EXPECT_EQ(mixed.getColor3f().x(), float(double(0.1f) * 0.3f + double(0.2f) * 0.7f));
    EXPECT_EQ(mixed.getColor3f().y(), float(double(0.7f) * 0.3f + double(0.6f) * 0.7f));
    EXPECT_EQ(mixed.getAlpha(), float(double(0.9f) * 0.3f + double(0.45f) * 0.7f));

    const Color half = Color::getScaledTranspaColor(c, 0.5f);
    EXPECT_EQ(half.getAlpha(), 0.45f);
    expectRgb(half.getColor3f().getValue(), 0.1f, 0.7f, 0.3f, 0.0f);

    // Saturation by the first factor, lightness by the second; alpha kept.
    const Color red(Color::RED, 0.25f);
    Color scaled = Color::getScaledSL(red, 1.0f, 0.5f);
    expectRgb(scaled.getColor3f().getValue(), 0.5f, 0.0f, 0.0f, kFewFloatSteps);
    EXPECT_EQ(scaled.getAlpha(), 0.25f);
    scaled = Color::getScaledSL(red, 0.5f, 1.0f);
    expectRgb(scaled.getColor3f().getValue(), 0.75f, 0.25f, 0.25f, kFewFloatSteps);
}

TEST(Color, Constants) {
    const Color white;
    expectRgb(white.getColor3f().getValue(), Color::WHITE.x(), Color::WHITE.y(), Color::WHITE.z(), 0.0f);
    EXPECT_EQ(white.getAlpha(), 1.0f);
    expectRgb(Color::NULL_COLOR.getColor3f().getValue(), -1, -1, -1, 0.0f);
    EXPECT_EQ(Color::NULL_COLOR.getAlpha(), -1.0f);
}
