// Rotate: the one warp that leaves black where its mapping misses.
#include "effects/geometry/warp_rows.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumiran {

void Class_Geometry::Rotate(std::int16_t degrees, std::uint8_t axes, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom,
                            std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        // The whole array, spare bytes too, not only the rectangle.
        std::ranges::fill(TransBits.elements(), Pixel{0});
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double angle = degrees * GeometryPi / 180;
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
        const BandPlan plan = bandPlan(rect);
        std::vector<RowScratch> scratch(static_cast<std::size_t>(std::max(plan.workers, 1)));
        rowsInBands(rect, plan, [&](int worker, int y, int begin, int end) {
            RowScratch& own = scratch[static_cast<std::size_t>(worker)];
            own.release();
            const auto n = static_cast<std::size_t>(end - begin);
            const std::span<double> xs = own.take(n), ys = own.take(n), miss = own.take(n);
            const double dy = y - c.y;
            for (std::size_t i = 0; i < n; ++i) {
                const double dx = begin + static_cast<double>(i) - c.x;
                // Bounded by the 16-bit rectangle: the rounding cannot fail.
                xs[i] = roundHalfEvenInRange(c.x + dx * cosA - dy * sinA);
                ys[i] = roundHalfEvenInRange(c.y + dy * cosA + dx * sinA);
                miss[i] = static_cast<double>((xs[i] < 0) | (xs[i] > lastColumn) | (ys[i] < 0) |
                                              (ys[i] > lastRow));
            }
            sampleRow(axes, y, begin, xs, ys, bounds, own.indices(n));
            Pixel* out = TransBits.row(y).data() + begin;
            for (std::size_t i = 0; i < n; ++i)
                out[i] = miss[i] != 0 ? Pixel{0} : out[i];
        });
    });
}

} // namespace lumiran
