#pragma once

#include "engine/pixel_frame.h"
#include "engine/surface.h"

#include <cstdint>

namespace lumiran {

// Draws straight onto a picture through the canvas: an aggregate grown by
// walkers that stick where they touch it, and recursive curves. It holds no
// pixel array of its own; the frame gives it progress, cancel and the
// error handler.
class Class_DLA : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // count walkers; range: the walkers' jitter per step in lattice cells;
    // thickness: the pen width of the lines that join a walker to the cell
    // it touched. The lattice is the centred square of the rectangle's
    // smaller side, one cell a pixel.
    void Draw_DLA(Surface& picture, std::int16_t left, std::int16_t top, std::int16_t right,
                  std::int16_t bottom, std::int16_t count, std::int16_t red, std::int16_t green,
                  std::int16_t blue, std::int16_t range, std::int16_t thickness);

    // A recursive curve of the given depth, scaled to the larger side of the
    // rectangle: family 0 Hilbert, 1 Peano, 2 Sierpinski's arrowhead, 3 the
    // Koch snowflake, 4 the dragon, 5 Gosper's flowsnake.
    void Draw_CurveStart(Surface& picture, std::int16_t depth, std::uint8_t family,
                         std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom, std::int16_t red, std::int16_t green,
                         std::int16_t blue, std::int16_t thickness);
};

} // namespace lumiran
