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

// One channel rule applied to the channels of a selector row: rows 0..6
// name the channels it changes; row 7 ("光度") applies it to the two
// pictures' brightness and moves every channel of the document by the
// change, so the document keeps its hue. The rule's results are held to
// 0..255, the limit of every merge; the shared tail does the rest.
template <typename ChannelRule>
struct SelectedChannels {
    ChannelRule rule;
    int selector;
    ChannelMask mask = selectedChannels(selector);

    [[nodiscard]] Rgb16 operator()(int r, int g, int b, Pixel kept) const {
        const int r1 = redOf(kept), g1 = greenOf(kept), b1 = blueOf(kept);
        if (selector == BrightnessSelector) {
            const int y = brightness(r, g, b);
            const int shift = limitChannel(rule(y, brightness(r1, g1, b1))) - y;
            return {static_cast<std::int16_t>(r + shift), static_cast<std::int16_t>(g + shift),
                    static_cast<std::int16_t>(b + shift)};
        }
        auto pick = [&](ChannelMask channel, int c, int c1) {
            return static_cast<std::int16_t>((mask & channel) != 0 ? limitChannel(rule(c, c1)) : c);
        };
        return {pick(Red, r, r1), pick(Green, g, g1), pick(Blue, b, b1)};
    }
};

} // namespace lumiran::composition
