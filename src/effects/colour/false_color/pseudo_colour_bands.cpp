#include "effects/colour/false_color/pseudo_colour_bands.h"

#include <algorithm>

namespace lumiran {
namespace {

// Type 0 by band: below 30, 60, ..., 240, and 240 and above.
constexpr std::array<BandOffsets, 9> TypeZero{{
    {0, 0, 0},
    {68, 0, 0},
    {0, 38, 165},
    {0, 135, 0},
    {105, -22, 0},
    {75, 75, 0},
    {45, 45, 0},
    {15, 0, 0},
    {0, 0, 0},
}};

// For types 0..5, the type-0 channel each result channel takes.
constexpr std::array<std::array<int, 3>, 6> ChannelOrders{{
    {0, 1, 2},
    {1, 2, 0},
    {2, 0, 1},
    {0, 2, 1},
    {1, 0, 2},
    {2, 1, 0},
}};

} // namespace

BandOffsets pseudoColourOffsets(std::uint8_t type, int grey) {
    if (type > 7) type = 0;
    int band = std::clamp(grey / 30, 0, 8);
    int order = type;
    if (type >= 6) {
        if (band > 0 && band < 8) band = 8 - band;
        order = type == 6 ? 0 : 3;
    }
    const BandOffsets& source = TypeZero[static_cast<std::size_t>(band)];
    const auto& pick = ChannelOrders[static_cast<std::size_t>(order)];
    return {source[static_cast<std::size_t>(pick[0])], source[static_cast<std::size_t>(pick[1])],
            source[static_cast<std::size_t>(pick[2])]};
}

} // namespace lumiran
