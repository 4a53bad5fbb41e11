#include "effects/halftone/binarization/circle_stamp.h"

#include "engine/drawing/bit_ops.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cstdlib>

namespace lumiran {

std::optional<CircleStamp> CircleStamp::of(int radius) {
    if (radius > MaxRadius) return std::nullopt;
    CircleStamp stamp;
    if (radius < 0) return stamp; // the canvas draws nothing
    const int side = 2 * radius + 3;
    const int centre = radius + 1;
    Surface scratch(side, side, 0);
    Canvas canvas(scratch);
    canvas.Circle(centre, centre, radius, RGB(255, 255, 255));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side;) {
            if ((scratch.at(x, y) & drawing::ColourBytes) == 0) {
                ++x;
                continue;
            }
            const int first = x;
            while (x < side && (scratch.at(x, y) & drawing::ColourBytes) != 0)
                ++x;
            stamp.runs_.push_back({y - centre, first - centre, x - 1 - centre});
            stamp.reach_ = std::max(stamp.reach_, std::abs(y - centre));
        }
    }
    return stamp;
}

void CircleStamp::paint(Surface& surface, int x, int y, Pixel colour, int left, int top, int right,
                        int bottom) const {
    const Pixel ink = colour & drawing::ColourBytes;
    for (const Run& run : runs_) {
        const int row = y + run.dy;
        if (row < top) continue;
        if (row >= bottom) break;
        const int first = std::max(x + run.firstDx, left);
        const int last = std::min(x + run.lastDx, right - 1);
        Pixel* at = surface.row(row).data();
        for (int column = first; column <= last; ++column)
            at[column] = (at[column] & drawing::SpareByte) | ink;
    }
}

} // namespace lumiran
