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

// The same models without a branch, for pixel loops the compiler is to
// vectorise: every case is worked out and the one the scalar tests would
// take is selected, so the results are the same to the last bit (the
// equality is tested over the colour cube). Selects choose only between
// values already computed: the compiler will not move floating-point
// arithmetic out of a branch, since it might trap. The conversions back are for
// arguments whose results provably fit (saturation and value, or
// luminance, within 0 to 1): they have no range check.

// rgbToHsv with selects.
[[nodiscard]] inline Hsv rgbToHsvBranchless(int r, int g, int b) {
    const int mx = std::max(r, std::max(g, b));
    const int mn = std::min(r, std::min(g, b));
    const int spread = mx - mn;
    Hsv hsv;
    hsv.value = mx;
    // mx 0 gives a spread of 0, and 0 / 1 is the 0 the scalar form chooses.
    hsv.saturation = static_cast<double>(spread) / static_cast<double>(mx + (mx == 0));
    // A spread of 0 has no hue; 1 keeps its quotients finite.
    const double d = spread + (spread == 0);
    const double rc = (mx - r) / d;
    const double gc = (mx - g) / d;
    const double bc = (mx - b) / d;
    const double blueMax = gc + 4 - rc;
    const double greenMax = rc + 2 - bc;
    const double redMax = bc - gc;
    const double h = (b == mx ? blueMax : g == mx ? greenMax : redMax) * 60;
    const double raised = h + 360;
    const double wrapped = h < 0 ? raised : h;
    hsv.hue = spread == 0 ? 0.0 : wrapped;
    return hsv;
}

// The hue's sextant as HsvToRgb takes it: i = floor(h) of h = H / 60 in
// single precision (6 or more counts as 0), and the rise f within it.
struct HueSector {
    // Kept as a float: i < k exactly when the float is below k, and
    // comparisons on one integer would be merged into a switch, which no
    // vector unit runs.
    float sector = 0;
    double rise = 0;
};

[[nodiscard]] inline HueSector hueSectorOf(double hue) {
    float h = static_cast<float>(hue / 60);
    h = h >= 6 ? 0.0f : h;
    const float sector = std::floor(h);
    return {sector, h - sector};
}

// HsvToRgb with selects, for saturation and value within 0 to 1, from the
// hue's sextant.
[[nodiscard]] inline Rgb16 hsvToRgbInSector(HueSector hue, double saturation, double value) {
    const float sector = hue.sector;
    const double f = hue.rise;
    const double p = static_cast<float>((1 - saturation) * value);
    const double q = static_cast<float>((1 - f * saturation) * value);
    const double t = static_cast<float>((1 - (1 - f) * saturation) * value);
    // By sector: 0 (V, t, p), 1 (q, V, p), 2 (p, V, t), 3 (p, q, V),
    // 4 (t, p, V), 5 (V, p, q); any other sector, a negative hue, is black.
    auto bySector = [sector](double s0, double s1, double s2, double s3, double s4, double s5) {
        const double from5 = sector < 6 ? s5 : 0.0;
        const double from4 = sector < 5 ? s4 : from5;
        const double from3 = sector < 4 ? s3 : from4;
        const double from2 = sector < 3 ? s2 : from3;
        const double from1 = sector < 2 ? s1 : from2;
        const double from0 = sector < 1 ? s0 : from1;
        return sector < 0 ? 0.0 : from0;
    };
    const double red = bySector(value, q, p, p, t, value);
    const double green = bySector(t, value, value, q, p, p);
    const double blue = bySector(p, p, t, value, value, q);
    const bool grey = saturation == 0;
    auto channel = [](double working) {
        return roundInRange<std::int16_t>(std::floor(working * 255.9999));
    };
    return {channel(grey ? value : red), channel(grey ? value : green),
            channel(grey ? value : blue)};
}

[[nodiscard]] inline Rgb16 hsvToRgbInRange(double hue, double saturation, double value) {
    return hsvToRgbInSector(hueSectorOf(hue), saturation, value);
}

struct Hls {
    double hue = 0;        // degrees
    double luminance = 0;  // 0 to 1
    double saturation = 0; // 0 to 1
};

[[nodiscard]] Hls rgbToHls(int r, int g, int b);
[[nodiscard]] Rgb16 hlsToRgb(const Hls& hls);

// rgbToHls with selects.
[[nodiscard]] inline Hls rgbToHlsBranchless(int r, int g, int b) {
    const int mx = std::max(r, std::max(g, b));
    const int mn = std::min(r, std::min(g, b));
    const int spread = mx - mn;
    Hls hls;
    hls.luminance = ((mx + mn) / 2.0) / 255;
    const int flat = spread == 0 ? 1 : 0;
    // Guards that keep the quotients of a flat colour finite; its
    // saturation and hue are 0 whatever they give.
    const double low = static_cast<double>(spread) / (mx + mn + flat);
    const double high = ((mx - mn) / 255.0) / (2 - mx / 255.0 - mn / 255.0 + flat);
    const double saturation = hls.luminance <= 0.5 ? low : high;
    const double d = spread + flat;
    const double blueMax = (r - g) / d + 4;
    const double greenMax = (b - r) / d + 2;
    const double redMax = (g - b) / d;
    const double hue = (b == mx ? blueMax : g == mx ? greenMax : redMax) * 60;
    const double raised = hue + 360;
    const double wrapped = hue < 0 ? raised : hue;
    hls.saturation = flat != 0 ? 0.0 : saturation;
    hls.hue = flat != 0 ? 0.0 : wrapped;
    return hls;
}

// hlsToRgb with selects, for luminance and saturation within 0 to 1.
[[nodiscard]] inline Rgb16 hlsToRgbInRange(const Hls& hls) {
    const double lum = hls.luminance;
    const double sat = hls.saturation;
    const double darker = lum * (1 + sat);
    const double lighter = lum + sat - lum * sat;
    const double m2 = lum <= 0.5 ? darker : lighter;
    const double m1 = 2 * lum - m2;
    auto degrees = [](double h) {
        const int whole = roundInRange<std::int32_t>(h);
        const int lowered = whole > 360 ? whole - 360 : whole;
        return lowered < 0 ? lowered + 360 : lowered;
    };
    auto channel = [&](int h) {
        const double rising = m1 + (m2 - m1) * h / 60;
        const double falling = m1 + (m2 - m1) * (240 - h) / 60;
        const double v = h < 60 ? rising : h < 180 ? m2 : h < 240 ? falling : m1;
        return roundInRange<std::int16_t>(v * 255.9999);
    };
    const bool grey = sat == 0 && hls.hue == 0;
    const std::int16_t flat = roundInRange<std::int16_t>(lum * 255.9999);
    return {grey ? flat : channel(degrees(hls.hue + 120)), grey ? flat : channel(degrees(hls.hue)),
            grey ? flat : channel(degrees(hls.hue - 120))};
}

} // namespace lumiran
