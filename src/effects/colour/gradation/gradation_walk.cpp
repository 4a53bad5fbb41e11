#include "effects/colour/gradation/gradation_walk.h"

#include "engine/numeric.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace lumiran::gradation {
namespace {

struct Point {
    int x = 0;
    int y = 0;
};

enum Side : unsigned { Top = 1, Right = 2, Bottom = 4, Left = 8 };

// The pixels just outside the rectangle, clockwise from its top left corner,
// with the sides each lies on. Lines end there, so that their excluded end
// point falls outside and each line reaches the rectangle's edge.
struct BorderPoint {
    Point point;
    unsigned sides = 0;
};

std::vector<BorderPoint> borderRing(const WalkArea& a) {
    const int l = a.left - 1, t = a.top - 1, r = a.right, b = a.bottom;
    auto sidesOf = [&](int x, int y) {
        return (y == t ? Top : 0u) | (x == r ? Right : 0u) | (y == b ? Bottom : 0u) |
               (x == l ? Left : 0u);
    };
    std::vector<BorderPoint> ring;
    for (int x = l; x < r; ++x)
        ring.push_back({{x, t}, sidesOf(x, t)});
    for (int y = t; y < b; ++y)
        ring.push_back({{r, y}, sidesOf(r, y)});
    for (int x = r; x > l; --x)
        ring.push_back({{x, b}, sidesOf(x, b)});
    for (int y = b; y > t; --y)
        ring.push_back({{l, y}, sidesOf(l, y)});
    return ring;
}

// Lines from the origin to the ring's points that lie on none of the
// excluded sides, sweeping clockwise from the first point after the
// excluded sides (from the top left corner when none are excluded).
void fan(const WalkArea& a, Point origin, unsigned excluded,
         const std::function<void(std::span<const Segment>)>& position) {
    const std::vector<BorderPoint> ring = borderRing(a);
    if (ring.empty()) return;
    std::size_t start = 0;
    if (excluded != 0) {
        // The sweep starts where the ring leaves the excluded sides.
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const std::size_t before = (i + ring.size() - 1) % ring.size();
            if ((ring[i].sides & excluded) == 0 && (ring[before].sides & excluded) != 0) {
                start = i;
                break;
            }
        }
    }
    for (std::size_t k = 0; k < ring.size(); ++k) {
        const BorderPoint& p = ring[(start + k) % ring.size()];
        if ((p.sides & excluded) != 0) continue;
        const std::array<Segment, 1> line{{{origin.x, origin.y, p.point.x, p.point.y}}};
        position(line);
    }
}

// The distance from the centre to the farthest corner, rounded up.
int reach(const WalkArea& a) {
    double farthest = 0;
    for (const int x : {a.left, a.right}) {
        for (const int y : {a.top, a.bottom}) {
            farthest = std::max(farthest, std::hypot(x - a.cx, y - a.cy));
        }
    }
    return static_cast<int>(std::ceil(farthest));
}

// An Archimedean spiral of the given growth per turn; each position is a
// short radial line across one turn's width, so that the turns tile the
// plane whatever the growth.
void spiral(const WalkArea& a, int growth,
            const std::function<void(std::span<const Segment>)>& position) {
    constexpr double TwoPi = 6.2831;
    const double limit = reach(a) + 1;
    double theta = 0;
    for (;;) {
        const double r = growth * theta / TwoPi;
        if (r > limit) return;
        const double outer = r + growth + 1;
        // The first turn starts at the centre, which no inner turn covers.
        const double inner = theta < TwoPi ? 0 : r;
        const double c = std::cos(theta), s = std::sin(theta);
        const std::array<Segment, 1> line{{{a.cx + static_cast<int>(std::lround(inner * c)),
                                            a.cy + static_cast<int>(std::lround(inner * s)),
                                            a.cx + static_cast<int>(std::lround(outer * c)),
                                            a.cy + static_cast<int>(std::lround(outer * s))}}};
        position(line);
        // About one pixel along the outer end of the line.
        theta += std::min(0.5, 1.0 / outer);
    }
}

// At distance p from the centre, the four lines x = cx +- p and y = cy +- p,
// each where it lies no nearer the other axis than p: together a cross
// that widens outward, so a pixel's colour follows its nearer axis.
void cross(const WalkArea& a, const std::function<void(std::span<const Segment>)>& position) {
    const int last =
        std::max({a.cx - a.left, a.right - 1 - a.cx, a.cy - a.top, a.bottom - 1 - a.cy});
    std::vector<Segment> lines;
    for (int p = 0; p <= last; ++p) {
        lines.clear();
        for (const int x : {a.cx - p, a.cx + p}) {
            lines.push_back({x, a.top, x, a.cy - p + 1});
            lines.push_back({x, a.cy + p, x, a.bottom});
        }
        for (const int y : {a.cy - p, a.cy + p}) {
            lines.push_back({a.left, y, a.cx - p + 1, y});
            lines.push_back({a.cx + p, y, a.right, y});
        }
        position(lines);
    }
}

} // namespace

WalkArea walkArea(int left, int top, int right, int bottom) {
    return {left,
            top,
            right,
            bottom,
            roundTo<std::int32_t>((right - left) / 2.0 + left),
            roundTo<std::int32_t>((bottom - top) / 2.0 + top)};
}

void walkShape(std::uint8_t shape, const WalkArea& a, int spiralSize,
               const std::function<void(std::span<const Segment>)>& position) {
    switch (shape) {
    case 0:
        for (int y = a.top; y < a.bottom; ++y) {
            const std::array<Segment, 1> line{{{a.left, y, a.right, y}}};
            position(line);
        }
        return;
    case 1:
        for (int x = a.left; x < a.right; ++x) {
            const std::array<Segment, 1> line{{{x, a.top, x, a.bottom}}};
            position(line);
        }
        return;
    case 2:
        for (int r = 0, last = reach(a); r <= last; ++r) {
            const std::array<Segment, 1> ring{{{a.cx, a.cy, r, 0, true}}};
            position(ring);
        }
        return;
    case 3:
        fan(a, {a.cx, a.cy}, 0, position);
        return;
    case 4:
        spiral(a, std::max(spiralSize, 1), position);
        return;
    case 5:
        fan(a, {a.left, a.top}, Top | Left, position);
        return;
    case 6:
        fan(a, {a.left, a.bottom - 1}, Bottom | Left, position);
        return;
    case 7:
        fan(a, {a.right - 1, a.top}, Top | Right, position);
        return;
    case 8:
        fan(a, {a.right - 1, a.bottom - 1}, Bottom | Right, position);
        return;
    case 9:
        fan(a, {a.cx, a.top}, Top, position);
        return;
    case 10:
        fan(a, {a.cx, a.bottom - 1}, Bottom, position);
        return;
    case 11:
        fan(a, {a.left, a.cy}, Left, position);
        return;
    case 12:
        fan(a, {a.right - 1, a.cy}, Right, position);
        return;
    case 13:
        cross(a, position);
        return;
    default:
        return;
    }
}

long long walkLength(std::uint8_t shape, const WalkArea& area, int spiralSize) {
    long long count = 0;
    walkShape(shape, area, spiralSize, [&count](std::span<const Segment>) { ++count; });
    return count;
}

} // namespace lumiran::gradation
