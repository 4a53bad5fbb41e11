#include "effects/texture/hide_effect/cloud_stamps.h"

#include "engine/drawing/drawing.h"
#include "engine/numeric.h"

namespace lumiran::hide {

Surface sketchStamp(int side, std::uint8_t type) {
    Surface stamp(side, side, colourBitsOf(RGB(255, 255, 255)));
    Canvas canvas(stamp);
    const ColourRef ink = RGB(128, 128, 128);
    const int b = std::max(1, roundTo<std::int32_t>(side / 4.0));
    const int middle = side / 2;
    switch (type) {
    case 0:
    case 1:
    case 2:
        // Diagonals b apart: "/" for 0, "\" for 1, both for 2.
        for (int k = -side; k < 2 * side; k += b) {
            if (type != 1) canvas.Line(k, side, k + side, 0, ink);
            if (type != 0) canvas.Line(k, 0, k + side, side, ink);
        }
        break;
    case 3:
        for (int y = b / 2; y < side; y += b)
            canvas.Line(0, y, side, y, ink);
        break;
    case 4:
        for (int x = b / 2; x < side; x += b)
            canvas.Line(x, 0, x, side, ink);
        break;
    case 5:
        for (int y = b / 2; y < side; y += b) {
            for (int x = b / 2; x < side; x += b)
                canvas.Line(x, y, x + 1, y, ink);
        }
        break;
    case 6:
        canvas.Circle(middle, middle, middle - 1, ink);
        break;
    case 7:
        canvas.DrawWidth = b;
        canvas.Line(0, side - 1, side, -1, ink);
        break;
    case 8:
        canvas.DrawWidth = std::max(1, b / 2);
        canvas.Line(middle, 0, middle, side, ink);
        canvas.Line(0, middle, side, middle, ink);
        break;
    case 9:
        for (int r = b / 2; r < middle; r += b)
            canvas.Circle(middle, middle, r, ink);
        break;
    default:
        break;
    }
    return stamp;
}

Surface discStamp(int side) {
    Surface stamp(side, side, colourBitsOf(RGB(0, 0, 0)));
    Canvas canvas(stamp);
    canvas.FillStyle = BrushStyle::Solid;
    canvas.FillColor = RGB(255, 255, 255);
    canvas.Circle(side / 2, side / 2, side / 4, RGB(255, 255, 255));
    return stamp;
}

} // namespace lumiran::hide
