#pragma once

// The families of lines a gradation walks, one position after the other.
#include <cstdint>
#include <functional>
#include <span>

namespace lumiran::gradation {

struct Segment {
    int x1 = 0;
    int y1 = 0;
    int x2 = 0;
    int y2 = 0;
    // A circle of radius x2 around (x1, y1) instead of a line.
    bool circle = false;
};

struct WalkArea {
    int left = 0;
    int top = 0;
    int right = 0;  // exclusive
    int bottom = 0; // exclusive
    int cx = 0;
    int cy = 0;
};

// The centre as the drawing rounds it.
[[nodiscard]] WalkArea walkArea(int left, int top, int right, int bottom);

// Calls position(lines) for each position of the shape's walk in order.
// spiralSize is the spiral's growth per turn (at least 1). Shapes past 13
// walk nothing.
void walkShape(std::uint8_t shape, const WalkArea& area, int spiralSize,
               const std::function<void(std::span<const Segment>)>& position);

// The number of positions of the walk.
[[nodiscard]] long long walkLength(std::uint8_t shape, const WalkArea& area, int spiralSize);

} // namespace lumiran::gradation
