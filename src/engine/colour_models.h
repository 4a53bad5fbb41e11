#pragma once

#include "engine/calculation.h"
#include "engine/numeric.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lumiran {

// Luminance grey: round(0.59 g + 0.3 r + 0.11 b).
[[nodiscard]] inline int luminanceY(int r, int g, int b) {
    return roundInRange<std::int32_t>(0.59 * g + 0.3 * r + 0.11 * b);
}

// (r + g + b) / 3 as the integer quotient.
[[nodiscard]] constexpr std::int16_t averageGrey(int r, int g, int b) {
    return static_cast<std::int16_t>((r + g + b) / 3);
}

// round((max + min) / 2), ties to even.
[[nodiscard]] inline std::int16_t lightness(int max, int min) {
    return roundInRange<std::int16_t>((max + min) / 2.0);
}

// The program's middle value of three. Not a true median: for g < r < b it
// gives b, the largest channel, and effects depend on that.
[[nodiscard]] constexpr int programMedian(int r, int g, int b) {
    if (r > g) return g < b ? b : g;
    if (g <= b) return g;
    return r < b ? b : r;
}

struct Hsv {
    double hue = 0;        // degrees, 0 to below 360
    double saturation = 0; // 0 to 1
    int value = 0;         // the largest channel, 0 to 255
};

// On equal maxima blue wins over green and green over red.
[[nodiscard]] Hsv rgbToHsv(int r, int g, int b);

// hue in degrees, saturation and value 0 to 1. The sector values are kept
// in single precision; a negative hue matches no sector and gives black.
[[nodiscard]] Rgb16 HsvToRgb(double hue, double saturation, double value);

// Inline: the per-pixel HSV effects call these once or twice a pixel.
inline Hsv rgbToHsv(int r, int g, int b) {
    const int mx = std::max({r, g, b});
    const int mn = std::min({r, g, b});
    Hsv hsv;
    hsv.value = mx;
    hsv.saturation = mx == 0 ? 0.0 : static_cast<double>(mx - mn) / mx;
    if (hsv.saturation == 0) return hsv;
    const double d = mx - mn;
    const double rc = (mx - r) / d;
    const double gc = (mx - g) / d;
    const double bc = (mx - b) / d;
    double h = 0;
    // Later tests override earlier ones on purpose.
    if (r == mx) h = bc - gc;
    if (g == mx) h = rc + 2 - bc;
    if (b == mx) h = gc + 4 - rc;
    h *= 60;
    if (h < 0) h += 360;
    hsv.hue = h;
    return hsv;
}

namespace detail {

inline std::int16_t toChannel(double working) {
    return roundTo<std::int16_t>(std::floor(working * 255.9999));
}

} // namespace detail

inline Rgb16 HsvToRgb(double hue, double saturation, double value) {
    double red = 0, green = 0, blue = 0;
    if (saturation == 0) {
        red = green = blue = value;
    } else {
        float h = static_cast<float>(hue / 60);
        if (h >= 6) h = 0;
        const int i = roundTo<std::int32_t>(std::floor(h));
        const double f = h - i;
        const float p = static_cast<float>((1 - saturation) * value);
        const float q = static_cast<float>((1 - f * saturation) * value);
        const float t = static_cast<float>((1 - (1 - f) * saturation) * value);
        switch (i) {
        case 0:
            red = value, green = t, blue = p;
            break;
        case 1:
            red = q, green = value, blue = p;
            break;
        case 2:
            red = p, green = value, blue = t;
            break;
        case 3:
            red = p, green = q, blue = value;
            break;
        case 4:
            red = t, green = p, blue = value;
            break;
        case 5:
            red = value, green = p, blue = q;
            break;
        default:
            break; // negative hue: black
        }
    }
    return {detail::toChannel(red), detail::toChannel(green), detail::toChannel(blue)};
}

struct Hls {
    double hue = 0;        // degrees
    double luminance = 0;  // 0 to 1
    double saturation = 0; // 0 to 1
};

[[nodiscard]] Hls rgbToHls(int r, int g, int b);
[[nodiscard]] Rgb16 hlsToRgb(const Hls& hls);

} // namespace lumiran
