#include "effects/texture/mosaic/mosaic_walk.h"

namespace lumiran {

void Class_Mosaic::paintRule(Surface& target, const mosaic::Block& block,
                             const mosaic::CellRule& rule) {
    const mosaic::CellClasses& classes = rule.classes;
    rule.palette(block.mean, block.palette);
    const int r = redOf(block.first), g = greenOf(block.first), b = blueOf(block.first);
    // The blend decided once a block, so that the clamp alone vectorises
    // over rules with a class a cell.
    const auto finishClasses = [&]<bool Blend>() {
        const Rgb16* __restrict palette = block.palette.data();
        Pixel* __restrict bits = block.paletteBits.data();
        for (int k = 0; k < classes.count; ++k) {
            const Rgb16 v = endPixel<ResultTail::Clamp, Blend>(r, g, b, palette[k]);
            bits[k] = makePixel(v.red, v.green, v.blue);
        }
    };
    if (calculationFlag() > 0) {
        finishClasses.template operator()<true>();
    } else {
        finishClasses.template operator()<false>();
    }
    const bool plain = mosaic::isPlainRun(block.columns);
    for (std::size_t i = 0; i < block.rows.size(); ++i) {
        const int y = block.rows[i];
        if (y == mosaic::SkippedCell) continue;
        const std::uint16_t* cellClass = classes.of.data() + i * classes.width;
        Pixel* row = target.row(y).data();
        if (plain) {
            Pixel* run = row + block.columns.front();
            for (std::size_t j = 0; j < block.columns.size(); ++j) {
                if (cellClass[j] != mosaic::LeaveCell)
                    run[j] = (run[j] & 0xFF000000u) | block.paletteBits[cellClass[j]];
            }
            continue;
        }
        for (std::size_t j = 0; j < block.columns.size(); ++j) {
            const int x = block.columns[j];
            if (x != mosaic::SkippedCell && cellClass[j] != mosaic::LeaveCell)
                row[x] = (row[x] & 0xFF000000u) | block.paletteBits[cellClass[j]];
        }
    }
}

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

} // namespace lumiran
