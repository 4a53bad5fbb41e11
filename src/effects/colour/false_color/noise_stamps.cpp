#include "effects/colour/false_color/noise_stamps.h"

#include "engine/drawing/drawing.h"

#include <array>

namespace lumiran {

Surface noiseStamp(std::uint8_t type) {
    if (type == 0 || type > 4) return Surface(1, 1, 0);
    constexpr int units = 16;
    constexpr ColourRef black = RGB(0, 0, 0);
    Surface drawing(units, units, colourBitsOf(RGB(255, 255, 255)));
    Canvas canvas(drawing);
    canvas.DrawWidth = 2;
    switch (type) {
    case 1:
        canvas.Circle(8, 8, 7, black);
        break;
    case 2: {
        // A caltrop: four spikes from the centre, thick in the middle.
        canvas.Line(8, 1, 8, 15, black);
        canvas.Line(1, 8, 15, 8, black);
        canvas.FillStyle = BrushStyle::Solid;
        canvas.FillColor = black;
        const std::array<CanvasPoint, 4> core{{{8, 4}, {12, 8}, {8, 12}, {4, 8}}};
        canvas.Polygon(core, black);
        break;
    }
    case 3:
        canvas.Line(1, 1, 15, 15, black);
        canvas.Line(14, 1, 0, 15, black);
        break;
    default:
        canvas.Line(7, 1, 7, 15, black);
        canvas.Line(1, 7, 15, 7, black);
        break;
    }
    Surface stamp(StampSide, StampSide, 0);
    StretchBlt(stamp, 0, 0, StampSide, StampSide, drawing, 0, 0, units, units, SRCCOPY);
    return stamp;
}

} // namespace lumiran
