// The spheres over the whole rectangle: one centred sphere, tilings of
// spheres, spheres and spots at random, and the lamp over a flat picture.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "effects/texture/hide_effect/sphere_light.h"

#include <algorithm>
#include <cmath>

namespace lumiran {
namespace {

using hide::Lighting;
using hide::Shade;

Lighting lightingOf(std::int16_t x, std::int16_t y, std::int16_t z, std::int16_t red,
                    std::int16_t green, std::int16_t blue, double ambient) {
    return {hide::lightVector(x, y, z), {double(red), double(green), double(blue)}, ambient};
}

// Where a lens of a sphere fetches its source, as an offset from the
// centre; clamped to the rectangle by the caller.
struct Offset {
    double x = 0;
    double y = 0;
};

// Crystal_Ball's lenses: 0 the pixel itself, 1 magnified, 2 shrunk, 3
// mirrored through the centre, 4 the centre's colour throughout.
Offset ballLens(std::uint8_t type, double dx, double dy) {
    switch (type) {
    case 1:
        return {dx / 2, dy / 2};
    case 2:
        return {dx * 2, dy * 2};
    case 3:
        return {-dx, -dy};
    case 4:
        return {0, 0};
    default:
        return {dx, dy};
    }
}

// Crystal_Line's refractions by the distance D from the centre, with the
// absolute centre in the denominator as the rule has it.
Offset lineLens(std::uint8_t type, double dx, double dy, double cx, double cy, double q) {
    const double d = std::sqrt(dx * dx + dy * dy);
    double ax = 4 * d / (cx + q);
    double ay = 4 * d / (cy + q);
    switch (type) {
    case 1:
        if (ax == 0) ax = 1;
        if (ay == 0) ay = 1;
        return {dx / std::sin(ax), dy / std::sin(ay)};
    case 2:
        return {std::cos(ax) * dx, std::cos(ay) * dy};
    case 3:
        return {(1 - std::sin(ax)) * dx, (1 - std::sin(ay)) * dy};
    case 4:
        return {std::tan(ax) * dx, std::tan(ay) * dy};
    default:
        return {std::sin(ax) * dx, std::sin(ay) * dy};
    }
}

int clampedIndex(double v, int first, int end) {
    if (!(v >= first)) return first; // NaN too
    if (v > end - 1) return end - 1;
    return roundInRange<std::int32_t>(v);
}

Pixel backgroundPixel(std::uint8_t background, Pixel source) {
    if (background == 1) return withColour(source, 0, 0, 0);
    if (background == 2) return withColour(source, 255, 255, 255);
    return source;
}

} // namespace

void Class_HideEffect::Specular(double radiusPercent, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                                std::int16_t lightY, std::int16_t lightZ,
                                std::int16_t reflectionRed, std::int16_t reflectionGreen,
                                std::int16_t reflectionBlue, double ambient, std::uint8_t drawMode,
                                std::uint8_t selector) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(top, bottom);
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflectionRed, reflectionGreen,
                                             reflectionBlue, ambient);
        const int q = hide::sphereRadius(radiusPercent, right - left, bottom - top);
        const double cx = std::round((right - left) / 2.0 + left);
        const double cy = std::round((bottom - top) / 2.0 + top);
        const Rgb8 pen = context().flags.drawingColor;
        // Which of red, green, blue the selector lets change.
        static constexpr bool changes[7][3] = {
            {true, true, true},  {true, false, false}, {false, true, false}, {false, false, true},
            {true, true, false}, {false, true, true},  {true, false, true}};
        const auto& mask = changes[std::min<int>(selector, 6)];
        forEachRow(rect, [&](int y, int first, int end) {
            const Pixel* in = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            for (int x = first; x < end; ++x) {
                const Shade shade = hide::sphereShade(lighting.light, x - cx, y - cy, q);
                if (!shade.inside) continue;
                const int r = redOf(in[x]), g = greenOf(in[x]), b = blueOf(in[x]);
                const Rgb16 lit =
                    drawMode == 0 ? hide::shadeColour(lighting, shade, pen.red, pen.green, pen.blue)
                                  : hide::shadeColour(lighting, shade, r, g, b);
                const Rgb16 kept{mask[0] ? lit.red : std::int16_t(r),
                                 mask[1] ? lit.green : std::int16_t(g),
                                 mask[2] ? lit.blue : std::int16_t(b)};
                const Rgb16 v = finishPixel<ResultTail::Clamp>(r, g, b, kept);
                out[x] = withColour(out[x], v.red, v.green, v.blue);
            }
        });
    });
}

template <typename Lens>
void Class_HideEffect::sphereAt(int cx, int cy, int q, const Lighting& lighting, const Span& span,
                                bool spot, Lens lens) {
    const int firstRow = std::max(cy - q, span.firstRow);
    const int endRow = std::min(cy + q + 1, span.endRow);
    const int firstColumn = std::max(cx - q, span.firstColumn);
    const int endColumn = std::min(cx + q + 1, span.endColumn);
    for (int y = firstRow; y < endRow; ++y) {
        Pixel* out = TransBits.row(y).data();
        for (int x = firstColumn; x < endColumn; ++x) {
            const double dx = x - cx, dy = y - cy;
            const Shade shade = hide::sphereShade(lighting.light, dx, dy, q);
            if (!shade.inside) continue;
            const Offset at = lens(dx, dy, cx, cy);
            const Pixel source =
                ImageBits.at(clampedIndex(cx + at.x, span.firstColumn, span.endColumn),
                             clampedIndex(cy + at.y, span.firstRow, span.endRow));
            const int r = redOf(source), g = greenOf(source), b = blueOf(source);
            Rgb16 lit = hide::shadeColour(lighting, shade, r, g, b);
            if (spot) {
                // The spot lights what lies under it, earlier spots included.
                const Pixel under = out[x];
                const auto plus = [&](int c, double reflection) {
                    return roundTo<std::int16_t>(c + lighting.ambient * shade.diffuse +
                                                 reflection * shade.specular);
                };
                lit = {plus(redOf(under), lighting.reflection[0]),
                       plus(greenOf(under), lighting.reflection[1]),
                       plus(blueOf(under), lighting.reflection[2])};
            }
            const Rgb16 v = finishPixel<ResultTail::Clamp>(r, g, b, lit);
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        }
    }
}

template <typename Lens>
void Class_HideEffect::spheresOverTiles(const ProcessRect& rect, const Lighting& lighting, int q,
                                        std::uint8_t background, Lens lens) {
    SetProgressRange(rect.top, rect.bottom);
    const Span span = spanOf(rect);
    const int side = 2 * q;
    auto centre = [side, q](int v, int origin) { return origin + (v - origin) / side * side + q; };
    forEachRow(rect, [&](int y, int first, int end) {
        const Pixel* in = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        const int cy = centre(y, rect.top);
        for (int x = first; x < end; ++x) {
            const int cx = centre(x, rect.left);
            const double dx = x - cx, dy = y - cy;
            const Shade shade = hide::sphereShade(lighting.light, dx, dy, q);
            if (!shade.inside) {
                out[x] = backgroundPixel(background, in[x]);
                continue;
            }
            const Offset at = lens(dx, dy, cx, cy);
            const Pixel source =
                ImageBits.at(clampedIndex(cx + at.x, span.firstColumn, span.endColumn),
                             clampedIndex(cy + at.y, span.firstRow, span.endRow));
            const int r = redOf(source), g = greenOf(source), b = blueOf(source);
            const Rgb16 v = finishPixel<ResultTail::Clamp>(
                r, g, b, hide::shadeColour(lighting, shade, r, g, b));
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        }
    });
}

void Class_HideEffect::Crystal_Ball(double radiusPercent, std::int16_t left, std::int16_t top,
                                    std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                                    std::int16_t lightY, std::int16_t lightZ,
                                    std::int16_t reflectionRed, std::int16_t reflectionGreen,
                                    std::int16_t reflectionBlue, double ambient, std::uint8_t type,
                                    std::uint8_t background) {
    guarded([&] {
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflectionRed, reflectionGreen,
                                             reflectionBlue, ambient);
        const int q = hide::sphereRadius(radiusPercent, right - left, bottom - top);
        spheresOverTiles(
            {left, top, right, bottom}, lighting, q, background,
            [type](double dx, double dy, double, double) { return ballLens(type, dx, dy); });
    });
}

void Class_HideEffect::Crystal_Line(double radiusPercent, std::int16_t left, std::int16_t top,
                                    std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                                    std::int16_t lightY, std::int16_t lightZ,
                                    std::int16_t reflectionRed, std::int16_t reflectionGreen,
                                    std::int16_t reflectionBlue, double ambient, std::uint8_t type,
                                    std::uint8_t background) {
    guarded([&] {
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflectionRed, reflectionGreen,
                                             reflectionBlue, ambient);
        const int q = hide::sphereRadius(radiusPercent, right - left, bottom - top);
        spheresOverTiles({left, top, right, bottom}, lighting, q, background,
                         [type, q](double dx, double dy, double cx, double cy) {
                             return lineLens(type, dx, dy, cx, cy, q);
                         });
    });
}

void Class_HideEffect::randomSpheres(const ProcessRect& rect, const Lighting& lighting, int q,
                                     int count, std::uint8_t type, std::uint8_t background,
                                     bool spot) {
    const Span span = spanOf(rect);
    for (int y = span.firstRow; y < span.endRow; ++y) {
        for (int x = span.firstColumn; x < span.endColumn; ++x) {
            TransBits.at(x, y) = backgroundPixel(background, ImageBits.at(x, y));
        }
    }
    const double width = rect.right - rect.left;
    const double height = rect.bottom - rect.top;
    hundredthsShown_ = 0;
    SetProgressRange(0, 100);
    for (int n = 0; n < count; ++n) {
        const int cx = roundTo<std::int32_t>(width * context().random.next() + rect.left);
        const int cy = roundTo<std::int32_t>(height * context().random.next() + rect.top);
        sphereAt(cx, cy, q, lighting, span, spot,
                 [type](double dx, double dy, double, double) { return ballLens(type, dx, dy); });
        if (!stepHundredths(n + 1, count)) return;
    }
}

namespace {

// As many spheres as the tiling of the rectangle has tiles.
int tileCount(const ProcessRect& rect, int q) {
    const int side = 2 * q;
    const int across = (rect.right - rect.left + side - 1) / side;
    const int down = (rect.bottom - rect.top + side - 1) / side;
    return std::max(across, 0) * std::max(down, 0);
}

} // namespace

void Class_HideEffect::Crystal_Random(double radiusPercent, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                                      std::int16_t lightY, std::int16_t lightZ,
                                      std::int16_t reflectionRed, std::int16_t reflectionGreen,
                                      std::int16_t reflectionBlue, double ambient,
                                      std::uint8_t type, std::uint8_t background) {
    guarded([&] {
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflectionRed, reflectionGreen,
                                             reflectionBlue, ambient);
        const ProcessRect rect{left, top, right, bottom};
        const int q = hide::sphereRadius(radiusPercent, right - left, bottom - top);
        randomSpheres(rect, lighting, q, tileCount(rect, q), type, background, false);
    });
}

void Class_HideEffect::RandomSpot(double radiusPercent, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                                  std::int16_t lightY, std::int16_t lightZ,
                                  std::int16_t reflectionRed, std::int16_t reflectionGreen,
                                  std::int16_t reflectionBlue, double ambient, std::uint8_t type,
                                  std::uint8_t background) {
    guarded([&] {
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflectionRed, reflectionGreen,
                                             reflectionBlue, ambient);
        const ProcessRect rect{left, top, right, bottom};
        const int full = hide::sphereRadius(radiusPercent, right - left, bottom - top);
        const int parts = 5 - std::min<int>(type, 4);
        const int q = std::max(1, full * parts / 5);
        randomSpheres(rect, lighting, q, tileCount(rect, q), 0, background, true);
    });
}

void Class_HideEffect::Crystal_Lighting(double radiusPercent, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom,
                                        std::int16_t lightX, std::int16_t lightY,
                                        std::int16_t lightZ, std::int16_t reflectionRed,
                                        std::int16_t reflectionGreen, std::int16_t reflectionBlue,
                                        double ambient, std::uint8_t /*reserved1*/,
                                        std::uint8_t /*reserved2*/) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(top, bottom);
        Lighting lighting =
            lightingOf(0, 0, 10, reflectionRed, reflectionGreen, reflectionBlue, ambient);
        const int q = hide::sphereRadius(radiusPercent, right - left, bottom - top);
        // The lamp: over the centre, moved by x and y in tenths of the half
        // sides, at a height of z tenths of the radius.
        const double lampX = (right - left) / 2.0 + left + lightX / 10.0 * (right - left) / 2;
        const double lampY = (bottom - top) / 2.0 + top + lightY / 10.0 * (bottom - top) / 2;
        const double lampZ = lightZ / 10.0 * q;
        const hide::Vector3 up{0, 0, 1};
        forEachRow(rect, [&](int y, int first, int end) {
            const Pixel* in = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            for (int x = first; x < end; ++x) {
                const hide::Vector3 toLamp{lampX - x, lampY - y, lampZ};
                const double n =
                    std::sqrt(toLamp.x * toLamp.x + toLamp.y * toLamp.y + toLamp.z * toLamp.z);
                const hide::Vector3 light =
                    n == 0 ? up : hide::Vector3{toLamp.x / n, toLamp.y / n, toLamp.z / n};
                const Shade shade = hide::shadeNormal(light, up);
                const int r = redOf(in[x]), g = greenOf(in[x]), b = blueOf(in[x]);
                const Rgb16 v = finishPixel<ResultTail::Clamp>(
                    r, g, b, hide::shadeColour(lighting, shade, r, g, b));
                out[x] = withColour(out[x], v.red, v.green, v.blue);
            }
        });
    });
}

bool Class_HideEffect::stepHundredths(long long done, long long total) {
    while (hundredthsShown_ < 100 && done * 100 >= (hundredthsShown_ + 1) * total) {
        ++hundredthsShown_;
        if (!finishRow()) return false;
    }
    return !context().cancelled();
}

} // namespace lumiran
