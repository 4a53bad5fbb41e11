#include "engine/drawing/canvas.h"

#include "engine/drawing/bit_ops.h"
#include "engine/drawing/line_trace.h"
#include "engine/drawing/row_runs.h"
#include "engine/drawing/wide_int.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

using drawing::Pen;
using drawing::RowRuns;
using drawing::Wide;
using drawing::Window;

constexpr std::int64_t MaxRadius = std::int64_t{1} << 30;

Window visibleWindow(const Surface& surface, int left, int top, int right, int bottom) {
    return {std::max(left, 0), std::max(top, 0), std::int64_t{std::min(right, surface.width())} - 1,
            std::int64_t{std::min(bottom, surface.height())} - 1};
}

// A filled box, both corners included, each pixel once.
void paintBox(Surface& surface, const Window& visible, std::int64_t x0, std::int64_t y0,
              std::int64_t x1, std::int64_t y1, drawing::BinaryTable table, Pixel colour) {
    const std::int64_t left = std::max(x0, visible.left);
    const std::int64_t right = std::min(x1, visible.right);
    if (left > right) return;
    for (std::int64_t y = std::max(y0, visible.top); y <= std::min(y1, visible.bottom); ++y)
        drawing::fillRow(table, &surface.at(static_cast<int>(left), static_cast<int>(y)), colour,
                         static_cast<std::size_t>(right - left + 1));
}

// Whether painting twice with the same colour gives what painting once does
// (the copy, black, white and the and/or modes; not the inverting ones).
constexpr bool paintsOnce(drawing::BinaryTable table) {
    const auto result = [table](int s, int d) { return (table >> (s << 1 | d)) & 1; };
    for (int s = 0; s < 2; ++s) {
        for (int d = 0; d < 2; ++d) {
            if (result(s, result(s, d)) != result(s, d)) return false;
        }
    }
    return true;
}

// The steps k of 0..length-1 for which start + direction k lies in low..high.
std::pair<std::int64_t, std::int64_t> stepsWithin(std::int64_t start, std::int64_t direction,
                                                  std::int64_t length, std::int64_t low,
                                                  std::int64_t high) {
    const std::int64_t first = direction > 0 ? low - start : start - high;
    const std::int64_t last = direction > 0 ? high - start : start - low;
    return {std::max<std::int64_t>(first, 0), std::min(last, length - 1)};
}

// The outline of a box walked clockwise from its upper left corner, each
// pixel once; dotted, every second pixel of the walk.
void addBoxOutline(RowRuns& outline, const Window& reach, std::int64_t x0, std::int64_t y0,
                   std::int64_t x1, std::int64_t y1, bool dotted) {
    struct Edge {
        std::int64_t x, y, dx, dy, length, base;
    };
    const std::int64_t w = x1 - x0;
    const std::int64_t h = y1 - y0;
    std::vector<Edge> edges{{x0, y0, 1, 0, w + 1, 0}, {x1, y0 + 1, 0, 1, h, w + 1}};
    if (w > 0 && h > 0) {
        edges.push_back({x1 - 1, y1, -1, 0, w, w + 1 + h});
        edges.push_back({x0, y1 - 1, 0, -1, h - 1, 2 * w + 1 + h});
    }
    for (const Edge& e : edges) {
        const bool horizontal = e.dx != 0;
        const std::int64_t fixed = horizontal ? e.y : e.x;
        if (fixed < (horizontal ? reach.top : reach.left) ||
            fixed > (horizontal ? reach.bottom : reach.right))
            continue;
        const auto [first, last] = horizontal
                                       ? stepsWithin(e.x, e.dx, e.length, reach.left, reach.right)
                                       : stepsWithin(e.y, e.dy, e.length, reach.top, reach.bottom);
        for (std::int64_t k = first; k <= last; ++k) {
            if (!dotted || (e.base + k) % 2 == 0) outline.addPixel(e.x + e.dx * k, e.y + e.dy * k);
        }
    }
}

// Half-width of row dy of the filled ellipse (the largest dx with
// 4 dx^2 (2 ry + 1)^2 + 4 dy^2 (2 rx + 1)^2 < (2 rx + 1)^2 (2 ry + 1)^2), or
// -1 when the row is empty. Exact in 128 bits for semi-axes up to 2^30.
std::int64_t ellipseHalfWidth(std::int64_t rx, std::int64_t ry, std::int64_t dy) {
    if (dy < -ry || dy > ry) return -1;
    const Wide a = Wide{2 * rx + 1} * (2 * rx + 1);
    const Wide b = Wide{2 * ry + 1} * (2 * ry + 1);
    const Wide limit = a * b - Wide{4} * dy * dy * a;
    const auto inside = [&](std::int64_t dx) { return Wide{4} * dx * dx * b < limit; };
    auto h = static_cast<std::int64_t>(
        std::sqrt(static_cast<long double>(limit) / (4.0L * static_cast<long double>(b))));
    h = std::min(h, rx);
    while (h > 0 && !inside(h))
        --h;
    while (h < rx && inside(h + 1))
        ++h;
    return h;
}

// floor(num / den) for den > 0, with num - q den.
std::pair<std::int64_t, std::int64_t> floorDivide(std::int64_t num, std::int64_t den) {
    // Polygons of small cells divide small numbers: in 32 bits, which
    // divides several times faster, when both fit.
    constexpr std::int64_t Low = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t High = std::numeric_limits<std::int32_t>::max();
    if (num >= Low && num <= High && den > 0 && den <= High) {
        const auto n = static_cast<std::int32_t>(num);
        const auto d = static_cast<std::int32_t>(den);
        std::int32_t q = n / d;
        if (n % d != 0 && n < 0) --q;
        return {q, std::int64_t{n} - std::int64_t{q} * d};
    }
    std::int64_t q = num / den;
    if (num % den != 0 && num < 0) --q;
    return {q, num - q * den};
}

constexpr std::int64_t Small = std::int64_t{1} << 31;

// Sorts by less: by insertion for the few elements a small polygon has,
// where a library sort's setup costs more than the sorting.
template <typename T, typename Less>
void sortFew(std::vector<T>& items, Less less) {
    if (items.size() > 16) {
        std::ranges::sort(items, less);
        return;
    }
    for (std::size_t i = 1; i < items.size(); ++i) {
        for (std::size_t j = i; j > 0 && less(items[j], items[j - 1]); --j)
            std::swap(items[j], items[j - 1]);
    }
}

} // namespace

void Canvas::setClip(int left, int top, int right, int bottom) {
    clipLeft_ = left;
    clipTop_ = top;
    clipRight_ = right;
    clipBottom_ = bottom;
}

void Canvas::resetClip() {
    setClip(0, 0, Surface::MaxDimension, Surface::MaxDimension);
}

const drawing::Pen& Canvas::pen() {
    if (pen_.width() != std::clamp(DrawWidth, 1, 32767)) pen_ = Pen(DrawWidth);
    return pen_;
}

void Canvas::Line(int x1, int y1, int x2, int y2, ColourRef colour, LineKind kind) {
    const Window visible = visibleWindow(surface_, clipLeft_, clipTop_, clipRight_, clipBottom_);
    if (visible.empty()) return;
    const auto table = drawing::tableOf(DrawMode);
    const std::int64_t left = std::min(x1, x2);
    const std::int64_t right = std::max(x1, x2);
    const std::int64_t top = std::min(y1, y2);
    const std::int64_t bottom = std::max(y1, y2);
    if (kind == LineKind::BF) {
        paintBox(surface_, visible, left, top, right, bottom, table, colourBitsOf(colour));
        return;
    }
    const Pen& linePen = pen();
    const Window reach = linePen.reach(visible);
    const bool dotted = DrawStyle == PenStyle::Dot && linePen.width() == 1;
    if (kind == LineKind::Segment && linePen.width() == 1) {
        // The thin line has one pixel a step, each a different one: they are
        // painted as traced.
        const Pixel bits = colourBitsOf(colour);
        // The copy, by far the most common mode, is written here rather than
        // through the table's kernel: nets draw millions of short lines.
        const bool copies = table == drawing::tableOf(PenMode::CopyPen);
        drawing::traceLine(x1, y1, x2, y2, visible,
                           [&](std::int64_t x, std::int64_t y, std::int64_t i) {
                               if ((dotted && i % 2 != 0) || x < visible.left ||
                                   x > visible.right || y < visible.top || y > visible.bottom)
                                   return;
                               Pixel* at = &surface_.at(static_cast<int>(x), static_cast<int>(y));
                               if (copies) {
                                   *at = (*at & drawing::SpareByte) | (bits & drawing::ColourBytes);
                               } else {
                                   drawing::fillRow(table, at, bits, 1);
                               }
                           });
        return;
    }
    if (kind == LineKind::Segment) {
        runs_.reset(reach);
        drawing::traceLine(x1, y1, x2, y2, reach,
                           [&](std::int64_t x, std::int64_t y, std::int64_t i) {
                               if (!dotted || i % 2 == 0) runs_.addPixel(x, y);
                           });
    } else {
        if (FillStyle == BrushStyle::Solid)
            paintBox(surface_, visible, left, top, right, bottom, table, colourBitsOf(FillColor));
        runs_.reset(reach);
        addBoxOutline(runs_, reach, left, top, right, bottom, dotted);
    }
    runs_.finish();
    drawing::paintRuns(surface_, visible, runs_, linePen, table, colourBitsOf(colour));
}

void Canvas::Circle(int x, int y, int radius, ColourRef colour) {
    Ellipse(x, y, radius, radius, colour);
}

void Canvas::Ellipse(int x, int y, int radiusX, int radiusY, ColourRef colour) {
    if (radiusX < 0 || radiusY < 0) return;
    const Window visible = visibleWindow(surface_, clipLeft_, clipTop_, clipRight_, clipBottom_);
    if (visible.empty()) return;
    const auto table = drawing::tableOf(DrawMode);
    const std::int64_t rx = std::min<std::int64_t>(radiusX, MaxRadius);
    const std::int64_t ry = std::min<std::int64_t>(radiusY, MaxRadius);
    const std::int64_t cx = x;
    const std::int64_t cy = y;
    const Pen& outlinePen = pen();
    const Window reach = outlinePen.reach(visible);
    const std::int64_t dyFirst = std::max(-ry, reach.top - cy);
    const std::int64_t dyLast = std::min(ry, reach.bottom - cy);
    if (dyFirst > dyLast) return;

    // Half-widths of the rows, with one row more on each side for the
    // outline's neighbour test.
    std::vector<std::int64_t> half;
    for (std::int64_t dy = dyFirst - 1; dy <= dyLast + 1; ++dy)
        half.push_back(ellipseHalfWidth(rx, ry, dy));
    const auto halfAt = [&](std::int64_t dy) {
        return half[static_cast<std::size_t>(dy - dyFirst + 1)];
    };

    if (FillStyle == BrushStyle::Solid) {
        runs_.reset(visible);
        for (std::int64_t dy = dyFirst; dy <= dyLast; ++dy)
            runs_.add(cy + dy, cx - halfAt(dy), cx + halfAt(dy));
        runs_.finish();
        drawing::paintRuns(surface_, visible, runs_, thinPen_, table, colourBitsOf(FillColor));
    }
    RowRuns& outline = runs_;
    outline.reset(reach);
    for (std::int64_t dy = dyFirst; dy <= dyLast; ++dy) {
        const std::int64_t h = halfAt(dy);
        // Pixels beyond the narrower neighbouring row, and the row's ends.
        const std::int64_t inner = std::min(std::min(halfAt(dy - 1), halfAt(dy + 1)) + 1, h);
        outline.add(cy + dy, cx - h, cx - inner);
        outline.add(cy + dy, cx + inner, cx + h);
    }
    outline.finish();
    drawing::paintRuns(surface_, visible, outline, outlinePen, table, colourBitsOf(colour));
}

void Canvas::Polygon(std::span<const CanvasPoint> points, ColourRef colour) {
    if (points.size() < 2) return;
    const Window visible = visibleWindow(surface_, clipLeft_, clipTop_, clipRight_, clipBottom_);
    if (visible.empty()) return;
    const auto table = drawing::tableOf(DrawMode);
    const auto edgeEnd = [&](std::size_t i) { return points[(i + 1) % points.size()]; };
    // Where a pixel painted twice looks as if painted once, the runs need
    // not be merged first.
    const bool direct = paintsOnce(table);
    // The copy, by far the most common mode, is written here rather than
    // through the table's kernel: nets paint thousands of short runs.
    const bool copies = table == drawing::tableOf(PenMode::CopyPen);
    const auto paint = [&](std::int64_t x, std::int64_t y, std::size_t n, Pixel bits) {
        Pixel* at = &surface_.at(static_cast<int>(x), static_cast<int>(y));
        if (!copies) {
            drawing::fillRow(table, at, bits, n);
            return;
        }
        for (std::size_t i = 0; i < n; ++i)
            at[i] = (at[i] & drawing::SpareByte) | (bits & drawing::ColourBytes);
    };
    const auto paintRun = [&](std::int64_t y, std::int64_t left, std::int64_t right, Pixel bits) {
        left = std::max(left, visible.left);
        right = std::min(right, visible.right);
        if (left > right || y < visible.top || y > visible.bottom) return;
        paint(left, y, static_cast<std::size_t>(right - left + 1), bits);
    };

    if (FillStyle == BrushStyle::Solid) {
        const auto [low, high] = std::ranges::minmax(points, {}, &CanvasPoint::y);
        const std::int64_t firstRow = std::max<std::int64_t>(low.y, visible.top);
        const std::int64_t lastRow = std::min<std::int64_t>(high.y, visible.bottom);
        // Each edge counts for the rows from its upper end up to but not
        // including its lower one; level edges count for none. The crossing
        // is worked out once, on the edge's first row drawn, then stepped.
        edges_.clear();
        for (std::size_t i = 0; i < points.size(); ++i) {
            CanvasPoint a = points[i];
            CanvasPoint b = edgeEnd(i);
            if (a.y == b.y) continue;
            if (a.y > b.y) std::swap(a, b);
            const std::int64_t top = std::max<std::int64_t>(a.y, firstRow);
            if (top >= b.y || top > lastRow) continue;
            const std::int64_t den = std::int64_t{b.y} - a.y;
            const std::int64_t down = top - a.y;
            const std::int64_t across = std::int64_t{b.x} - a.x;
            Crossing at{};
            if (down < Small && across < Small && across > -Small) {
                const auto [q, rem] = floorDivide(down * across, den);
                at = {a.x + q, rem, den};
            } else {
                const Wide num = Wide{down} * across;
                const auto q = static_cast<std::int64_t>(drawing::floorDiv(num, den));
                at = {a.x + q, static_cast<std::int64_t>(num - Wide{q} * den), den};
            }
            const auto [floorStep, remStep] = floorDivide(across, den);
            edges_.push_back({top, b.y, at, floorStep, remStep});
        }
        // Edges enter by their top row and leave after their last; which of
        // them comes first in a row does not matter, the crossings are sorted.
        sortFew(edges_, [](const Edge& p, const Edge& q) { return p.top < q.top; });
        runs_.reset(visible);
        std::size_t entering = 0;
        std::size_t active = 0; // edges_[0, active) cross the row
        for (std::int64_t y = firstRow; y <= lastRow; ++y) {
            for (std::size_t i = 0; i < active;) {
                if (y >= edges_[i].bottom) {
                    std::swap(edges_[i], edges_[--active]);
                } else {
                    ++i;
                }
            }
            for (; entering < edges_.size() && edges_[entering].top <= y; ++entering)
                std::swap(edges_[active++], edges_[entering]);
            crossings_.clear();
            for (std::size_t i = 0; i < active; ++i) {
                Edge& e = edges_[i];
                crossings_.push_back(e.at);
                e.at.floor += e.floorStep;
                e.at.rem += e.remStep;
                if (e.at.rem >= e.at.den) {
                    e.at.rem -= e.at.den;
                    ++e.at.floor;
                }
            }
            sortFew(crossings_, [](const Crossing& p, const Crossing& q) {
                if (p.floor != q.floor) return p.floor < q.floor;
                if (p.den < Small && q.den < Small) return p.rem * q.den < q.rem * p.den;
                return Wide{p.rem} * q.den < Wide{q.rem} * p.den;
            });
            for (std::size_t k = 0; k + 1 < crossings_.size(); k += 2) {
                const std::int64_t from = crossings_[k].floor + (crossings_[k].rem > 0 ? 1 : 0);
                if (direct) {
                    paintRun(y, from, crossings_[k + 1].floor, colourBitsOf(FillColor));
                } else {
                    runs_.add(y, from, crossings_[k + 1].floor);
                }
            }
        }
        runs_.finish();
        drawing::paintRuns(surface_, visible, runs_, thinPen_, table, colourBitsOf(FillColor));
    }

    const Pen& outlinePen = pen();
    if (direct && outlinePen.width() == 1) {
        // A thin outline is the union of its edges' pixels; where painting
        // twice is painting once, each is painted as traced.
        const Pixel bits = colourBitsOf(colour);
        for (std::size_t i = 0; i < points.size(); ++i) {
            const CanvasPoint a = points[i];
            const CanvasPoint b = edgeEnd(i);
            drawing::traceLine(a.x, a.y, b.x, b.y, visible,
                               [&](std::int64_t x, std::int64_t y, std::int64_t) {
                                   if (x >= visible.left && x <= visible.right &&
                                       y >= visible.top && y <= visible.bottom)
                                       paint(x, y, 1, bits);
                               });
        }
        return;
    }
    const Window reach = outlinePen.reach(visible);
    runs_.reset(reach);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const CanvasPoint a = points[i];
        const CanvasPoint b = edgeEnd(i);
        drawing::traceLine(
            a.x, a.y, b.x, b.y, reach,
            [&](std::int64_t x, std::int64_t y, std::int64_t) { runs_.addPixel(x, y); });
    }
    runs_.finish();
    drawing::paintRuns(surface_, visible, runs_, outlinePen, table, colourBitsOf(colour));
}

} // namespace lumiran
