#pragma once

#include "engine/pixel.h"

namespace lumiran::neighbourhood {

// A colour's channels as plain integers, for sums and differences that
// leave the byte range.
struct Rgb {
    int r = 0;
    int g = 0;
    int b = 0;
};

[[nodiscard]] constexpr Rgb channelsOf(Pixel p) {
    return {redOf(p), greenOf(p), blueOf(p)};
}

} // namespace lumiran::neighbourhood
