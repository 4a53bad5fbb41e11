// The mosaics that paint a block through a shape mask.
#include "effects/texture/mosaic/mosaic_walk.h"
#include "effects/texture/mosaic/shape_masks.h"

namespace lumiran {
namespace {

using mosaic::Block;
using mosaic::BlockGrid;

} // namespace

void Class_Mosaic::Mosaic_Circle(std::uint8_t size, std::int16_t left, std::int16_t top,
                                 std::int16_t right, std::int16_t bottom, std::uint8_t shape) {
    guarded([&] {
        if (size == 0) throw EffectError::overflow();
        const mosaic::CellRule rule = mosaic::maskRule(mosaic::shapeMask(size, shape), size, size);
        walkBlocks({left, top, right, bottom}, BlockGrid::plain(size, size),
                   [&](const Block& block) { paintRule(ImageBits, block, rule); });
    });
}

void Class_Mosaic::Mosaic_Osero(std::uint8_t size, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::uint8_t threshold,
                                std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    guarded([&] {
        if (size == 0) throw EffectError::overflow();
        // Class 0 the stone, 1 the board around it.
        mosaic::CellRule rule = mosaic::maskRule(mosaic::shapeMask(size, 0), size, size);
        for (std::uint16_t& cell : rule.classes.of)
            cell = cell == mosaic::LeaveCell ? 1 : 0;
        rule.classes.count = 2;
        const Rgb16 board{red, green, blue};
        rule.palette = [board, threshold](Rgb16 m, std::span<Rgb16> c) {
            const int grey = (m.red + m.green + m.blue) / 3;
            c[0] = mosaic::grey(grey < threshold ? 0 : 255);
            c[1] = board;
        };
        walkBlocks({left, top, right, bottom}, BlockGrid::plain(size, size),
                   [&](const Block& block) { paintRule(ImageBits, block, rule); });
    });
}

void Class_Mosaic::Mosaic_ShippouTunagi(std::uint8_t size, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom, std::uint8_t type,
                                        std::uint8_t kind) {
    guarded([&] {
        if (blocksIntoOwnTrans_) makeTransOutside({});
        if (size == 0) throw EffectError::overflow();
        const ProcessRect rect{left, top, right, bottom};
        const bool outlined = kind != 0;
        const bool petals = type == 0;
        const BlockGrid stars = BlockGrid::halfBlockLattice(size, size);
        const int half = std::max(1, size / 2);
        const BlockGrid lenses = BlockGrid::plain(half, half);
        const mosaic::Extent extent = extentOf(rect);
        SetProgressRange(0, mosaic::blockRowCount(extent, stars) +
                                (petals ? mosaic::blockRowCount(extent, lenses) : 0));
        const mosaic::CellRule star =
            mosaic::maskRule(mosaic::starMask(size, outlined), size, size);
        walkBlocks(
            rect, stars, [&](const Block& block) { paintRule(TransBits, block, star); }, false);
        if (!petals || context().cancelled()) return;
        const mosaic::CellRule petal[2] = {
            mosaic::maskRule(mosaic::petalMask(size, 0, outlined), half, half),
            mosaic::maskRule(mosaic::petalMask(size, 1, outlined), half, half)};
        walkBlocks(
            rect, lenses,
            [&](const Block& block) {
                paintRule(TransBits, block, petal[(block.gridRow + block.gridColumn) & 1]);
            },
            false);
    });
}

void Class_Mosaic::Mosaic_Lozenge(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom,
                                  std::uint8_t, std::uint8_t shape) {
    guarded([&] {
        if (blocksIntoOwnTrans_) makeTransOutside({});
        if (width == 0 || height == 0) throw EffectError::overflow();
        BlockGrid grid = BlockGrid::plain(width, height);
        mosaic::CellMask mask;
        if (shape == 0) {
            // Lozenges around the corners and the centres of the blocks tile
            // the rectangle.
            mask = mosaic::shapeMask(std::max(width, height),
                                     static_cast<int>(mosaic::Shape::FirstLozenge));
            grid = BlockGrid::halfBlockLattice(width, height);
        } else {
            mask =
                mosaic::shapeMask(std::max(width, height), static_cast<int>(mosaic::Shape::Circle));
            grid.rowShift[1] = width / 2;
        }
        const mosaic::CellRule rule = mosaic::maskRule(mask, width, height);
        walkBlocks({left, top, right, bottom}, grid,
                   [&](const Block& block) { paintRule(TransBits, block, rule); });
    });
}

} // namespace lumiran
