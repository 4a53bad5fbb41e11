// Diffuse Outline and the colour diffusion: each pixel takes a sample from
// a place that its brightness against a neighbour's, or a fixed offset per
// channel, points to. A place outside the rectangle takes the pixel's own
// coordinate on that axis.
#include "effects/geometry/blur_passes.h"

namespace lumiran {
namespace {

// The neighbour of kind 0 right, 1 below, 2 below right.
constexpr std::array<blur::Tap, 3> Neighbours{{{1, 0}, {0, 1}, {1, 1}}};

// round((r + g + b) / 3): a third is never a half, so no tie arises.
int roundedMean(Pixel p) {
    return (redOf(p) + greenOf(p) + blueOf(p) + 1) / 3;
}

// The pixel moved by (dx, dy) from (x, y); an axis that leaves the span
// keeps the pixel's own coordinate.
template <typename Bounds>
Pixel movedWithin(const Surface& image, const Bounds& span, int x, int y, int dx, int dy) {
    return image.at(blur::within(x, x + dx, span.firstColumn, span.endColumn),
                    blur::within(y, y + dy, span.firstRow, span.endRow));
}

// The neighbour of the kind, or the pixel itself when the neighbour lies
// outside: the whole position falls back, not each axis.
template <typename Bounds>
Pixel neighbourOf(const Surface& image, const Bounds& span, int x, int y, blur::Tap step) {
    const int nx = x + step.dx, ny = y + step.dy;
    const bool inside = nx < span.endColumn && ny < span.endRow;
    return image.at(inside ? nx : x, inside ? ny : y);
}

Rgb16 colourOf(Pixel p) {
    return {static_cast<std::int16_t>(redOf(p)), static_cast<std::int16_t>(greenOf(p)),
            static_cast<std::int16_t>(blueOf(p))};
}

} // namespace

void Class_Geometry::DiffuseOutline1(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        const blur::Tap step = Neighbours[kind];
        mapPixels<ResultTail::Clamp, Destination::Trans>(
            rect, [&](int x, int y, int& r, int& g, int& b) -> Rgb16 {
                const int m = (r + g + b) / 3;
                const Pixel n = neighbourOf(ImageBits, span, x, y, step);
                const int m2 = roundedMean(n);
                // The step in brightness towards the neighbour moves the
                // sample along the neighbour's way: flat areas stay.
                const int d = m - m2;
                const Pixel s =
                    movedWithin(ImageBits, span, x, y, step.dx != 0 ? d : 0, step.dy != 0 ? d : 0);
                return colourOf(s);
            });
    });
}

void Class_Geometry::DiffuseOutline2(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        const blur::Tap step = Neighbours[kind];
        mapPixels<ResultTail::Clamp, Destination::Trans>(
            rect, [&](int x, int y, int&, int&, int& b) -> Rgb16 {
                const Pixel n = neighbourOf(ImageBits, span, x, y, step);
                const int m2 = roundedMean(n);
                // Vertical always: the pixel's blue against the neighbour's
                // mean bends the rows along the brightness edges.
                const Pixel s = movedWithin(ImageBits, span, x, y, 0, b - m2);
                return colourOf(s);
            });
    });
}

void Class_Geometry::Diffuse_Color(std::int16_t ratio, std::int16_t left, std::int16_t top,
                                   std::int16_t right, std::int16_t bottom, std::int16_t redX,
                                   std::int16_t redY, std::int16_t greenX, std::int16_t greenY,
                                   std::int16_t blueX, std::int16_t blueY) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        const auto sample = [&](int x, int y, int ox, int oy) {
            return movedWithin(ImageBits, span, x, y, -ox, -oy);
        };
        mapPixels<ResultTail::Clamp, Destination::Trans>(
            rect, [&](int x, int y, int& r, int& g, int& b) -> Rgb16 {
                // The shifted channel mixed into the pixel's own by ratio
                // percent: 100 is the plain misregistration.
                const auto mix = [&](int own, int shifted) {
                    return static_cast<std::int16_t>((own * (100 - ratio) + shifted * ratio) / 100);
                };
                return {mix(r, redOf(sample(x, y, redX, redY))),
                        mix(g, greenOf(sample(x, y, greenX, greenY))),
                        mix(b, blueOf(sample(x, y, blueX, blueY)))};
            });
    });
}

} // namespace lumiran
