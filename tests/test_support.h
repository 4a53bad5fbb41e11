#pragma once

#include "engine/pixel.h"
#include "engine/surface.h"

#include <array>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace lumiran::testing {

// A pixel's red, green and blue.
using Colour = std::array<int, 3>;

inline Colour colourOf(Pixel p) {
    return {redOf(p), greenOf(p), blueOf(p)};
}

inline Colour colourAt(const Surface& s, int x, int y) {
    return colourOf(s.at(x, y));
}

// A picture whose every pixel comes from a function of its position.
inline Surface makePicture(int width, int height, const std::function<Pixel(int, int)>& colour) {
    Surface s(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            s.at(x, y) = colour(x, y);
    }
    return s;
}

// A picture with varied colours everywhere, distinct from row to row.
inline Surface makeVariedPicture(int width, int height) {
    return makePicture(width, height, [](int x, int y) {
        return makePixel((x * 37 + y * 11) & 0xFF, (x * 5 + y * 53) & 0xFF, (x * 91 + y) & 0xFF);
    });
}

// A folder of the running test's own: the process id keeps two checkouts
// that test at once on one machine out of each other's files.
inline std::filesystem::path testFolder(const std::string& prefix) {
    return std::filesystem::temp_directory_path() /
           (prefix + std::to_string(::getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
}

} // namespace lumiran::testing
