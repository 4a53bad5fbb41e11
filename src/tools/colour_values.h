#pragma once

#include "engine/pixel.h"

#include <string>

namespace lumiran {

// A colour in the models the colour explorer lists, rounded for showing.
struct ColourValues {
    int hue = 0;                                      // degrees 0 to 359, for HSV and HLS alike
    int hsvSaturation = 0;                            // percent
    int hsvValue = 0;                                 // percent
    int hlsLightness = 0;                             // percent
    int hlsSaturation = 0;                            // percent
    int y = 0, cb = 0, cr = 0;                        // full-range BT.601, 0 to 255
    int cyan = 0, magenta = 0, yellow = 0, black = 0; // percent
};

[[nodiscard]] ColourValues colourValues(Rgb8 colour);

// "#RRGGBB".
[[nodiscard]] std::string hexText(Rgb8 colour);

} // namespace lumiran
