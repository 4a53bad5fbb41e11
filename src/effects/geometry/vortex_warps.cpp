// Whirlpool and Vortex: turns that grow with the distance from the centre.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

namespace lumiran {
namespace {

// sin and cos of each angle, in place of the angles.
struct Turns {
    explicit Turns(std::vector<double> angles) : sin(std::move(angles)), cos(sin.size()) {
        trig::sinCos(sin, sin, cos);
    }
    std::vector<double> sin;
    std::vector<double> cos;
};

} // namespace

void Class_Geometry::Whirlpool(std::int16_t strength, std::uint8_t axes, std::int16_t left,
                               std::int16_t top, std::int16_t right, std::int16_t bottom,
                               std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const float quarter = static_cast<float>(strength / 4.0);
        double p = static_cast<double>(quarter) / Pi;
        if (p == 0) p = 1;
        warpRows(rect, axes, [&](int y, int first, std::span<double> xs, std::span<double> ys) {
            const RadialRow row(y, c, first, xs.size());
            std::vector<double> t = row.radii();
            for (double& v : t)
                v = v / p;
            const Turns turn(std::move(t));
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
        warpRows(rect, axes, [&](int y, int first, std::span<double> xs, std::span<double> ys) {
            const RadialRow row(y, c, first, xs.size());
            std::vector<double> t = row.radii();
            for (double& v : t)
                v = v / (radius / 4) / Pi;
            std::vector<double> extra; // k of kinds 1 and 4, arctan t of kind 6
            if (kind == 6) {
                extra.resize(t.size());
                trig::arcTangent(t, extra);
            }
            const Turns turn(std::move(t));
            if (kind == 1 || kind == 4) {
                extra.resize(turn.sin.size());
                for (std::size_t k = 0; k < extra.size(); ++k)
                    extra[k] = turn.sin[k] == 0 ? 1 : 1 / turn.sin[k];
            }
            std::vector<double> ks, kc; // sin k and cos k of kind 4
            if (kind == 4) {
                ks.resize(extra.size());
                kc.resize(extra.size());
                trig::sinCos(extra, ks, kc);
            }
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
