#pragma once

#include "engine/pixel.h"

#include <cstdint>

namespace lumiran {

// The user settings every effect reads without knowing of them. They stay
// the same for the whole of a run.
struct EffectFlags {
    std::uint8_t calculationFlag = 0; // 0 to 10: blend of result with source
    std::uint8_t rasterOpFlag = 0;    // 0 to 10: how the result is laid over the document
    Rgb8 backColor{0, 0, 0};
    Rgb8 drawingColor{128, 128, 255};
};

} // namespace lumiran
