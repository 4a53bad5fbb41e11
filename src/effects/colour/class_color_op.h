#pragma once

#include <cstdint>

#include "engine/pixel_frame.h"

namespace lumiran {

// Per-pixel colour transforms, working in place on ImageBits.
class Class_ColorOp : public PixelFrame {
public:
    using PixelFrame::PixelFrame;

    // Grey of one kind (0..13), the same value in all three channels.
    // Unclamped when no calculation type is set: kinds 12 and 13 wrap below 0.
    void Gray_Effect(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom);
};

} // namespace lumiran
