#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace lumiran {

// The thirteen ways three channels can be ordered. Several colour effects
// pick the channels they change by this order, with quirks of their own
// on particular orders, so their choices are tables indexed by it.
enum class ChannelOrder : std::uint8_t {
    RGB,  // r > g > b
    RBG,  // r > b > g
    BRG,  // b > r > g
    BGR,  // b > g > r
    GBR,  // g > b > r
    GRB,  // g > r > b
    RB_G, // r = b > g
    R_GB, // r > g = b
    G_RB, // g > r = b
    GB_R, // g = b > r
    RG_B, // r = g > b
    B_RG, // b > r = g
    Same, // r = g = b
};

inline constexpr std::size_t ChannelOrderCount = 13;

[[nodiscard]] constexpr ChannelOrder channelOrder(int r, int g, int b) {
    using enum ChannelOrder;
    if (r == g && g == b) return Same;
    if (r == g) return r > b ? RG_B : B_RG;
    if (r == b) return r > g ? RB_G : G_RB;
    if (g == b) return g > r ? GB_R : R_GB;
    if (r > g) {
        if (g > b) return RGB;
        return r > b ? RBG : BRG;
    }
    if (r > b) return GRB;
    return g > b ? GBR : BGR;
}

// A table with one entry per order.
template <typename T>
using ByOrder = std::array<T, ChannelOrderCount>;

template <typename T>
[[nodiscard]] constexpr const T& entryFor(const ByOrder<T>& table, ChannelOrder order) {
    return table[static_cast<std::size_t>(order)];
}

// A pixel of each order.
inline constexpr ByOrder<std::array<int, 3>> OrderRepresentative{{
    {3, 2, 1},
    {3, 1, 2},
    {2, 1, 3},
    {1, 2, 3},
    {1, 3, 2},
    {2, 3, 1}, // strict orders
    {2, 1, 2},
    {2, 1, 1},
    {1, 2, 1},
    {1, 2, 2},
    {2, 2, 1},
    {1, 1, 2}, // two equal
    {1, 1, 1},
}};

// The order as six comparison bits, worked out without a branch so that
// pixel loops choosing by order can still be vectorised.
[[nodiscard]] constexpr int orderKey(int r, int g, int b) {
    return static_cast<int>(r > g) | static_cast<int>(g > b) << 1 | static_cast<int>(r > b) << 2 |
           static_cast<int>(r == g) << 3 | static_cast<int>(g == b) << 4 |
           static_cast<int>(r == b) << 5;
}

inline constexpr std::size_t OrderKeyCount = 64;

// A table by order spread over the order keys; keys no pixel has stay 0.
template <typename T>
[[nodiscard]] constexpr std::array<T, OrderKeyCount> byOrderKey(const ByOrder<T>& table) {
    std::array<T, OrderKeyCount> keyed{};
    for (std::size_t i = 0; i < ChannelOrderCount; ++i) {
        const auto& p = OrderRepresentative[i];
        keyed[static_cast<std::size_t>(orderKey(p[0], p[1], p[2]))] = table[i];
    }
    return keyed;
}

// A set of channels.
using ChannelMask = std::uint8_t;
inline constexpr ChannelMask NoChannel = 0;
inline constexpr ChannelMask Red = 1;
inline constexpr ChannelMask Green = 2;
inline constexpr ChannelMask Blue = 4;
inline constexpr ChannelMask AllChannels = Red | Green | Blue;

// The channels holding a given value.
[[nodiscard]] constexpr ChannelMask channelsEqualTo(int value, int r, int g, int b) {
    return static_cast<ChannelMask>((r == value ? Red : 0) | (g == value ? Green : 0) |
                                    (b == value ? Blue : 0));
}

// The channels holding the largest, the middle and the smallest of the
// three values as they sort, so equal channels share a rank: with r = g
// above b the middle is held by red and green.
[[nodiscard]] constexpr ChannelMask largestChannels(int r, int g, int b) {
    return channelsEqualTo(std::max({r, g, b}), r, g, b);
}
[[nodiscard]] constexpr ChannelMask middleChannels(int r, int g, int b) {
    return channelsEqualTo(std::max(std::min(r, g), std::min(std::max(r, g), b)), r, g, b);
}
[[nodiscard]] constexpr ChannelMask smallestChannels(int r, int g, int b) {
    return channelsEqualTo(std::min({r, g, b}), r, g, b);
}

// The middle as "Difference Addition" (and Subtraction) and "Emphasize"
// choose it: the middle channels, except that r = g above b gives blue
// alone, the one lower channel.
inline constexpr ByOrder<ChannelMask> MiddleExceptRedGreenAbove = [] {
    ByOrder<ChannelMask> table{};
    for (std::size_t i = 0; i < ChannelOrderCount; ++i) {
        const auto& p = OrderRepresentative[i];
        table[i] = middleChannels(p[0], p[1], p[2]);
    }
    table[static_cast<std::size_t>(ChannelOrder::RG_B)] = Blue;
    return table;
}();

} // namespace lumiran
