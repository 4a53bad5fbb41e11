// The mosaics that paint every cell of a block by a rule of its place.
#include "effects/texture/mosaic/cell_rules.h"
#include "effects/texture/mosaic/mosaic_walk.h"

namespace lumiran {
namespace {

using mosaic::Block;
using mosaic::BlockGrid;
using mosaic::CellPlace;

ProcessRect rectOf(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom) {
    return {left, top, right, bottom};
}

} // namespace

void Class_Mosaic::Mosaic_Normal(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t type) {
    guarded([&] {
        walkBlocks(rectOf(left, top, right, bottom), BlockGrid::plain(width, height),
                   [&](const Block& block) {
                       if (type != 1 && type != 2) {
                           paintUniform(ImageBits, block, block.mean);
                           return;
                       }
                       paintCells(ImageBits, block, [&](int i, int j) {
                           return mosaic::normalCell(type, {i, j, width, height}, block.mean);
                       });
                   });
    });
}

void Class_Mosaic::Mosaic_Tile(std::uint8_t width, std::uint8_t height, std::int16_t left,
                               std::int16_t top, std::int16_t right, std::int16_t bottom, bool,
                               std::uint8_t type) {
    guarded([&] {
        walkBlocks(rectOf(left, top, right, bottom), BlockGrid::plain(width, height),
                   [&](const Block& block) {
                       paintCells(ImageBits, block, [&](int i, int j) {
                           return mosaic::tileCell(type, {i, j, width, height}, block.mean);
                       });
                   });
    });
}

void Class_Mosaic::Mosaic_Gradation1(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t, std::uint8_t type) {
    guarded([&] {
        walkBlocks(rectOf(left, top, right, bottom), BlockGrid::plain(width, height),
                   [&](const Block& block) {
                       paintCells(ImageBits, block, [&](int i, int j) {
                           return mosaic::gradation1Cell(type, {i, j, width, height}, block.mean);
                       });
                   });
    });
}

void Class_Mosaic::Mosaic_Gradation2(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t, std::uint8_t type) {
    guarded([&] {
        const mosaic::Gradation2 gradation(type);
        walkBlocks(rectOf(left, top, right, bottom), BlockGrid::plain(width, height),
                   [&](const Block& block) {
                       paintCells(ImageBits, block, [&](int i, int j) {
                           return gradation.cell({i, j, width, height}, block.mean);
                       });
                   });
    });
}

void Class_Mosaic::Mosaic_Blick(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom,
                                bool columns, std::uint8_t type) {
    guarded([&] {
        BlockGrid grid = BlockGrid::plain(width, height);
        if (columns) {
            grid.columnShift[1] = height / 2;
        } else {
            grid.rowShift[1] = width / 2;
        }
        walkBlocks(rectOf(left, top, right, bottom), grid, [&](const Block& block) {
            if (type != 1 && type != 2) {
                paintUniform(ImageBits, block, block.mean);
                return;
            }
            // The relief and the black and white edge of the tile mosaic.
            const auto tileType = static_cast<std::uint8_t>(type - 1);
            paintCells(ImageBits, block, [&](int i, int j) {
                return mosaic::tileCell(tileType, {i, j, width, height}, block.mean);
            });
        });
    });
}

} // namespace lumiran
