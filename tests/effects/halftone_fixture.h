#pragma once

#include "color_op_fixture.h" // op(), rect
#include "effects/halftone/binarization/class_binarization.h"
#include "effects/halftone/dithering/class_dithering.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lumiran::testing {

// Runs operations of a class that reads ImageBits and writes TransBits,
// both fetched from the picture, on a rectangle of the caller's choice.
template <typename Class>
struct HalftoneFixture : EffectFixture<Class> {
    using typename EffectFixture<Class>::Call;

    Surface run(const Surface& picture, const ProcessRect& area, const Call& call) {
        return this->runTrans(picture, call, area);
    }
    Surface run(const Surface& picture, const Call& call) { return this->runTrans(picture, call); }

    [[nodiscard]] int failureNumber() const {
        return this->context.failures.empty() ? 0 : this->context.failures.front().number();
    }
};

// A picture drawn from text, one character a pixel: '#' is white, any
// other character black.
inline Surface fromRows(const std::vector<std::string>& rows) {
    const auto width = static_cast<int>(rows.front().size());
    return makePicture(width, static_cast<int>(rows.size()), [&](int x, int y) {
        return rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#'
                   ? makePixel(255, 255, 255)
                   : makePixel(0, 0, 0);
    });
}

// The picture as text: '#' for black, '.' for white, '?' for anything else.
inline std::vector<std::string> toRows(const Surface& picture) {
    std::vector<std::string> rows;
    for (int y = 0; y < picture.height(); ++y) {
        std::string row;
        for (int x = 0; x < picture.width(); ++x) {
            const Pixel p = picture.at(x, y) & 0xFFFFFFu;
            row += p == 0 ? '#' : p == 0xFFFFFFu ? '.' : '?';
        }
        rows.push_back(row);
    }
    return rows;
}

// Random colours with a fixed seed.
inline Surface noisePicture(int width, int height, std::uint32_t seed) {
    return makePicture(width, height, [&seed](int, int) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<Pixel>(seed >> 8);
    });
}

} // namespace lumiran::testing
