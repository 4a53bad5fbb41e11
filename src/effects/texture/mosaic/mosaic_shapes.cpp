// The mosaics that paint a block through a shape mask.
#include "effects/texture/mosaic/cell_rules.h"
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
        const mosaic::CellMask mask = mosaic::shapeMask(size, shape);
        walkBlocks({left, top, right, bottom}, BlockGrid::plain(size, size),
                   [&](const Block& block) { paintThroughMask(ImageBits, block, mask); });
    });
}

void Class_Mosaic::Mosaic_Osero(std::uint8_t size, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::uint8_t threshold,
                                std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    guarded([&] {
        if (size == 0) throw EffectError::overflow();
        const mosaic::CellMask disc = mosaic::shapeMask(size, 0);
        const Rgb16 board{red, green, blue};
        walkBlocks({left, top, right, bottom}, BlockGrid::plain(size, size),
                   [&](const Block& block) {
                       const int grey = (block.mean.red + block.mean.green + block.mean.blue) / 3;
                       const Rgb16 stone = mosaic::grey(grey < threshold ? 0 : 255);
                       paintCells(ImageBits, block,
                                  [&](int i, int j) { return disc.paints(i, j) ? stone : board; });
                   });
    });
}

void Class_Mosaic::Mosaic_ShippouTunagi(std::uint8_t size, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom, std::uint8_t type,
                                        std::uint8_t kind) {
    guarded([&] {
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
        const mosaic::CellMask star = mosaic::starMask(size, outlined);
        walkBlocks(
            rect, stars, [&](const Block& block) { paintThroughMask(TransBits, block, star); },
            false);
        if (!petals || context().cancelled()) return;
        const mosaic::CellMask petal[2] = {mosaic::petalMask(size, 0, outlined),
                                           mosaic::petalMask(size, 1, outlined)};
        walkBlocks(
            rect, lenses,
            [&](const Block& block) {
                paintThroughMask(TransBits, block, petal[(block.gridRow + block.gridColumn) & 1]);
            },
            false);
    });
}

void Class_Mosaic::Mosaic_Lozenge(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom,
                                  std::uint8_t, std::uint8_t shape) {
    guarded([&] {
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
        walkBlocks({left, top, right, bottom}, grid,
                   [&](const Block& block) { paintThroughMask(TransBits, block, mask); });
    });
}

} // namespace lumiran
