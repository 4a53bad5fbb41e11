#pragma once

#include "engine/calculation.h"
#include "engine/numeric.h"
#include "engine/pixel.h"

#include <algorithm>
#include <cstdint>

namespace lumiran::bilevel {

// The luminance of this class: round(0.299 r + 0.587 g + 0.114 b).
[[nodiscard]] inline int luminance(int r, int g, int b) {
    return roundInRange<int>(0.299 * r + 0.587 * g + 0.114 * b);
}

// The value a measure tests: 0 luminance, 1 round((r + g + b) / 3), 2 r,
// 3 g, 4 b; any other measure tests 0.
[[nodiscard]] inline int measured(int measure, Pixel p) {
    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
    switch (measure) {
    case 0:
        return luminance(r, g, b);
    case 1:
        return roundInRange<int>((r + g + b) / 3.0);
    case 2:
        return r;
    case 3:
        return g;
    case 4:
        return b;
    default:
        return 0;
    }
}

// Channel sets as bits.
using Channels = std::uint8_t;
inline constexpr Channels RedChannel = 1;
inline constexpr Channels GreenChannel = 2;
inline constexpr Channels BlueChannel = 4;
inline constexpr Channels AllChannels = 7;

// The channel list "RGB", "赤", "緑", "青"; other rows choose none.
[[nodiscard]] constexpr Channels chosenChannels(int channel) {
    switch (channel) {
    case 0:
        return AllChannels;
    case 1:
        return RedChannel;
    case 2:
        return GreenChannel;
    case 3:
        return BlueChannel;
    default:
        return 0;
    }
}

// The source with the chosen channels replaced by value.
[[nodiscard]] constexpr Rgb16 replaced(Channels chosen, int value, int r, int g, int b) {
    auto pick = [&](Channels c, int own) {
        return static_cast<std::int16_t>((chosen & c) != 0 ? value : own);
    };
    return {pick(RedChannel, r), pick(GreenChannel, g), pick(BlueChannel, b)};
}

} // namespace lumiran::bilevel
