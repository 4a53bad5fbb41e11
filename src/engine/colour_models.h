#pragma once

#include <cstdint>

#include "engine/calculation.h"
#include "engine/numeric.h"

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

struct Hls {
    double hue = 0;        // degrees
    double luminance = 0;  // 0 to 1
    double saturation = 0; // 0 to 1
};

[[nodiscard]] Hls rgbToHls(int r, int g, int b);
[[nodiscard]] Rgb16 hlsToRgb(const Hls& hls);

} // namespace lumiran
