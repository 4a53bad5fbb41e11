// The mosaics that paint every cell of a block by a rule of its place.
#include "effects/texture/mosaic/mosaic_walk.h"

namespace lumiran {
namespace {

using mosaic::Block;
using mosaic::BlockGrid;

ProcessRect rectOf(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom) {
    return {left, top, right, bottom};
}

} // namespace

void Class_Mosaic::Mosaic_Normal(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t type) {
    guarded([&] {
        const ProcessRect rect = rectOf(left, top, right, bottom);
        if (type != 1 && type != 2) {
            uniformMosaic(rect, width, height);
            return;
        }
        ruleMosaic(rect, width, height, mosaic::normalRule(type, width, height));
    });
}

void Class_Mosaic::ruleMosaic(const ProcessRect& rect, int width, int height,
                              const mosaic::CellRule& rule) {
    walkBlocks(rect, BlockGrid::plain(width, height),
               [&](const Block& block) { paintRule(ImageBits, block, rule); });
}

void Class_Mosaic::Mosaic_Tile(std::uint8_t width, std::uint8_t height, std::int16_t left,
                               std::int16_t top, std::int16_t right, std::int16_t bottom, bool,
                               std::uint8_t type) {
    guarded([&] {
        ruleMosaic(rectOf(left, top, right, bottom), width, height,
                   mosaic::tileRule(type, width, height));
    });
}

void Class_Mosaic::Mosaic_Gradation1(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t, std::uint8_t type) {
    guarded([&] {
        ruleMosaic(rectOf(left, top, right, bottom), width, height,
                   mosaic::gradation1Rule(type, width, height));
    });
}

void Class_Mosaic::Mosaic_Gradation2(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t, std::uint8_t type) {
    guarded([&] {
        ruleMosaic(rectOf(left, top, right, bottom), width, height,
                   mosaic::gradation2Rule(type, width, height));
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
        if (type != 1 && type != 2) {
            walkBlocks(rectOf(left, top, right, bottom), grid,
                       [&](const Block& block) { paintUniform(ImageBits, block, block.mean); });
            return;
        }
        // The relief and the black and white edge of the tile mosaic.
        const mosaic::CellRule rule =
            mosaic::tileRule(static_cast<std::uint8_t>(type - 1), width, height);
        walkBlocks(rectOf(left, top, right, bottom), grid,
                   [&](const Block& block) { paintRule(ImageBits, block, rule); });
    });
}

} // namespace lumiran
