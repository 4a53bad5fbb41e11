// Diffuse Outline and the colour diffusion: each pixel takes a sample from
// a place that its brightness against a neighbour's, or a fixed offset per
// channel, points to. A place outside the rectangle takes the pixel's own
// coordinate on that axis.
#include "effects/geometry/blur_passes.h"

namespace lumiran {
namespace {

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

Rgb16 colourOf(Pixel p) {
    return {static_cast<std::int16_t>(redOf(p)), static_cast<std::int16_t>(greenOf(p)),
            static_cast<std::int16_t>(blueOf(p))};
}

// The rule of the diffuse outlines with the neighbour's step (Dx, Dy) fixed,
// reading through row pointers set once per row: below, the neighbour's row
// is a plain row and a horizontal move stays within the pixel's own row, so
// the loops vectorise with narrow gathers. ByBlue moves vertically by the
// pixel's blue against the neighbour's mean, else along the neighbour's way
// by the pixel's own mean.
template <int Dx, int Dy, bool ByBlue>
struct OutlineRule {
    const Pixel* image;
    std::ptrdiff_t stride;
    int firstColumn, endColumn, firstRow, endRow;
    const Pixel* own = nullptr;
    const Pixel* neighbours = nullptr;
    bool rowInside = false;

    void startRow(int y) {
        own = image + static_cast<std::ptrdiff_t>(y) * stride;
        rowInside = y + Dy < endRow;
        neighbours = rowInside ? own + Dy * stride : own;
    }

    Rgb16 operator()(int x, int y, int& r, int& g, int& b) const {
        // The whole position falls back to the pixel when the neighbour
        // lies outside, not each axis.
        const bool inside = rowInside && (Dx == 0 || x + Dx < endColumn);
        const Pixel n = inside ? neighbours[x + Dx] : own[x];
        const int m2 = roundedMean(n);
        Pixel s;
        if constexpr (ByBlue) {
            const int sy = blur::within(y, y + (b - m2), firstRow, endRow);
            s = image[static_cast<std::ptrdiff_t>(sy) * stride + x];
        } else {
            // The step in brightness towards the neighbour moves the sample
            // along the neighbour's way: flat areas stay.
            const int d = (r + g + b) / 3 - m2;
            const int sx = Dx != 0 ? blur::within(x, x + d, firstColumn, endColumn) : x;
            if constexpr (Dy == 0) {
                s = own[sx];
            } else {
                const int sy = blur::within(y, y + d, firstRow, endRow);
                s = image[static_cast<std::ptrdiff_t>(sy) * stride + sx];
            }
        }
        return colourOf(s);
    }
};

// Runs body with the rule of the kind: 0 right, 1 below, 2 below right.
template <bool ByBlue, typename Body>
void withOutlineRule(int kind, const Surface& image, int firstColumn, int endColumn, int firstRow,
                     int endRow, Body body) {
    const auto make = [&]<int Dx, int Dy>() {
        return OutlineRule<Dx, Dy, ByBlue>{
            image.pixels().data(), image.width(), firstColumn, endColumn, firstRow, endRow};
    };
    switch (kind) {
    case 0:
        return body(make.template operator()<1, 0>());
    case 1:
        return body(make.template operator()<0, 1>());
    default:
        return body(make.template operator()<1, 1>());
    }
}

} // namespace

void Class_Geometry::DiffuseOutline1(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        withOutlineRule<false>(
            kind, ImageBits, span.firstColumn, span.endColumn, span.firstRow, span.endRow,
            [&](auto rule) { mapPixels<ResultTail::Clamp, Destination::Trans>(rect, rule); });
    });
}

void Class_Geometry::DiffuseOutline2(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        // Vertical always: the pixel's blue against the neighbour's mean
        // bends the rows along the brightness edges.
        withOutlineRule<true>(
            kind, ImageBits, span.firstColumn, span.endColumn, span.firstRow, span.endRow,
            [&](auto rule) { mapPixels<ResultTail::Clamp, Destination::Trans>(rect, rule); });
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
