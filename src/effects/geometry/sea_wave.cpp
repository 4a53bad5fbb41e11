// Sea Wave and Vertical Wave: shifts by a wave of the distance from the
// centre, added count + 1 times.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <cmath>

namespace lumiran {
namespace {

constexpr std::uint8_t SeaKinds = 7;

// F of each w in place, by kind: 0 sin, 1 cos, 2 tan, 3 sin + cos,
// 4 1 / sin, 5 1 / cos, 6 |sin|. In kinds 4 and 5 a w of 0 gives 1.
void waveOf(std::uint8_t kind, std::span<double> w, RowScratch& scratch) {
    const std::span<double> s = scratch.take(w.size()), c = scratch.take(w.size());
    trig::sinCos(w, s, c);
    for (std::size_t i = 0; i < w.size(); ++i) {
        double f = 0;
        switch (kind) {
        case 0:
            f = s[i];
            break;
        case 1:
            f = c[i];
            break;
        case 2:
            f = s[i] / c[i];
            break;
        case 3:
            f = s[i] + c[i];
            break;
        case 4:
        case 5:
            f = w[i] == 0 ? w[i] : 1 / (kind == 4 ? s[i] : c[i]);
            if (f == 0) f = 1;
            break;
        default:
            f = std::abs(s[i]);
            break;
        }
        w[i] = f;
    }
}

// position + term, and the term n times more; then held within the 16-bit
// range and one (a NaN passes for the sampler to refuse).
double shifted(double position, double term, int count) {
    double sum = position + term;
    for (int i = 0; i < count; ++i)
        sum = sum + term;
    if (sum > 32768) sum = 32768;
    if (sum < -32768) sum = -32768;
    return sum;
}

} // namespace

void Class_Geometry::seaWave(bool byAxis, std::uint8_t kind, std::uint8_t axes,
                             std::int16_t amplitude, std::int16_t damping, const ProcessRect& rect,
                             std::int16_t count, std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        if (kind >= SeaKinds) return;
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double k = 1 - damping / 100.0;
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const RadialRow row(y, c, first, xs.size());
                if (byAxis) {
                    // Each axis by its own distance: sqrt(dx^2) is |dx| exactly.
                    const std::span<double> fx = scratch.take(row.distances());
                    for (std::size_t j = 0; j < fx.size(); ++j)
                        fx[j] = (row.nearest + static_cast<double>(j)) * k;
                    const std::span<double> fy = scratch.take(1);
                    fy[0] = std::abs(static_cast<double>(row.dy)) * k;
                    waveOf(kind, fx, scratch);
                    waveOf(kind, fy, scratch);
                    const double yShifted = shifted(y, amplitude / 8.0 * fy[0], count);
                    for (std::size_t i = 0; i < xs.size(); ++i) {
                        xs[i] = shifted(first + static_cast<double>(i),
                                        amplitude / 5.0 * fx[row.slot(i)], count);
                        ys[i] = yShifted;
                    }
                    return;
                }
                const std::span<double> f = scratch.take(row.distances());
                const double dy = row.dy;
                for (std::size_t j = 0; j < f.size(); ++j) {
                    const double dx = row.nearest + static_cast<double>(j);
                    f[j] = std::sqrt(dy * dy + 0.6 * (dx * dx)) * k;
                }
                waveOf(kind, f, scratch);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    const double w = f[row.slot(i)];
                    xs[i] = shifted(first + static_cast<double>(i), amplitude / 5.0 * w, count);
                    ys[i] = shifted(y, amplitude / 8.0 * w, count);
                }
            });
    });
}

void Class_Geometry::Wave_Sea(std::uint8_t kind, std::uint8_t axes, std::int16_t amplitude,
                              std::int16_t damping, std::int16_t left, std::int16_t top,
                              std::int16_t right, std::int16_t bottom, std::int16_t count,
                              std::int16_t xPercent, std::int16_t yPercent) {
    seaWave(false, kind, axes, amplitude, damping, {left, top, right, bottom}, count, xPercent,
            yPercent);
}

void Class_Geometry::Wave_Sea2(std::uint8_t kind, std::uint8_t axes, std::int16_t amplitude,
                               std::int16_t damping, std::int16_t left, std::int16_t top,
                               std::int16_t right, std::int16_t bottom, std::int16_t count,
                               std::int16_t xPercent, std::int16_t yPercent) {
    seaWave(true, kind, axes, amplitude, damping, {left, top, right, bottom}, count, xPercent,
            yPercent);
}

} // namespace lumiran
