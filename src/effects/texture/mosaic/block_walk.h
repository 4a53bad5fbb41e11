#pragma once

// The one way all mosaics walk blocks: origins laid from the top left of the
// rectangle, each block's cells folded onto the last row and column where
// they run past the rectangle, and the block's mean over its cells.
#include "engine/calculation.h"
#include "engine/numeric.h"
#include "engine/pixel.h"
#include "engine/surface.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lumiran::mosaic {

// Marks a cell that lies before the rectangle (an offset block hanging over
// its left or top side): neither counted in the mean nor painted.
inline constexpr int SkippedCell = -1;

// The picture index of each cell of a block along one axis: origin + k,
// replaced by end - 1 past the end (the fold), SkippedCell before first.
void foldAxis(int origin, int first, int end, std::span<int> cells);

// Whether the cells are a plain run origin, origin + 1, ... with nothing
// folded or skipped.
[[nodiscard]] bool isPlainRun(std::span<const int> cells);

// How blocks are laid over a rectangle. Rows of blocks start at the top
// plus firstRow and follow each other by stepY; within a row, origins start
// at the left minus the row's shift (by the parity of the row of blocks)
// and follow by stepX. A column shift moves every second column of blocks
// up instead.
struct BlockGrid {
    int width = 1;  // cells across a block
    int height = 1; // cells down a block
    int stepX = 1;
    int stepY = 1;
    int firstRow = 0;            // 0 or negative: the first row of blocks may hang above
    int rowShift[2] = {0, 0};    // even and odd rows of blocks
    int columnShift[2] = {0, 0}; // even and odd columns of blocks

    [[nodiscard]] static BlockGrid plain(int width, int height) {
        return {width, height, width, height};
    }
    // Blocks around the corners and the centres of the plain grid's blocks:
    // rows of blocks half a block apart, starting half a block above, the
    // even ones shifted half a block left.
    [[nodiscard]] static BlockGrid halfBlockLattice(int width, int height) {
        BlockGrid grid = plain(width, height);
        grid.stepY = height / 2 > 0 ? height / 2 : 1;
        grid.firstRow = -(height / 2);
        grid.rowShift[0] = width / 2;
        return grid;
    }
    // Rows of blocks that write disjoint rows of the picture may run on
    // several threads.
    [[nodiscard]] bool rowsAreDisjoint() const {
        return firstRow == 0 && stepY >= height && columnShift[0] == 0 && columnShift[1] == 0;
    }
};

// The part of the picture a walk covers; end column and row exclusive.
struct Extent {
    int firstColumn = 0;
    int endColumn = 0;
    int firstRow = 0;
    int endRow = 0;
    [[nodiscard]] bool empty() const { return firstColumn >= endColumn || firstRow >= endRow; }
};

// The rows of blocks a walk makes over the extent. An empty block (0 / 0 in
// its mean) or a step of 0 (a walk without end) is the overflow error.
[[nodiscard]] int blockRowCount(const Extent& extent, const BlockGrid& grid);

// The blocks of row k of the walk, left to right: their cells folded into
// rows and columns, then visit(m), m the block's column. Blocks with no
// cell inside the extent are passed over.
template <typename Visit>
void forEachBlockInRow(const Extent& extent, const BlockGrid& grid, int k, std::span<int> rows,
                       std::span<int> columns, Visit&& visit) {
    const int rowOrigin = extent.firstRow + grid.firstRow + k * grid.stepY;
    int m = 0;
    for (int x0 = extent.firstColumn - grid.rowShift[k & 1]; x0 <= extent.endColumn - 1;
         x0 += grid.stepX, ++m) {
        const int y0 = rowOrigin - grid.columnShift[m & 1];
        if (y0 > extent.endRow - 1 || y0 + grid.height <= extent.firstRow ||
            x0 + grid.width <= extent.firstColumn) {
            continue;
        }
        foldAxis(y0, extent.firstRow, extent.endRow, rows);
        foldAxis(x0, extent.firstColumn, extent.endColumn, columns);
        visit(m);
    }
}

// Row k of a scattered walk: blockColumns blocks, each at an origin drawn
// from random (x, then y) over the extent and one past its last column and
// row; the fold brings such a block back onto the edge. visit(x0, y0) after
// each fold.
template <typename Random, typename Visit>
void forEachRandomBlockInRow(const Extent& extent, int blockColumns, Random& random,
                             std::span<int> rows, std::span<int> columns, Visit&& visit) {
    const double across = extent.endColumn - extent.firstColumn + 1;
    const double down = extent.endRow - extent.firstRow + 1;
    for (int m = 0; m < blockColumns; ++m) {
        const int x0 = roundTo<std::int32_t>(across * random.next() + extent.firstColumn);
        const int y0 = roundTo<std::int32_t>(down * random.next() + extent.firstRow);
        foldAxis(y0, extent.firstRow, extent.endRow, rows);
        foldAxis(x0, extent.firstColumn, extent.endColumn, columns);
        visit(x0, y0);
    }
}

// One block as its painter sees it.
struct Block {
    std::span<const int> rows;    // Ys: the picture row of each cell row
    std::span<const int> columns; // Xs: the picture column of each cell column
    Rgb16 mean;                   // M, each channel round(sum / cells)
    Pixel first = 0;              // the source of the block's first pixel, for the blend
    int gridRow = 0;              // the block's row and column among the blocks
    int gridColumn = 0;
    // Room for the colours of a rule's classes, reused from block to block.
    std::span<Rgb16> palette{};
    std::span<Pixel> paletteBits{};
};

// The mean of the block's counted cells, each channel rounded half to even.
// Folded cells count as often as they fold. A block without a counted cell
// is 0 / 0, which the conversion refuses with the overflow error.
[[nodiscard]] Rgb16 blockMean(const Surface& source, std::span<const int> rows,
                              std::span<const int> columns);

// The first counted cell's source pixel.
[[nodiscard]] Pixel firstPixel(const Surface& source, std::span<const int> rows,
                               std::span<const int> columns);

// A mask of one block's cells, row by row: true where the shape paints.
struct CellMask {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> cells;

    [[nodiscard]] bool paints(int i, int j) const {
        return cells[static_cast<std::size_t>(i) * width + j] != 0;
    }
};

} // namespace lumiran::mosaic
