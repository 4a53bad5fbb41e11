// Sphere: polar coordinates, the angle about the centre as the column and
// the distance as the row.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <algorithm>
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
                // The quadrant goes by the sign of dx alone, dy being the
                // row's: the columns left of the centre, the centre's and
                // those right of it each take one term, in loops without
                // branches.
                const auto place = [&](std::size_t i, double a) {
                    const double dx = first + static_cast<double>(i) - c.x;
                    a = a - q / 2;
                    // One correction by a whole turn; a tan far beyond it
                    // stays out and the sampler takes it to the edge.
                    a = a < 0 ? a + 2 * q : a > 2 * q ? a - 2 * q : a;
                    // Rounded as doubles: a huge tan is no error, the sampler
                    // takes it to the edge (a NaN still fails there).
                    xs[i] = roundHalfEven(a / (2 * q) * lastColumn);
                    ys[i] = roundHalfEven(std::sqrt(dx * dx + dy * dy));
                };
                const auto centre = static_cast<std::size_t>(std::clamp<long long>(
                    static_cast<long long>(c.x) - first, 0, static_cast<long long>(n)));
                for (std::size_t i = 0; i < centre; ++i)
                    place(i, f[i] + q);
                std::size_t i = centre;
                if (i < n && first + static_cast<long long>(i) == c.x) {
                    place(i, dy >= 0 ? q / 2 : q * 1.5);
                    ++i;
                }
                if (dy >= 0) {
                    for (; i < n; ++i)
                        place(i, f[i]);
                } else {
                    for (; i < n; ++i)
                        place(i, f[i] + 2 * q);
                }
            });
    });
}

} // namespace lumiran
