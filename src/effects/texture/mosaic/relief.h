#pragma once

// The lit relief of one block: for each cell the diffuse and specular terms
// of the shading rule of the lit spheres, with the normal of a relief in
// place of the sphere's.
#include <cstdint>
#include <vector>

namespace lumiran::mosaic {

struct CellLight {
    double diffuse = 0;
    double specular = 0;
};

// Light x, y, z as the sliders give them (-10..10), each over 10 and then
// normalised; kind 0 a cushion (a sine bump, steepest at the middles of
// its sides, at a slope of 1/2), any other a pyramid of four faces at 1/2.
[[nodiscard]] std::vector<CellLight> reliefLight(int size, std::uint8_t kind, int lightX,
                                                 int lightY, int lightZ);

// round(c d + reflection s + ambient), the shading of one channel.
[[nodiscard]] std::int16_t shadeChannel(int channel, const CellLight& light, int reflection,
                                        int ambient);

} // namespace lumiran::mosaic
