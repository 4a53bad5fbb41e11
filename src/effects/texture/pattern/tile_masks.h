#pragma once

// The line drawings of the tile walls: one tile of size x size drawn once
// per run with the drawing calls on a work picture, white lines on black,
// and read back as a mask of its line pixels.
#include "effects/texture/mosaic/block_walk.h"

#include <cstdint>
#include <vector>

namespace lumiran::pattern {

using mosaic::CellMask;

// Draw_ArcCrest's tiles: quarter circles of half a tile around the upper
// left and lower right corners (turn 0) or the other two (turn 1); a
// circle of half a tile around the centre; both turns at once.
enum class ArcTile : std::uint8_t { Turn0, Turn1, Ring, BothTurns };
[[nodiscard]] CellMask arcTile(int size, ArcTile tile);

// LineInput_Lozenge's six drawings in the order of its list: lozenge,
// triangles, lattice, frame, asterisk, polka dots.
[[nodiscard]] CellMask lozengeTile(int size, std::uint8_t type);

// LineInput_Circle's four: shippou-tsunagi (circles of half a tile around
// the corners and the centre), the corner circles alone, shippou with the
// tile's joints, shippou doubled by circles around the middles of the
// sides.
[[nodiscard]] CellMask shippouTile(int size, std::uint8_t type);

} // namespace lumiran::pattern
