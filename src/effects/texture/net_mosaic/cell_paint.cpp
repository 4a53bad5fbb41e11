#include "effects/texture/net_mosaic/cell_paint.h"

#include "engine/drawing/line_trace.h"

#include <algorithm>
#include <utility>

namespace lumiran::net {
namespace {

constexpr Pixel SpareByte = 0xFF000000u;
constexpr Pixel NumberBytes = 0x00FFFFFFu;

void paintMax(Pixel& p, std::uint32_t label) {
    if ((p & NumberBytes) < label) p = (p & SpareByte) | label;
}

// floor(num / den) and whether it left a remainder, for den > 0.
std::pair<int, bool> floorDivide(int num, int den) {
    int q = num / den;
    const int r = num - q * den;
    if (r < 0) --q;
    return {q, r != 0};
}

} // namespace

std::vector<RowReach> vertexRowReaches(const Net& net) {
    std::vector<RowReach> reaches(static_cast<std::size_t>(net.vertexRows()));
    for (int b = 0; b < net.vertexRows(); ++b) {
        RowReach& reach = reaches[static_cast<std::size_t>(b)];
        const int y = net.across(0, b).front().y;
        reach = {y, y};
        const auto widen = [&](std::span<const CanvasPoint> side) {
            for (const CanvasPoint& p : side) {
                reach.first = std::min(reach.first, p.y);
                reach.last = std::max(reach.last, p.y);
            }
        };
        for (int a = 0; a < net.cellColumns(); ++a)
            widen(net.across(a, b));
        if (b < net.cellRows()) {
            for (int a = 0; a < net.vertexColumns(); ++a)
                widen(net.down(a, b));
        }
    }
    return reaches;
}

void CellPainter::paint(const Net& net, std::span<const RowReach> vertexReaches) {
    if (clip_.left >= clip_.right || clip_.top >= clip_.bottom) return;
    const auto reaches = [&](const RowReach& r) {
        return r.last >= clip_.top && r.first < clip_.bottom;
    };
    for (int b = 0; b < net.cellRows(); ++b) {
        const RowReach& upper = vertexReaches[static_cast<std::size_t>(b)];
        const RowReach& lower = vertexReaches[static_cast<std::size_t>(b + 1)];
        if (!reaches({std::min(upper.first, lower.first), std::max(upper.last, lower.last)}))
            continue;
        for (int a = 0; a < net.cellColumns(); ++a)
            fillCell(net, a, b);
    }
    // A side takes the later of its two cells: the one below or right of
    // it, but on the net's far border.
    const int lastColumn = net.cellColumns() - 1;
    const int lastRow = net.cellRows() - 1;
    for (int b = 0; b < net.vertexRows(); ++b) {
        if (!reaches(vertexReaches[static_cast<std::size_t>(b)])) continue;
        for (int a = 0; a <= lastColumn; ++a)
            traceSide(net.across(a, b), cellLabel(net, a, std::min(b, lastRow)));
        if (b > lastRow) continue;
        for (int a = 0; a < net.vertexColumns(); ++a)
            traceSide(net.down(a, b), cellLabel(net, std::min(a, lastColumn), b));
    }
}

// The inside by the even-odd rule: on each row the crossings of the
// outline's edges, pixel centres on whole coordinates, each edge counting
// for the rows from its upper end up to but not including its lower one.
// The edges are the sides' pieces, whatever their direction.
void CellPainter::fillCell(const Net& net, int a, int b) {
    crossings_.clear();
    int low = clip_.bottom;
    int high = clip_.top;
    const auto addSide = [&](std::span<const CanvasPoint> side) {
        for (std::size_t i = 0; i + 1 < side.size(); ++i) {
            CanvasPoint p = side[i];
            CanvasPoint q = side[i + 1];
            if (p.y == q.y) continue;
            if (p.y > q.y) std::swap(p, q);
            const int from = std::max(p.y, clip_.top);
            const int to = std::min(q.y, clip_.bottom);
            if (from >= to) continue;
            low = std::min(low, from);
            high = std::max(high, to);
            const int dx = q.x - p.x;
            const int dy = q.y - p.y;
            // x = p.x + (y - p.y) dx / dy, stepped row to row as
            // floor + rem / dy.
            int floor = p.x;
            int rem = 0;
            if (from > p.y) {
                const int num = (from - p.y) * dx;
                floor += floorDivide(num, dy).first;
                rem = num - (floor - p.x) * dy;
            }
            const auto [floorStep, _] = dy == 1 ? std::pair{dx, false} : floorDivide(dx, dy);
            const int remStep = dx - floorStep * dy;
            for (int y = from; y < to; ++y) {
                crossings_.push_back({y, 2 * floor + (rem != 0 ? 1 : 0)});
                floor += floorStep;
                rem += remStep;
                if (rem >= dy) {
                    rem -= dy;
                    ++floor;
                }
            }
        }
    };
    addSide(net.across(a, b));
    addSide(net.down(a + 1, b));
    addSide(net.across(a, b + 1));
    addSide(net.down(a, b));
    if (crossings_.empty()) return;

    // By rows: rowEnds_[r] ends up one past row r's last key.
    const auto rows = static_cast<std::size_t>(high - low);
    rowEnds_.assign(rows + 1, 0);
    for (const Crossing& c : crossings_)
        ++rowEnds_[static_cast<std::size_t>(c.row - low) + 1];
    for (std::size_t r = 1; r <= rows; ++r)
        rowEnds_[r] += rowEnds_[r - 1];
    keys_.resize(crossings_.size());
    for (const Crossing& c : crossings_)
        keys_[static_cast<std::size_t>(rowEnds_[static_cast<std::size_t>(c.row - low)]++)] = c.key;

    const std::uint32_t label = cellLabel(net, a, b);
    int begin = 0;
    for (std::size_t r = 0; r < rows; ++r) {
        const int end = rowEnds_[r];
        // Crossings equal in their key give the same ends whatever their
        // order, so sorting the keys sorts the crossings.
        for (int i = begin + 1; i < end; ++i) {
            for (int j = i; j > begin && keys_[j] < keys_[j - 1]; --j)
                std::swap(keys_[j], keys_[j - 1]);
        }
        const int y = low + static_cast<int>(r);
        for (int k = begin; k + 1 < end; k += 2)
            paintSpan(y, (keys_[k] + 1) >> 1, keys_[k + 1] >> 1, label);
        begin = end;
    }
}

void CellPainter::paintSpan(int y, int left, int right, std::uint32_t label) {
    left = std::max(left, clip_.left);
    right = std::min(right, clip_.right - 1);
    if (left > right) return;
    const auto row = picture_.row(y).subspan(static_cast<std::size_t>(left),
                                             static_cast<std::size_t>(right - left + 1));
    for (Pixel& p : row)
        paintMax(p, label);
}

// The thin outline's pixels of a side: each piece traced as the canvas
// traces a line (the same pixels from either end), the side's last point
// included. A side whose points all coincide is a corner the other sides
// paint, and a cell that is only that point has no outline.
void CellPainter::traceSide(std::span<const CanvasPoint> side, std::uint32_t label) {
    const drawing::Window window{clip_.left, clip_.top, clip_.right - 1, clip_.bottom - 1};
    const auto inside = [&](std::int64_t x, std::int64_t y) {
        return x >= window.left && x <= window.right && y >= window.top && y <= window.bottom;
    };
    bool traced = false;
    for (std::size_t i = 0; i + 1 < side.size(); ++i) {
        const CanvasPoint p = side[i];
        const CanvasPoint q = side[i + 1];
        if (p.x == q.x && p.y == q.y) continue;
        traced = true;
        drawing::traceLine(
            p.x, p.y, q.x, q.y, window, [&](std::int64_t x, std::int64_t y, std::int64_t) {
                if (inside(x, y))
                    paintMax(picture_.at(static_cast<int>(x), static_cast<int>(y)), label);
            });
    }
    if (traced && inside(side.back().x, side.back().y))
        paintMax(picture_.at(side.back().x, side.back().y), label);
}

} // namespace lumiran::net
