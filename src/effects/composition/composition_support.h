#pragma once

#include "effects/colour/colour_selector.h"
#include "engine/calculation.h"
#include "engine/numeric.h"
#include "engine/pixel.h"

#include <algorithm>
#include <cstdint>

namespace lumiran::composition {

[[nodiscard]] constexpr int limitChannel(int value) {
    return std::clamp(value, 0, 255);
}

// The brightness of the greys: round(0.59 g + 0.3 r + 0.11 b).
[[nodiscard]] inline int brightness(int r, int g, int b) {
    return roundInRange<int>(0.59 * g + 0.3 * r + 0.11 * b);
}

[[nodiscard]] constexpr Rgb16 rgb16(int r, int g, int b) {
    return {static_cast<std::int16_t>(r), static_cast<std::int16_t>(g),
            static_cast<std::int16_t>(b)};
}

// A channel rule on the channels a selector row names (rows 0..6); the
// others stay. The rule's results are held to 0..255, the limit of every
// merge; the shared tail does the rest. The channels are fixed at compile
// time so that each row's loop is one straight vector body.
template <typename ChannelRule, bool Red, bool Green, bool Blue>
struct MaskedChannels {
    ChannelRule op;

    [[nodiscard]] Rgb16 operator()(int r, int g, int b, int r1, int g1, int b1) const {
        int outR = r, outG = g, outB = b;
        if constexpr (Red) outR = limitChannel(op(r, r1));
        if constexpr (Green) outG = limitChannel(op(g, g1));
        if constexpr (Blue) outB = limitChannel(op(b, b1));
        return rgb16(outR, outG, outB);
    }
};

// Row 7 ("光度"): the rule on the two pictures' brightness, every channel of
// the document moved by the change, so the document keeps its hue.
template <typename ChannelRule>
struct BrightnessChannels {
    ChannelRule op;

    [[nodiscard]] Rgb16 operator()(int r, int g, int b, int r1, int g1, int b1) const {
        const int y = brightness(r, g, b);
        const int shift = limitChannel(op(y, brightness(r1, g1, b1))) - y;
        return rgb16(r + shift, g + shift, b + shift);
    }
};

} // namespace lumiran::composition
