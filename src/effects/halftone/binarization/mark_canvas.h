#pragma once

#include "engine/pixel.h"
#include "engine/surface.h"

namespace lumiran {

// TO BE REPLACED by the shared drawing canvas once it lands: a minimal
// stand-in for the platform's picture calls the marks of this class need
// (fill, pixel, outline circle), clipped to a rectangle (right and bottom
// exclusive) and writing only the colour bytes.
class MarkCanvas {
  public:
    MarkCanvas(Surface& surface, int left, int top, int right, int bottom)
        : surface_(surface), left_(left), top_(top), right_(right), bottom_(bottom) {}

    void fill(Rgb8 colour);
    void pixel(int x, int y, Rgb8 colour);
    // The outline of a circle of the radius about (cx, cy), one pixel
    // wide; a radius below 1 sets the centre alone.
    void circle(int cx, int cy, int radius, Rgb8 colour);

  private:
    Surface& surface_;
    int left_;
    int top_;
    int right_;
    int bottom_;
};

} // namespace lumiran
