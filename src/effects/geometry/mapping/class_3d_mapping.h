#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

// Draw types of Mapping: a mesh in one colour, a mesh in the picture's
// colours, the picture itself as dense points.
enum MappingDrawType : std::uint8_t { MeshInColour = 0, MeshInPicture = 1, PictureOnSurface = 2 };

// The picture laid on a mathematical surface (kinds 0..10) seen from two
// view angles in degrees, drawn with GetPixel, SetPixelV and lines onto a
// target cleared to the background colour. Holds no pixel arrays.
class Class_3DMapping : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    void Mapping(const Surface& source, Surface& target, std::int16_t viewX, std::int16_t viewY,
                 std::uint8_t drawType, std::uint8_t surfaceKind, std::uint8_t red,
                 std::uint8_t green, std::uint8_t blue, std::int16_t strength, std::int16_t waves);
};

} // namespace lumiran
