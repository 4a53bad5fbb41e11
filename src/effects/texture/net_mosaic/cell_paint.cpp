#include "effects/texture/net_mosaic/cell_paint.h"

#include "engine/drawing/line_trace.h"

#include <algorithm>
#include <array>
#include <cstdlib>
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

// The pieces of bent sides are a few pixels long: their crossings and
// traced pixels come from tables rather than divisions.
constexpr int Short = 7;

// For a piece of dy rows down and dx across (0 < dy <= Short, |dx| <= Short),
// the key of its crossing k rows below its upper end, less 2 x of that end:
// 2 floor(k dx / dy) + (k dx / dy not whole).
struct CrossingTable {
    std::array<std::int16_t, Short*(2 * Short + 1) * Short> keys{};
    constexpr CrossingTable() {
        for (int dy = 1; dy <= Short; ++dy) {
            for (int dx = -Short; dx <= Short; ++dx) {
                for (int k = 0; k < dy; ++k) {
                    const int num = k * dx;
                    int q = num / dy;
                    if (num % dy != 0 && num < 0) --q;
                    keys[index(dy, dx, k)] = static_cast<std::int16_t>(2 * q + (num % dy != 0));
                }
            }
        }
    }
    static constexpr std::size_t index(int dy, int dx, int k) {
        return static_cast<std::size_t>(((dy - 1) * (2 * Short + 1) + dx + Short) * Short + k);
    }
};
constexpr CrossingTable Crossings;

// For a line of n steps along its major axis (0 < n <= Short) and minor
// delta m (|m| <= n), the minor offset of step i as the canvas traces it:
// floor((2 i m + n) / (2 n)).
struct TraceTable {
    std::array<std::int8_t, Short*(2 * Short + 1) * Short> offsets{};
    constexpr TraceTable() {
        for (int n = 1; n <= Short; ++n) {
            for (int m = -n; m <= n; ++m) {
                for (int i = 0; i < n; ++i) {
                    const int num = 2 * i * m + n;
                    int q = num / (2 * n);
                    if (num % (2 * n) != 0 && num < 0) --q;
                    offsets[index(n, m, i)] = static_cast<std::int8_t>(q);
                }
            }
        }
    }
    static constexpr std::size_t index(int n, int m, int i) {
        return static_cast<std::size_t>(((n - 1) * (2 * Short + 1) + m + Short) * Short + i);
    }
};
constexpr TraceTable Traces;

} // namespace

std::vector<RowReach> sideReachesOf(const Net& net, int rowCount) {
    const int rows = net.vertexRows();
    std::vector<RowReach> sides(static_cast<std::size_t>(std::clamp(rowCount, 0, rows)));
    for (std::size_t b = 0; b < sides.size(); ++b) {
        const int row = static_cast<int>(b);
        const RowReach level = net.levelReach(row);
        const RowReach upright = net.uprightReach(row);
        sides[b] = row + 1 < rows ? RowReach{std::min(level.first, upright.first),
                                             std::max(level.last, upright.last)}
                                  : level;
    }
    return sides;
}

NetReaches reachesOf(const Net& net) {
    NetReaches reaches{sideReachesOf(net, net.vertexRows()),
                       std::vector<RowReach>(static_cast<std::size_t>(net.cellRows()))};
    for (std::size_t b = 0; b < reaches.cells.size(); ++b) {
        const RowReach& upper = reaches.sides[b];
        const RowReach lower = net.levelReach(static_cast<int>(b + 1));
        reaches.cells[b] = {std::min(upper.first, lower.first), std::max(upper.last, lower.last)};
    }
    return reaches;
}

void CellPainter::paintRow(const Net& net, std::span<const RowReach> sideReaches, int b) {
    const auto reaches = [&](const RowReach& r) {
        return r.last >= clip_.top && r.first < clip_.bottom;
    };
    const RowReach& upper = sideReaches[static_cast<std::size_t>(b)];
    if (static_cast<std::size_t>(b) + 1 < sideReaches.size()) {
        const RowReach& lower = sideReaches[static_cast<std::size_t>(b + 1)];
        if (reaches({std::min(upper.first, lower.first), std::max(upper.last, lower.last)})) {
            for (int a = 0; a < net.cellColumns(); ++a)
                fillCell(net, a, b);
        }
    }
    if (!reaches(upper)) return;
    // A side takes the later of its two cells: the one below or right of
    // it, but on the net's far border.
    const int lastColumn = net.cellColumns() - 1;
    const int lastRow = net.cellRows() - 1;
    for (int a = 0; a <= lastColumn; ++a)
        traceSide(net.across(a, b), cellLabel(net, a, std::min(b, lastRow)));
    if (b > lastRow) return;
    for (int a = 0; a < net.vertexColumns(); ++a)
        traceSide(net.down(a, b), cellLabel(net, std::min(a, lastColumn), b));
}

// The inside by the even-odd rule: on each row the crossings of the
// outline's edges, pixel centres on whole coordinates, each edge counting
// for the rows from its upper end up to but not including its lower one.
// The edges are the sides' pieces, whatever their direction.
void CellPainter::fillCell(const Net& net, int a, int b) {
    const auto rows = static_cast<std::size_t>(clip_.bottom - clip_.top);
    if (counts_.size() != rows) {
        counts_.assign(rows, 0);
        slots_.resize(rows * static_cast<std::size_t>(slotCount_));
    }
    int low = clip_.bottom;
    int high = clip_.top;
    const auto add = [&](int y, int key) {
        const auto r = static_cast<std::size_t>(y - clip_.top);
        if (counts_[r] == slotCount_) {
            spilled_.push_back({y, key});
            return;
        }
        slots_[r * static_cast<std::size_t>(slotCount_) + counts_[r]++] = key;
    };
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
            // The first row of a piece crosses at its end; the short pieces
            // of bent sides have no other row.
            if (from == p.y) {
                add(from, 2 * p.x);
                if (to == from + 1) continue;
            }
            const int dx = q.x - p.x;
            const int dy = q.y - p.y;
            if (dy <= Short && dx >= -Short && dx <= Short) {
                const std::size_t keys = CrossingTable::index(dy, dx, 0);
                for (int y = from == p.y ? from + 1 : from; y < to; ++y)
                    add(y, 2 * p.x + Crossings.keys[keys + static_cast<std::size_t>(y - p.y)]);
                continue;
            }
            // x = p.x + (y - p.y) dx / dy, stepped row to row as
            // floor + rem / dy.
            const int first = from == p.y ? from + 1 : from;
            const int num = (first - p.y) * dx;
            const int start = floorDivide(num, dy).first;
            int floor = p.x + start;
            int rem = num - start * dy;
            const auto [floorStep, _] = floorDivide(dx, dy);
            const int remStep = dx - floorStep * dy;
            for (int y = first; y < to; ++y) {
                add(y, 2 * floor + (rem != 0 ? 1 : 0));
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
    if (low >= high) return;

    const std::uint32_t label = cellLabel(net, a, b);
    // Crossings equal in their key give the same ends whatever their order,
    // so sorting the keys sorts the crossings.
    const auto paintRow = [&](int y, std::span<int> keys) {
        for (std::size_t i = 1; i < keys.size(); ++i) {
            for (std::size_t j = i; j > 0 && keys[j] < keys[j - 1]; --j)
                std::swap(keys[j], keys[j - 1]);
        }
        for (std::size_t k = 0; k + 1 < keys.size(); k += 2)
            paintSpan(y, (keys[k] + 1) >> 1, keys[k + 1] >> 1, label);
    };
    for (int y = low; y < high; ++y) {
        const auto r = static_cast<std::size_t>(y - clip_.top);
        const std::span<int> keys(&slots_[r * static_cast<std::size_t>(slotCount_)], counts_[r]);
        counts_[r] = 0;
        if (static_cast<int>(keys.size()) < slotCount_ || spilled_.empty()) {
            paintRow(y, keys);
            continue;
        }
        rowKeys_.assign(keys.begin(), keys.end());
        for (const Crossing& c : spilled_) {
            if (c.row == y) rowKeys_.push_back(c.key);
        }
        paintRow(y, rowKeys_);
    }
    spilled_.clear();
}

void CellPainter::paintSpan(int y, int left, int right, std::uint32_t label) {
    left = std::max(left, clip_.left);
    right = std::min(right, clip_.right - 1);
    if (left > right) return;
    Pixel* row = &rows_.at(left, y);
    for (int i = 0; i <= right - left; ++i)
        paintMax(row[i], label);
}

namespace {

// The thin line's pixels of each piece of a side within the clip, as the
// canvas traces a line (the same pixels from either end, the end point
// left out). Returns whether any piece had a length.
template <typename Paint>
bool tracePieces(std::span<const CanvasPoint> side, const Area& clip, Paint paint) {
    const drawing::Window window{clip.left, clip.top, clip.right - 1, clip.bottom - 1};
    bool traced = false;
    for (std::size_t i = 0; i + 1 < side.size(); ++i) {
        const CanvasPoint p = side[i];
        const CanvasPoint q = side[i + 1];
        if (p.x == q.x && p.y == q.y) continue;
        traced = true;
        const int dx = q.x - p.x;
        const int dy = q.y - p.y;
        const int n = std::max(std::abs(dx), std::abs(dy));
        if (n <= Short) {
            const bool xMajor = std::abs(dx) >= std::abs(dy);
            const int step = (xMajor ? dx : dy) > 0 ? 1 : -1;
            const std::size_t steps = Traces.index(n, xMajor ? dy : dx, 0);
            for (int k = 0; k < n; ++k) {
                const int along = step * k;
                const int across = Traces.offsets[steps + static_cast<std::size_t>(k)];
                const int x = p.x + (xMajor ? along : across);
                const int y = p.y + (xMajor ? across : along);
                if (y >= clip.top && y < clip.bottom && x >= clip.left && x < clip.right)
                    paint(x, y);
            }
            continue;
        }
        drawing::traceLine(
            p.x, p.y, q.x, q.y, window, [&](std::int64_t x, std::int64_t y, std::int64_t) {
                if (y >= window.top && y <= window.bottom && x >= window.left && x <= window.right)
                    paint(static_cast<int>(x), static_cast<int>(y));
            });
    }
    return traced;
}

bool within(const Area& clip, CanvasPoint p) {
    return p.x >= clip.left && p.x < clip.right && p.y >= clip.top && p.y < clip.bottom;
}

} // namespace

// The outline's pixels of a side, its last point included. A side whose
// points all coincide is a corner the other sides paint, and a cell that is
// only that point has no outline.
void CellPainter::traceSide(std::span<const CanvasPoint> side, std::uint32_t label) {
    const bool traced =
        tracePieces(side, clip_, [&](int x, int y) { paintMax(rows_.at(x, y), label); });
    if (traced && within(clip_, side.back()))
        paintMax(rows_.at(side.back().x, side.back().y), label);
}

void drawSides(Surface& picture, const Area& clip, const Net& net, int firstRow, int endRow,
               Pixel colour) {
    if (clip.left >= clip.right || clip.top >= clip.bottom) return;
    const Pixel bits = colour & NumberBytes;
    const auto draw = [&](std::span<const CanvasPoint> side) {
        const auto put = [&](int x, int y) {
            Pixel& p = picture.at(x, y);
            p = (p & SpareByte) | bits;
        };
        tracePieces(side, clip, put);
        if (within(clip, side.back())) put(side.back().x, side.back().y);
    };
    for (int b = std::max(firstRow, 0); b < std::min(endRow, net.vertexRows()); ++b) {
        // The last row's upright reach is its first vertex alone, within its level one.
        const RowReach level = net.levelReach(b);
        const RowReach upright = net.uprightReach(b);
        if (std::max(level.last, upright.last) < clip.top ||
            std::min(level.first, upright.first) >= clip.bottom)
            continue;
        for (int a = 0; a < net.cellColumns(); ++a)
            draw(net.across(a, b));
        if (b >= net.cellRows()) continue;
        for (int a = 0; a < net.vertexColumns(); ++a)
            draw(net.down(a, b));
    }
}

} // namespace lumiran::net
