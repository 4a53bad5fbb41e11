#pragma once

#include "engine/calculation.h"
#include "engine/numeric.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

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

// Three channels of a result before they are stored.
struct Channels {
    int red = 0;
    int green = 0;
    int blue = 0;

    // Adds delta to the channels in the mask.
    constexpr void add(ChannelMask mask, int delta) {
        if (mask & Red) red += delta;
        if (mask & Green) green += delta;
        if (mask & Blue) blue += delta;
    }
    // Sets the channels in the mask to value.
    constexpr void set(ChannelMask mask, int value) {
        if (mask & Red) red = value;
        if (mask & Green) green = value;
        if (mask & Blue) blue = value;
    }
    // Stored into the 16-bit result fields, keeping the low 16 bits.
    [[nodiscard]] constexpr Rgb16 fields() const {
        return {static_cast<std::int16_t>(red), static_cast<std::int16_t>(green),
                static_cast<std::int16_t>(blue)};
    }
};

// |round(c / divisor * t)|, the rescaling by a lightness that several
// effects share: the float quotient first, then the product, stored 16-bit.
[[nodiscard]] inline std::int16_t scaledChannel(int c, int divisor, int t) {
    return wrap16(std::abs(roundTo<std::int16_t>(static_cast<double>(c) / divisor * t)));
}

// The same where the product provably fits (t within 0..255 and c not far
// above the divisor): no range check, so the pixel loop can vectorise.
[[nodiscard]] inline std::int16_t scaledChannelInRange(int c, int divisor, int t) {
    return wrap16(std::abs(roundInRange<std::int32_t>(static_cast<double>(c) / divisor * t)));
}

// A lightness used as a divisor: 0 is raised to 1.
[[nodiscard]] constexpr int nonZero(int value) {
    return value == 0 ? 1 : value;
}

} // namespace lumiran
