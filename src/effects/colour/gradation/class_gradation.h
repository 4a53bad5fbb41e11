#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

// A colour gradation drawn as a walk of lines of width 2 on kept picture 0
// (context().kept0), and the blends of that drawing with the document.
class Class_Gradation : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Clears the rectangle of kept picture 0 to the background colour and
    // walks the shape's lines (0 "水平" .. 13 "十字"), stepping the colour
    // from the start colour by the tone (0 "明るくする" .. 6 "虹") with the
    // step's magnitude. Only the last argument, "渦巻きｻｲｽﾞ", sets the
    // spiral's growth per turn; the third (0 from every caller) and the
    // check state are kept as the callers pass them and read by no rule.
    void Gradation_Draw(std::uint8_t shape, std::int16_t step, std::int16_t reserved,
                        std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom, std::int16_t red, std::int16_t green,
                        std::int16_t blue, std::uint8_t tone, std::uint8_t check,
                        std::int16_t spiralSize);

    // The document's pixels (ImageBits) with the drawing on kept picture 0:
    // 0 mean, 1 sum, 2 absolute difference, 3 c - k + 255, 4 xor.
    void Gradation_Blend(std::uint8_t mode, std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom);
};

} // namespace lumiran
