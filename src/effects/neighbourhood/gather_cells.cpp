// PaturnMatrixMethod: cells pushed to black or white, the amount handed on
// to their neighbours.
//
// The walk writes in place, cell after cell, and 1x1 cells overlap the
// cells before them, yet no cell writes a pixel that is the centre of a
// cell: a centre has its fetched colour when its cell comes, and so has the
// shift it hands on. A pixel's result is therefore its colour (pushed, if
// it is a centre) taken through the writes of the cells that reach it, in
// walk order, each with the shift of its own centre in the source. For 1x1
// cells those lie in its own row and the row below, so every row of the
// result is worked out on its own from the source into TransBits. A row of
// larger cells writes rows that no other row of cells writes (the 2x2
// cells' neighbours lie above and to the left, within the two rows of
// their step), so rows of cells are walked as the rule walks them, each on
// its own rows. Either way the rows run on every core.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumiran {
namespace {

using neighbourhood::Area;
using neighbourhood::Offset;

// The centre and its fifteen neighbours, in order.
constexpr std::array<Offset, 16> PatternCell{{
    {0, 0},
    {-1, -1},
    {0, -1},
    {1, -1},
    {-1, 0},
    {1, 0},
    {-1, 1},
    {0, 1},
    {1, 1},
    {2, -1},
    {2, 0},
    {2, 1},
    {-1, 2},
    {0, 2},
    {1, 2},
    {2, 2},
}};

struct CellSize {
    int step;
    int neighbours;
    // The lowest row a cell reaches below its centre row.
    int below;
};
constexpr std::array<CellSize, 4> CellSizes{{{1, 1, 0}, {2, 4, 0}, {3, 8, 1}, {4, 15, 2}}};

constexpr Pixel channelByte(int value) {
    return static_cast<Pixel>(std::clamp(value, 0, 255));
}

// What a cell hands on: its centre's distance to black or white.
constexpr int shiftOf(Pixel centre) {
    const int m = averageGrey(redOf(centre), greenOf(centre), blueOf(centre));
    return (m < 128 ? 0 : 255) - m;
}

// The centre moved by its shift; the spare byte stays.
constexpr Pixel pushed(Pixel p, int shift) {
    return (p & 0xFF000000u) | (channelByte(redOf(p) + shift) << 16) |
           (channelByte(greenOf(p) + shift) << 8) | channelByte(blueOf(p) + shift);
}

// A neighbour given value - shift: on its grey (operation 0) or on each
// channel.
struct Handing {
    int value;
    bool grey;

    [[nodiscard]] Pixel operator()(Pixel p, int shift) const {
        const int r = redOf(p), g = greenOf(p), b = blueOf(p);
        if (grey) {
            const Pixel v = channelByte(luminanceY(r, g, b) + value - shift);
            return (p & 0xFF000000u) | (v << 16) | (v << 8) | v;
        }
        const int add = value - shift;
        return (p & 0xFF000000u) | (channelByte(r + add) << 16) | (channelByte(g + add) << 8) |
               channelByte(b + add);
    }
};

// Row y of the result over `out`, which holds the source's row: the cells
// that reach the row, in walk order, with only their writes into it. Used
// for the first row of 1x1 cells, where the clamps fold three cells' writes
// onto some pixels.
void gatherRow(const Surface& source, const Area& area, CellSize cell, const Handing& hand, int y,
               Pixel* out) {
    auto clampedX = [&](int x) { return std::clamp(x, area.firstColumn, area.endColumn - 1); };
    auto clampedY = [&](int v) { return std::clamp(v, area.firstRow, area.endRow - 1); };
    const int firstCells = std::max(area.firstRow, y - 2);
    const int lastCells = std::min(area.endRow - 1, y + 1);
    for (int cy = firstCells; cy <= lastCells; ++cy) {
        if ((cy - area.firstRow) % cell.step != 0) continue;
        std::array<int, 15> reaching{};
        int count = 0;
        for (int n = 1; n <= cell.neighbours; ++n) {
            if (clampedY(cy + PatternCell[static_cast<std::size_t>(n)].dy) == y)
                reaching[static_cast<std::size_t>(count++)] = n;
        }
        if (cy != y && count == 0) continue;
        const Pixel* centres = source.row(cy).data();
        for (int x = area.firstColumn; x < area.endColumn; x += cell.step) {
            const int shift = shiftOf(centres[x]);
            if (cy == y) out[x] = pushed(out[x], shift);
            for (int i = 0; i < count; ++i) {
                const int tx = clampedX(x + PatternCell[static_cast<std::size_t>(reaching[i])].dx);
                out[tx] = hand(out[tx], shift);
            }
        }
    }
}

// The cells of row cy walked as the rule walks them, in place over `trans`.
// For cells of 2x2 and more the rows a row of cells writes (cy - 1 to
// cy + below, clamped) are written by no other row of cells.
void walkCellRow(Surface& trans, const Area& area, CellSize cell, const Handing& hand, int cy) {
    auto clampedX = [&](int x) { return std::clamp(x, area.firstColumn, area.endColumn - 1); };
    auto clampedY = [&](int v) { return std::clamp(v, area.firstRow, area.endRow - 1); };
    for (int x = area.firstColumn; x < area.endColumn; x += cell.step) {
        Pixel& centre = trans.at(x, cy);
        const int shift = shiftOf(centre);
        centre = pushed(centre, shift);
        for (int n = 1; n <= cell.neighbours; ++n) {
            const Offset o = PatternCell[static_cast<std::size_t>(n)];
            Pixel& p = trans.at(clampedX(x + o.dx), clampedY(cy + o.dy));
            p = hand(p, shift);
        }
    }
}

// The same for 1x1 cells below the area's first row: each pixel is pushed
// and then handed the shift of the cell to its lower right, the first
// column that of the cell below it before.
template <bool Grey>
void gatherOnePixelCells(const Pixel* __restrict row, const Pixel* __restrict below,
                         const Area& area, int value, Pixel* __restrict out) {
    const Handing hand{value, Grey};
    const int first = area.firstColumn;
    const int end = area.endColumn;
    if (below == nullptr) {
        for (int x = first; x < end; ++x)
            out[x] = pushed(row[x], shiftOf(row[x]));
        return;
    }
    Pixel corner = hand(pushed(row[first], shiftOf(row[first])), shiftOf(below[first]));
    if (first + 1 < end) corner = hand(corner, shiftOf(below[first + 1]));
    for (int x = first + 1; x < end - 1; ++x)
        out[x] = hand(pushed(row[x], shiftOf(row[x])), shiftOf(below[x + 1]));
    if (first + 1 < end) out[end - 1] = pushed(row[end - 1], shiftOf(row[end - 1]));
    out[first] = corner;
}

} // namespace

void Class_NeighborhoodOp::PaturnMatrixMethod(std::uint8_t sizeKind, std::uint8_t operation,
                                              std::int16_t left, std::int16_t top,
                                              std::int16_t right, std::int16_t bottom,
                                              std::int16_t value) {
    guarded([&] {
        if (sizeKind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const Area area = areaOf(rect);
        const CellSize cell = CellSizes[sizeKind];
        const Handing hand{value, operation == 0};
        OwnTransRows trans(*this, area.firstRow, area.endRow);
        SetProgressRange(top, bottom);
        if (sizeKind != 0) {
            // Rows of cells 2x2 and larger share no pixel: each walks its
            // own rows, which no other row's work touches.
            forEachRow(rect, [&](int y, int, int) {
                if ((y - area.firstRow) % cell.step != 0) return;
                const int endRow = std::min(y + cell.below + 1, area.endRow);
                for (int row = std::max(y - 1, area.firstRow); row < endRow; ++row)
                    trans.takeRow(row);
                walkCellRow(TransBits, area, cell, hand, y);
            });
            return;
        }
        forEachRow(rect, [&](int y, int, int) {
            trans.takeRow(y);
            Pixel* out = TransBits.row(y).data();
            if (y == area.firstRow) {
                gatherRow(ImageBits, area, cell, hand, y, out);
                return;
            }
            const Pixel* row = ImageBits.row(y).data();
            const Pixel* below = y + 1 < area.endRow ? ImageBits.row(y + 1).data() : nullptr;
            if (hand.grey) {
                gatherOnePixelCells<true>(row, below, area, value, out);
            } else {
                gatherOnePixelCells<false>(row, below, area, value, out);
            }
        });
    });
}

} // namespace lumiran
