#pragma once

#include "engine/drawing/colour_ref.h"
#include "engine/surface.h"

namespace lumiran {

// GetPixel: the colour at (x, y) as an RGB long (red in the low byte), or
// NoColour (-1) for a point outside the picture.
[[nodiscard]] ColourRef GetPixel(const Surface& picture, int x, int y);

// SetPixelV: sets the colour bytes at (x, y); the spare byte stays. A point
// outside the picture is dropped.
void SetPixelV(Surface& picture, int x, int y, ColourRef colour);

// Cls with the picture's BackColor: every pixel takes the colour.
void Cls(Surface& picture, ColourRef backColour);

} // namespace lumiran
