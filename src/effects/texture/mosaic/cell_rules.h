#pragma once

// The colour of each cell of a block from the block's mean M, held as
// classes of cells that share a colour: the classes are worked out once a
// run, the colours of the classes once a block, and each cell is then a
// look-up. "Edge" is the first row or column of the block.
#include "effects/texture/mosaic/block_walk.h"
#include "effects/texture/mosaic/relief.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace lumiran::mosaic {

// A cell that keeps the picture's pixel.
inline constexpr std::uint16_t LeaveCell = 0xFFFF;

struct CellClasses {
    int width = 0;
    int height = 0;
    int count = 0;                 // classes 0..count-1
    std::vector<std::uint16_t> of; // the class of cell (i, j) at i * width + j, or LeaveCell
};

// The rule of one mosaic: which cells share a colour, and the colours of
// the classes for a block's mean (before the blend or clamp).
struct CellRule {
    CellClasses classes;
    std::function<void(Rgb16 mean, std::span<Rgb16> colours)> palette;
};

// M plus a delta in each channel, in the 16-bit fields.
[[nodiscard]] Rgb16 shifted(Rgb16 mean, int delta);
// One value in all three channels.
[[nodiscard]] Rgb16 grey(int value);

// Mosaic_Normal: type 1 a raised edge (M + 5 w) over a slope (M - 3 j), 2
// the reverse, any other M.
[[nodiscard]] CellRule normalRule(std::uint8_t type, int width, int height);
// Mosaic_Tile (and Mosaic_Blick's types 1 and 2 as its types 0 and 1).
[[nodiscard]] CellRule tileRule(std::uint8_t type, int width, int height);
[[nodiscard]] CellRule gradation1Rule(std::uint8_t type, int width, int height);
// Mosaic_Gradation2: each type a run a + (b - a) / extent * distance from
// one colour to another (black, M or white), over the distance from the
// centre (radial), from the top or from the top left corner.
[[nodiscard]] CellRule gradation2Rule(std::uint8_t type, int width, int height);
// M where the mask paints, the picture elsewhere.
[[nodiscard]] CellRule maskRule(const CellMask& mask, int width, int height);
// Mosaic_Random: 1 a slope from M + 3 w, 2 and 3 a white or black frame.
[[nodiscard]] CellRule randomRule(std::uint8_t type, int width, int height);
// The relief's shading of M for every cell.
[[nodiscard]] CellRule shadingRule(std::vector<CellLight> relief, int size, int reflection,
                                   int ambient);

} // namespace lumiran::mosaic
