#pragma once

// The cells of a net painted as numbers on a picture, without the canvas.
#include "effects/texture/net_mosaic/net_grid.h"
#include "engine/surface.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran::net {

struct NetReaches {
    // For each row b of vertices: its level sides and the upright ones from
    // it to row b + 1.
    std::vector<RowReach> sides;
    // For each row b of cells: the sides around its cells.
    std::vector<RowReach> cells;
};
[[nodiscard]] NetReaches reachesOf(const Net& net);
// The reaches of the sides of rows [0, rowCount) of vertices alone, those
// laid so far.
[[nodiscard]] std::vector<RowReach> sideReachesOf(const Net& net, int rowCount);

// The number of cell (a, b) on the work picture; 0 is no cell.
[[nodiscard]] inline std::uint32_t cellLabel(const Net& net, int a, int b) {
    return static_cast<std::uint32_t>(b) * static_cast<std::uint32_t>(net.cellColumns()) +
           static_cast<std::uint32_t>(a) + 1;
}

// Draws every side of the rows [firstRow, endRow) of vertices reaching into
// the clip as thin lines of one colour (its colour bytes; the spare bytes
// kept), each piece as the canvas draws a line in copy mode and the side's
// last point with it. Reads only those rows of the net.
void drawSides(Surface& picture, const Area& clip, const Net& net, int firstRow, int endRow,
               Pixel colour);

// Paints the cells' numbers into the colour bytes of a picture (the spare
// byte kept), within a clip: what the canvas leaves when it paints the cells
// one after the other in their order, each as a solid polygon (even-odd
// inside, thin outline) in its number. A pixel that several cells cover
// keeps the highest number, which is the last painted, so every side, shared
// by two cells, is traced once, and the cells' order within a band does not
// matter. Numbers must stay below 2^24.
class CellPainter {
  public:
    // Where the numbers go: pixel (x, y) at data[(y - top) stride + x - left],
    // for the pixels of the clip. A band can thus be painted into a buffer
    // of its own rows.
    struct Rows {
        Pixel* data = nullptr;
        std::size_t stride = 0;
        int left = 0;
        int top = 0;
        [[nodiscard]] static Rows of(Surface& picture) {
            return {picture.pixels().data(), static_cast<std::size_t>(picture.width()), 0, 0};
        }
        [[nodiscard]] Pixel& at(int x, int y) const {
            return data[static_cast<std::size_t>(y - top) * stride +
                        static_cast<std::size_t>(x - left)];
        }
    };

    // Paints only the columns [left, right) of the rows [top, bottom).
    // A cell keeps rowSlots crossings a row at hand and the rest aside.
    CellPainter(Surface& picture, const Area& clip, int rowSlots = 6)
        : CellPainter(Rows::of(picture), clip, rowSlots) {}
    CellPainter(const Rows& rows, const Area& clip, int rowSlots = 6)
        : rows_(rows), clip_(clip), slotCount_(std::clamp(rowSlots, 1, 255)) {}
    void setClip(const Rows& rows, const Area& clip) {
        rows_ = rows;
        clip_ = clip;
    }

    // Every cell and side reaching into the clip, a row of cells and its
    // row of vertices' sides at a time; after each, rowsFinal(end) with the
    // row from which on the clip may still change (rows above it are done).
    // Reads the rows of vertices that sideReaches holds, and the cells
    // between them: the rows below must not reach the clip.
    template <typename RowsFinal>
    void paint(const Net& net, std::span<const RowReach> sideReaches, RowsFinal&& rowsFinal) {
        if (clip_.left >= clip_.right || clip_.top >= clip_.bottom) return;
        const std::size_t rows = sideReaches.size();
        // The first row that the sides of row b of vertices or below reach.
        firstReached_.resize(rows + 1);
        firstReached_[rows] = clip_.bottom;
        for (std::size_t b = rows; b-- > 0;)
            firstReached_[b] = std::min(firstReached_[b + 1], sideReaches[b].first);
        for (std::size_t b = 0; b < rows; ++b) {
            paintRow(net, sideReaches, static_cast<int>(b));
            rowsFinal(std::min(clip_.bottom, firstReached_[b + 1]));
        }
    }
    void paint(const Net& net, std::span<const RowReach> sideReaches) {
        paint(net, sideReaches, [](int) {});
    }

  private:
    // The cells of row b (if any) and the sides of row b of vertices.
    void paintRow(const Net& net, std::span<const RowReach> sideReaches, int b);
    void fillCell(const Net& net, int a, int b);
    void traceSide(std::span<const CanvasPoint> side, std::uint32_t label);
    void paintSpan(int y, int left, int right, std::uint32_t label);

    struct Crossing {
        int row;
        int key; // 2 floor(x) + (x not whole): orders crossings as x does for the fill
    };
    // The keys of a cell's crossings by row of the clip, a few slots a row;
    // counts_ is all 0 between cells. A row with more crossings than slots
    // (sides bent across it) keeps the rest in spilled_.
    Rows rows_;
    Area clip_;
    int slotCount_;
    std::vector<int> slots_;
    std::vector<std::uint8_t> counts_;
    std::vector<Crossing> spilled_;
    std::vector<int> rowKeys_;
    std::vector<int> firstReached_;
};

} // namespace lumiran::net
