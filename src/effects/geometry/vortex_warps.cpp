// Whirlpool and Vortex: turns that grow with the distance from the centre.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

namespace lumiran {
namespace {

// sin and cos of each angle, the sines in place of the angles.
struct Turns {
    Turns(std::span<double> angles, RowScratch& scratch)
        : sin(angles), cos(scratch.take(angles.size())) {
        trig::sinCos(sin, sin, cos);
    }
    std::span<double> sin;
    std::span<double> cos;
};

} // namespace

void Class_Geometry::Whirlpool(std::int16_t strength, std::uint8_t axes, std::int16_t left,
                               std::int16_t top, std::int16_t right, std::int16_t bottom,
                               std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const float quarter = static_cast<float>(strength / 4.0);
        double p = static_cast<double>(quarter) / GeometryPi;
        if (p == 0) p = 1;
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const RadialRow row(y, c, first, xs.size());
                const std::span<double> t = row.radii(scratch.take(row.distances()));
                for (double& v : t)
                    v = v / p;
                const Turns turn(t, scratch);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    const double dx = row.dx(i), dy = row.dy;
                    const std::size_t k = row.slot(i);
                    // The shift by the strength belongs to x' alone.
                    xs[i] = dx * turn.sin[k] + c.x - dy * turn.cos[k] + strength;
                    ys[i] = dx * turn.cos[k] + c.y + dy * turn.sin[k];
                }
            });
    });
}

void Class_Geometry::Wave_Circle(double radius, std::uint8_t axes, std::uint8_t kind,
                                 std::int16_t left, std::int16_t top, std::int16_t right,
                                 std::int16_t bottom, std::int16_t xPercent,
                                 std::int16_t yPercent) {
    guarded([&] {
        if (radius == 0 || kind > 6) return;
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const RadialRow row(y, c, first, xs.size());
                const std::span<double> t = row.radii(scratch.take(row.distances()));
                for (double& v : t)
                    v = v / (radius / 4) / GeometryPi;
                // k of kinds 1 and 4, arctan t of kind 6
                const std::span<double> extra = scratch.take(t.size());
                if (kind == 6) trig::arcTangent(t, extra);
                const Turns turn(t, scratch);
                if (kind == 1 || kind == 4) {
                    for (std::size_t k = 0; k < extra.size(); ++k)
                        extra[k] = turn.sin[k] == 0 ? 1 : 1 / turn.sin[k];
                }
                // sin k and cos k of kind 4
                const std::span<double> ks = scratch.take(kind == 4 ? extra.size() : 0);
                const std::span<double> kc = scratch.take(ks.size());
                if (kind == 4) trig::sinCos(extra, ks, kc);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    const double dx = row.dx(i), dy = row.dy;
                    const std::size_t k = row.slot(i);
                    const double s = turn.sin[k], co = turn.cos[k];
                    switch (kind) {
                    case 0:
                        xs[i] = dx * s + c.x - dy * co;
                        ys[i] = dx * co + c.y + dy * s;
                        break;
                    case 1:
                        xs[i] = extra[k] * dx + c.x;
                        ys[i] = extra[k] * dy + c.y;
                        break;
                    case 2:
                        xs[i] = dx * co + c.x;
                        ys[i] = dy * s + c.y;
                        break;
                    case 3:
                        xs[i] = dx * s + c.x + dy * s;
                        ys[i] = dx * s + c.y + dy * s;
                        break;
                    case 4:
                        xs[i] = dx * ks[k] + c.x - dy * kc[k];
                        ys[i] = dx * kc[k] + c.y + dy * ks[k];
                        break;
                    case 5:
                        xs[i] = dx * s + c.x + dy * s;
                        ys[i] = dx * co + c.y + dy * co;
                        break;
                    default:
                        xs[i] = dx * extra[k] + c.x - dy * co;
                        ys[i] = dx * extra[k] + c.y + dy * s;
                        break;
                    }
                }
            });
    });
}

} // namespace lumiran
