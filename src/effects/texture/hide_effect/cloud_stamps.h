#pragma once

// The stamps the cloud and noise effects drop on the picture: masks drawn
// once per run on a picture of their own, read by the red byte.
#include "engine/surface.h"

#include <cstdint>

namespace lumiran::hide {

// The pencil stamp of "Sketch Noise", white (255, leaves the pixel) with
// strokes of grey; b = round(side / 4) is its grain. Types 0..9: "/"
// hatching, "\" hatching, cross hatching, rows, columns, dots, a ring, one
// broad stroke, a cross, rings; any other type is blank.
[[nodiscard]] Surface sketchStamp(int side, std::uint8_t type);

// A black square with a white disc of radius side / 4 in its middle.
[[nodiscard]] Surface discStamp(int side);

} // namespace lumiran::hide
