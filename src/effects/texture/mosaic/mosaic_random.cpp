// Blocks dropped at random origins; painted in place in the order drawn,
// so later blocks average what earlier ones painted.
#include "effects/texture/mosaic/mosaic_walk.h"
#include "effects/texture/mosaic/shape_masks.h"
#include "engine/shared_rows.h"

namespace lumiran {

void Class_Mosaic::Mosaic_Random(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t type) {
    const bool ownTrans = blocksIntoOwnTrans_ && !ImageBits.empty();
    guarded([&] {
        const Span span = spanOf({left, top, right, bottom});
        // As many blocks as the regular walk lays, one progress step a row.
        const int blockRows = mosaic::blockRowCount(extentOf({left, top, right, bottom}),
                                                    mosaic::BlockGrid::plain(width, height));
        SetProgressRange(0, blockRows);
        if (blockRows == 0) return;
        const int blockColumns = (span.endColumn - 1 - span.firstColumn) / width + 1;
        const int size = std::max(width, height);
        mosaic::CellRule rule = mosaic::randomRule(type, width, height);
        if (type == 4) rule = mosaic::maskRule(mosaic::dotMask(size), width, height);
        if (type == 5) {
            rule = mosaic::maskRule(
                mosaic::shapeMask(size, static_cast<int>(mosaic::Shape::FirstLozenge)), width,
                height);
        }
        if (ownTrans) {
            // The working copy, made in bands of rows on every core: its
            // fresh pages are faulted in on both.
            TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
            forEachRowShared(context(), 0, ImageBits.height(), ImageBits.width(), [&](int y) {
                std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
            });
        }
        Surface& target = ownTrans ? TransBits : ImageBits;
        // Origins reach one past the last column and row, where the whole
        // block folds onto the edge.
        const double across = span.endColumn - span.firstColumn + 1;
        const double down = span.endRow - span.firstRow + 1;
        std::vector<int> rows(height);
        std::vector<int> columns(width);
        std::vector<Rgb16> palette(std::max<std::size_t>(rule.classes.count, 1));
        std::vector<Pixel> paletteBits(palette.size());
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
                                          mosaic::blockMean(target, rows, columns),
                                          mosaic::firstPixel(target, rows, columns),
                                          k,
                                          m,
                                          palette,
                                          paletteBits};
                paintRule(target, block, rule);
            }
            if (!finishRow()) return;
        }
    });
    // A run that stopped before the copy still hands on a whole picture.
    if (ownTrans && !TransBits.sameSize(ImageBits)) TransBits = ImageBits;
}

} // namespace lumiran
