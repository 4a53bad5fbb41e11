#pragma once

#include <cstdint>

namespace lumiran {

// A raster code as the block calls take it. Only the operation byte (bits
// 16 to 23) counts; it is read with the pattern taken as black, so the
// sixteen codes that combine source and destination alone are exact and
// any pattern code acts as its pattern-free half.
using RasterCode = std::uint32_t;

inline constexpr RasterCode SRCCOPY = 0x00CC0020;     // S
inline constexpr RasterCode SRCPAINT = 0x00EE0086;    // D or S
inline constexpr RasterCode SRCAND = 0x008800C6;      // D and S
inline constexpr RasterCode SRCINVERT = 0x00660046;   // D xor S
inline constexpr RasterCode SRCERASE = 0x00440328;    // S and not D
inline constexpr RasterCode NOTSRCCOPY = 0x00330008;  // not S
inline constexpr RasterCode NOTSRCERASE = 0x001100A6; // not (D or S)
inline constexpr RasterCode MERGEPAINT = 0x00BB0226;  // D or not S
inline constexpr RasterCode DSTINVERT = 0x00550009;   // not D
inline constexpr RasterCode BLACKNESS = 0x00000042;   // 0
inline constexpr RasterCode WHITENESS = 0x00FF0062;   // 1

// The code of a raster flag 0..10 (the options' list, the paste's index);
// any other index leaves the code at 0, which blackens.
[[nodiscard]] RasterCode rasterCodeForFlag(int flag);

// The pen modes of the picture control's DrawMode (1..16), each a binary
// operation of pen P and destination D.
enum class PenMode : std::uint8_t {
    Blackness = 1,
    NotMergePen, // not (P or D)
    MaskNotPen,  // D and not P
    NotCopyPen,  // not P
    MaskPenNot,  // P and not D
    Invert,      // not D
    XorPen,      // P xor D
    NotMaskPen,  // not (P and D)
    MaskPen,     // P and D
    NotXorPen,   // not (P xor D)
    Nop,         // D
    MergeNotPen, // D or not P
    CopyPen,     // P
    MergePenNot, // P or not D
    MergePen,    // P or D
    Whiteness,
};

} // namespace lumiran
