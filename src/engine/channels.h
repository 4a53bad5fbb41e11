#pragma once

#include "engine/pixel.h"

namespace lumiran {

// The channels of a pixel, or sums and differences of them, as plain
// integers that may leave the byte range.
struct IntRgb {
    int r = 0;
    int g = 0;
    int b = 0;
};

[[nodiscard]] constexpr IntRgb channelsOf(Pixel p) {
    return {redOf(p), greenOf(p), blueOf(p)};
}

} // namespace lumiran
