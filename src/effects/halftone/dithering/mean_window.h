#pragma once

#include "engine/pixel.h"

#include <array>

namespace lumiran {

// The 3 x 3 window of the local-mean thresholders, row by row: [1] is the
// upper neighbour, [3] the left one, [4] the centre.
struct MeanWindow {
    std::array<Pixel, 9> at{};

    static constexpr std::size_t Upper = 1;
    static constexpr std::size_t Left = 3;
    static constexpr std::size_t Centre = 4;

    // The truncated mean of one channel over the nine values.
    template <typename Channel>
    [[nodiscard]] int mean(Channel of) const {
        int sum = 0;
        for (const Pixel p : at)
            sum += of(p);
        return sum / 9;
    }
};

// (r + g + b) / 3, truncated.
[[nodiscard]] constexpr int averageOf(Pixel p) {
    return (redOf(p) + greenOf(p) + blueOf(p)) / 3;
}

} // namespace lumiran
