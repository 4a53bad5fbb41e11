// Edge_Sobel: the Sobel pair and the Rosenfeld form.
#include "effects/neighbourhood/class_edge.h"

#include <algorithm>
#include <cstdlib>

namespace lumiran {
namespace {

using neighbourhood::Area;

// Gx, Gy or their sum for one channel; Rosenfeld drops the factor 2.
template <bool Sobel, int Combine>
[[gnu::always_inline]] inline int gradient(const Pixel* above, const Pixel* upper,
                                           const Pixel* middle, const Pixel* below, int x,
                                           int shift) {
    auto v = [shift](const Pixel* row, int at) {
        return static_cast<int>((row[at] >> shift) & 0xFFu);
    };
    const int c1 = v(above, x - 1), c2 = v(upper, x), c3 = v(above, x + 1);
    const int c4 = v(middle, x - 1), c5 = v(middle, x + 1);
    const int c6 = v(below, x - 1), c7 = v(below, x), c8 = v(below, x + 1);
    constexpr int factor = Sobel ? 2 : 1;
    const int gx = std::abs(factor * (c2 - c7) - c8 - c6 + c3 + c1);
    const int gy = std::abs(factor * (c4 - c5) - c8 - c3 + c6 + c1);
    if constexpr (Combine == 0) {
        return gx;
    } else if constexpr (Combine == 1) {
        return gy;
    } else {
        return gx + gy;
    }
}

template <bool Sobel, int Combine>
void clampedRow(const Pixel* __restrict above, const Pixel* __restrict upper,
                const Pixel* __restrict middle, const Pixel* __restrict below,
                Pixel* __restrict out, int from, int to) {
    for (int x = from; x < to; ++x) {
        auto channel = [&](int shift) {
            return static_cast<Pixel>(std::min(
                       gradient<Sobel, Combine>(above, upper, middle, below, x, shift), 255))
                   << shift;
        };
        out[x] = (out[x] & 0xFF000000u) | channel(16) | channel(8) | channel(0);
    }
}

template <bool Sobel, int Combine>
Rgb16 gradientPixel(const Pixel* above, const Pixel* upper, const Pixel* middle, const Pixel* below,
                    int x) {
    return {wrap16(gradient<Sobel, Combine>(above, upper, middle, below, x, 16)),
            wrap16(gradient<Sobel, Combine>(above, upper, middle, below, x, 8)),
            wrap16(gradient<Sobel, Combine>(above, upper, middle, below, x, 0))};
}

} // namespace

void Class_Edge::Edge_Sobel(std::uint8_t kernel, std::int16_t left, std::int16_t top,
                            std::int16_t right, std::int16_t bottom, std::uint8_t combine) {
    guarded([&] {
        if (kernel > 1 || combine > 2) return;
        using Row =
            void (*)(const Pixel*, const Pixel*, const Pixel*, const Pixel*, Pixel*, int, int);
        using Single = Rgb16 (*)(const Pixel*, const Pixel*, const Pixel*, const Pixel*, int);
        constexpr Row rows[2][3] = {
            {clampedRow<true, 0>, clampedRow<true, 1>, clampedRow<true, 2>},
            {clampedRow<false, 0>, clampedRow<false, 1>, clampedRow<false, 2>}};
        constexpr Single singles[2][3] = {
            {gradientPixel<true, 0>, gradientPixel<true, 1>, gradientPixel<true, 2>},
            {gradientPixel<false, 0>, gradientPixel<false, 1>, gradientPixel<false, 2>}};
        const Row row = rows[kernel][combine];
        const Single single = singles[kernel][combine];

        const ProcessRect rect{left, top, right, bottom};
        const Area area = areaOf(rect);
        const Area inner = area.inner(1);
        SetProgressRange(top, bottom);
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y)) return;
            const Pixel* above = ImageBits.row(y - 1).data();
            const Pixel* middle = ImageBits.row(y).data();
            const Pixel* below = ImageBits.row(y + 1).data();
            // The column's entering window holds the top row as its centre;
            // sliding down, it shifts that entry into the second pixel's top.
            const Pixel* upper =
                y == inner.firstRow + 1 ? ImageBits.row(area.firstRow).data() : above;
            if (!blending()) {
                row(above, upper, middle, below, TransBits.row(y).data(), inner.firstColumn,
                    inner.endColumn);
                return;
            }
            for (int x = inner.firstColumn; x < inner.endColumn; ++x)
                storeTrans(x, y, middle[x], single(above, upper, middle, below, x));
        });
    });
}

} // namespace lumiran
