// Ripploid and Eddying Current: displacement read from a grey map of rings
// (or a spiral) about the centre.
#include "effects/geometry/grey_map.h"
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <cmath>
#include <numbers>

namespace lumiran {
namespace {

// Rings enough to reach the farthest corner of the picture from the centre.
std::size_t ringsToCorners(WarpCentre c, int width, int height) {
    const double farX = std::max(c.x, width - 1 - c.x);
    const double farY = std::max(c.y, height - 1 - c.y);
    return static_cast<std::size_t>(std::ceil(std::sqrt(farX * farX + farY * farY))) + 2;
}

enum class RipploidWave : std::uint8_t { Sin, Cos, Tan, SinThenCos, ArcTan };

// The factor of the grey level for each v, in place: wave(v / period) + 1,
// or |tan(v / period) + 1| for the tan form.
void ripploidFactor(RipploidWave wave, double period, std::span<double> values) {
    for (double& v : values)
        v = v / period;
    switch (wave) {
    case RipploidWave::Cos:
        trig::cosine(values, values);
        break;
    case RipploidWave::Tan:
        trig::tangent(values, values);
        break;
    case RipploidWave::ArcTan:
        trig::arcTangent(values, values);
        break;
    default:
        trig::sine(values, values);
        break;
    }
    for (double& v : values)
        v = wave == RipploidWave::Tan ? std::abs(v + 1) : v + 1;
}

} // namespace

void Class_Geometry::Ripploid(double period, std::int16_t left, std::int16_t top,
                              std::int16_t right, std::int16_t bottom, std::uint8_t kind,
                              std::int16_t xPercent, std::int16_t yPercent, std::uint8_t axes) {
    guarded([&] {
        showPass(context(), GreyMapPass::Map);
        if (kind > 4) return;
        const auto wave = static_cast<RipploidWave>(kind);
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const int turn = roundTo<std::int32_t>(period);
        const double p1 = turn + 1.0;
        // Grey from 0, turning at the period and at 0: ring i has radius i + 1.
        const std::vector<std::uint8_t> levels =
            greyWalk(ringsToCorners(c, ImageBits.width(), ImageBits.height()), 0, 0, turn, 0, 255);
        const Span span = spanOf(rect);
        std::vector<double> byColumn(
            static_cast<std::size_t>(std::max(span.endColumn - span.firstColumn, 0)));
        for (std::size_t i = 0; i < byColumn.size(); ++i)
            byColumn[i] = span.firstColumn + static_cast<double>(i);
        ripploidFactor(wave, p1, byColumn);
        showPass(context(), GreyMapPass::Warp);
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const std::size_t n = xs.size();
                const RadialRow row(y, c, first, n);
                const std::span<double> r = row.radii(scratch.take(row.distances()));
                double byRow = y;
                ripploidFactor(wave, p1, std::span<double>(&byRow, 1));
                const double* column = byColumn.data() + (first - span.firstColumn);
                const std::span<double> h = scratch.take(n);
                for (std::size_t i = 0; i < n; ++i) {
                    const std::size_t ring = ringAt(r[row.slot(i)], levels.size());
                    h[i] = levels[ring == 0 ? 0 : ring - 1];
                }
                for (std::size_t i = 0; i < n; ++i) {
                    xs[i] = byRow * h[i] + (first + static_cast<double>(i));
                    ys[i] = column[i] * h[i] + y;
                }
                if (wave != RipploidWave::SinThenCos) return;
                // The cos form applied in turn to the first results.
                const std::span<double> xOf = scratch.take(n), yOf = scratch.take(n);
                std::ranges::copy(xs, xOf.begin());
                std::ranges::copy(ys, yOf.begin());
                ripploidFactor(RipploidWave::Cos, p1, yOf);
                ripploidFactor(RipploidWave::Cos, p1, xOf);
                for (std::size_t i = 0; i < n; ++i) {
                    xs[i] = yOf[i] * h[i] + (first + static_cast<double>(i));
                    ys[i] = xOf[i] * h[i] + y;
                }
            });
    });
}

void Class_Geometry::EddyingCurrent(std::uint8_t kind, double strength, std::int16_t left,
                                    std::int16_t top, std::int16_t right, std::int16_t bottom,
                                    std::int16_t xPercent, std::int16_t yPercent,
                                    std::uint8_t axes) {
    guarded([&] {
        showPass(context(), GreyMapPass::Map);
        if (kind > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const int s = roundTo<std::int32_t>(strength);
        const double low = s / 2.0 + 1, high = s + 2.0;
        // One turn of the spiral advances the map by one period of the walk,
        // so the spiral closes without a seam.
        const double walkPeriod = 2 * std::max(high - std::floor(low), 1.0);
        const std::size_t rings = ringsToCorners(c, ImageBits.width(), ImageBits.height()) +
                                  static_cast<std::size_t>(walkPeriod);
        const std::vector<std::uint8_t> levels = greyWalk(rings, 0, low, high, 0, 255);
        // Each level turns its ring by as many degrees.
        std::vector<double> turnSin(256), turnCos(256);
        for (std::size_t level = 0; level < 256; ++level)
            turnSin[level] = static_cast<double>(level) * GeometryPi / 180;
        trig::sinCos(turnSin, turnSin, turnCos);
        constexpr double Turn = 2 * std::numbers::pi;
        const double ringsPerRadian = walkPeriod / Turn;
        showPass(context(), GreyMapPass::Warp);
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const std::size_t n = xs.size();
                const double dy = y - c.y;
                const std::span<double> angle = scratch.take(n);
                for (std::size_t i = 0; i < n; ++i)
                    angle[i] = dy / (first + static_cast<double>(i) - c.x);
                if (kind != 1) trig::arcTangent(angle, angle);
                for (std::size_t i = 0; i < n; ++i) {
                    const double dx = first + static_cast<double>(i) - c.x;
                    double distance = std::sqrt(dx * dx + dy * dy);
                    if (kind != 1 && distance > 0) {
                        // The angle from straight up, 0 .. 2 pi, one way or the other.
                        const double theta =
                            angle[i] + (dx < 0 ? std::numbers::pi : 0) + std::numbers::pi / 2;
                        distance += (kind == 0 ? theta : Turn - theta) * ringsPerRadian;
                    }
                    const std::uint8_t level = levels[ringAt(distance, levels.size())];
                    xs[i] = c.x + dx * turnCos[level] - dy * turnSin[level];
                    ys[i] = c.y + dy * turnCos[level] + dx * turnSin[level];
                }
            });
    });
}

} // namespace lumiran
