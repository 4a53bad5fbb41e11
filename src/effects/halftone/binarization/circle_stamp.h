#pragma once

#include "engine/pixel.h"
#include "engine/surface.h"

#include <optional>
#include <vector>

namespace lumiran {

// The pixels the canvas paints for Circle(x, y, radius) with a thin copy
// pen and no fill, as runs relative to the centre, taken once from the
// canvas itself: marks laid by thousands then cost a few stores each, and
// any band of rows can lay its own part of a mark.
class CircleStamp {
  public:
    // The largest radius a stamp is taken for; larger circles go through
    // the canvas.
    static constexpr int MaxRadius = 255;

    // Empty for a radius above MaxRadius.
    [[nodiscard]] static std::optional<CircleStamp> of(int radius);

    // The rows above and below the centre that the stamp reaches.
    [[nodiscard]] int reach() const { return reach_; }

    // Paints the stamp around (x, y) in the colour bytes of colour (the
    // spare byte stays), as far as it lies in columns left..right - 1 and
    // rows top..bottom - 1 of the surface.
    void paint(Surface& surface, int x, int y, Pixel colour, int left, int top, int right,
               int bottom) const;

  private:
    struct Run {
        int dy;
        int firstDx;
        int lastDx;
    };
    std::vector<Run> runs_; // by dy, then dx
    int reach_ = 0;
};

} // namespace lumiran
