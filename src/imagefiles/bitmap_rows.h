#pragma once

#include "engine/pixel.h"

#include <cstdint>
#include <cstring>

namespace lumiran {

// Rows of a 24-bit bitmap (blue, green, red) to and from pixel elements.
// Four bytes are moved at a time; the last pixel of a row alone is moved
// byte by byte, so nothing is read or written past the row.

inline void expandRow24(const std::uint8_t* in, Pixel* out, int width) {
    for (int x = 0; x + 1 < width; ++x) {
        std::uint32_t v = 0;
        std::memcpy(&v, in + 3 * static_cast<std::ptrdiff_t>(x), 4);
        out[x] = v & 0x00FFFFFFu; // the spare byte 0, as the decoder gives it
    }
    if (width > 0) {
        const std::uint8_t* last = in + 3 * static_cast<std::ptrdiff_t>(width - 1);
        out[width - 1] = makePixel(last[2], last[1], last[0]);
    }
}

inline void expandRow32(const std::uint8_t* in, Pixel* out, int width) {
    for (int x = 0; x < width; ++x) {
        std::uint32_t v = 0;
        std::memcpy(&v, in + 4 * static_cast<std::ptrdiff_t>(x), 4);
        out[x] = v & 0x00FFFFFFu;
    }
}

// Writes 3 * width bytes.
inline void packRow24(const Pixel* in, std::uint8_t* out, int width) {
    for (int x = 0; x + 1 < width; ++x) {
        // The fourth byte lands on the next pixel's blue, written next.
        std::memcpy(out + 3 * static_cast<std::ptrdiff_t>(x), &in[x], 4);
    }
    if (width > 0) {
        const Pixel p = in[width - 1];
        std::uint8_t* last = out + 3 * static_cast<std::ptrdiff_t>(width - 1);
        last[0] = static_cast<std::uint8_t>(blueOf(p));
        last[1] = static_cast<std::uint8_t>(greenOf(p));
        last[2] = static_cast<std::uint8_t>(redOf(p));
    }
}

} // namespace lumiran
