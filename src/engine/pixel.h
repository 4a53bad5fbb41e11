#pragma once

#include <cstdint>

namespace lumiran {

// One element of a pixel array: bytes blue, green, red, spare in memory
// order, that is blue in the low byte of the 32-bit value.
using Pixel = std::uint32_t;

[[nodiscard]] constexpr int blueOf(Pixel p) {
    return static_cast<int>(p & 0xFFu);
}
[[nodiscard]] constexpr int greenOf(Pixel p) {
    return static_cast<int>((p >> 8) & 0xFFu);
}
[[nodiscard]] constexpr int redOf(Pixel p) {
    return static_cast<int>((p >> 16) & 0xFFu);
}
[[nodiscard]] constexpr int spareOf(Pixel p) {
    return static_cast<int>(p >> 24);
}

// Builds an element from the low bytes of the channel values; higher bits
// are dropped exactly as a byte store drops them.
[[nodiscard]] constexpr Pixel makePixel(int red, int green, int blue, int spare = 0) {
    return (static_cast<Pixel>(spare & 0xFF) << 24) | (static_cast<Pixel>(red & 0xFF) << 16) |
           (static_cast<Pixel>(green & 0xFF) << 8) | static_cast<Pixel>(blue & 0xFF);
}

// Replaces the three colour bytes of an element and keeps its spare byte.
[[nodiscard]] constexpr Pixel withColour(Pixel original, int red, int green, int blue) {
    return (original & 0xFF000000u) | (makePixel(red, green, blue) & 0x00FFFFFFu);
}

struct Rgb8 {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend bool operator==(const Rgb8&, const Rgb8&) = default;
};

[[nodiscard]] constexpr Pixel toPixel(Rgb8 c) {
    return makePixel(c.red, c.green, c.blue);
}

} // namespace lumiran
