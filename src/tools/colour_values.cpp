#include "tools/colour_values.h"

#include <algorithm>
#include <cmath>

namespace lumiran {

namespace {

int rounded(double v) {
    return static_cast<int>(std::lround(v));
}

int clampByte(double v) {
    return std::clamp(rounded(v), 0, 255);
}

} // namespace

ColourValues colourValues(Rgb8 colour) {
    const double r = colour.red / 255.0;
    const double g = colour.green / 255.0;
    const double b = colour.blue / 255.0;
    const double mx = std::max({r, g, b});
    const double mn = std::min({r, g, b});
    const double spread = mx - mn;
    ColourValues v;
    double hue = 0;
    if (spread > 0) {
        if (mx == r) {
            hue = 60 * std::fmod((g - b) / spread + 6, 6.0);
        } else if (mx == g) {
            hue = 60 * ((b - r) / spread + 2);
        } else {
            hue = 60 * ((r - g) / spread + 4);
        }
    }
    v.hue = rounded(hue) % 360;
    v.hsvValue = rounded(mx * 100);
    v.hsvSaturation = mx > 0 ? rounded(spread / mx * 100) : 0;
    const double lightness = (mx + mn) / 2;
    v.hlsLightness = rounded(lightness * 100);
    v.hlsSaturation = spread > 0 ? rounded(spread / (1 - std::abs(2 * lightness - 1)) * 100) : 0;
    v.y = clampByte(0.299 * colour.red + 0.587 * colour.green + 0.114 * colour.blue);
    v.cb = clampByte(128 - 0.168736 * colour.red - 0.331264 * colour.green + 0.5 * colour.blue);
    v.cr = clampByte(128 + 0.5 * colour.red - 0.418688 * colour.green - 0.081312 * colour.blue);
    const double k = 1 - mx;
    v.black = rounded(k * 100);
    if (k < 1) {
        v.cyan = rounded((1 - r - k) / (1 - k) * 100);
        v.magenta = rounded((1 - g - k) / (1 - k) * 100);
        v.yellow = rounded((1 - b - k) / (1 - k) * 100);
    }
    return v;
}

std::string hexText(Rgb8 colour) {
    constexpr char hex[] = "0123456789ABCDEF";
    std::string text = "#";
    for (const std::uint8_t c : {colour.red, colour.green, colour.blue}) {
        text += hex[c >> 4];
        text += hex[c & 15];
    }
    return text;
}

} // namespace lumiran
