#pragma once

// The cells of one block through a shape, drawn once per run on a work
// picture with the drawing calls and read back with GetPixel: a black pixel
// leaves the picture's pixel, any other paints.
#include "effects/texture/mosaic/block_walk.h"

namespace lumiran::mosaic {

// The shapes of Mosaic_Circle, in the order of its callers' lists.
enum class Shape : int {
    Circle = 0,
    Pyramid = 1,
    FirstTriangle = 2, // 2..7
    FirstLozenge = 8,  // 8..15
    Smile = 16,
};

// A square mask of side size for a shape value of Mosaic_Circle; a value
// without a shape draws nothing (every cell black).
[[nodiscard]] CellMask shapeMask(int size, int shape);

// The dot of Mosaic_Random's "点描": a disc as wide as the block less a
// pixel on each side.
[[nodiscard]] CellMask dotMask(int size);

// The pieces of shippou-tsunagi, circles of radius size / 2 around the
// points of a lattice of half blocks (corners and centres of the blocks).
// The star: what of the circle around the block's centre no circle around
// its corners covers. The petal: on a block of size / 2, the lens two
// circles around opposite corners share, between the upper left and lower
// right corners (slant 0) or the other two (slant 1). Outlined, the circles'
// arcs are left black, so the picture shows as the pattern's lines.
[[nodiscard]] CellMask starMask(int size, bool outlined);
[[nodiscard]] CellMask petalMask(int size, int slant, bool outlined);

} // namespace lumiran::mosaic
