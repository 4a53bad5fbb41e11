#pragma once

#include "effects/neighbourhood/window.h"

#include <array>

namespace lumiran::neighbourhood {

// The two samples of an emboss direction at distance 1: A is weighted +d,
// B -d; multiply by the distance.
struct DirectionPair {
    Offset a;
    Offset b;
};

inline constexpr std::array<DirectionPair, 8> EmbossDirections{{
    {{1, 0}, {-1, 0}},
    {{-1, 0}, {1, 0}},
    {{0, -1}, {0, 1}},
    {{0, 1}, {0, -1}},
    {{-1, -1}, {1, 1}},
    {{-1, 1}, {1, -1}},
    {{1, -1}, {-1, 1}},
    {{1, 1}, {-1, -1}},
}};

} // namespace lumiran::neighbourhood
