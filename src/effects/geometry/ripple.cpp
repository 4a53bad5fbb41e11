// Ripple (the menu's Jiggle): eighteen grey maps, each read as the phase of
// a small shake.
#include "effects/geometry/grey_map.h"
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace lumiran {
namespace {

constexpr double HalfTurn = std::numbers::pi;

// What the map of a kind is made of: rings of the grey walk over a measure
// of the position, or (Horizontal, Vertical) a smooth field of sin or cos.
enum class RippleMap : std::uint8_t {
    Rings,      // 波紋: distance from the centre
    Horizontal, // 水平: sin of y, bands across the width
    Vertical,   // 垂直: cos of x, bands down the height
    Raindrops,  // 雨だれ: distance from the nearest of eight random drops
    Splash,     // 跳ねかける: rings drawn out into an eight-pointed crown
    Amoeba1,    // ｱﾒｰﾊﾞ 1: rings with three lobes
    Amoeba2,    // ｱﾒｰﾊﾞ 2: rings with lobes of three and five
    Spiral1,    // 渦巻き 1: one arm
    Spiral2,    // 渦巻き 2: two arms, turning the other way
    Rays,       // ...からの線: straight waves fanning out from a corner or an edge
    Lozenge,    // 菱形: rings in the shape of a diamond
};

// The origin of the fanning rays as a fraction of the rectangle, and the
// direction into the rectangle.
struct RayOrigin {
    double atX;
    double atY;
    double inX;
    double inY;
};

constexpr double Diagonal = std::numbers::sqrt2 / 2;

struct RippleKind {
    RippleMap map;
    RayOrigin rays{};
};

constexpr std::array<RippleKind, 18> RippleKinds = {{
    {RippleMap::Rings},
    {RippleMap::Horizontal},
    {RippleMap::Vertical},
    {RippleMap::Raindrops},
    {RippleMap::Splash},
    {RippleMap::Amoeba1},
    {RippleMap::Amoeba2},
    {RippleMap::Spiral1},
    {RippleMap::Spiral2},
    {RippleMap::Rays, {0, 0, Diagonal, Diagonal}},   // 左上からの線
    {RippleMap::Rays, {0, 1, Diagonal, -Diagonal}},  // 左下からの線
    {RippleMap::Rays, {1, 0, -Diagonal, Diagonal}},  // 右上からの線
    {RippleMap::Rays, {1, 1, -Diagonal, -Diagonal}}, // 右下からの線
    {RippleMap::Rays, {0.5, 0, 0, 1}},               // 上からの線
    {RippleMap::Rays, {0.5, 1, 0, -1}},              // 下からの線
    {RippleMap::Rays, {0, 0.5, 1, 0}},               // 左からの線
    {RippleMap::Rays, {1, 0.5, -1, 0}},              // 右からの線
    {RippleMap::Lozenge},
}};

constexpr int Raindrops = 8;

struct Point {
    double x;
    double y;
};

// The angle of each offset, from straight up, 0 .. 2 pi; 0 at the centre.
void anglesOf(double dy, std::span<const double> dxs, std::span<double> out) {
    for (std::size_t i = 0; i < dxs.size(); ++i)
        out[i] = dy / dxs[i];
    trig::arcTangent(out, out);
    for (std::size_t i = 0; i < dxs.size(); ++i) {
        const double a = out[i] + (dxs[i] < 0 ? HalfTurn : 0) + HalfTurn / 2;
        out[i] = dxs[i] == 0 && dy == 0 ? 0 : a;
    }
}

} // namespace

void Class_Geometry::Ripple(std::int16_t amplitude, std::int16_t period, std::uint8_t kind,
                            std::int16_t left, std::int16_t top, std::int16_t right,
                            std::int16_t bottom, std::uint8_t axes, std::uint8_t function,
                            std::int16_t xPercent, std::int16_t yPercent) {
    guarded([&] {
        showPass(context(), GreyMapPass::Map);
        if (kind >= RippleKinds.size() || function > 4) return;
        const RippleKind ripple = RippleKinds[kind];
        const ProcessRect rect{left, top, right, bottom};
        const WarpCentre c = centreOf(rect, xPercent, yPercent);
        const double width = wrap16(right - left), height = wrap16(bottom - top);

        // Pass one, the map: the walk from 1, turning at the period and at 1.
        const int highest = std::clamp<int>(period, 1, 255);
        const double reach = 4.0 * (std::max<double>(width, ImageBits.width()) +
                                    std::max<double>(height, ImageBits.height()));
        const auto rings = static_cast<std::size_t>(reach + 8.0 * std::abs(period) + 16);
        const std::vector<std::uint8_t> levels = greyWalk(rings, 1, 1, period, 1, 255);
        std::array<Point, Raindrops> drops{};
        if (ripple.map == RippleMap::Raindrops) {
            for (Point& drop : drops) {
                drop.x = roundHalfEven(left + context().random.next() * width);
                drop.y = roundHalfEven(top + context().random.next() * height);
            }
        }
        // Pass two reads a level m as the phase m pi / period of the shake.
        std::array<double, 256> shakeX{}, shakeY{};
        {
            std::vector<double> phase(256), s(256), co(256);
            for (std::size_t m = 0; m < phase.size(); ++m)
                phase[m] = static_cast<double>(m) * GeometryPi / period;
            trig::sinCos(phase, s, co);
            std::vector<double> t(256);
            trig::tangent(phase, t);
            for (std::size_t m = 0; m < 256; ++m) {
                const double along[] = {s[m], co[m], t[m], s[m], co[m]};
                const double across[] = {s[m], co[m], t[m], co[m], s[m]};
                shakeX[m] = amplitude * along[function];
                shakeY[m] = amplitude * across[function];
            }
        }
        const double rayLength = std::sqrt(width * width + height * height);
        const int spiralRise = std::max(highest - 1, 1); // half a period of the walk

        showPass(context(), GreyMapPass::Warp);
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const std::size_t n = xs.size();
                const std::span<double> dx = scratch.take(n), measure = scratch.take(n),
                                        angle = scratch.take(n);
                const double dy = y - c.y;
                for (std::size_t i = 0; i < n; ++i)
                    dx[i] = first + static_cast<double>(i) - c.x;
                switch (ripple.map) {
                case RippleMap::Rings:
                    for (std::size_t i = 0; i < n; ++i)
                        measure[i] = std::sqrt(dx[i] * dx[i] + dy * dy);
                    break;
                case RippleMap::Horizontal:
                case RippleMap::Vertical: {
                    // A field of sin or cos scaled to the levels the walk reaches.
                    const bool across = ripple.map == RippleMap::Horizontal;
                    const std::span<double> field = scratch.take(n);
                    for (std::size_t i = 0; i < n; ++i)
                        field[i] = (across ? y - top : first + static_cast<double>(i) - left) *
                                   GeometryPi / period;
                    if (across) {
                        trig::sine(field, field);
                    } else {
                        trig::cosine(field, field);
                    }
                    for (std::size_t i = 0; i < n; ++i) {
                        const double level = roundHalfEven((field[i] + 1) / 2 * (highest - 1)) + 1;
                        const std::size_t m = level == level ? static_cast<std::size_t>(level) : 1;
                        xs[i] = first + static_cast<double>(i) + shakeX[m];
                        ys[i] = y + shakeY[m];
                    }
                    return;
                }
                case RippleMap::Raindrops:
                    for (std::size_t i = 0; i < n; ++i) {
                        double nearest = std::numeric_limits<double>::infinity();
                        for (const Point& drop : drops) {
                            const double ex = first + static_cast<double>(i) - drop.x,
                                         ey = y - drop.y;
                            nearest = std::min(nearest, ex * ex + ey * ey);
                        }
                        measure[i] = std::sqrt(nearest);
                    }
                    break;
                case RippleMap::Splash:
                case RippleMap::Amoeba1:
                case RippleMap::Amoeba2:
                case RippleMap::Spiral1:
                case RippleMap::Spiral2: {
                    anglesOf(dy, dx, angle);
                    // The lobes of the splash and the amoebas.
                    const bool lobed = ripple.map == RippleMap::Splash ||
                                       ripple.map == RippleMap::Amoeba1 ||
                                       ripple.map == RippleMap::Amoeba2;
                    const std::span<double> wobble = scratch.take(lobed ? n : 0);
                    const std::span<double> second =
                        scratch.take(ripple.map == RippleMap::Amoeba2 ? n : 0);
                    for (std::size_t i = 0; i < wobble.size(); ++i)
                        wobble[i] = angle[i] * (ripple.map == RippleMap::Splash ? 8 : 3);
                    for (std::size_t i = 0; i < second.size(); ++i)
                        second[i] = angle[i] * 5;
                    trig::sine(wobble, wobble);
                    trig::cosine(second, second);
                    for (std::size_t i = 0; i < n; ++i) {
                        const double r = std::sqrt(dx[i] * dx[i] + dy * dy);
                        switch (ripple.map) {
                        case RippleMap::Splash:
                            measure[i] = r * (1 + 0.25 * wobble[i]);
                            break;
                        case RippleMap::Amoeba1:
                            measure[i] = r + highest * (1 + wobble[i]);
                            break;
                        case RippleMap::Amoeba2:
                            measure[i] = r + highest * (1 + (wobble[i] + second[i]) / 2);
                            break;
                        case RippleMap::Spiral1:
                            measure[i] = r + angle[i] / HalfTurn * spiralRise;
                            break;
                        default:
                            measure[i] = r + (2 * HalfTurn - angle[i]) / HalfTurn * 2 * spiralRise;
                            break;
                        }
                    }
                    break;
                }
                case RippleMap::Rays: {
                    const double ox = left + ripple.rays.atX * (width - 1);
                    const double oy = top + ripple.rays.atY * (height - 1);
                    const double nx = ripple.rays.inX, ny = ripple.rays.inY;
                    for (std::size_t i = 0; i < n; ++i) {
                        const double ux = first + static_cast<double>(i) - ox, uy = y - oy;
                        const double depth = ux * nx + uy * ny;
                        const double side = uy * nx - ux * ny;
                        angle[i] = depth == 0 && side == 0 ? 0 : side / depth;
                    }
                    trig::arcTangent(angle, angle);
                    for (std::size_t i = 0; i < n; ++i)
                        measure[i] = (angle[i] + HalfTurn / 2) * rayLength;
                    break;
                }
                case RippleMap::Lozenge:
                    for (std::size_t i = 0; i < n; ++i)
                        measure[i] = std::abs(dx[i]) + std::abs(dy);
                    break;
                }
                for (std::size_t i = 0; i < n; ++i) {
                    const std::uint8_t m = levels[ringAt(measure[i], levels.size())];
                    xs[i] = first + static_cast<double>(i) + shakeX[m];
                    ys[i] = y + shakeY[m];
                }
            });
    });
}

} // namespace lumiran
