// Colour constants, mixing and the HSL conversions.
#include "zefcore/base/Color.h"

namespace {
// The single-precision values nearest 1/3 and 2/3, widened: not the double thirds.
constexpr double kThird = double(1.0f / 3.0f);
constexpr double kTwoThirds = double(2.0f / 3.0f);
static_assert(kThird == 0.3333333432674408, "float third");
static_assert(kTwoThirds == 0.6666666865348816, "float two thirds");
} // namespace

const Vector3f Color::BLACK(0.0f, 0.0f, 0.0f);
const Vector3f Color::WHITE(1.0f, 1.0f, 1.0f);
const Vector3f Color::RED(1.0f, 0.0f, 0.0f);
const Vector3f Color::GREEN(0.0f, 1.0f, 0.0f);
const Vector3f Color::BLUE(0.0f, 0.0f, 1.0f);
const Vector3f Color::MAGENTA(1.0f, 0.0f, 1.0f);
const Vector3f Color::YELLOW(1.0f, 1.0f, 0.0f);
const Vector3f Color::CYAN(0.0f, 1.0f, 1.0f);
const Vector3f Color::GRAY(0.5f, 0.5f, 0.5f);
const Color Color::NULL_COLOR(-1.0f, -1.0f, -1.0f, -1.0f);

Color Color::getMixedColor(const Color &first, const Color &second, float firstWeight, float secondWeight) {
    const Vector3f &a = first.m_color3f;
    const Vector3f &b = second.m_color3f;
    const float red = float(double(a.x()) * firstWeight + double(b.x()) * secondWeight);
    const float green = float(double(a.y()) * firstWeight + double(b.y()) * secondWeight);
    const float blue = float(double(a.z()) * firstWeight + double(b.z()) * secondWeight);
    const float alpha = float(double(first.m_alpha) * firstWeight + double(second.m_alpha) * secondWeight);
    return Color(red, green, blue, alpha);
}

Color Color::getScaledTranspaColor(const Color &color, float factor) {
    const float alpha = float(double(factor) * color.m_alpha);
    return Color(color.m_color3f, alpha);
}

Color Color::getScaledSL(const Color &color, float saturationFactor, float lightnessFactor) {
    float hsl[3];
    RGBtoHSL(hsl, color.m_color3f.getValue());
    hsl[1] = float(double(hsl[1]) * saturationFactor);
    hsl[2] = float(double(hsl[2]) * lightnessFactor);
    float rgb[3];
    HSLtoRGB(rgb, hsl);
    return Color(rgb[0], rgb[1], rgb[2], color.m_alpha);
}

float Color::hueToChannel(float h, float m1, float m2) {
    // One step only: a hue more than a turn outside stays outside.
    if (h < 0.0f)
        h = float(double(h) + 1.0);
    else if (h > 1.0f)
        h = float(double(h) - 1.0);
    if (double(h) * 6.0 < 1.0)
        return float(double(m1) + 6.0 * (double(m2) - m1) * h);
    if (double(h) * 2.0 < 1.0)
        return m2;
    if (double(h) * 3.0 < 2.0)
        return float(double(m1) + 6.0 * (double(m2) - m1) * (kTwoThirds - h));
    return m1;
}

void Color::HSLtoRGB(float *rgb, const float *hsl) {
    const float h = hsl[0];
    const float s = hsl[1];
    const float l = hsl[2];
    if (s == 0.0f) { // exact zero test: the hue is not looked at
        rgb[0] = l;
        rgb[1] = l;
        rgb[2] = l;
        return;
    }
    const float m2 = l < 0.5f ? float((double(s) + 1.0) * l) : float(double(l) + s - double(l) * s);
    const float m1 = float(2.0 * l - m2);
    // Each shifted hue is rounded to float on its way in.
    const float red = hueToChannel(float(double(h) + kThird), m1, m2);
    const float green = hueToChannel(h, m1, m2);
    const float blue = hueToChannel(float(double(h) - kThird), m1, m2);
    rgb[0] = red;
    rgb[1] = green;
    rgb[2] = blue;
}

void Color::RGBtoHSL(float *hsl, const float *rgb) {
    const float r = rgb[0];
    const float g = rgb[1];
    const float b = rgb[2];
    float max = r;
    float min = r;
    if (g > max)
        max = g;
    if (b > max)
        max = b;
    if (g < min)
        min = g;
    if (b < min)
        min = b;
    const float l = float(0.5 * (double(max) + min));
    if (max == min) {
        hsl[0] = 0.0f;
        hsl[1] = 0.0f;
        hsl[2] = l;
        return;
    }
    const float d = float(double(max) - min);
    const float s = l <= 0.5f ? float(d / (double(max) + min)) : float(d / (2.0 - max - min));
    float h;
    if (r == max) // ties go to red, then green
        h = float((double(g) - b) / d);
    else if (g == max)
        h = float(2.0 + (double(b) - r) / d);
    else
        h = float(4.0 + (double(r) - g) / d);
    h = float(h / 6.0);
    hsl[0] = h;
    hsl[1] = s;
    hsl[2] = l;
}
