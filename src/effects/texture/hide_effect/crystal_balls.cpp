// The spheres over the whole rectangle: one centred sphere, tilings of
// spheres, spheres and spots at random, and the lamp over a flat picture.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "effects/texture/hide_effect/sphere_light.h"
#include "engine/shape_bands.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <type_traits>
#include <vector>

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

// Crystal_Line's refraction along one axis, delta from the centre at the
// distance d from it, with the absolute centre in the denominator as the
// rule has it: the term of the angle (lineTerm) applied to delta
// (lineOffset). The term sees only d and the centre, so an axis whose
// centre is the same takes the same terms.
double lineTerm(std::uint8_t type, double d, double centre, double q) {
    double a = 4 * d / (centre + q);
    switch (type) {
    case 1:
        if (a == 0) a = 1;
        return std::sin(a);
    case 2:
        return std::cos(a);
    case 3:
        return 1 - std::sin(a);
    case 4:
        return std::tan(a);
    default:
        return std::sin(a);
    }
}

double lineOffset(std::uint8_t type, double term, double delta) {
    return type == 1 ? delta / term : term * delta;
}

double lineAxis(std::uint8_t type, double delta, double d, double centre, double q) {
    return lineOffset(type, lineTerm(type, d, centre, q), delta);
}

// The lenses as spheresOverTiles takes them: identity says that the source
// of every pixel is the pixel itself.
struct OwnPixel {
    static constexpr bool identity = true;
    Offset operator()(double dx, double dy, double, double) const { return {dx, dy}; }
};
struct BallLens {
    static constexpr bool identity = false;
    std::uint8_t type;
    Offset operator()(double dx, double dy, double, double) const { return ballLens(type, dx, dy); }
};
struct LineLens {
    static constexpr bool identity = false;
    std::uint8_t type;
    int q;
    Offset operator()(double dx, double dy, double cx, double cy) const {
        const double d = std::sqrt(dx * dx + dy * dy);
        return {lineAxis(type, dx, d, cx, q), lineAxis(type, dy, d, cy, q)};
    }
};

// A row of Crystal_Line's tiles by the distance k = |dx| from the centre:
// the distance and the source row hold for the whole row, the column
// offset for one tile. An offset at -k is the one at k negated to the bit
// (the factors see only the distance), so each trigonometric term is
// worked out once for both halves, and the rows' ones once for all tiles.
//
// The terms see the row only through dy * dy, so the row mirrored about the
// tile's centre has them all, the columns' ones included: they are kept by
// tile for the next row, which the row order makes the mirror.
struct LineRow {
    std::vector<double> distance;
    std::vector<double> term; // the row's lineTerm
    std::vector<const Pixel*> sourceRow;
    std::vector<int> columnRight; // the source column at +k, q + 1 a tile
    std::vector<int> columnLeft;  // and at -k
    std::vector<Pixel> gathered;  // a tile's row of sources
    int centreRow = 0;
    int rowDistance = -1; // |dy| of the terms held; -1 for none
    LineRow(int q, int tiles)
        : distance(static_cast<std::size_t>(q) + 1), term(distance.size()),
          sourceRow(distance.size()),
          columnRight(distance.size() * static_cast<std::size_t>(tiles)),
          columnLeft(columnRight.size()), gathered(2 * distance.size()) {}
};

// The rows of [first, end) tile by tile, each tile's from its centre row
// outwards, a row and its mirror one after the other.
std::vector<int> mirroredRowOrder(int first, int end, int origin, int q) {
    const int side = 2 * q;
    std::vector<int> order;
    order.reserve(static_cast<std::size_t>(std::max(0, end - first)));
    for (int top = first; top < end;) {
        const int tileTop = origin + (top - origin) / side * side;
        const int tileEnd = std::min(end, tileTop + side);
        const int centre = tileTop + q;
        auto within = [&](int y) { return y >= top && y < tileEnd; };
        // The pairs first, so that with bands of an even number of rows
        // no pair is split between two bands; the rows without a mirror
        // after them.
        std::vector<int> single;
        if (within(centre)) single.push_back(centre);
        for (int t = 1; t <= q; ++t) {
            const int above = centre - t, below = centre + t;
            if (within(above) && within(below)) {
                order.push_back(above);
                order.push_back(below);
            } else if (within(above)) {
                single.push_back(above);
            } else if (within(below)) {
                single.push_back(below);
            }
        }
        order.insert(order.end(), single.begin(), single.end());
        top = tileEnd;
    }
    return order;
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

// The outside colour of shadeOwnPixels that leaves the picture there.
constexpr Pixel KeepsPicture = 0xFFFFFFFFu;

// The lit colours of a run of pixels that are their own sources, with no
// blend and no overflow possible (roundTo and the clamp of the shared tail
// are then a rounding and a clamp); outside the sphere the picture or the
// background colour. The arrays come as restrict parameters, so the loop
// vectorises.
void shadeOwnPixels(const Pixel* __restrict source, Pixel* __restrict target, int count,
                    const double* __restrict diffuse, const double* __restrict specular,
                    const std::uint8_t* __restrict inside, const Lighting& lighting,
                    Pixel outsideColour) {
    const double ambient = lighting.ambient;
    const double weightRed = lighting.reflection[0];
    const double weightGreen = lighting.reflection[1];
    const double weightBlue = lighting.reflection[2];
    const bool showsPicture = outsideColour == KeepsPicture;
    for (int i = 0; i < count; ++i) {
        const Pixel p = source[i];
        const double d = diffuse[i], s = specular[i];
        auto lit = [&](int c, double weight) {
            return std::clamp(roundInRange<std::int32_t>(c * d + weight * s + ambient), 0, 255);
        };
        const Pixel shaded = withColour(target[i], lit(redOf(p), weightRed),
                                        lit(greenOf(p), weightGreen), lit(blueOf(p), weightBlue));
        const Pixel outside = showsPicture ? p : (p & 0xFF000000u) | outsideColour;
        target[i] = inside[i] != 0 ? shaded : outside;
    }
}

// A sphere of pixels that are their own sources painted over what lies in
// target: inside it their lit colours, outside target kept.
void shadeOverPixels(const Pixel* __restrict source, Pixel* __restrict target, int count,
                     const double* __restrict diffuse, const double* __restrict specular,
                     const std::uint8_t* __restrict inside, const Lighting& lighting) {
    const double ambient = lighting.ambient;
    const double weightRed = lighting.reflection[0];
    const double weightGreen = lighting.reflection[1];
    const double weightBlue = lighting.reflection[2];
    for (int i = 0; i < count; ++i) {
        const Pixel p = source[i];
        const double d = diffuse[i], s = specular[i];
        auto lit = [&](int c, double weight) {
            return std::clamp(roundInRange<std::int32_t>(c * d + weight * s + ambient), 0, 255);
        };
        const Pixel shaded = withColour(target[i], lit(redOf(p), weightRed),
                                        lit(greenOf(p), weightGreen), lit(blueOf(p), weightBlue));
        target[i] = inside[i] != 0 ? shaded : target[i];
    }
}

// A spot's light added to what lies in target, inside the spot only.
void spotOverPixels(Pixel* __restrict target, int count, const double* __restrict diffuse,
                    const double* __restrict specular, const std::uint8_t* __restrict inside,
                    const Lighting& lighting) {
    const double ambient = lighting.ambient;
    const double weightRed = lighting.reflection[0];
    const double weightGreen = lighting.reflection[1];
    const double weightBlue = lighting.reflection[2];
    for (int i = 0; i < count; ++i) {
        const Pixel under = target[i];
        const double d = diffuse[i], s = specular[i];
        auto plus = [&](int c, double weight) {
            return std::clamp(roundInRange<std::int32_t>(c + ambient * d + weight * s), 0, 255);
        };
        const Pixel lit =
            withColour(under, plus(redOf(under), weightRed), plus(greenOf(under), weightGreen),
                       plus(blueOf(under), weightBlue));
        target[i] = inside[i] != 0 ? lit : under;
    }
}

// What Specular lights: the drawing colour or the picture, and which
// channels it lets change.
struct SpecularPaint {
    bool pen;
    int penColour[3];
    bool changes[3];
};

// Specular's sphere over a run of pixels with no blend and no overflow
// possible; outside the sphere target is kept.
void specularPixels(const Pixel* __restrict source, Pixel* __restrict target, int count,
                    const double* __restrict diffuse, const double* __restrict specular,
                    const std::uint8_t* __restrict inside, const Lighting& lighting,
                    const SpecularPaint& paint) {
    const double ambient = lighting.ambient;
    const double weightRed = lighting.reflection[0];
    const double weightGreen = lighting.reflection[1];
    const double weightBlue = lighting.reflection[2];
    const bool pen = paint.pen;
    const int penRed = paint.penColour[0], penGreen = paint.penColour[1],
              penBlue = paint.penColour[2];
    const bool red = paint.changes[0], green = paint.changes[1], blue = paint.changes[2];
    for (int i = 0; i < count; ++i) {
        const Pixel p = source[i];
        const double d = diffuse[i], s = specular[i];
        auto lit = [&](int c, double weight) {
            return std::clamp(roundInRange<std::int32_t>(c * d + weight * s + ambient), 0, 255);
        };
        const int r = redOf(p), g = greenOf(p), b = blueOf(p);
        const int litRed = lit(pen ? penRed : r, weightRed);
        const int litGreen = lit(pen ? penGreen : g, weightGreen);
        const int litBlue = lit(pen ? penBlue : b, weightBlue);
        const Pixel shaded =
            withColour(target[i], red ? litRed : r, green ? litGreen : g, blue ? litBlue : b);
        target[i] = inside[i] != 0 ? shaded : target[i];
    }
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
        const BandPlan plan = bandPlan(rect);
        std::vector<hide::SphereRow> spheres(static_cast<std::size_t>(std::max(plan.workers, 1)),
                                             hide::SphereRow(lighting.light, q));
        const bool plain = !(calculationFlag() > 0) && hide::shadeFitsSixteenBits(lighting);
        const SpecularPaint paint{
            drawMode == 0, {pen.red, pen.green, pen.blue}, {mask[0], mask[1], mask[2]}};
        rowsInBands(rect, plan, [&](int worker, int y, int first, int end) {
            const Pixel* in = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            hide::SphereRow& sphere = spheres[static_cast<std::size_t>(worker)];
            sphere.shade(y - cy);
            if (plain) {
                // Only the columns the sphere reaches: -q .. q from the centre.
                const int from = std::max(first, static_cast<int>(cx) - q);
                const int to = std::min(end, static_cast<int>(cx) + q + 1);
                if (from >= to) return;
                const int offset = from - static_cast<int>(cx);
                specularPixels(in + from, out + from, to - from, sphere.diffuseFrom(offset),
                               sphere.specularFrom(offset), sphere.insideFrom(offset), lighting,
                               paint);
                return;
            }
            for (int x = first; x < end; ++x) {
                // x - cx is a whole number: cx is.
                const int dx = static_cast<int>(x - cx);
                if (!sphere.inside(dx)) continue;
                const Shade shade = sphere.at(dx);
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
void Class_HideEffect::sphereAt(int cx, int cy, const Lighting& lighting, const Span& span,
                                int rowBegin, int rowEnd, bool spot, bool plain,
                                hide::SphereRow& sphere, Lens lens) {
    const int q = sphere.radius();
    const int firstRow = std::max({cy - q, span.firstRow, rowBegin});
    const int endRow = std::min({cy + q + 1, span.endRow, rowEnd});
    const int firstColumn = std::max(cx - q, span.firstColumn);
    const int endColumn = std::min(cx + q + 1, span.endColumn);
    if (firstColumn >= endColumn) return;
    for (int y = firstRow; y < endRow; ++y) {
        Pixel* out = TransBits.row(y).data();
        const double dy = y - cy;
        sphere.shade(dy);
        if (plain && Lens::identity) {
            const int from = firstColumn - cx;
            const int count = endColumn - firstColumn;
            if (spot) {
                spotOverPixels(out + firstColumn, count, sphere.diffuseFrom(from),
                               sphere.specularFrom(from), sphere.insideFrom(from), lighting);
            } else {
                shadeOverPixels(ImageBits.row(y).data() + firstColumn, out + firstColumn, count,
                                sphere.diffuseFrom(from), sphere.specularFrom(from),
                                sphere.insideFrom(from), lighting);
            }
            continue;
        }
        for (int x = firstColumn; x < endColumn; ++x) {
            if (!sphere.inside(x - cx)) continue;
            const Shade shade = sphere.at(x - cx);
            const double dx = x - cx;
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
    // Unfetched, the result starts as the source's copy: the rows the loop
    // lights are copied by their own thread while at hand, the others here.
    const bool ownResult = TransBits.empty() && !ImageBits.empty();
    if (ownResult) makeTransOutside(span);
    const int side = 2 * q;
    auto centre = [side, q](int v, int origin) { return origin + (v - origin) / side * side + q; };
    // Without a blend and with a shading that cannot overflow, the colours
    // need neither the blend's branch nor the overflow check.
    const bool plain = !(calculationFlag() > 0) && hide::shadeFitsSixteenBits(lighting);
    const bool showsPicture = background != 1 && background != 2;
    const Pixel backgroundColour = backgroundPixel(background, 0) & 0x00FFFFFFu;
    // A row of the sphere's terms for each thread, filled anew for each row.
    const BandPlan plan = bandPlan(rect);
    std::vector<hide::SphereRow> spheres(static_cast<std::size_t>(std::max(plan.workers, 1)),
                                         hide::SphereRow(lighting.light, q));
    constexpr bool line = std::is_same_v<Lens, LineLens>;
    std::vector<LineRow> lines;
    std::vector<int> rowOrder;
    if constexpr (line) {
        const int tiles = (span.endColumn - span.firstColumn) / side + 2;
        lines.assign(static_cast<std::size_t>(std::max(plan.workers, 1)), LineRow(q, tiles));
        rowOrder = mirroredRowOrder(span.firstRow, span.endRow, rect.top, q);
    }
    rowsInBands(rect, plan, [&](int worker, int rowCalled, int first, int end) {
        // Every row is lit once whatever the order, and each writes only
        // its own row of the result.
        const int y =
            line ? rowOrder[static_cast<std::size_t>(rowCalled - span.firstRow)] : rowCalled;
        if (ownResult) copyRowToTrans(y);
        const Pixel* in = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        const int cy = centre(y, rect.top);
        const double dy = y - cy;
        hide::SphereRow& sphere = spheres[static_cast<std::size_t>(worker)];
        sphere.shade(dy);
        // Whether the terms held are this row's: those of its mirror.
        bool mirrored = false;
        if constexpr (line) {
            // Offsets outside the sphere name the pixel's own row, so that
            // every table entry is a place in the picture.
            LineRow& terms = lines[static_cast<std::size_t>(worker)];
            const int rowDistance = std::abs(y - cy);
            mirrored = terms.rowDistance == rowDistance && terms.centreRow == cy;
            terms.rowDistance = rowDistance;
            terms.centreRow = cy;
            for (int k = 0; k <= q; ++k) {
                const auto at = static_cast<std::size_t>(k);
                terms.sourceRow[at] = in;
                if (!sphere.inside(k)) continue;
                if (!mirrored) {
                    const auto dk = static_cast<double>(k);
                    const double d = std::sqrt(dk * dk + dy * dy);
                    terms.distance[at] = d;
                    terms.term[at] = lineTerm(lens.type, d, cy, q);
                }
                terms.sourceRow[at] =
                    ImageBits
                        .row(clampedIndex(cy + lineOffset(lens.type, terms.term[at], dy),
                                          span.firstRow, span.endRow))
                        .data();
            }
        }
        // Tile by tile: within one the offsets run on from its first pixel.
        int cx = centre(first, rect.left);
        std::size_t tile = 0;
        for (int x = first; x < end; x = std::min(end, cx + q), cx += side, ++tile) {
            const int count = std::min(end, cx + q) - x;
            const int firstOffset = x - cx;
            const Pixel* source = in + x;
            Pixel* target = out + x;
            if constexpr (line) {
                LineRow& terms = lines[static_cast<std::size_t>(worker)];
                const std::size_t tileStart = tile * (static_cast<std::size_t>(q) + 1);
                int* columnRight = terms.columnRight.data() + tileStart;
                int* columnLeft = terms.columnLeft.data() + tileStart;
                const int reach = std::max(-firstOffset, firstOffset + count - 1);
                for (int k = 0; !mirrored && k <= reach; ++k) {
                    const auto at = static_cast<std::size_t>(k);
                    columnRight[at] = columnLeft[at] = span.firstColumn;
                    if (!sphere.inside(k)) continue;
                    // A tile whose centre's column is its centre's row
                    // (the diagonal of a square) has the row's terms.
                    const double term =
                        cx == cy ? terms.term[at] : lineTerm(lens.type, terms.distance[at], cx, q);
                    const double offset = lineOffset(lens.type, term, k);
                    columnRight[at] = clampedIndex(cx + offset, span.firstColumn, span.endColumn);
                    columnLeft[at] = clampedIndex(cx + -offset, span.firstColumn, span.endColumn);
                }
                // The sources gathered, each outside pixel its own, then lit
                // as pixels that are their own sources.
                Pixel* from = terms.gathered.data();
                const std::uint8_t* inside = sphere.insideFrom(0);
                int i = 0;
                for (; i < count && firstOffset + i < 0; ++i) {
                    const auto k = static_cast<std::size_t>(-(firstOffset + i));
                    const Pixel lensed = terms.sourceRow[k][columnLeft[k]];
                    from[i] = inside[k] != 0 ? lensed : source[i];
                }
                for (; i < count; ++i) {
                    const auto k = static_cast<std::size_t>(firstOffset + i);
                    const Pixel lensed = terms.sourceRow[k][columnRight[k]];
                    from[i] = inside[k] != 0 ? lensed : source[i];
                }
                if (plain) {
                    shadeOwnPixels(from, target, count, sphere.diffuseFrom(firstOffset),
                                   sphere.specularFrom(firstOffset), sphere.insideFrom(firstOffset),
                                   lighting, showsPicture ? KeepsPicture : backgroundColour);
                    continue;
                }
                for (i = 0; i < count; ++i) {
                    const int dx = firstOffset + i;
                    if (!sphere.inside(dx)) {
                        target[i] = backgroundPixel(background, source[i]);
                        continue;
                    }
                    const int r = redOf(from[i]), g = greenOf(from[i]), b = blueOf(from[i]);
                    const Rgb16 v = finishPixel<ResultTail::Clamp>(
                        r, g, b, hide::shadeColour(lighting, sphere.at(dx), r, g, b));
                    target[i] = withColour(target[i], v.red, v.green, v.blue);
                }
                continue;
            }
            if (plain && Lens::identity) {
                shadeOwnPixels(source, target, count, sphere.diffuseFrom(firstOffset),
                               sphere.specularFrom(firstOffset), sphere.insideFrom(firstOffset),
                               lighting, showsPicture ? KeepsPicture : backgroundColour);
                continue;
            }
            for (int i = 0; i < count; ++i) {
                const int dx = firstOffset + i;
                if (!sphere.inside(dx)) {
                    target[i] = backgroundPixel(background, source[i]);
                    continue;
                }
                const Offset at = lens(dx, dy, cx, cy);
                const Pixel from =
                    ImageBits.at(clampedIndex(cx + at.x, span.firstColumn, span.endColumn),
                                 clampedIndex(cy + at.y, span.firstRow, span.endRow));
                const int r = redOf(from), g = greenOf(from), b = blueOf(from);
                const Rgb16 v = finishPixel<ResultTail::Clamp>(
                    r, g, b, hide::shadeColour(lighting, sphere.at(dx), r, g, b));
                target[i] = withColour(target[i], v.red, v.green, v.blue);
            }
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
        if (type == 0 || type > 4) {
            spheresOverTiles({left, top, right, bottom}, lighting, q, background, OwnPixel{});
        } else {
            spheresOverTiles({left, top, right, bottom}, lighting, q, background, BallLens{type});
        }
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
        spheresOverTiles({left, top, right, bottom}, lighting, q, background, LineLens{type, q});
    });
}

void Class_HideEffect::randomSpheres(const ProcessRect& rect, const Lighting& lighting, int q,
                                     int count, std::uint8_t type, std::uint8_t background,
                                     bool spot) {
    const Span span = spanOf(rect);
    const double width = rect.right - rect.left;
    const double height = rect.bottom - rect.top;
    hundredthsShown_ = 0;
    SetProgressRange(0, 100);
    // Every centre is drawn and counted first; the spheres are then painted
    // in bands of rows, each band taking them in drawing order, so that
    // later spheres still cover (or, as spots, light) earlier ones.
    struct Centre {
        int x;
        int y;
    };
    std::vector<Centre> centres;
    centres.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int n = 0; n < count; ++n) {
        const int cx = roundTo<std::int32_t>(width * context().random.next() + rect.left);
        const int cy = roundTo<std::int32_t>(height * context().random.next() + rect.top);
        centres.push_back({cx, cy});
        if (!stepHundredths(n + 1, count)) return;
    }
    if (span.empty()) return;

    const ShapeBands bands(centres.size(), span.firstRow, span.endRow, [&](std::size_t i) {
        return std::pair{centres[i].y - q, centres[i].y + q};
    });
    // Only a shading that cannot overflow runs on several threads: a worker
    // may not throw. Without a blend its rows need no per-pixel tail.
    const bool fits = hide::shadeFitsSixteenBits(lighting);
    const bool plain = fits && !(calculationFlag() > 0);
    const bool ownPixels = type == 0 || type > 4;
    const int workers = fits ? std::max(1, std::min(bandPlan(rect).workers, bands.count())) : 1;
    std::vector<hide::SphereRow> spheres(static_cast<std::size_t>(workers),
                                         hide::SphereRow(lighting.light, q));
    layBands(context().workers(), workers, bands.count(), [&](int worker, int b) {
        hide::SphereRow& sphere = spheres[static_cast<std::size_t>(worker)];
        const int rowBegin = bands.rowBegin(b);
        const int rowEnd = bands.rowEnd(b);
        for (int y = rowBegin; y < rowEnd; ++y) {
            const Pixel* in = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            for (int x = span.firstColumn; x < span.endColumn; ++x)
                out[x] = backgroundPixel(background, in[x]);
        }
        for (const std::uint32_t i : bands.shapes(b)) {
            const Centre c = centres[i];
            if (ownPixels) {
                sphereAt(c.x, c.y, lighting, span, rowBegin, rowEnd, spot, plain, sphere,
                         OwnPixel{});
            } else {
                sphereAt(c.x, c.y, lighting, span, rowBegin, rowEnd, spot, plain, sphere,
                         BallLens{type});
            }
        }
    });
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
        const bool plain = !(calculationFlag() > 0) && hide::shadeFitsSixteenBits(lighting);
        // Each thread's row of terms, worked out in one vector loop.
        struct Terms {
            std::vector<double> diffuse, specular;
            std::vector<std::uint8_t> inside;
        };
        const BandPlan plan = bandPlan(rect);
        const auto width = static_cast<std::size_t>(std::max(ImageBits.width(), 1));
        std::vector<Terms> scratch(static_cast<std::size_t>(std::max(plan.workers, 1)),
                                   Terms{std::vector<double>(width), std::vector<double>(width),
                                         std::vector<std::uint8_t>(width, 1)});
        rowsInBands(rect, plan, [&](int worker, int y, int first, int end) {
            const Pixel* in = ImageBits.row(y).data() + first;
            Pixel* out = TransBits.row(y).data() + first;
            Terms& terms = scratch[static_cast<std::size_t>(worker)];
            const int count = end - first;
            hide::lampRow(lampX, lampY - y, lampZ, first, count, terms.diffuse.data(),
                          terms.specular.data());
            if (plain) {
                shadeOwnPixels(in, out, count, terms.diffuse.data(), terms.specular.data(),
                               terms.inside.data(), lighting, KeepsPicture);
                return;
            }
            for (int i = 0; i < count; ++i) {
                const auto k = static_cast<std::size_t>(i);
                const Shade shade{true, terms.diffuse[k], terms.specular[k]};
                const int r = redOf(in[i]), g = greenOf(in[i]), b = blueOf(in[i]);
                const Rgb16 v = finishPixel<ResultTail::Clamp>(
                    r, g, b, hide::shadeColour(lighting, shade, r, g, b));
                out[i] = withColour(out[i], v.red, v.green, v.blue);
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
