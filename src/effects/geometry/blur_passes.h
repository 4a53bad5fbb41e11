#pragma once

// The row loops of the sample blurs: the mean of a pixel and a few samples
// of ImageBits beside it, written into TransBits through the shared tail.
// A sample outside the rectangle takes the pixel's own coordinate on that
// axis (its own row or column, not the edge).
#include "effects/geometry/class_geometry.h"

#include <array>
#include <cstdint>

namespace lumiran::blur {

// How the channel sums become the mean: of two rounded half to even, of
// three and five truncated. The quotients by multiplication are exact for
// sums far beyond 5 * 255 and vectorise where a division does not.
[[nodiscard]] inline std::uint32_t mean(std::uint32_t sum, int count) {
    switch (count) {
    case 2:
        return (sum >> 1) + (sum & (sum >> 1) & 1);
    case 3:
        return (sum * 43691u) >> 17;
    default:
        return (sum * 52429u) >> 18;
    }
}

// A sample's coordinate, or the pixel's own where it falls outside.
[[nodiscard]] inline int within(int own, int moved, int first, int end) {
    return moved >= first && moved < end ? moved : own;
}

struct Tap {
    int dx = 0;
    int dy = 0;
};
using Taps = std::array<Tap, 4>;

} // namespace lumiran::blur

namespace lumiran {

// taps(x, y, blur::Taps&) fills count - 1 offsets for the pixel.
template <typename TapsOf>
void Class_Geometry::sampleMeanPass(const ProcessRect& rect, int count, TapsOf&& tapsOf) {
    const Span span = spanOf(rect);
    forEachRow(rect, [&](int y, int first, int end) {
        const Pixel* own = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        blur::Taps taps{};
        for (int x = first; x < end; ++x) {
            const Pixel p = own[x];
            std::uint32_t r = redOf(p), g = greenOf(p), b = blueOf(p);
            tapsOf(x, y, taps);
            for (int k = 0; k < count - 1; ++k) {
                const int sx = blur::within(x, x + taps[k].dx, first, end);
                const int sy = blur::within(y, y + taps[k].dy, span.firstRow, span.endRow);
                const Pixel s = ImageBits.at(sx, sy);
                r += redOf(s);
                g += greenOf(s);
                b += blueOf(s);
            }
            const Rgb16 v =
                finishPixel<ResultTail::Clamp>(redOf(p), greenOf(p), blueOf(p),
                                               {static_cast<std::int16_t>(blur::mean(r, count)),
                                                static_cast<std::int16_t>(blur::mean(g, count)),
                                                static_cast<std::int16_t>(blur::mean(b, count))});
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        }
    });
}

} // namespace lumiran
