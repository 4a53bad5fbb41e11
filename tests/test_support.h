#pragma once

#include "engine/pixel.h"
#include "engine/surface.h"

#include <functional>

namespace lumiran::testing {

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

} // namespace lumiran::testing
