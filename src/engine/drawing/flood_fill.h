#pragma once

#include "engine/drawing/colour_ref.h"
#include "engine/surface.h"

#include <cstdint>

namespace lumiran {

// The two kinds of the platform's flood fill.
enum class FloodFillType : std::uint8_t {
    Border = 0,  // FLOODFILLBORDER: fill up to a border of the colour
    Surface = 1, // FLOODFILLSURFACE: fill the area that has the colour
};

// ExtFloodFill: paints with the brush colour the 4-connected region that
// contains (x, y) and whose pixels have the colour (Surface kind) or do not
// have it (Border kind). Pixels that touch only at a corner are not
// connected, so a fill neither leaks through a diagonal gap in a one-pixel
// border nor crosses into a diagonal neighbour of the same colour. Colours
// compare on their 24 colour bits; each pixel of the region is painted
// once, with the spare byte kept. Returns false, painting nothing, when the
// point lies outside the picture or its pixel does not belong to the kind's
// region (the platform's failure).
bool ExtFloodFill(Surface& picture, int x, int y, ColourRef colour, FloodFillType type,
                  ColourRef brush);

// FloodFill: the border kind of ExtFloodFill.
bool FloodFill(Surface& picture, int x, int y, ColourRef border, ColourRef brush);

} // namespace lumiran
