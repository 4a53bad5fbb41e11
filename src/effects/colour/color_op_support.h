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

// The program's median of three (programMedian) as two min/max and one
// select, which a vectorised loop can take where the chain of tests is too
// much for it: max(g, b) when r is above g, otherwise min(g, max(r, b)).
[[nodiscard]] constexpr int programMedianOf(int r, int g, int b) {
    const int high = g < b ? b : g;
    const int low = g < (r < b ? b : r) ? g : (r < b ? b : r);
    return r > g ? high : low;
}

// condition ? chosen : otherwise, as arithmetic: the compiler would turn
// a select back into a branch around the division that gives otherwise,
// and a division behind a branch keeps a pixel loop out of the vector unit.
[[nodiscard]] constexpr int chooseWithoutBranch(bool condition, int chosen, int otherwise) {
    return otherwise + (chosen - otherwise) * static_cast<int>(condition);
}

// A lightness used as a divisor: 0 is raised to 1. Without a select, which
// would keep the division after it out of a vectorised loop.
[[nodiscard]] constexpr int nonZero(int value) {
    return value + static_cast<int>(value == 0);
}

} // namespace lumiran
