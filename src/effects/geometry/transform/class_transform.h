#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

// Shapes of Transform_Ellipse: the low three bits of the kind; ByColumns
// shrinks columns to the shape's height instead of rows to its width.
enum TransformShape : std::uint8_t {
    ShapeEllipse = 0,
    ShapeRoundRect = 1,
    ShapeLozenge = 2,
    ShapeHexagon = 3,
    ShapeTriangleApexFirst = 4, // apex at the top (rows) or at the left (columns)
    ShapeTriangleApexLast = 5,
};
inline constexpr std::uint8_t ByColumns = 8;

// Reshapes the picture in whole rows and columns, stretching them from kept
// picture 0 onto kept picture 1 with StretchBlt. A background kind of 0
// first lays the picture on the target, so what the shape leaves uncovered
// shows the picture; any other value clears the target to its background.
// Holds no pixel arrays.
class Class_Transform : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // The two halves of each column (kinds 2, 3) or row (kinds 0, 1) slide
    // past each other by an offset that grows across the picture: in kinds
    // 0 and 2 they cross, in 1 and 3 they part.
    void Transform_Cross(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom, std::int16_t backgroundKind);

    // Each row (or column) shrunk to the width of the shape at its height.
    void Transform_Ellipse(std::uint8_t kind, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom, std::int16_t backgroundKind);

    // Rows (horizontal) or columns (vertical) stretched to a size that grows
    // linearly from half to whole across the rectangle; kind 0 has the narrow
    // edge at the top (left), kind 1 at the bottom (right). The background
    // kind's clear uses the colour given.
    void Transform_TrapzoidHorizontal(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom,
                                      std::int16_t backgroundKind, std::uint8_t red,
                                      std::uint8_t green, std::uint8_t blue);
    void Transform_TrapzoidVertical(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                    std::int16_t right, std::int16_t bottom,
                                    std::int16_t backgroundKind, std::uint8_t red,
                                    std::uint8_t green, std::uint8_t blue);

  private:
    // Kept pictures 0 and 1 with the background laid; false outside a run.
    bool prepareTarget(std::int16_t backgroundKind, Rgb8 background);
    void trapezoid(bool byColumns, std::uint8_t kind, const ProcessRect& rect,
                   std::int16_t backgroundKind, Rgb8 background);
};

} // namespace lumiran
