// Blocks dropped at random origins; painted in place in the order drawn,
// so later blocks average what earlier ones painted.
#include "effects/texture/mosaic/cell_rules.h"
#include "effects/texture/mosaic/mosaic_walk.h"
#include "effects/texture/mosaic/shape_masks.h"

namespace lumiran {

void Class_Mosaic::Mosaic_Random(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t type) {
    guarded([&] {
        const Span span = spanOf({left, top, right, bottom});
        // As many blocks as the regular walk lays, one progress step a row.
        const int blockRows = mosaic::blockRowCount(extentOf({left, top, right, bottom}),
                                                    mosaic::BlockGrid::plain(width, height));
        SetProgressRange(0, blockRows);
        if (blockRows == 0) return;
        const int blockColumns = (span.endColumn - 1 - span.firstColumn) / width + 1;
        const int size = std::max(width, height);
        mosaic::CellMask mask;
        if (type == 4) mask = mosaic::dotMask(size);
        if (type == 5)
            mask = mosaic::shapeMask(size, static_cast<int>(mosaic::Shape::FirstLozenge));
        // Origins reach one past the last column and row, where the whole
        // block folds onto the edge.
        const double across = span.endColumn - span.firstColumn + 1;
        const double down = span.endRow - span.firstRow + 1;
        std::vector<int> rows(height);
        std::vector<int> columns(width);
        for (int k = 0; k < blockRows; ++k) {
            for (int m = 0; m < blockColumns; ++m) {
                const int x0 =
                    roundTo<std::int32_t>(across * context().random.next() + span.firstColumn);
                const int y0 =
                    roundTo<std::int32_t>(down * context().random.next() + span.firstRow);
                mosaic::foldAxis(y0, span.firstRow, span.endRow, rows);
                mosaic::foldAxis(x0, span.firstColumn, span.endColumn, columns);
                const mosaic::Block block{rows,
                                          columns,
                                          mosaic::blockMean(ImageBits, rows, columns),
                                          mosaic::firstPixel(ImageBits, rows, columns),
                                          k,
                                          m};
                const Rgb16 mean = block.mean;
                switch (type) {
                case 1: // a slope down from M + 3 w
                    paintCells(ImageBits, block, [&](int, int j) {
                        return mosaic::shifted(mean, 3 * width - 3 * j);
                    });
                    break;
                case 2:
                case 3: { // a frame of white or black around the block
                    const Rgb16 frame = mosaic::grey(type == 2 ? 255 : 0);
                    paintCells(ImageBits, block, [&](int i, int j) {
                        const bool onFrame = i == 0 || j == 0 || i == height - 1 || j == width - 1;
                        return onFrame ? frame : mean;
                    });
                    break;
                }
                case 4:
                case 5:
                    paintThroughMask(ImageBits, block, mask);
                    break;
                default:
                    paintUniform(ImageBits, block, mean);
                    break;
                }
            }
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
