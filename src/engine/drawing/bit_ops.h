#pragma once

// The row kernels every drawing call ends in. Internal to the drawing
// folder: callers use the raster codes and pen modes.
#include "engine/drawing/raster_code.h"
#include "engine/pixel.h"

#include <cstddef>
#include <cstdint>

namespace lumiran::drawing {

// A binary operation as a truth table: bit (s << 1 | d) of the table is the
// result bit for source (or pen) bit s and destination bit d. A raster
// code's low operation nibble and DrawMode - 1 are both such tables.
using BinaryTable = std::uint8_t;

[[nodiscard]] constexpr BinaryTable tableOf(RasterCode code) {
    return static_cast<BinaryTable>((code >> 16) & 0x0F);
}
[[nodiscard]] constexpr BinaryTable tableOf(PenMode mode) {
    return static_cast<BinaryTable>((static_cast<unsigned>(mode) - 1) & 0x0F);
}

// The table's operation on all bits; callers choose where the spare byte
// comes from.
template <BinaryTable T>
[[nodiscard]] constexpr Pixel operate(Pixel s, Pixel d) {
    if constexpr (T == 0)
        return 0;
    else if constexpr (T == 1)
        return ~(s | d);
    else if constexpr (T == 2)
        return ~s & d;
    else if constexpr (T == 3)
        return ~s;
    else if constexpr (T == 4)
        return s & ~d;
    else if constexpr (T == 5)
        return ~d;
    else if constexpr (T == 6)
        return s ^ d;
    else if constexpr (T == 7)
        return ~(s & d);
    else if constexpr (T == 8)
        return s & d;
    else if constexpr (T == 9)
        return ~(s ^ d);
    else if constexpr (T == 10)
        return d;
    else if constexpr (T == 11)
        return ~s | d;
    else if constexpr (T == 12)
        return s;
    else if constexpr (T == 13)
        return s | ~d;
    else if constexpr (T == 14)
        return s | d;
    else
        return ~Pixel{0};
}

inline constexpr Pixel SpareByte = 0xFF000000u;
inline constexpr Pixel ColourBytes = 0x00FFFFFFu;

// Block calls: the colour bytes by the table, the spare byte the source's,
// so that a source copy is a plain copy of elements.
// dst[i] = op(src[i], dst[i]) for i < n; the two ranges must not overlap.
void combineRow(BinaryTable table, Pixel* dst, const Pixel* src, std::size_t n);
// dst[i] = op(srcRow[columns[i]], dst[i]) for i < n.
void gatherRow(BinaryTable table, Pixel* dst, const Pixel* srcRow, const std::int32_t* columns,
               std::size_t n);
// Drawing calls: dst[i] = op(colour, dst[i]) for i < n on the colour bytes;
// the pixel keeps its spare byte, as the row loop leaves it.
void fillRow(BinaryTable table, Pixel* dst, Pixel colour, std::size_t n);

} // namespace lumiran::drawing
