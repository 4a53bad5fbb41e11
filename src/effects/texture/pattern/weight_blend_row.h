#pragma once

#include "engine/pixel.h"

#include <cstdint>

namespace lumiran::pattern {

// The weight blend of a row of pattern values with the row's pixels, each
// result then clamped to 0..255 (no calculation type): p holds count red,
// then count green, then count blue values. The spare byte stays. In 16-bit
// lanes where the processor has them, which is the blend's own arithmetic.
void blendRowClamped(Pixel* row, const std::int16_t* p, int count, int weight);

} // namespace lumiran::pattern
