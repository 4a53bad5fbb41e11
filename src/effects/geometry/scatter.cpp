// Scatterize and Lattice Glass: pixels taken from places nearby, by chance
// or by a lattice of tangents.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <cmath>

namespace lumiran {

void Class_Geometry::Scatterize(std::uint8_t direction, std::int16_t range, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (direction > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const auto offset = [&] {
            return static_cast<double>(
                roundTo<std::int32_t>((range + 1) * context().random.next() - range / 2.0));
        };
        // One draw per moved axis and pixel, x before y: the rows must run
        // in order for the draws to land where they always do.
        warpRows<RowOrder::TopToBottom>(
            rect, direction,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch&) {
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    const double x = first + static_cast<double>(i);
                    xs[i] = direction == 1 ? x : x + offset();
                    ys[i] = direction == 0 ? y : y + offset();
                }
            });
    });
}

void Class_Geometry::LatticeGlass(std::int16_t cell, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::uint8_t kind) {
    guarded([&] {
        if (kind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const double c = cell;
        // The shift of a coordinate v: tan(v + c) for kind 0, otherwise
        // |c f(c^2 / (v + 1)) + c f(v + c)| with f cos, tan, sin.
        const auto shifts = [&](std::span<double> v, RowScratch& scratch) {
            const std::span<double> near = scratch.take(v.size()), far = scratch.take(v.size());
            for (std::size_t i = 0; i < v.size(); ++i) {
                near[i] = v[i] + c;
                far[i] = c * c / (v[i] + 1);
            }
            if (kind == 0) {
                trig::tangent(near, v);
                return;
            }
            const int function = kind == 1 ? 1 : kind == 2 ? 2 : 0;
            trig::byFunction(function, near, near);
            trig::byFunction(function, far, far);
            for (std::size_t i = 0; i < v.size(); ++i)
                v[i] = std::abs(c * far[i] + c * near[i]);
        };
        const Span span = spanOf(rect);
        std::vector<double> byColumn(
            static_cast<std::size_t>(std::max(span.endColumn - span.firstColumn, 0)));
        for (std::size_t i = 0; i < byColumn.size(); ++i)
            byColumn[i] = span.firstColumn + static_cast<double>(i);
        RowScratch columnScratch;
        shifts(byColumn, columnScratch);
        warpRows(
            rect, 2,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                double byRow = y;
                shifts(std::span<double>(&byRow, 1), scratch);
                const double* column = byColumn.data() + (first - span.firstColumn);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    xs[i] = first + static_cast<double>(i) + column[i];
                    ys[i] = y + byRow;
                }
            });
    });
}

} // namespace lumiran
