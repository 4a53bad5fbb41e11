#include "effects/halftone/binarization/mark_canvas.h"

#include <utility>

namespace lumiran {

void MarkCanvas::fill(Rgb8 colour) {
    for (int y = top_; y < bottom_; ++y) {
        for (int x = left_; x < right_; ++x)
            pixel(x, y, colour);
    }
}

void MarkCanvas::pixel(int x, int y, Rgb8 colour) {
    if (x < left_ || x >= right_ || y < top_ || y >= bottom_) return;
    Pixel& p = surface_.at(x, y);
    p = withColour(p, colour.red, colour.green, colour.blue);
}

void MarkCanvas::circle(int cx, int cy, int radius, Rgb8 colour) {
    if (radius < 1) {
        pixel(cx, cy, colour);
        return;
    }
    // Midpoint circle: one octant walked, mirrored into the other seven.
    int x = radius;
    int y = 0;
    int decision = 1 - radius;
    while (y <= x) {
        for (const auto& [dx, dy] : {std::pair{x, y}, std::pair{y, x}}) {
            pixel(cx + dx, cy + dy, colour);
            pixel(cx - dx, cy + dy, colour);
            pixel(cx + dx, cy - dy, colour);
            pixel(cx - dx, cy - dy, colour);
        }
        ++y;
        if (decision < 0) {
            decision += 2 * y + 1;
        } else {
            --x;
            decision += 2 * (y - x) + 1;
        }
    }
}

} // namespace lumiran
