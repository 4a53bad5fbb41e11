#pragma once

#include "engine/surface.h"

#include <cstdint>

namespace lumiran {

// The side of a noise stamp in pixels. Marks are drawn in 16 by 16 units
// and laid down at half that size, taking every second unit: big enough
// that a circle is still a ring, small enough to read as noise.
inline constexpr int StampSide = 8;

// The stamp of a noise type (0 "点", 1 "円", 2 "ﾏｷﾋﾞｼ", 3 "ﾊﾞﾂ", 4 "+"):
// black where it marks, white elsewhere. The dot is one pixel; any other
// type is the dot.
[[nodiscard]] Surface noiseStamp(std::uint8_t type);

} // namespace lumiran
