#pragma once

#include <cstdint>

namespace lumiran {

// Connection numbers of a row of a bilevel map: for i in 1 .. n - 2, with
// the row above, the row itself and the row below (n bytes each, 0 or 1),
// keep[i] = 1 when the pixel is foreground and the eight neighbours (x+1,y),
// (x+1,y-1), (x,y-1), (x-1,y-1), (x-1,y), (x-1,y+1), (x,y+1), (x+1,y+1),
// read round and back to the first, change from 0 to 1 exactly wanted
// times; otherwise 0. keep[0] and keep[n - 1] are left alone.
void markConnection(const std::uint8_t* above, const std::uint8_t* row, const std::uint8_t* below,
                    int n, int wanted, std::uint8_t* keep);

} // namespace lumiran
