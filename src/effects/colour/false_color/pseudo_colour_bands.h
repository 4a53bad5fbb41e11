#pragma once

#include <array>
#include <cstdint>

namespace lumiran {

// Offsets added to the grey for red, green and blue.
using BandOffsets = std::array<int, 3>;

// The pseudo colour of a grey: nine bands of 30 levels (the last 240 and
// above), each adding fixed offsets. Type 0 is the program's table; types
// 1..5 hand its offsets to the channels in the other five orders, types 6
// and 7 run the bands of types 0 and 3 in reverse, so dark greys take the
// warm colours. The darkest and the brightest band stay grey in every type.
[[nodiscard]] BandOffsets pseudoColourOffsets(std::uint8_t type, int grey);

} // namespace lumiran
