// Power Hole, Blow Up and Suck In: the offset from the centre scaled by a
// function of the distance.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <algorithm>

namespace lumiran {
namespace {

// A function's values for each distance of a row: f of the angle, or sin
// and cos of it for the crossed form (function 3).
struct FunctionValues {
    std::span<double> first;  // f, or sin
    std::span<double> second; // cos, for function 3
};

// In place of the angles.
FunctionValues valuesOf(std::uint8_t function, std::span<double> angles, RowScratch& scratch) {
    FunctionValues v{angles, {}};
    if (function == 3) {
        v.second = scratch.take(angles.size());
        trig::sinCos(v.first, v.first, v.second);
    } else {
        trig::byFunction(function, v.first, v.first);
    }
    return v;
}

// Each pixel's offset from the centre scaled by the values of its
// distance: fx along x and fy along y, crossed with the cosines for
// function 3.
void placeScaled(const RadialRow& row, const WarpCentre& c, const FunctionValues& fx,
                 const FunctionValues& fy, bool crossed, std::span<double> xs,
                 std::span<double> ys) {
    for (std::size_t i = 0; i < xs.size(); ++i) {
        const double dx = row.dx(i), dy = row.dy;
        const std::size_t k = row.slot(i);
        if (crossed) {
            xs[i] = dx * fx.first[k] + c.x + dy * fx.second[k];
            ys[i] = dx * fy.second[k] + c.y + dy * fy.first[k];
        } else {
            xs[i] = dx * fx.first[k] + c.x;
            ys[i] = dy * fy.first[k] + c.y;
        }
    }
}

} // namespace

void Class_Geometry::PowerHole(double radius, std::uint8_t function, std::uint8_t axes,
                               std::int16_t left, std::int16_t top, std::int16_t right,
                               std::int16_t bottom, std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        if (radius == 0 || function > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const RadialRow row(y, c, first, xs.size());
                const std::span<double> t = row.radii(scratch.take(row.distances()));
                for (double& v : t)
                    v = v / radius;
                const FunctionValues f = valuesOf(function, t, scratch);
                placeScaled(row, c, f, f, function == 3, xs, ys);
            });
    });
}

void Class_Geometry::Wave_FishEye(double radius, std::uint8_t function, std::uint8_t kind,
                                  std::int16_t left, std::int16_t top, std::int16_t right,
                                  std::int16_t bottom, std::int16_t xPercent,
                                  std::int16_t yPercent) {
    guarded([&] {
        if (radius == 0 || function > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double halfWidth = wrap16(right - left) / 2.0 + radius;
        const double halfHeight = wrap16(bottom - top) / 2.0 + radius;
        warpRows(
            rect, 2,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const RadialRow row(y, c, first, xs.size());
                const std::span<double> r = row.radii(scratch.take(row.distances()));
                // Kinds beyond 2 leave both angles at 0, as unset variables are.
                const std::span<double> a = scratch.take(r.size()), b = scratch.take(r.size());
                std::ranges::fill(a, 0.0);
                std::ranges::fill(b, 0.0);
                for (std::size_t k = 0; k < r.size(); ++k) {
                    const double d = row.nearest + static_cast<double>(k);
                    if (kind == 0) {
                        a[k] = r[k] / halfWidth;
                        b[k] = r[k] / halfHeight;
                    } else if (kind == 1) {
                        const double nonZero = r[k] == 0 ? 1 : r[k];
                        a[k] = halfWidth / nonZero;
                        b[k] = halfHeight / nonZero;
                    } else if (kind == 2) {
                        a[k] = d / halfWidth;
                        b[k] = std::abs(row.dy) / halfHeight;
                    }
                }
                const FunctionValues fa = valuesOf(function, a, scratch);
                const FunctionValues fb = valuesOf(function, b, scratch);
                placeScaled(row, c, fa, fb, function == 3, xs, ys);
            });
    });
}

void Class_Geometry::Wave_Suck(double radius, std::uint8_t function, std::uint8_t axes,
                               std::int16_t left, std::int16_t top, std::int16_t right,
                               std::int16_t bottom, std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        if (radius == 0 || function > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double quarterWidth = wrap16(right - left) / 4.0 + radius;
        const double quarterHeight = wrap16(bottom - top) / 4.0 + radius;
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const RadialRow row(y, c, first, xs.size());
                const std::span<double> a = row.radii(scratch.take(row.distances()));
                const std::span<double> b = scratch.take(a.size());
                std::ranges::copy(a, b.begin());
                // At the centre both are 0: they become 1, so the divisor is
                // sin 1 and the centre pixel stays.
                for (double& v : a)
                    v = v / quarterWidth == 0 ? 1 : v / quarterWidth;
                for (double& v : b)
                    v = v / quarterHeight == 0 ? 1 : v / quarterHeight;
                const FunctionValues fa = valuesOf(function, a, scratch);
                const FunctionValues fb = valuesOf(function, b, scratch);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    const double dx = row.dx(i), dy = row.dy;
                    const std::size_t k = row.slot(i);
                    if (function == 3) {
                        xs[i] = dx / fa.first[k] + c.x + dy / fa.second[k];
                        ys[i] = dx / fb.second[k] + c.y + dy / fb.first[k];
                    } else {
                        xs[i] = dx / fa.first[k] + c.x;
                        ys[i] = dy / fb.first[k] + c.y;
                    }
                }
            });
    });
}

} // namespace lumiran
