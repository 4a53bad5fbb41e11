// Rotate: the one warp that leaves black where its mapping misses.
#include "effects/geometry/warp_rows.h"

#include <algorithm>
#include <cmath>

namespace lumiran {

void Class_Geometry::Rotate(std::int16_t degrees, std::uint8_t axes, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom,
                            std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        // The whole array, spare bytes too, not only the rectangle.
        std::ranges::fill(TransBits.elements(), Pixel{0});
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double angle = degrees * Pi / 180;
        const double cosA = std::cos(angle), sinA = std::sin(angle);
        // The test of a hit uses 0, not the rectangle's left and top; the
        // sampler then clamps to the rectangle.
        const double lastColumn = right - 1, lastRow = bottom - 1;
        SetProgressRange(top, bottom);
        const Span span = spanOf(rect);
        if (span.empty()) {
            forEachRow(rect, [](int, int, int) {});
            return;
        }
        const SampleBounds bounds = boundsOf(span);
        const long long width = ImageBits.width();
        forEachRow<RowOrder::AnyOrder>(rect, [&](int y, int begin, int end) {
            const Pixel* source = ImageBits.pixels().data();
            Pixel* out = TransBits.row(y).data();
            const double dy = y - c.y;
            for (int x = begin; x < end; ++x) {
                const double dx = x - c.x;
                // Bounded by the 16-bit rectangle: the rounding cannot fail.
                const double mx = roundHalfEven(c.x + dx * cosA - dy * sinA);
                const double my = roundHalfEven(c.y + dy * cosA + dx * sinA);
                if (mx < 0 || mx > lastColumn || my < 0 || my > lastRow) continue;
                const auto sx = static_cast<long long>(std::clamp(mx, bounds.left, bounds.right));
                const auto sy = static_cast<long long>(std::clamp(my, bounds.top, bounds.bottom));
                if (axes == 0) {
                    out[x] = source[y * width + sx];
                } else if (axes == 1) {
                    out[x] = source[sy * width + x];
                } else if (axes == 2) {
                    out[x] = source[sy * width + sx];
                }
            }
        });
    });
}

} // namespace lumiran
