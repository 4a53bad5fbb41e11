#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/noise_walk.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace lumiran {
namespace {

constexpr int FirstPassCaption = 3435;  // "しばらくお待ちください。1/2"
constexpr int SecondPassCaption = 3437; // "しばらくお待ちください。2/2"

// Radius of the walk's discs: the walk places one disc per 4 x 4 cell on
// average, so discs of radius 4 leave few holes in the field.
constexpr int DiscRadius = 4;
constexpr int FieldStart = 128;

struct Offset {
    int dx = 0;
    int dy = 0;
};

Offset offsetOf(std::uint8_t function, double angle, int amplitude) {
    const double s = std::sin(angle), c = std::cos(angle);
    double x = s, y = s;
    switch (function) {
    case 1:
        x = y = c;
        break;
    case 2:
        x = y = std::clamp(std::tan(angle), -1.0, 1.0);
        break;
    case 3:
        y = c;
        break;
    case 4:
        x = c;
        break;
    default:
        break;
    }
    return {roundInRange<int>(amplitude * x), roundInRange<int>(amplitude * y)};
}

} // namespace

int noiseWalkRows(const ProcessRect& rect) {
    return (rect.bottom - rect.top) / 4 + 1;
}

Surface noiseWalkField(int width, int height, const ProcessRect& rect, RandomGenerator& random,
                       const std::function<bool()>& rowDone) {
    Surface field(width, height, colourBitsOf(RGB(FieldStart, FieldStart, FieldStart)));
    Canvas canvas(field);
    canvas.FillStyle = BrushStyle::Solid;
    const int across = rect.right - rect.left, down = rect.bottom - rect.top;
    const int columns = across / 4 + 1, rows = noiseWalkRows(rect);
    int grey = FieldStart;
    for (int j = 0; j < rows; ++j) {
        for (int i = 0; i < columns; ++i) {
            // A place becomes a pixel by rounding, as every conversion does.
            const int x = roundTo<std::int32_t>(across * random.next() + rect.left);
            const int y = roundTo<std::int32_t>(down * random.next() + rect.top);
            grey = std::clamp(grey + (random.next() < 0.5 ? -1 : 1), 1, 255);
            canvas.FillColor = RGB(grey, grey, grey);
            canvas.Circle(x, y, DiscRadius, canvas.FillColor);
        }
        if (!rowDone()) break;
    }
    return field;
}

void Class_FalseColor::NoiserizeWater(std::int16_t wavelength, std::int16_t amplitude,
                                      std::uint8_t function, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        if (context().progress != nullptr) context().progress->showCaption(FirstPassCaption);

        // Pass 1: a random walk of greys dropped as discs at random places.
        SetProgressRange(0, noiseWalkRows(rect));
        bool walked = true;
        const Surface field =
            noiseWalkField(ImageBits.width(), ImageBits.height(), rect, context().random,
                           [&] { return walked = finishRow(); });
        if (!walked) return;

        // Pass 2: each pixel takes the one its field grey points to; one
        // pointing out of the rectangle keeps its own colour, so edges do not
        // smear. The bar starts again with the caption.
        if (context().progress != nullptr) context().progress->showCaption(SecondPassCaption);
        ProgressCount = 0;
        if (span.empty()) return;
        const double toAngle = 2 * std::numbers::pi / std::max<int>(wavelength, 1);
        const Surface& source = ImageBits;
        mapPixels<ResultTail::Clamp, Destination::Trans>(rect, [&, toAngle](int x, int y, int& r,
                                                                            int& g, int& b) {
            const Offset o = offsetOf(function, blueOf(field.at(x, y)) * toAngle, amplitude);
            const int sx = x + o.dx, sy = y + o.dy;
            const bool inside = sx >= span.firstColumn && sx < span.endColumn &&
                                sy >= span.firstRow && sy < span.endRow;
            const Pixel p = inside ? source.at(sx, sy) : withColour(0, r, g, b);
            return Rgb16{static_cast<std::int16_t>(redOf(p)), static_cast<std::int16_t>(greenOf(p)),
                         static_cast<std::int16_t>(blueOf(p))};
        });
    });
}

} // namespace lumiran
