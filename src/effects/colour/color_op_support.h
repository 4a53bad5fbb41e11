#pragma once

#include "effects/colour/channel_order.h"
#include "engine/calculation.h"
#include "engine/numeric.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace lumiran {

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
