#include "engine/colour_models.h"

#include "engine/numeric.h"

#include <algorithm>
#include <cmath>

namespace lumiran {

Hls rgbToHls(int r, int g, int b) {
    const int mx = std::max({r, g, b});
    const int mn = std::min({r, g, b});
    Hls hls;
    hls.luminance = ((mx + mn) / 2.0) / 255;
    if (mx == mn) return hls;
    if (hls.luminance <= 0.5) {
        hls.saturation = static_cast<double>(mx - mn) / (mx + mn);
    } else {
        hls.saturation = ((mx - mn) / 255.0) / (2 - mx / 255.0 - mn / 255.0);
    }
    const double d = mx - mn;
    double hue = 0;
    if (r == mx) hue = (g - b) / d;
    if (g == mx) hue = (b - r) / d + 2;
    if (b == mx) hue = (r - g) / d + 4;
    hue *= 60;
    if (hue < 0) hue += 360;
    hls.hue = hue;
    return hls;
}

namespace {

double hlsChannel(double m1, double m2, int h) {
    if (h < 60) return m1 + (m2 - m1) * h / 60;
    if (h < 180) return m2;
    if (h < 240) return m1 + (m2 - m1) * (240 - h) / 60;
    return m1;
}

int wrapDegrees(int h) {
    if (h > 360) h -= 360;
    if (h < 0) h += 360;
    return h;
}

} // namespace

Rgb16 hlsToRgb(const Hls& hls) {
    const double lum = hls.luminance;
    const double sat = hls.saturation;
    if (sat == 0 && hls.hue == 0) {
        const auto grey = roundTo<std::int16_t>(lum * 255.9999);
        return {grey, grey, grey};
    }
    const double m2 = lum <= 0.5 ? lum * (1 + sat) : lum + sat - lum * sat;
    const double m1 = 2 * lum - m2;
    const int hr = wrapDegrees(roundTo<std::int32_t>(hls.hue + 120));
    const int hg = wrapDegrees(roundTo<std::int32_t>(hls.hue));
    const int hb = wrapDegrees(roundTo<std::int32_t>(hls.hue - 120));
    return {roundTo<std::int16_t>(hlsChannel(m1, m2, hr) * 255.9999),
            roundTo<std::int16_t>(hlsChannel(m1, m2, hg) * 255.9999),
            roundTo<std::int16_t>(hlsChannel(m1, m2, hb) * 255.9999)};
}

} // namespace lumiran
