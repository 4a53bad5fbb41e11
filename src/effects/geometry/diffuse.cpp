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
                const Pixel n =
                    ImageBits.at(blur::within(x, x + step.dx, span.firstColumn, span.endColumn),
                                 blur::within(y, y + step.dy, span.firstRow, span.endRow));
                const int m2 = roundedMean(n);
                // The step in brightness towards the neighbour moves the
                // sample along the neighbour's way: flat areas stay.
                const int d = m - m2;
                const Pixel s = ImageBits.at(
                    blur::within(x, x + (step.dx != 0 ? d : 0), span.firstColumn, span.endColumn),
                    blur::within(y, y + (step.dy != 0 ? d : 0), span.firstRow, span.endRow));
                return {static_cast<std::int16_t>(redOf(s)), static_cast<std::int16_t>(greenOf(s)),
                        static_cast<std::int16_t>(blueOf(s))};
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
                const Pixel n =
                    ImageBits.at(blur::within(x, x + step.dx, span.firstColumn, span.endColumn),
                                 blur::within(y, y + step.dy, span.firstRow, span.endRow));
                const int m2 = roundedMean(n);
                // Vertical always: the pixel's blue against the neighbour's
                // mean bends the rows along the brightness edges.
                const Pixel s =
                    ImageBits.at(x, blur::within(y, y + (b - m2), span.firstRow, span.endRow));
                return {static_cast<std::int16_t>(redOf(s)), static_cast<std::int16_t>(greenOf(s)),
                        static_cast<std::int16_t>(blueOf(s))};
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
            return ImageBits.at(blur::within(x, x - ox, span.firstColumn, span.endColumn),
                                blur::within(y, y - oy, span.firstRow, span.endRow));
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
