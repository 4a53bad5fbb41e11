#pragma once

#include "engine/pixel.h"

#include <algorithm>
#include <cstdint>

namespace lumiran {

// A colour as the platform's drawing calls take and give it: the RGB long
// with red in the low byte (0x00BBGGRR), the reverse of a pixel element's
// byte order. Effects that read a picture through GetPixel see this form.
using ColourRef = std::int32_t;

// What a read outside the picture gives: the platform's "no colour", -1.
inline constexpr ColourRef NoColour = -1;

// The RGB() of the drawing calls. Each argument is held within 0..255, so
// a channel that ran past the end draws as full or empty, never wrapped.
[[nodiscard]] constexpr ColourRef RGB(int red, int green, int blue) {
    const auto byte = [](int v) { return std::clamp(v, 0, 255); };
    return byte(red) | (byte(green) << 8) | (byte(blue) << 16);
}

[[nodiscard]] constexpr ColourRef colourRefOf(Pixel p) {
    return static_cast<ColourRef>(redOf(p) | (greenOf(p) << 8) | (blueOf(p) << 16));
}

// The colour bytes of a pixel element (spare byte 0) for a ColourRef; the
// high byte of the long is not a colour and is ignored.
[[nodiscard]] constexpr Pixel colourBitsOf(ColourRef c) {
    return makePixel(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF);
}

} // namespace lumiran
