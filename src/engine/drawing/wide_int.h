#pragma once

// Exact integer helpers for shapes whose terms pass 64 bits (squares of
// radii, products of far coordinates). Internal to the drawing folder.
#include <cstdint>

namespace lumiran::drawing {

__extension__ using Wide = __int128;

[[nodiscard]] constexpr Wide floorDiv(Wide num, Wide den) { // den > 0
    const Wide q = num / den;
    return (num % den != 0 && num < 0) ? q - 1 : q;
}

[[nodiscard]] constexpr Wide ceilDiv(Wide num, Wide den) { // den > 0
    return -floorDiv(-num, den);
}

} // namespace lumiran::drawing
