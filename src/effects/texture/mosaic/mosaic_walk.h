#pragma once

// The member templates of Class_Mosaic that walk and paint blocks; included
// by the units of its operations.
#include "effects/texture/mosaic/class_mosaic.h"

#include <algorithm>
#include <type_traits>
#include <vector>

namespace lumiran {

inline mosaic::Extent Class_Mosaic::extentOf(const ProcessRect& rect) const {
    const Span span = spanOf(rect);
    return {span.firstColumn, span.endColumn, span.firstRow, span.endRow};
}

template <RowOrder Order, typename Paint>
void Class_Mosaic::walkBlocks(const ProcessRect& rect, const mosaic::BlockGrid& grid, Paint&& paint,
                              bool ownProgressRange) {
    const mosaic::Extent extent = extentOf(rect);
    const int blockRows = mosaic::blockRowCount(extent, grid);
    if (ownProgressRange) SetProgressRange(0, blockRows);
    if (blockRows == 0) return;
    // Room for the colours of any rule's classes: one a cell, or the 257 of
    // a slope held in a byte.
    const std::size_t paletteSize =
        std::max<std::size_t>(static_cast<std::size_t>(grid.width) * grid.height, 257);
    auto rowOfBlocks = [&](int k) {
        std::vector<int> rows(static_cast<std::size_t>(grid.height));
        std::vector<int> columns(static_cast<std::size_t>(grid.width));
        std::vector<Rgb16> palette(paletteSize);
        std::vector<Pixel> paletteBits(paletteSize);
        mosaic::forEachBlockInRow(extent, grid, k, rows, columns, [&](int m) {
            const mosaic::Block block{.rows = rows,
                                      .columns = columns,
                                      .mean = mosaic::blockMean(ImageBits, rows, columns),
                                      .first = mosaic::firstPixel(ImageBits, rows, columns),
                                      .gridRow = k,
                                      .gridColumn = m,
                                      .palette = palette,
                                      .paletteBits = paletteBits};
            paint(block);
        });
    };
    if (Order == RowOrder::AnyOrder && grid.rowsAreDisjoint()) {
        // One loop row a row of blocks: each writes only the picture rows of
        // its own blocks, folded rows included.
        const ProcessRect blockRowsRect{static_cast<std::int16_t>(extent.firstColumn), 0,
                                        static_cast<std::int16_t>(extent.endColumn),
                                        static_cast<std::int16_t>(blockRows)};
        forEachRow(blockRowsRect, [&](int k, int, int) { rowOfBlocks(k); });
        return;
    }
    for (int k = 0; k < blockRows; ++k) {
        rowOfBlocks(k);
        if (!finishRow()) return;
    }
}

} // namespace lumiran
