#pragma once

#include "engine/numeric.h"

#include <array>
#include <cstdint>

namespace lumiran {

// The output value for each input value 0..255.
using LevelTable = std::array<std::int16_t, 256>;

// The table of a level: 2, 3 and 4 spelled out, every other level by the
// band rule, whose bands start at 256 / level rather than at 0, so black
// never occurs from level 5 up. Level 0 ends in the overflow error.
[[nodiscard]] LevelTable levelTable(std::int16_t level);

// One channel's table from the drawing colour's channel value: paint type
// 0 runs from that value to white, any other type from black to it.
[[nodiscard]] LevelTable drawingColorLevelTable(std::int16_t level, std::int16_t paintType,
                                                int channel);

// The grey the dithers work on, round(0.3 r + 0.59 g + 0.11 b) in double
// precision. A hundred times the grey is the integer 30 r + 59 g + 11 b,
// which rounds the same way unless it ends in 50: only there do the
// inexact constants decide the tie, and the sum is rounded as it stands.
[[nodiscard]] inline int ditherGrey(int r, int g, int b) {
    const int hundredfold = 30 * r + 59 * g + 11 * b;
    if (hundredfold % 100 == 50) return roundInRange<int>(0.3 * r + 0.59 * g + 0.11 * b);
    return (hundredfold + 50) / 100;
}

// ditherGrey without its branch: the tie is told apart by arithmetic and
// the floating sum worked out for every pixel, so that a row of greys runs
// on the vector unit.
[[nodiscard]] inline int ditherGreyBranchless(int r, int g, int b) {
    const int hundredfold = 30 * r + 59 * g + 11 * b;
    const int rounded = (hundredfold + 50) / 100;
    const int floating = roundInRange<int>(0.3 * r + 0.59 * g + 0.11 * b);
    return rounded * 100 - hundredfold == 50 ? floating : rounded;
}

// The same grey from the double sum alone: no branch, so pixel loops that
// need it can be vectorised.
[[nodiscard]] inline int ditherGreyFloating(int r, int g, int b) {
    return roundInRange<int>(0.3 * r + 0.59 * g + 0.11 * b);
}

// A value limited to the channel range.
[[nodiscard]] constexpr int toChannel(int value) {
    return value < 0 ? 0 : value > 255 ? 255 : value;
}

} // namespace lumiran
