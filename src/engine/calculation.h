#pragma once

#include <cstdint>

namespace lumiran {

// The result fields of an effect for one pixel. They are 16-bit: what an
// effect stores into them keeps its low 16 bits.
struct Rgb16 {
    std::int16_t red = 0;
    std::int16_t green = 0;
    std::int16_t blue = 0;
    friend bool operator==(const Rgb16&, const Rgb16&) = default;
};

// Limits each channel to 0..255, upper bound first.
[[nodiscard]] constexpr Rgb16 clampResult(Rgb16 v) {
    auto clamp = [](std::int16_t c) -> std::int16_t {
        if (c > 255) c = 255;
        if (c < 0) c = 0;
        return c;
    };
    return {clamp(v.red), clamp(v.green), clamp(v.blue)};
}

// Blends the effect's output with the source pixel (r, g, b) by the
// calculation type. Flag 0 is never passed here by the row loop; values
// above 10 only clamp. May throw the overflow error from flags 9 and 10.
[[nodiscard]] Rgb16 applyCalculationType(std::uint8_t flag, int r, int g, int b, Rgb16 result);

// The label each calculation type shows in the options list and status bar.
[[nodiscard]] const char* calculationTypeLabel(std::uint8_t flag);

} // namespace lumiran
