#pragma once

#include "effects/effect_fixture.h"
#include "test_support.h"

#include <array>
#include <cstdint>
#include <functional>
#include <random>

namespace lumiran::testing {

// Runs operations of a neighbourhood class: both arrays fetched, the
// result taken from TransBits (or from ImageBits for in-place operations).
template <typename Class>
struct NeighbourhoodFixture : EffectFixture<Class> {};

// A picture of random colours drawn from `levels` values per channel (few
// levels give many ties), the same for the same seed.
inline Surface randomPicture(int width, int height, int levels, unsigned seed) {
    std::mt19937 random(seed);
    return makePicture(width, height, [&](int, int) {
        auto channel = [&] {
            return static_cast<int>(random() % levels) * 255 / std::max(levels - 1, 1);
        };
        const int r = channel(), g = channel(), b = channel();
        return makePixel(r, g, b, static_cast<int>(random() & 0xFF));
    });
}

// The pixels outside the columns [left, right) and rows [top, bottom) are
// those of the source.
inline bool unchangedOutside(const Surface& result, const Surface& source, int left, int top,
                             int right, int bottom) {
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x) {
            const bool inside = x >= left && x < right && y >= top && y < bottom;
            if (!inside && result.at(x, y) != source.at(x, y)) return false;
        }
    }
    return true;
}

} // namespace lumiran::testing
