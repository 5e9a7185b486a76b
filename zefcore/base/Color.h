/// \file
/// Color: an RGBA value, the RGB part a Vector3f (red, green, blue in x, y, z) and
/// an alpha where 1 is opaque. Nothing is clamped. HSL triples are float[3] in the
/// order hue (in turns: 0 red, 1/3 green, 2/3 blue), saturation, lightness.
/// Precision: each channel is computed in double and rounded to float where stored.
#pragma once

#include "zefcore/ZEFExport.h"
#include "zefcore/math/Vector3f.h"

/// An RGBA colour: the RGB part a Vector3f, alpha 1 for opaque; nothing is clamped.
class ZEFCORE_API Color {
public:
    ///@{
    /// Constant colours without alpha; constant-initialised.
    static const Vector3f BLACK;
    static const Vector3f WHITE;
    static const Vector3f RED;
    static const Vector3f GREEN;
    static const Vector3f BLUE;
    static const Vector3f MAGENTA;
    static const Vector3f YELLOW;
    static const Vector3f CYAN;
    static const Vector3f GRAY;
    ///@}
    /// All four channels -1: outside the range of any real colour.
    static const Color NULL_COLOR;

    /// White and opaque.
    constexpr Color() : m_color3f(1.0f, 1.0f, 1.0f), m_alpha(1.0f) {}
    /// Sets the four channels; alpha 1 is opaque.
    constexpr Color(float red, float green, float blue, float alpha)
        : m_color3f(red, green, blue), m_alpha(alpha) {}
    /// Sets the RGB part from color and the alpha.
    constexpr Color(const Vector3f &color, float alpha) : m_color3f(color), m_alpha(alpha) {}
    /// Sets a copy of other.
    constexpr Color(const Color &other) = default;
    /// Sets this object to a copy of other; returns it.
    Color &operator=(const Color &other) = default;

    /// Returns the RGB part.
    const Vector3f &getColor3f() const { return m_color3f; }
    /// Returns the alpha; 1 is opaque.
    float getAlpha() const { return m_alpha; }
    /// Sets the RGB part; alpha stays.
    void setColor3f(const Vector3f &color) { m_color3f = color; }
    /// Sets the alpha; the RGB part stays.
    void setAlpha(float alpha) { m_alpha = alpha; }

    /// Returns first * firstWeight + second * secondWeight on all four channels.
    /// The weights are not normalised and the result is not clamped.
    static Color getMixedColor(const Color &first, const Color &second, float firstWeight,
                               float secondWeight);

    /// Returns color with its alpha multiplied by factor.
    static Color getScaledTranspaColor(const Color &color, float factor);

    /// Returns color with its HSL saturation multiplied by saturationFactor and its
    /// lightness by lightnessFactor, hue and alpha kept.
    static Color getScaledSL(const Color &color, float saturationFactor, float lightnessFactor);

    /// Sets rgb from hsl. Saturation exactly 0: a grey of the lightness. The hue is
    /// brought into range by one turn at most. Aliasing: rgb may be hsl.
    static void HSLtoRGB(float *rgb, const float *hsl);

    /// Sets hsl from rgb. The hue is not wrapped: from -1/6 (red largest, blue above
    /// green) to 5/6. Grey: hue and saturation 0. Aliasing: hsl may be rgb.
    static void RGBtoHSL(float *hsl, const float *rgb);

private:
    /// Returns the channel at hue h for the HSL bounds m1, m2.
    static float hueToChannel(float h, float m1, float m2);

    Vector3f m_color3f;
    float m_alpha;
};
