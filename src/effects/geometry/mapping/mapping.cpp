// 3D Ripple and Thin Book: the picture on a surface seen at a slant.
#include "effects/geometry/mapping/class_3d_mapping.h"
#include "effects/geometry/vector_trig.h"
#include "engine/drawing/drawing.h"

#include <cmath>
#include <vector>

namespace lumiran {
namespace {

// Degrees to radians, the literal of this class.
constexpr double Degree = 0.017453277777777776;

struct View {
    double halfWidth;
    double halfHeight;
    double sinA, cosA; // view X
    double sinB, cosB; // view Y
};

struct SurfaceParameters {
    std::uint8_t kind;
    double strength;
    double waves;
};

// The height of the surface at (u, v).
double heightAt(const SurfaceParameters& s, const View& view, double u, double v,
                RandomGenerator& random) {
    const double hw = view.halfWidth, hh = view.halfHeight;
    const double radius = std::sqrt(u * u + v * v);
    switch (s.kind) {
    case 0:
        return s.strength / 10 * std::cos(radius * s.waves * Degree);
    case 1:
        return std::cos(radius * Degree) * 70;
    case 2:
        return 1000 / std::sqrt(std::sqrt((u - 50) * (u - 50) + (v + 50) * (v + 50) + 100)) -
               1000 / std::sqrt(std::sqrt((u + 50) * (u + 50) + (v - 50) * (v - 50) + 100));
    case 3:
        return (std::cos(6.28 / 4 * v * Degree) + std::cos(6.28 / 4 * u * Degree)) * 30;
    case 4:
        return ((u * u + v * v) * 0.25 - 5) * Degree - hh / 2;
    case 5: {
        const double a = std::cos(6.28 / 4 * v * Degree), b = std::cos(6.28 / 4 * u * Degree);
        return a + 2 * b / ((std::abs(v) / 24 + 1) * Degree);
    }
    case 6: {
        const double d = 2 - radius;
        return 2 * d < -hw ? 0 : hw + 2 * d;
    }
    case 7:
        return ((u * u - v * v) / 10) * Degree;
    case 8: {
        // A dome over the inscribed circle, falling towards the viewer's side.
        const double e = std::sqrt(hw * hh);
        return radius < e ? std::sqrt(e - radius) * 0.75 * (e - v) / e : 0;
    }
    case 9:
        return 2 * random.next() + ((hh - std::abs(v)) * std::cos(6.28 / 10 * v)) / 20;
    default: {
        const double d = 2 - radius;
        return hw + 2 * d + hw;
    }
    }
}

struct ScreenPoint {
    int x = 0;
    int y = 0;
};

// The last point of a mesh line, while the line runs.
struct Trail {
    bool started = false;
    ScreenPoint at;
};

ScreenPoint screenOf(const View& view, double u, double v, double z) {
    const double sx = view.halfWidth * 1.2 + view.sinB * v + view.cosB * u;
    const double sy =
        view.halfHeight * 1.1 + (view.cosA * z - (view.cosB * v - u * view.sinB) * view.sinA);
    return {roundTo<std::int32_t>(sx), roundTo<std::int32_t>(sy)};
}

// The source pixel a surface point shows: (|hw - u|, |hh - v|).
ColourRef pictureColour(const Surface& source, const View& view, double u, double v) {
    return GetPixel(source, roundTo<std::int32_t>(std::abs(view.halfWidth - u)),
                    roundTo<std::int32_t>(std::abs(view.halfHeight - v)));
}

} // namespace

void Class_3DMapping::Mapping(const Surface& source, Surface& target, std::int16_t viewX,
                              std::int16_t viewY, std::uint8_t drawType, std::uint8_t surfaceKind,
                              std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                              std::int16_t strength, std::int16_t waves) {
    guarded([&] {
        const Rgb8 clear = context().flags.backColor;
        Cls(target, RGB(clear.red, clear.green, clear.blue));
        if (surfaceKind > 10 || drawType > PictureOnSurface) return;
        const double a = viewX * Degree, b = viewY * Degree;
        const View view{source.width() / 2.0, source.height() / 2.0, std::sin(a),
                        std::cos(a),          std::sin(b),           std::cos(b)};
        const SurfaceParameters surface{surfaceKind, static_cast<double>(strength),
                                        static_cast<double>(waves)};
        RandomGenerator& random = context().random;
        const double hw = view.halfWidth, hh = view.halfHeight;

        if (drawType == PictureOnSurface) {
            // Every point of the picture, five pixels each, so that the
            // stretched places show no holes.
            SetProgressRange(0, static_cast<int>(std::floor(2 * hh)) + 1);
            for (double v = -hh; v <= hh; v += 1) {
                for (double u = -hw; u <= hw; u += 1) {
                    const double z = heightAt(surface, view, u, v, random);
                    const ScreenPoint p = screenOf(view, u, v, z);
                    const ColourRef colour = pictureColour(source, view, u, v);
                    if (colour == NoColour) continue;
                    SetPixelV(target, p.x, p.y, colour);
                    SetPixelV(target, p.x + 1, p.y, colour);
                    SetPixelV(target, p.x, p.y + 1, colour);
                    SetPixelV(target, p.x + 1, p.y + 1, colour);
                    SetPixelV(target, p.x + 1, p.y + 2, colour);
                }
                if (!finishRow()) return;
            }
            return;
        }

        // The mesh: lines along u at every eighth v, then along v at every
        // eighth u, each point set and joined to the one before it.
        Canvas canvas(target);
        const ColourRef meshColour = RGB(red, green, blue);
        const auto joinPoint = [&](Trail& previous, double u, double v) {
            const ScreenPoint p = screenOf(view, u, v, heightAt(surface, view, u, v, random));
            const ColourRef colour =
                drawType == MeshInColour ? meshColour : pictureColour(source, view, u, v);
            if (colour == NoColour) {
                previous.started = false;
                return;
            }
            SetPixelV(target, p.x, p.y, colour);
            if (previous.started) canvas.Line(previous.at.x, previous.at.y, p.x, p.y, colour);
            previous = {true, p};
        };
        SetProgressRange(0, 2);
        for (double v = hw; v >= -hw; v -= 8) {
            Trail previous;
            for (double u = -hh; u <= hh; u += 1)
                joinPoint(previous, u, v);
            if (context().cancelled()) return;
        }
        if (!finishRow()) return;
        for (double u = -hh; u <= hh; u += 8) {
            Trail previous;
            for (double v = hw; v >= -hw; v -= 1)
                joinPoint(previous, u, v);
            if (context().cancelled()) return;
        }
        finishRow();
    });
}

} // namespace lumiran
