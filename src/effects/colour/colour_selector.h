#pragma once

#include <algorithm>
#include <cstdint>

namespace lumiran {

// The channels an effect's rule applies to.
struct ChannelMask {
    bool red = false;
    bool green = false;
    bool blue = false;
    friend bool operator==(const ChannelMask&, const ChannelMask&) = default;
};

// The colour selector rows: 0 "RGB", 1 "赤", 2 "緑", 3 "青", 4 "赤&緑",
// 5 "緑&青", 6 "赤&青", 7 "光度".
inline constexpr int BrightnessSelector = 7;

// The channels of selector rows 0..6; any other row selects none.
[[nodiscard]] constexpr ChannelMask selectedChannels(int selector) {
    switch (selector) {
    case 0:
        return {true, true, true};
    case 1:
        return {true, false, false};
    case 2:
        return {false, true, false};
    case 3:
        return {false, false, true};
    case 4:
        return {true, true, false};
    case 5:
        return {false, true, true};
    case 6:
        return {true, false, true};
    default:
        return {};
    }
}

// The channel lists of "Emphasize" and "Another Color Change": 0 "赤",
// 1 "緑", 2 "青", 3 "赤&緑", 4 "緑&青", 5 "赤&青".
[[nodiscard]] constexpr ChannelMask namedChannels(int kind) {
    return kind >= 0 && kind <= 5 ? selectedChannels(kind + 1) : ChannelMask{};
}

// The middle value by the program's rank: the largest value below the
// maximum, or the common value when all three are equal. So with two equal
// channels the middle rank falls on the other value: r = g above b puts it
// on b, r = g below b on r and g.
[[nodiscard]] constexpr int middleRankValue(int r, int g, int b) {
    const int max = std::max({r, g, b});
    int below = -1;
    for (const int c : {r, g, b}) {
        if (c < max && c > below) below = c;
    }
    return below < 0 ? max : below;
}

// Kinds 6 "最大値", 7 "中間値", 8 "最小値": every channel that holds the
// value of that rank, ties included.
[[nodiscard]] constexpr ChannelMask rankedChannels(int kind, int r, int g, int b) {
    int value = 0;
    switch (kind) {
    case 6:
        value = std::max({r, g, b});
        break;
    case 7:
        value = middleRankValue(r, g, b);
        break;
    case 8:
        value = std::min({r, g, b});
        break;
    default:
        return {};
    }
    return {r == value, g == value, b == value};
}

} // namespace lumiran
