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
    const bool blend = calculationFlag() > 0;
    const int stride = ImageBits.width();
    const Pixel* pixels = ImageBits.pixels().data();
    forEachRow(rect, [&](int y, int first, int end) {
        const Pixel* own = pixels + static_cast<std::ptrdiff_t>(y) * stride;
        Pixel* out = TransBits.row(y).data();
        blur::Taps taps{};
        for (int x = first; x < end; ++x) {
            const Pixel p = own[x];
            std::uint32_t r = p & 0xFF, g = (p >> 8) & 0xFF, b = (p >> 16) & 0xFF;
            tapsOf(x, y, taps);
            for (int k = 0; k < count - 1; ++k) {
                const auto i = static_cast<std::size_t>(k);
                const int sx = blur::within(x, x + taps[i].dx, first, end);
                const int sy = blur::within(y, y + taps[i].dy, span.firstRow, span.endRow);
                const Pixel s = pixels[static_cast<std::ptrdiff_t>(sy) * stride + sx];
                r += s & 0xFF;
                g += (s >> 8) & 0xFF;
                b += (s >> 16) & 0xFF;
            }
            const auto mr = blur::mean(r, count), mg = blur::mean(g, count),
                       mb = blur::mean(b, count);
            if (!blend) {
                out[x] = (out[x] & 0xFF000000u) | mr | (mg << 8) | (mb << 16);
                continue;
            }
            const Rgb16 v = finishPixel<ResultTail::Clamp>(redOf(p), greenOf(p), blueOf(p),
                                                           {static_cast<std::int16_t>(mr),
                                                            static_cast<std::int16_t>(mg),
                                                            static_cast<std::int16_t>(mb)});
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        }
    });
}

} // namespace lumiran
