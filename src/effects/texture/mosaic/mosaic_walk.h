#pragma once

// The member templates of Class_Mosaic that walk and paint blocks; included
// by the units of its operations.
#include "effects/texture/mosaic/class_mosaic.h"

#include <algorithm>
#include <optional>
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
    auto rowOfBlocks = [&](int k) {
        std::vector<int> rows(static_cast<std::size_t>(grid.height));
        std::vector<int> columns(static_cast<std::size_t>(grid.width));
        mosaic::forEachBlockInRow(extent, grid, k, rows, columns, [&](int m) {
            const mosaic::Block block{rows,
                                      columns,
                                      mosaic::blockMean(ImageBits, rows, columns),
                                      mosaic::firstPixel(ImageBits, rows, columns),
                                      k,
                                      m};
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

template <typename Rule>
void Class_Mosaic::paintCells(Surface& target, const mosaic::Block& block, Rule&& rule) {
    const int r = redOf(block.first), g = greenOf(block.first), b = blueOf(block.first);
    for (std::size_t i = 0; i < block.rows.size(); ++i) {
        const int y = block.rows[i];
        if (y == mosaic::SkippedCell) continue;
        Pixel* row = target.row(y).data();
        for (std::size_t j = 0; j < block.columns.size(); ++j) {
            const int x = block.columns[j];
            if (x == mosaic::SkippedCell) continue;
            const std::optional<Rgb16> colour = rule(static_cast<int>(i), static_cast<int>(j));
            if (!colour) continue;
            const Rgb16 v = finishPixel<ResultTail::Clamp>(r, g, b, *colour);
            row[x] = withColour(row[x], v.red, v.green, v.blue);
        }
    }
}

} // namespace lumiran
