// Sphere: polar coordinates, the angle about the centre as the column and
// the distance as the row.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <cmath>

namespace lumiran {

void Class_Geometry::Sphere(std::int16_t left, std::int16_t top, std::int16_t right,
                            std::int16_t bottom, std::uint8_t kind, std::int16_t xPercent,
                            std::int16_t yPercent, std::int16_t turn) {
    guarded([&] {
        if (kind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double q = std::atan(1.0) * turn;
        const double lastColumn = right - 1;
        warpRows(
            rect, 2,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const std::size_t n = xs.size();
                const double dy = y - c.y;
                // The ratio's function: atan, or sin, cos, tan in its place.
                const std::span<double> f = scratch.take(n);
                for (std::size_t i = 0; i < n; ++i)
                    f[i] = dy / (first + static_cast<double>(i) - c.x);
                switch (kind) {
                case 0:
                    trig::arcTangent(f, f);
                    break;
                case 1:
                    trig::sine(f, f);
                    break;
                case 2:
                    trig::cosine(f, f);
                    break;
                default:
                    trig::tangent(f, f);
                    break;
                }
                for (std::size_t i = 0; i < n; ++i) {
                    const double dx = first + static_cast<double>(i) - c.x;
                    double a = 0;
                    if (dx > 0 && dy >= 0) {
                        a = f[i];
                    } else if (dx == 0 && dy >= 0) {
                        a = q / 2;
                    } else if (dx < 0) {
                        a = f[i] + q;
                    } else if (dx == 0) {
                        a = q * 1.5;
                    } else {
                        a = f[i] + 2 * q;
                    }
                    a = a - q / 2;
                    // One correction by a whole turn; a tan far beyond it stays
                    // out and the sampler takes it to the edge.
                    if (a < 0) {
                        a = a + 2 * q;
                    } else if (a > 2 * q) {
                        a = a - 2 * q;
                    }
                    // Rounded as doubles: a huge tan is no error, the sampler
                    // takes it to the edge (a NaN still fails there).
                    xs[i] = roundHalfEven(a / (2 * q) * lastColumn);
                    ys[i] = roundHalfEven(std::sqrt(dx * dx + dy * dy));
                }
            });
    });
}

} // namespace lumiran
