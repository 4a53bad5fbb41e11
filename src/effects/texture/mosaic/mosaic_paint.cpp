#include "effects/texture/mosaic/mosaic_walk.h"

namespace lumiran {

void Class_Mosaic::paintUniform(Surface& target, const mosaic::Block& block, Rgb16 colour) {
    const Rgb16 v = finishPixel<ResultTail::Clamp>(redOf(block.first), greenOf(block.first),
                                                   blueOf(block.first), colour);
    const Pixel bits = makePixel(v.red, v.green, v.blue);
    const bool plain = mosaic::isPlainRun(block.columns);
    for (const int y : block.rows) {
        if (y == mosaic::SkippedCell) continue;
        Pixel* row = target.row(y).data();
        if (plain) {
            // The spare byte stays, as the store of the three low bytes has it.
            Pixel* __restrict run = row + block.columns.front();
            for (std::size_t j = 0; j < block.columns.size(); ++j)
                run[j] = (run[j] & 0xFF000000u) | bits;
            continue;
        }
        for (const int x : block.columns) {
            if (x != mosaic::SkippedCell) row[x] = (row[x] & 0xFF000000u) | bits;
        }
    }
}

void Class_Mosaic::paintThroughMask(Surface& target, const mosaic::Block& block,
                                    const mosaic::CellMask& mask) {
    paintCells(target, block, [&](int i, int j) -> std::optional<Rgb16> {
        if (!mask.paints(i, j)) return std::nullopt;
        return block.mean;
    });
}

} // namespace lumiran
